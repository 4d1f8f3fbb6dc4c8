#pragma once

#include <QImage>

/// One panel for each tangent type, each with the same keys.
QImage drawTangentTypes();

/// One panel for each length mode of smooth handles, each with the same keys.
QImage drawLengthModes();
