#include "operations/SegmentSearch.h"

#include <algorithm>

namespace ka::motion {

namespace {

/// End values that are tried, in tolerances from the sample.
constexpr std::array<float, 8> endValues{-0.875F, -0.625F, -0.375F, -0.125F, 0.125F, 0.375F, 0.625F, 0.875F};

/// Longer spans are tried at every second sample, or fewer; what is chosen is measured at all of them.
constexpr std::size_t mostTried = 1024;

/// No handle is further from its key, in tolerances.
constexpr float unbounded = 1e7F;

} // namespace

SegmentSearch::SegmentSearch(const SourceSamples& samples, double tolerance, std::size_t last)
    : _samples(samples), _tolerance(tolerance), _last(last) {}

void SegmentSearch::endWithSlope(double slope) {
    _hasEndSlope = true;
    _endSlope = slope;
}

void SegmentSearch::begin(std::size_t from, std::size_t to) {
    _from = from;
    _to = to;
    _length = static_cast<double>(_samples.frames[to]) - static_cast<double>(_samples.frames[from]);
    _base = _samples.values[to];
    _prepared.clear();
    _grain = (to - from) / mostTried + 1;
    const std::size_t count = (to - from) / _grain;
    _stride = 1;
    while (_stride < count)
        _stride *= 2;
    _next = _stride;
}

/// Samples in the middle come first: where a segment does not fit, the first few tell.
bool SegmentSearch::prepareNext() {
    for (; _stride > 0; _stride /= 2, _next = _stride) {
        const std::size_t sample = _from + _next * _grain;
        if (sample >= _to)
            continue;
        const double part =
            (static_cast<double>(_samples.frames[sample]) - static_cast<double>(_samples.frames[_from])) /
            _length * HandleShape::steps;
        const int step = static_cast<int>(part);
        _prepared.push_back({step, static_cast<float>(part - step),
                             static_cast<float>((_samples.values[sample] - _base) / _tolerance)});
        _next += 2 * _stride;
        return true;
    }
    return false;
}

bool SegmentSearch::fits(const CurveState& from, const HandleShape& shape, Cut& cut) {
    const double start = (from.value - _base) / _tolerance;
    const auto y0 = static_cast<float>(start);
    const auto y1 = static_cast<float>(start + from.slope * shape.out() * _length / _tolerance);
    const bool isLast = _to == _last;
    cut.low.fill(-unbounded);
    cut.high.fill(unbounded);
    if (isLast && _hasEndSlope) {
        const auto wanted = static_cast<float>(-_endSlope * shape.in() * _length / _tolerance);
        cut.low.fill(wanted - 1e-3F);
        cut.high.fill(wanted + 1e-3F);
    }
    const float spread = isLast ? 0.0F : 1.0F;
    for (std::size_t k = 0; k < _prepared.size() || prepareNext(); ++k) {
        const Prepared& sample = _prepared[k];
        const HandleShape::Weights w = shape.at(sample.step, sample.rest);
        const float half = 1.0F / w[2];
        const float middle = (sample.value - w[0] * y0 - w[1] * y1) * half;
        const float tilt = w[3] * half * spread;
        float widest = -1.0F;
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            const float centre = middle - tilt * endValues[lane];
            cut.low[lane] = std::max(cut.low[lane], centre - half);
            cut.high[lane] = std::min(cut.high[lane], centre + half);
        }
        for (std::size_t lane = 0; lane < lanes; ++lane)
            widest = std::max(widest, cut.high[lane] - cut.low[lane]);
        if (!(widest > 0.0F))
            return false;
    }
    return true;
}

bool SegmentSearch::isReached(const CurveState& from, std::size_t to) {
    const std::vector<HandleShape>& shapes = handleShapes();
    begin(from.at, to);
    Cut cut;
    if (fits(from, shapes[_favourite], cut))
        return true;
    for (std::size_t i = 0; i < shapes.size(); ++i)
        if (i != _favourite && fits(from, shapes[i], cut)) {
            _favourite = i;
            return true;
        }
    return false;
}

std::size_t SegmentSearch::bisect(const CurveState& from, std::size_t reached, std::size_t missed) {
    while (missed - reached > 1) {
        const std::size_t middle = reached + (missed - reached) / 2;
        (isReached(from, middle) ? reached : missed) = middle;
    }
    return reached;
}

std::size_t SegmentSearch::reach(const CurveState& from, std::size_t guess) {
    std::size_t reached = std::clamp(guess, from.at + 1, _last);
    if (!isReached(from, reached))
        return bisect(from, from.at, reached);
    while (reached < _last) {
        const std::size_t further = std::min(reached + (reached - from.at) / 3 + 1, _last);
        if (!isReached(from, further))
            return bisect(from, reached, further);
        reached = further;
    }
    return reached;
}

std::size_t SegmentSearch::reachBeyond(const CurveState& from, std::size_t beat) {
    if (beat >= _last || beat + 1 <= from.at || !isReached(from, beat + 1))
        return from.at;
    std::size_t reached = beat + 1;
    for (std::size_t step = 1; reached < _last; step *= 2) {
        const std::size_t further = std::min(reached + step, _last);
        if (!isReached(from, further))
            return bisect(from, reached, further);
        reached = further;
    }
    return reached;
}

void SegmentSearch::choices(const CurveState& from, std::size_t to, std::vector<SegmentChoice>& found) {
    begin(from.at, to);
    const bool isLast = to == _last;
    for (const HandleShape& shape : handleShapes()) {
        Cut cut;
        if (!fits(from, shape, cut))
            continue;
        for (std::size_t lane = 0; lane < (isLast ? 1 : lanes); ++lane) {
            if (!(cut.low[lane] < cut.high[lane]))
                continue;
            const double end = isLast ? 0.0 : static_cast<double>(endValues[lane]);
            // Without samples in between the handle may be anywhere: straight on is best.
            const bool isFree = cut.low[lane] == -unbounded && cut.high[lane] == unbounded;
            const double start = (from.value - _base) / _tolerance;
            const double in =
                isFree ? end + (start - end) * shape.in()
                       : (static_cast<double>(cut.low[lane]) + static_cast<double>(cut.high[lane])) / 2;
            found.push_back({{to, _base + end * _tolerance, (end - in) * _tolerance / (shape.in() * _length)},
                             &shape,
                             from.value + from.slope * shape.out() * _length,
                             _base + in * _tolerance});
        }
    }
}

} // namespace ka::motion
