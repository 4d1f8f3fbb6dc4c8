#include <algorithm>
#include <cmath>
#include <kaMotion/CurveKey.h>
#include <kaMotion/DocumentNumber.h>
#include <limits>

namespace ka::motion {

namespace {

double bezier(double p0, double p1, double p2, double p3, double t) {
    const double v = 1.0 - t;
    return v * v * v * p0 + 3 * v * v * t * p1 + 3 * v * t * t * p2 + t * t * t * p3;
}

/// The least coefficient of t³ at which the closed formula for cubic equations keeps its digits.
constexpr double leastCube = 1e-5;

/// The handles' places in time, as parts of the way from the first key to the second.
struct HandleTimes {
    float x1 = 0.0F, x2 = 0.0F;
    double a = 0.0, b = 0.0;

    HandleTimes(float x0, float h1, float h2, float x3) : x1(h1), x2(h2) {
        const double dx = static_cast<double>(x3) - static_cast<double>(x0);
        a = (static_cast<double>(x1) - static_cast<double>(x0)) / dx;
        b = (static_cast<double>(x2) - static_cast<double>(x0)) / dx;
    }

    /// Whether the time polynomial A·t³ + B·t² + C·t of the segment is solved without loss: either it is of
    /// the first degree exactly, or A is far enough from zero and time has no turning point anywhere, which
    /// leaves one real root.
    bool isSolvedExactly() const {
        const double A = 1.0 - 3.0 * b + 3.0 * a, B = 3.0 * (b - 2.0 * a), C = 3.0 * a;
        return a >= 0.0 && b <= 1.0 && ((A == 0.0 && B == 0.0) || (A >= leastCube && B * B <= A * C));
    }

    /// The curve's parameter at the part `u` of the time. Time runs almost evenly, so few steps are enough.
    double parameter(double u) const {
        double t = u;
        for (int i = 0; i < 4; ++i)
            t -= bezier(0.0, a, b, 1.0, t) - u; // its slope is 1 up to the rounding of the handles
        return t;
    }
};

/// The values of the handles that lead a segment through those of `from` and `to` at two places, and how far
/// it is off elsewhere.
struct HandleValues {
    float y1 = 0.0F, y2 = 0.0F;
    double error = 0.0;

    HandleValues(const HandleTimes& times, const CurveKey& from, const CurveKey& to) {
        // With these two places the largest error in between is least.
        constexpr double first = 0.3, second = 0.7;
        const double t = times.parameter(first), s = times.parameter(second);
        const double p = segmentValue(from, to, first) - bezier(from.value, 0, 0, to.value, t);
        const double q = segmentValue(from, to, second) - bezier(from.value, 0, 0, to.value, s);
        const double t1 = bezier(0, 1, 0, 0, t), t2 = bezier(0, 0, 1, 0, t);
        const double s1 = bezier(0, 1, 0, 0, s), s2 = bezier(0, 0, 1, 0, s);
        const double determinant = t1 * s2 - t2 * s1;
        y1 = documentFloat((p * s2 - q * t2) / determinant);
        y2 = documentFloat((t1 * q - s1 * p) / determinant);
        for (const double u : {0.12, 0.5, 0.88}) {
            const double value = bezier(from.value, static_cast<double>(y1), static_cast<double>(y2),
                                        to.value, times.parameter(u));
            error = std::max(error, std::abs(value - segmentValue(from, to, u)));
        }
    }
};

/// Handles next to the thirds, chosen for the least error among the numbers around there that a document can
/// hold: what is chosen here is what plays after saving and opening.
void placeSmoothHandles(const CurveKey& from, const CurveKey& to, BezierKey& a, BezierKey& b) {
    const double x0 = a.frame, dx = b.frame - x0;
    constexpr int reach = 2;
    double least = std::numeric_limits<double>::infinity();
    const auto consider = [&](float x1, float x2) {
        const HandleTimes times(a.frame, x1, x2, b.frame);
        if (!times.isSolvedExactly())
            return;
        const HandleValues values(times, from, to);
        if (!(values.error < least))
            return;
        least = values.error;
        a.outFrame = times.x1;
        a.outValue = values.y1;
        b.inFrame = times.x2;
        b.inValue = values.y2;
    };
    // Drawn together by a sixth of it each, the handles give t³ the coefficient wanted and bend time the
    // least.
    for (const double cube : {0.0, 1.2 * leastCube}) {
        const float third = documentFloat(x0 + dx * (1.0 / 3.0 + cube / 6.0)),
                    twoThirds = documentFloat(x0 + dx * (2.0 / 3.0 - cube / 6.0));
        for (int i = -reach; i <= reach; ++i)
            for (int j = -reach; j <= reach; ++j)
                consider(documentNeighbour(third, i), documentNeighbour(twoThirds, j));
    }
}

void placeHandles(const CurveKey& from, const CurveKey& to, double fps, BezierKey& a, BezierKey& b) {
    a.outFrame = a.frame;
    a.outValue = a.value;
    b.inFrame = b.frame;
    b.inValue = b.value;
    if (from.toNext == SegmentShape::Step)
        return;
    // A smooth segment keeps these where so few numbers lie between its keys that no other handles fit.
    const double x0 = a.frame, x3 = b.frame, y0 = a.value, y3 = b.value;
    const float middle = documentFloat(x0 + (x3 - x0) / 2.0);
    // With both handles on the first key that key's own frame would have no value.
    a.outFrame = b.inFrame = middle > a.frame ? middle : b.frame;
    a.outValue = b.inValue = documentFloat(y0 + (y3 - y0) * ((a.outFrame - x0) / (x3 - x0)));
    if (from.toNext == SegmentShape::Smooth)
        placeSmoothHandles({x0 / fps, y0, 0.0, from.outSlope, SegmentShape::Smooth},
                           {x3 / fps, y3, to.inSlope, 0.0, SegmentShape::Smooth}, a, b);
}

} // namespace

double segmentValue(const CurveKey& a, const CurveKey& b, double u) {
    if (a.toNext == SegmentShape::Step)
        return u < 1.0 ? a.value : b.value;
    if (a.toNext == SegmentShape::Straight)
        return a.value + (b.value - a.value) * u;
    const double span = b.time - a.time, v = 1.0 - u;
    return v * v * (1 + 2 * u) * a.value + u * u * (1 + 2 * v) * b.value +
           span * (v * v * u * a.outSlope - u * u * v * b.inSlope);
}

void snapToFrames(std::vector<CurveKey>& keys, double fps) {
    constexpr double digits = std::numeric_limits<float>::epsilon();
    for (CurveKey& key : keys) {
        const double whole = std::round(key.time * fps);
        if (std::abs(key.time * fps - whole) <= digits * std::abs(whole))
            key.time = whole / fps;
    }
}

BezierCurve layOutCurve(const std::vector<CurveKey>& keys, double fps) {
    BezierCurve curve;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const float frame = documentFloat(keys[i].time * fps), value = documentFloat(keys[i].value);
        if (!curve.keys.empty() && !(frame > curve.keys.back().frame)) {
            ++curve.merged;
            continue;
        }
        curve.keys.push_back({frame, value, frame, value, frame, value});
        curve.sources.push_back(i);
    }
    for (std::size_t i = 0; i + 1 < curve.keys.size(); ++i)
        placeHandles(keys[curve.sources[i]], keys[curve.sources[i + 1]], fps, curve.keys[i],
                     curve.keys[i + 1]);
    if (curve.keys.size() == 1) {
        BezierKey next = curve.keys.front();
        next.frame = next.inFrame = next.outFrame =
            std::max(documentFloat(next.frame + 1.0), documentNeighbour(next.frame, 1));
        curve.keys.push_back(next);
        curve.sources.push_back(curve.sources.front());
    }
    return curve;
}

} // namespace ka::motion
