#pragma once

#include <OpenSG/OSGBaseTypes.h>
