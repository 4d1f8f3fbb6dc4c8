#pragma once

#include <OpenSG/OSGSFVecTypes.h>
