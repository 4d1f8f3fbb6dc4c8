#pragma once

#include <OpenSG/OSGAttachment.h>
