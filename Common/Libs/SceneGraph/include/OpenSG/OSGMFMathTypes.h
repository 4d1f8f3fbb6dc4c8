#pragma once

#include <OpenSG/OSGMFVecTypes.h>
