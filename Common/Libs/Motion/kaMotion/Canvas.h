#pragma once

#include <QByteArray>
#include <QColor>
#include <QFont>
#include <QImage>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Starts the drawing library once, without windows and whatever display there is; needed before any text is
/// drawn.
void startDrawing();

/// The one typeface of all pictures.
QFont pictureFont(int pixels, bool bold = false);

/// Colours that stay apart from one another, also for the colour-blind; repeats after eight.
QColor distinctColor(std::size_t index);

/// An image as the bytes of a PNG file.
std::string pngBytes(const QImage& image);

/// Places for axis labels between `low` and `high`: multiples of 1, 2 or 5 times a power of ten, about
/// `count` of them, at least two when low < high.
std::vector<double> niceTicks(double low, double high, int count);

} // namespace ka::motion
#pragma GCC visibility pop
