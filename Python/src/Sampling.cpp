#include "Sampling.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaCurveSampling.h>
#include <limits>

namespace ka::python {

bool sampleColumn(kaAnimationCurve2D& curve, const float* frames, std::size_t count, bool hold,
                  std::vector<float>& held, float* column) {
    constexpr float NoValue = std::numeric_limits<float>::quiet_NaN();
    std::fill(column, column + count, NoValue);
    const float begin = curve.getBegin(), end = curve.getEnd();
    if (hold && begin <= end) {
        held.resize(count);
        std::transform(frames, frames + count, held.begin(), [begin, end](float frame) {
            return frame < begin ? begin : frame > end ? end : frame; // what is no number stays so
        });
        frames = held.data();
    }
    std::size_t written = kaCurveSampling::sample(&curve, frames, count, column);
    for (std::size_t i = 0; i < count; ++i)
        if (std::isnan(frames[i])) {
            column[i] = NoValue;
            written = 0;
        }
    return written == count;
}

} // namespace ka::python
