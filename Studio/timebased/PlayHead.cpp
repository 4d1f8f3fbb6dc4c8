#include "PlayHead.h"

#include <cmath>

namespace ka::studio {

void PlayHead::setFramesPerSecond(float rate) {
    if (std::isfinite(rate) && rate > 0.0F)
        _rate = rate;
}

void PlayHead::show(float frame) {
    if (!std::isfinite(frame) || frame == _frame)
        return;
    _frame = frame;
    emit moved(frame);
}

void PlayHead::scrub(float frame) {
    if (!std::isfinite(frame))
        return;
    show(frame);
    emit scrubbed(frame);
}

} // namespace ka::studio
