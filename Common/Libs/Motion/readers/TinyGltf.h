#pragma once

// The one way to include the third-party reader: it is not clean under our warnings.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wshadow"
#include <tiny_gltf.h>
#pragma GCC diagnostic pop
