#pragma once

#include <OpenSG/OSGVolume.h>
