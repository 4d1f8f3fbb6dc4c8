#pragma once

#include <OpenSG/OSGThread.h>
