#include "check/SegmentCheck.h"

#include <algorithm>
#include <cmath>
#include <kaMotion/DocumentNumber.h>
#include <limits>
#include <vector>

namespace ka::motion {

namespace {

/// Frames of a segment at which it is tried out in any case.
constexpr int mostTrials = 16;

/// The sampler takes a discriminant below this for 0.
constexpr double discriminantTolerance = 1e-6;

/// The time polynomial A·t³ + B·t² + C·t of a segment, the part of its length that has passed.
struct TimePolynomial {
    double start = 0.0, length = 0.0;
    double A = 0.0, B = 0.0, C = 0.0;

    explicit TimePolynomial(const kaSegmentPoints& p)
        : start(p.x0), length(static_cast<double>(p.x3) - static_cast<double>(p.x0)) {
        const double a = (static_cast<double>(p.x1) - start) / length;
        const double b = (static_cast<double>(p.x2) - start) / length;
        A = 1.0 - 3.0 * b + 3.0 * a;
        B = 3.0 * (b - 2.0 * a);
        C = 3.0 * a;
    }

    // Of the reduced cubic u³ + p·u + q with t = u - shift and q = q0 - s/A.
    double shift() const { return B / (3.0 * A); }
    double p() const { return (3.0 * A * C - B * B) / (3.0 * A * A); }
    double q0() const { return 2.0 * B * B * B / (27.0 * A * A * A) - B * C / (3.0 * A * A); }
    double pThird3() const { return p() / 3.0 * (p() / 3.0) * (p() / 3.0); }
    double frameAt(double q) const { return start + (q0() - q) * A * length; }

    /// Whether there is one real root at every frame, which the sampler takes as it is.
    bool hasOneRoot() const {
        const bool isEven = A == 0.0 && B == 0.0;
        return isEven || (p() > 0.0 && pThird3() > 1.01 * discriminantTolerance);
    }

    /// The frames at which the sampler goes over from one of its cases to the next: where the discriminant
    /// reaches the tolerance, and where one of its two candidates for a nearly double root enters or leaves
    /// the segment or has no cube root any more.
    std::vector<double> turningFrames() const {
        if (A == 0.0)
            return {};
        std::vector<double> q{0.0};
        for (const double limit : {discriminantTolerance, -discriminantTolerance})
            if (const double square = limit - pThird3(); square >= 0.0) {
                q.push_back(2.0 * std::sqrt(square));
                q.push_back(-q.back());
            }
        const double first = shift(), last = 1.0 + shift();
        for (const double root : {first, last}) {
            q.push_back(-root * root * root / 4.0);
            q.push_back(2.0 * root * root * root);
        }
        std::vector<double> frames;
        for (const double each : q)
            if (const double frame = frameAt(each); frame >= start && frame <= start + length)
                frames.push_back(frame);
        return frames;
    }
};

bool isFinite(const kaSegmentPoints& p) {
    for (const float part : {p.x0, p.y0, p.x1, p.y1, p.x2, p.y2, p.x3, p.y3})
        if (!std::isfinite(part))
            return false;
    return true;
}

bool hasValue(const kaSegmentPoints& points, float frame) {
    float value = 0.0F;
    return kaSampleSegment(points, frame, value) && std::isfinite(value);
}

/// Frames evenly over the segment, its first key's before all others; moved to whole ones where there are
/// any.
std::vector<float> evenFrames(const kaSegmentPoints& p) {
    std::vector<float> frames{p.x0};
    const double length = static_cast<double>(p.x3) - static_cast<double>(p.x0);
    for (int i = 1; i < mostTrials; ++i) {
        const double at = static_cast<double>(p.x0) + length * i / mostTrials;
        const auto whole = static_cast<float>(std::round(at));
        frames.push_back(whole > p.x0 && whole < p.x3 ? whole : static_cast<float>(at));
    }
    return frames;
}

/// The floats around each of the frames, and the middles between them; the whole ones first.
std::vector<float> framesAround(std::vector<double> frames) {
    std::sort(frames.begin(), frames.end());
    std::vector<float> around;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const auto at = static_cast<float>(frames[i]);
        const float below = std::nextafter(at, -std::numeric_limits<float>::infinity());
        const float above = std::nextafter(at, std::numeric_limits<float>::infinity());
        around.insert(around.end(), {std::ceil(at), below, at, above,
                                     std::nextafter(above, std::numeric_limits<float>::infinity())});
        if (i > 0)
            around.push_back(static_cast<float>((frames[i - 1] + frames[i]) / 2.0));
    }
    std::stable_partition(around.begin(), around.end(),
                          [](float frame) { return frame == std::round(frame); });
    return around;
}

} // namespace

bool turnsBack(const kaSegmentPoints& p) {
    const double length = static_cast<double>(p.x3) - static_cast<double>(p.x0);
    // The derivative of the time polynomial, in Bernstein form.
    const double first = (static_cast<double>(p.x1) - static_cast<double>(p.x0)) / length;
    const double last = (static_cast<double>(p.x3) - static_cast<double>(p.x2)) / length;
    const double middle = 1.0 - first - last;
    double least = std::min(first, last);
    const double bend = first - 2.0 * middle + last;
    if (middle < 0.0 && first >= 0.0 && last >= 0.0)
        least = (first * last - middle * middle) / bend;
    return least < -(documentStep / length + 1e-6);
}

std::optional<float> frameWithoutValue(const kaSegmentPoints& points) {
    const TimePolynomial time(points);
    const bool isStep =
        points.x1 == points.x0 && points.y1 == points.y0 && points.x2 == points.x3 && points.y2 == points.y3;
    if (isFinite(points) && (isStep || time.hasOneRoot()))
        return std::nullopt;
    std::vector<float> frames = evenFrames(points);
    if (isFinite(points)) {
        std::vector<double> marks = time.turningFrames();
        marks.insert(marks.end(), {static_cast<double>(points.x0), static_cast<double>(points.x3)});
        const std::vector<float> more = framesAround(std::move(marks));
        frames.insert(frames.end(), more.begin(), more.end());
    }
    for (const float frame : frames)
        if (frame >= points.x0 && frame < points.x3 && !hasValue(points, frame))
            return frame;
    return std::nullopt;
}

} // namespace ka::motion
