#pragma once

#include <OpenSG/OSGNode.h>
