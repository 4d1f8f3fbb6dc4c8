#include "TimeAxis.h"

namespace ka::studio {

void TimeAxis::show(double begin, double end, double pixels) {
    _map.show(begin, end, pixels);
    emit changed();
}

void TimeAxis::pan(double pixels) {
    _map.pan(pixels);
    emit changed();
}

void TimeAxis::zoom(double pixel, double factor) {
    _map.zoom(pixel, factor);
    emit changed();
}

void TimeAxis::setInSeconds(bool inSeconds) {
    _inSeconds = inSeconds;
    emit changed();
}

} // namespace ka::studio
