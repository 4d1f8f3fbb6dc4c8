#include "operations/SourceRuns.h"

#include "check/SegmentCheck.h"

#include <algorithm>
#include <cmath>

namespace ka::motion {

namespace {

bool isFlat(const PlainKey& left, const PlainKey& right) {
    return left.y == right.y && left.outY == left.y && right.inY == right.y;
}

bool isOrdinary(const PlainKey& left, const PlainKey& right) {
    const kaSegmentPoints points = segmentBetween(left, right);
    for (const float part :
         {points.x0, points.y0, points.x1, points.y1, points.x2, points.y2, points.x3, points.y3})
        if (!std::isfinite(part))
            return false;
    return points.x1 >= points.x0 && points.x1 <= points.x3 && points.x2 >= points.x0 &&
           points.x2 <= points.x3 && !frameWithoutValue(points);
}

RunKind kindOf(const PlainKey& left, const PlainKey& right) {
    if (segmentBetween(left, right).isStep())
        return RunKind::Stepped;
    if (!isOrdinary(left, right))
        return RunKind::Untouched;
    return isFlat(left, right) ? RunKind::Held : RunKind::Moving;
}

std::optional<double> slope(float fromX, float fromY, float toX, float toY) {
    const double length = static_cast<double>(toX) - static_cast<double>(fromX);
    if (length == 0.0)
        return std::nullopt;
    return (static_cast<double>(toY) - static_cast<double>(fromY)) / length;
}

} // namespace

std::optional<double> slopeAfter(const PlainKey& left, const PlainKey& right) {
    if (left.outX != left.x || left.outY != left.y)
        return slope(left.x, left.y, left.outX, left.outY);
    if (right.inX != left.x || right.inY != left.y)
        return slope(left.x, left.y, right.inX, right.inY);
    return slope(left.x, left.y, right.x, right.y);
}

std::optional<double> slopeBefore(const PlainKey& left, const PlainKey& right) {
    if (right.inX != right.x || right.inY != right.y)
        return slope(right.inX, right.inY, right.x, right.y);
    if (left.outX != right.x || left.outY != right.y)
        return slope(left.outX, left.outY, right.x, right.y);
    return slope(left.x, left.y, right.x, right.y);
}

bool isSharp(const std::vector<PlainKey>& keys, std::size_t at, double tolerance) {
    const PlainKey &before = keys[at - 1], &key = keys[at], &after = keys[at + 1];
    const std::optional<double> in = slopeBefore(before, key), out = slopeAfter(key, after);
    if (!in || !out)
        return true;
    // A parabola that leaves the two tangents at this distance from their crossing passes it by an eighth of
    // the change of slope.
    const double reach = std::min(static_cast<double>(key.x) - static_cast<double>(before.x),
                                  static_cast<double>(after.x) - static_cast<double>(key.x));
    return std::abs(*out - *in) * reach / 8 > tolerance;
}

std::vector<SourceRun> sourceRuns(const std::vector<PlainKey>& keys, double shortestHold) {
    std::vector<SourceRun> runs;
    for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
        const RunKind kind = kindOf(keys[i], keys[i + 1]);
        if (!runs.empty() && runs.back().kind == kind)
            runs.back().last = i + 1;
        else
            runs.push_back({kind, i, i + 1});
    }
    std::vector<SourceRun> merged;
    for (SourceRun run : runs) {
        const double length = static_cast<double>(keys[run.last].x) - static_cast<double>(keys[run.first].x);
        if (run.kind == RunKind::Held && runs.size() > 1 && length < shortestHold)
            run.kind = RunKind::Moving;
        if (!merged.empty() && merged.back().kind == RunKind::Moving && run.kind == RunKind::Moving)
            merged.back().last = run.last;
        else
            merged.push_back(run);
    }
    return merged;
}

SourceSamples sampleRun(const std::vector<PlainKey>& keys, const SourceRun& run, double step,
                        std::size_t most) {
    SourceSamples samples;
    const auto add = [&](float frame, double value, std::size_t key) {
        samples.frames.push_back(frame);
        samples.values.push_back(value);
        samples.keys.push_back(key);
    };
    for (std::size_t i = run.first; i < run.last; ++i) {
        const kaSegmentPoints segment = segmentBetween(keys[i], keys[i + 1]);
        add(keys[i].x, static_cast<double>(keys[i].y), i);
        const double from = static_cast<double>(segment.x0), to = static_cast<double>(segment.x3);
        const double first = std::floor(from / step) + 1, last = std::ceil(to / step) - 1;
        const double stride = std::max(1.0, std::ceil((last - first + 1) / static_cast<double>(most)));
        for (double k = first; k <= last; k += stride) {
            const auto frame = static_cast<float>(k * step);
            float value = 0.0F;
            if (frame > samples.frames.back() && frame < segment.x3 && kaSampleSegment(segment, frame, value))
                add(frame, static_cast<double>(value), SourceSamples::noKey);
        }
    }
    add(keys[run.last].x, static_cast<double>(keys[run.last].y), run.last);
    return samples;
}

} // namespace ka::motion
