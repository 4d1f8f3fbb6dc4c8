#include "operations/EachCurve.h"
#include "operations/Skeleton.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaMotion/CurveKind.h>
#include <kaMotion/DocumentNumber.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Loop.h>
#include <kaMotion/Text.h>

namespace ka::motion {

namespace {

/// From 0 with slope 0 to `value` with `slope`, over the part `u` in [0, 1] of `length` frames.
struct Lead {
    double value, slope, length;

    double at(double u) const { return value * u * u * (3 - 2 * u) + slope * length * u * u * (u - 1); }
    double slopeAt(double u) const { return value * 6 * u * (1 - u) / length + slope * (3 * u * u - 2 * u); }
};

class Looper {
  public:
    Looper(double begin, double end, double seam) : _begin(begin), _end(end), _seam(seam) {}

    /// Without the even part of its way: keys and handles move by what time says.
    Keys inPlace(Keys keys) const {
        const double pace = (heldValue(keys, _end) - heldValue(keys, _begin)) / (_end - _begin);
        const auto level = [&](float x, float& y) {
            y = documentFloat(static_cast<double>(y) - pace * (static_cast<double>(x) - _begin));
        };
        for (PlainKey& key : keys) {
            level(key.inX, key.inY);
            level(key.outX, key.outY);
            level(key.x, key.y);
        }
        return keys;
    }

    double gap(const Keys& keys, bool turns) const {
        const double apart = heldValue(keys, _begin) - heldValue(keys, _end);
        return turns ? std::remainder(apart, 360.0) : apart;
    }

    Keys closed(const Keys& keys, bool turns) const {
        if (std::all_of(keys.begin() + 1, keys.end(),
                        [&](const PlainKey& key) { return segmentBetween(*(&key - 1), key).isStep(); }))
            return closedSteps(keys);
        const double from = _end - _seam;
        const Lead lead{gap(keys, turns), slopeAt(keys, _begin) - slopeAt(keys, _end), _seam};
        std::vector<double> frames{from}, values, slopes;
        for (double frame = std::floor(from) + 1; frame < _end; ++frame)
            frames.push_back(frame);
        for (const PlainKey& key : keys)
            if (const double frame = static_cast<double>(key.x); frame > from && frame < _end)
                frames.push_back(frame);
        frames.push_back(_end);
        std::sort(frames.begin(), frames.end());
        frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
        for (const double frame : frames) {
            const double u = (frame - from) / _seam;
            values.push_back(heldValue(keys, frame) + lead.at(u));
            slopes.push_back(slopeAt(keys, frame) + lead.slopeAt(u));
        }
        return joined(keys, keysThrough(frames, values, slopes, KeyShape::Smooth));
    }

  private:
    Keys closedSteps(Keys keys) const {
        keys.back().y = keys.back().inY = keys.back().outY = documentFloat(heldValue(keys, _begin));
        return keys;
    }

    /// What was before the seam, and the seam.
    Keys joined(const Keys& keys, const Keys& seam) const {
        Keys whole = withKeyAt(keys, seam.front().x);
        whole.erase(std::find_if(whole.begin(), whole.end(),
                                 [&](const PlainKey& key) { return key.x >= seam.front().x; }),
                    whole.end());
        if (whole.empty())
            return seam;
        const Keys cut = withKeyAt(keys, seam.front().x);
        const std::size_t count = whole.size();
        whole.insert(whole.end(), seam.begin(), seam.end());
        if (count < cut.size() && cut[count].x == seam.front().x) {
            whole[count].inX = cut[count].inX;
            whole[count].inY = cut[count].inY;
        } else {
            makeStraight(whole[count - 1], whole[count]);
        }
        return whole;
    }

    double _begin, _end, _seam;
};

/// The numbers of the curves that move the topmost node that any moves.
std::vector<bool> rootCurves(const CurveList& curves, const osg::NodePtr& root) {
    std::vector<bool> isRoot(curves.size(), false);
    if (root == osg::NullFC)
        return isRoot;
    const Skeleton skeleton(root, curves);
    for (const Skeleton::Node& node : skeleton.nodes()) {
        bool isFound = false;
        for (std::size_t channel = 0; channel < 3; ++channel)
            if (node.curves[channel] != Skeleton::none)
                isFound = isRoot[node.curves[channel]] = true;
        if (isFound)
            break;
    }
    return isRoot;
}

} // namespace

OperationReport loop(const CurveList& curves, const osg::NodePtr& root, const LoopOptions& options,
                     Listener& listener) {
    CurveWork work("loop", curves);
    const auto [begin, end] = work.range();
    if (!(options.seam > 0.0) || (options.seam > end - begin && end > begin))
        throw Failure(ExitCode::Usage, "the seam is above 0 and no longer than the motion, " +
                                           formatNumber(end - begin, 6) + " frames");
    const Looper looper(begin, end, options.seam);
    const std::vector<bool> isRoot = rootCurves(work.curves(), root);
    std::vector<bool> turns;
    for (const kaAnimationCurve2D* curve : work.curves())
        turns.push_back(curveKind(curve) == CurveKind::Rotation);
    std::vector<double> gaps(work.curves().size(), 0.0);
    const bool isDone = work.setEach(listener, "closing", [&](const Keys& keys, std::size_t number) {
        if (isRoot[number] && options.rootMotion == RootMotion::Kept)
            return keys;
        const bool inPlace = isRoot[number] && options.rootMotion == RootMotion::TakenOut;
        const Keys source = inPlace ? looper.inPlace(keys) : keys;
        gaps[number] = std::abs(looper.gap(source, turns[number]));
        return looper.closed(source, turns[number]);
    });
    if (!isDone)
        return work.cancel();
    for (const CurveKind kind : {CurveKind::Rotation, CurveKind::Translation}) {
        std::size_t widest = gaps.size();
        for (std::size_t i = 0; i < gaps.size(); ++i)
            if (curveKind(work.curves()[i]) == kind && (widest == gaps.size() || gaps[i] > gaps[widest]))
                widest = i;
        if (widest < gaps.size())
            work.report().measures.push_back({"widest gap that was closed", gaps[widest],
                                              curveUnit(work.curves()[widest]),
                                              curveLabel(work.curves()[widest]), std::nullopt, std::nullopt});
    }
    return work.finish();
}

} // namespace ka::motion
