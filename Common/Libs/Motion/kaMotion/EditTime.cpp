#include "operations/EachCurve.h"
#include "operations/TimeMap.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaMotion/DocumentNumber.h>
#include <kaMotion/EditTime.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Text.h>
#include <set>

namespace ka::motion {

namespace {

constexpr double mostKeys = 1e7;

bool lies(const Keys& keys, double from, double to) {
    return keys.size() > 1 && static_cast<double>(keys.back().x) > from &&
           static_cast<double>(keys.front().x) < to;
}

/// Each segment lies within one piece of the map, so that time runs evenly along it.
Keys mapped(const Keys& keys, const TimeMap& map) {
    std::vector<float> frames;
    for (const auto& [before, after] : map.pairs())
        frames.push_back(documentFloat(before));
    Keys moved = withKeysAt(keys, frames);
    const Keys cut = moved;
    for (std::size_t i = 0; i < cut.size(); ++i) {
        const double x = static_cast<double>(cut[i].x), there = map.at(x);
        const auto beside = [&](float handle, double pace) {
            return documentFloat(there + (static_cast<double>(handle) - x) * pace);
        };
        moved[i].x = documentFloat(there);
        const double before = i > 0 ? map.paceAfter(static_cast<double>(cut[i - 1].x)) : map.paceAfter(x);
        moved[i].inX = beside(cut[i].inX, before);
        moved[i].outX = beside(cut[i].outX, map.paceAfter(x));
    }
    return withTime(moved, 1.0, 0.0); // keys that a document cannot tell apart
}

void check(bool isRight, const char* otherwise) {
    if (!isRight)
        throw Failure(ExitCode::Usage, otherwise);
}

bool ascends(const TimeMap::Pairs& pairs, bool inSecond) {
    for (std::size_t i = 1; i < pairs.size(); ++i)
        if (!(pairs[i].first > pairs[i - 1].first) || (inSecond && !(pairs[i].second > pairs[i - 1].second)))
            return false;
    return true;
}

void check(const Retiming& retiming) {
    check(retiming.scale > 0.0 && std::isfinite(retiming.scale), "time is scaled by a number above 0");
    check(std::isfinite(retiming.shift), "time is moved by a finite number of frames");
    check(retiming.map.empty() || retiming.map.size() > 1, "a map of frames needs two pairs");
    check(ascends(retiming.map, true), "the frames of a map ascend, before and after");
    check(ascends(retiming.speed, false), "the frames of a course of speeds ascend");
    for (const auto& [frame, speed] : retiming.speed)
        check(speed > 0.0 && std::isfinite(speed), "speeds are above 0");
}

std::vector<double> framesFor(const Keys& keys, const Resampling& resampling) {
    const double first = static_cast<double>(keys.front().x), last = static_cast<double>(keys.back().x);
    std::vector<double> frames;
    if (!resampling.frames.empty()) {
        frames = resampling.frames;
    } else {
        const double from = std::ceil(first / resampling.every - 1e-9),
                     to = std::floor(last / resampling.every + 1e-9);
        check(to - from < mostKeys, "that would be more than ten million keys of one curve");
        for (double i = from; i <= to; ++i)
            frames.push_back(i * resampling.every);
    }
    if (resampling.keepsEnds) {
        frames.push_back(first);
        frames.push_back(last);
        std::sort(frames.begin(), frames.end());
    }
    if (frames.empty())
        frames.push_back(first);
    return frames;
}

Keys resampled(const Keys& keys, const Resampling& resampling) {
    const std::vector<double> frames = framesFor(keys, resampling);
    std::vector<double> values, slopes;
    for (const double frame : frames) {
        values.push_back(heldValue(keys, frame));
        slopes.push_back(resampling.shape == Resampling::Shape::Smooth ? slopeAt(keys, frame) : 0.0);
    }
    return keysThrough(frames, values, slopes, static_cast<KeyShape>(resampling.shape));
}

/// The largest difference at quarter frames, a million of them at most.
std::pair<double, double> difference(const Keys& before, const Keys& after) {
    const double first = static_cast<double>(before.front().x), last = static_cast<double>(before.back().x);
    const double step = std::max(0.25, (last - first) / 1e6);
    std::pair<double, double> worst{0.0, first};
    for (double frame = first; frame <= last; frame += step)
        if (const double apart = std::abs(heldValue(before, frame) - heldValue(after, frame));
            apart > worst.first)
            worst = {apart, frame};
    return worst;
}

} // namespace

OperationReport trim(const CurveList& curves, double from, double to, bool toStart, Listener& listener) {
    check(from < to && std::isfinite(from) && std::isfinite(to),
          "trimming needs a first frame before the last");
    CurveWork work("trim", curves);
    std::set<kaUID> driven;
    for (std::size_t i = 0; i < work.curves().size(); ++i)
        if (lies(work.sources()[i], from, to))
            driven.insert(work.curves()[i]->getField());
    for (std::size_t i = 0; i < work.curves().size(); ++i)
        if (work.sources()[i].size() > 1 && !lies(work.sources()[i], from, to) &&
            driven.count(work.curves()[i]->getField()) != 0)
            work.drop(i);
    const bool isDone = work.setEach(listener, "trimming", [&](const Keys& keys, std::size_t) {
        const Keys part = partOf(keys, documentFloat(from), documentFloat(to));
        return toStart ? withTime(part, 1.0, -from) : part;
    });
    return isDone ? work.finish() : work.cancel();
}

OperationReport retime(const CurveList& curves, const Retiming& retiming, Listener& listener) {
    check(retiming);
    CurveWork work("retime", curves);
    auto [begin, end] = work.range();
    std::optional<TimeMap> map, speed;
    if (!retiming.map.empty()) {
        map.emplace(retiming.map);
        begin = map->at(begin);
        end = map->at(end);
    }
    if (!retiming.speed.empty()) {
        check((end - begin) * 2 < mostKeys, "a motion this long takes no course of speeds");
        speed = TimeMap::ofSpeed(retiming.speed, begin, end);
    }
    const bool isDone = work.setEach(listener, "retiming", [&](const Keys& keys, std::size_t) {
        Keys moved = map ? mapped(keys, *map) : keys;
        if (speed)
            moved = mapped(moved, *speed);
        return withTime(moved, retiming.scale, retiming.shift);
    });
    return isDone ? work.finish() : work.cancel();
}

OperationReport reverse(const CurveList& curves, Listener& listener) {
    CurveWork work("reverse", curves);
    const auto [begin, end] = work.range();
    const bool isDone =
        work.setEach(listener, "reversing", [begin = begin, end = end](const Keys& keys, std::size_t) {
            // Within its own ends, then to the other side of the middle of all.
            const double own = static_cast<double>(keys.front().x) + static_cast<double>(keys.back().x);
            const Keys back = reversed(keys);
            return own == begin + end ? back : withTime(back, 1.0, begin + end - own);
        });
    return isDone ? work.finish() : work.cancel();
}

OperationReport resample(const CurveList& curves, const Resampling& resampling, Listener& listener) {
    check(resampling.every > 0.0, "keys are some frames apart, more than 0");
    check(std::is_sorted(resampling.frames.begin(), resampling.frames.end()), "the frames of keys ascend");
    check(static_cast<double>(resampling.frames.size()) < mostKeys, "more than ten million frames");
    CurveWork work("resample", curves);
    std::vector<std::pair<double, double>> apart(work.curves().size(), {-1.0, 0.0});
    const bool isDone = work.setEach(listener, "resampling", [&](const Keys& keys, std::size_t number) {
        Keys made = resampled(keys, resampling);
        apart[number] = difference(keys, made);
        return made;
    });
    if (!isDone)
        return work.cancel();
    const auto worst = std::max_element(apart.begin(), apart.end(),
                                        [](const auto& a, const auto& b) { return a.first < b.first; });
    if (worst != apart.end() && worst->first >= 0.0) {
        const kaAnimationCurve2D* curve = work.curves()[static_cast<std::size_t>(worst - apart.begin())];
        work.report().measures.push_back({"largest difference between keys", worst->first, curveUnit(curve),
                                          curveLabel(curve), worst->second, std::nullopt});
    }
    return work.finish();
}

} // namespace ka::motion
