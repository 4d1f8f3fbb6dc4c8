#include "writers/CurveFunction.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ka::motion {

namespace {

struct Cubic {
    double p0, p1, p2, p3;

    double at(double t) const {
        const double v = 1.0 - t;
        return v * v * v * p0 + 3 * v * v * t * p1 + 3 * v * t * t * p2 + t * t * t * p3;
    }

    double derivative(double t) const {
        const double v = 1.0 - t;
        return 3 * (v * v * (p1 - p0) + 2 * v * t * (p2 - p1) + t * t * (p3 - p2));
    }
};

Cubic framesOf(const kaSegmentPoints& s) {
    return {static_cast<double>(s.x0), static_cast<double>(s.x1), static_cast<double>(s.x2),
            static_cast<double>(s.x3)};
}

Cubic valuesOf(const kaSegmentPoints& s) {
    return {static_cast<double>(s.y0), static_cast<double>(s.y1), static_cast<double>(s.y2),
            static_cast<double>(s.y3)};
}

/// Whether the frame never runs backwards along the segment, so that the sampler has one solution.
bool runsForward(const Cubic& x) {
    return x.p1 >= x.p0 && x.p1 <= x.p3 && x.p2 >= x.p0 && x.p2 <= x.p3;
}

/// The parameter at which the segment reaches a frame, by halving.
double parameterAt(const Cubic& x, double frame) {
    double low = 0.0, high = 1.0;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2;
        (x.at(middle) < frame ? low : high) = middle;
    }
    return (low + high) / 2;
}

} // namespace

CurveFunction::CurveFunction(std::vector<PlainKey> keys, double rest)
    : _keys(std::move(keys)), _constant(rest) {
    if (_keys.size() < 2)
        _keys.clear();
}

const PlainKey* CurveFunction::segmentAt(double frame, Side side) const {
    const auto first = [](double wanted, const PlainKey& key) { return wanted < static_cast<double>(key.x); };
    const auto last = [](const PlainKey& key, double wanted) { return static_cast<double>(key.x) < wanted; };
    const auto right = side == Side::After ? std::upper_bound(_keys.begin(), _keys.end(), frame, first)
                                           : std::lower_bound(_keys.begin(), _keys.end(), frame, last);
    return right == _keys.begin() || right == _keys.end() ? nullptr : &*(right - 1);
}

double CurveFunction::sampled(const PlainKey& left, double frame) const {
    const kaSegmentPoints segment = segmentBetween(left, *(&left + 1));
    const double x0 = static_cast<double>(left.x), x3 = static_cast<double>(segment.x3);
    if (segment.isStep() || frame <= x0)
        return static_cast<double>(left.y);
    if (frame >= x3)
        return static_cast<double>(segment.y3);
    // Between the frames that a float can name the value runs straight.
    const auto near = static_cast<float>(frame);
    const auto nearValue = [&](float at) {
        float value = left.y;
        kaSampleSegment(segment, std::clamp(at, segment.x0, segment.x3), value);
        return static_cast<double>(value);
    };
    const double value = nearValue(near), away = frame - static_cast<double>(near);
    if (away == 0.0)
        return value;
    const float next = std::nextafter(near, away > 0.0 ? segment.x3 : segment.x0);
    const double apart = static_cast<double>(next) - static_cast<double>(near);
    return apart == 0.0 ? value : value + (nearValue(next) - value) * (away / apart);
}

double CurveFunction::value(double frame, Side side) const {
    if (isConstant())
        return _constant;
    if (const PlainKey* left = segmentAt(frame, side))
        return sampled(*left, frame);
    return static_cast<double>(frame <= static_cast<double>(_keys.front().x) ? _keys.front().y
                                                                             : _keys.back().y);
}

double CurveFunction::slope(double frame, Side side) const {
    const PlainKey* left = isConstant() ? nullptr : segmentAt(frame, side);
    if (left == nullptr)
        return 0.0;
    const kaSegmentPoints segment = segmentBetween(*left, *(left + 1));
    if (segment.isStep())
        return 0.0;
    const Cubic x = framesOf(segment), y = valuesOf(segment);
    if (!runsForward(x)) {
        const double reach = (x.p3 - x.p0) / 1024, other = frame + (side == Side::After ? reach : -reach);
        return (sampled(*left, other) - sampled(*left, frame)) / (other - frame);
    }
    const double t = frame <= x.p0 ? 0.0 : frame >= x.p3 ? 1.0 : parameterAt(x, frame);
    const double dx = x.derivative(t), dy = y.derivative(t);
    if (dx > 1e-9 * (x.p3 - x.p0))
        return dy / dx;
    // A handle on its key: the tangent points to the other handle.
    const double inside = t < 0.5 ? 1e-4 : 1.0 - 1e-4;
    return y.derivative(inside) / x.derivative(inside);
}

bool CurveFunction::holds(double from, double to) const {
    const auto [least, largest] = bounds(from, to);
    return least == largest;
}

std::pair<double, double> CurveFunction::bounds(double from, double to) const {
    const PlainKey* left = isConstant() ? nullptr : segmentAt(from, Side::After);
    if (left == nullptr || static_cast<double>((left + 1)->x) < to) {
        const double before = value(from, Side::After), after = value(to, Side::Before);
        return std::minmax(before, after);
    }
    const kaSegmentPoints segment = segmentBetween(*left, *(left + 1));
    if (segment.isStep())
        return {static_cast<double>(segment.y0), static_cast<double>(segment.y0)};
    const Cubic x = framesOf(segment), y = valuesOf(segment);
    if (!runsForward(x))
        return std::minmax({y.p0, y.p1, y.p2, y.p3});
    // The control points of the part, by blossoms.
    const double s = parameterAt(x, from), t = parameterAt(x, to);
    const auto blossom = [&y](double a, double b, double c) {
        const auto mix = [](double p, double q, double u) { return p + (q - p) * u; };
        const double p = mix(y.p0, y.p1, a), q = mix(y.p1, y.p2, a), r = mix(y.p2, y.p3, a);
        return mix(mix(p, q, b), mix(q, r, b), c);
    };
    return std::minmax({blossom(s, s, s), blossom(s, s, t), blossom(s, t, t), blossom(t, t, t)});
}

} // namespace ka::motion
