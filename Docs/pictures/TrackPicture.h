#pragma once

#include <QImage>

/// A clip with two tracks of blocks, a nested clip and a sequence, each where its extent says.
QImage drawTracks();
