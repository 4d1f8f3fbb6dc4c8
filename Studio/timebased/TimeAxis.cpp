#include "TimeAxis.h"

#include <algorithm>

namespace ka::studio {

void TimeAxis::show(double begin, double end, double pixels) {
    _map.show(begin, end, pixels);
    emit changed();
}

void TimeAxis::frame(double begin, double end, double pixels) {
    constexpr double Room = 20.0;
    const double frames = std::max(end - begin, 1.0);
    const double aPixel = frames / std::max(pixels - LeftMargin - 2 * Room, 1.0);
    show(begin - (LeftMargin + Room) * aPixel, begin + frames + Room * aPixel, pixels);
}

void TimeAxis::pan(double pixels) {
    _map.pan(pixels);
    emit changed();
}

void TimeAxis::zoom(double pixel, double factor) {
    _map.zoom(pixel, factor);
    emit changed();
}

void TimeAxis::setRange(double begin, double end) {
    _rangeBegin = begin;
    _rangeEnd = end;
    emit rangeChanged();
}

void TimeAxis::setInSeconds(bool inSeconds) {
    _inSeconds = inSeconds;
    emit changed();
}

} // namespace ka::studio
