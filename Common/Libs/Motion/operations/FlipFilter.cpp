#include "operations/FlipFilter.h"

#include "operations/CurveEdit.h"

#include <algorithm>
#include <cmath>
#include <kaMotion/DocumentNumber.h>
#include <kaMotion/Rotation.h>

namespace ka::motion {

namespace {

/// So near to a right angle the other two turn about one axis, as far as a float can tell.
constexpr double locked = 1e-3;

std::vector<float> allFrames(const std::array<Keys, 3>& curves) {
    std::vector<float> frames;
    for (const Keys& keys : curves)
        for (const PlainKey& key : keys)
            frames.push_back(key.x);
    std::sort(frames.begin(), frames.end());
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

/// A curve with keys at all these frames, its ends held.
Keys spread(const Keys& keys, const std::vector<float>& frames) {
    Keys more = withKeysAt(keys, frames);
    const auto held = [](float frame, float value) {
        return PlainKey{frame, value, frame, value, frame, value};
    };
    Keys before, after;
    for (const float frame : frames) {
        if (frame < more.front().x)
            before.push_back(held(frame, more.front().y));
        if (frame > more.back().x)
            after.push_back(held(frame, more.back().y));
    }
    const bool hasBefore = !before.empty();
    more.insert(more.begin(), before.begin(), before.end());
    const std::size_t end = more.size();
    more.insert(more.end(), after.begin(), after.end());
    for (std::size_t i = 0; hasBefore && i < before.size(); ++i)
        makeStraight(more[i], more[i + 1]);
    for (std::size_t i = end; i < more.size(); ++i)
        makeStraight(more[i - 1], more[i]);
    return more;
}

double largest(const Vec3& a, const Vec3& b) {
    double most = 0.0;
    for (std::size_t axis = 0; axis < 3; ++axis)
        most = std::max(most, std::abs(a[axis] - b[axis]));
    return most;
}

/// How the angles of one key have changed: by a whole number of turns each, or to the other triple.
struct Change {
    Vec3 offset{0, 0, 0};
    bool isOther = false;

    double of(double value, std::size_t axis) const {
        return (isOther && axis == 1 ? -value : value) + offset[axis];
    }
    bool operator==(const Change& other) const {
        return isOther == other.isOther && largest(offset, other.offset) < 1.0;
    }
};

Change changeFor(const Vec3& from, const Vec3& to) {
    Change change;
    const double turns = (to[1] - from[1]) / 360.0;
    change.isOther = std::abs(turns - std::round(turns)) * 360.0 > 1e-3 ||
                     std::abs(std::remainder(to[0] - from[0], 360.0)) > 90.0;
    for (std::size_t axis = 0; axis < 3; ++axis)
        change.offset[axis] = change.isOther && axis == 1 ? to[axis] + from[axis] : to[axis] - from[axis];
    return change;
}

} // namespace

Unflipped unflipped(const std::array<Keys, 3>& curves) {
    Unflipped result;
    const std::vector<float> frames = allFrames(curves);
    for (std::size_t axis = 0; axis < 3; ++axis)
        result.curves[axis] = spread(curves[axis], frames);
    const std::array<Keys, 3> sources = result.curves;
    Change before;
    Vec3 previous{}, raw{};
    for (std::size_t i = 0; i < frames.size(); ++i) {
        Vec3 angles{};
        for (std::size_t axis = 0; axis < 3; ++axis)
            angles[axis] = static_cast<double>(sources[axis][i].y);
        if (i > 0 && largest(angles, raw) > result.largestBefore) {
            result.largestBefore = largest(angles, raw);
            result.where = static_cast<double>(frames[i]);
        }
        raw = angles;
        Vec3 nearest = angles;
        if (i > 0)
            nearest = std::abs(std::abs(std::remainder(angles[1], 180.0)) - 90.0) < locked
                          ? sceneAngles(matrixFromAngles(angles, sceneOrder), previous)
                          : nearestAngles(angles, sceneOrder, previous);
        if (i > 0)
            result.largestAfter = std::max(result.largestAfter, largest(nearest, previous));
        const Change change = changeFor(angles, nearest);
        const bool crossesFlip = i > 0 && !(change == before);
        result.flips += largest(angles, nearest) > 1e-3 ? 1 : 0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            PlainKey& key = result.curves[axis][i];
            for (float* value : {&key.y, &key.inY, &key.outY})
                *value = documentFloat(change.of(static_cast<double>(*value), axis));
            if (crossesFlip && !segmentBetween(sources[axis][i - 1], sources[axis][i]).isStep())
                makeStraight(result.curves[axis][i - 1], key);
        }
        before = change;
        previous = nearest;
    }
    return result;
}

} // namespace ka::motion
