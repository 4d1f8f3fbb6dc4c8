#include "operations/MergedCurve.h"

#include "operations/CurveEdit.h"

#include <algorithm>
#include <cmath>
#include <kaMotion/DocumentNumber.h>

namespace ka::motion {

namespace {

PlainKey held(double frame, double value) {
    const float x = documentFloat(frame), y = documentFloat(value);
    return {x, y, x, y, x, y};
}

/// A curve that spans its clip, whatever it reaches itself.
Keys spanning(const Keys& keys, double begin, double end) {
    Keys whole = partOf(keys, documentFloat(begin), documentFloat(end));
    if (static_cast<double>(whole.front().x) > begin) {
        whole.insert(whole.begin(), held(begin, static_cast<double>(whole.front().y)));
        makeStraight(whole[0], whole[1]);
    }
    if (static_cast<double>(whole.back().x) < end) {
        whole.push_back(held(end, static_cast<double>(whole.back().y)));
        makeStraight(whole[whole.size() - 2], whole.back());
    }
    return whole;
}

/// In the overlap, from one curve to the other.
Keys faded(const Keys& one, const Keys& other, double from, double to) {
    std::vector<double> frames{from, to}, values, slopes;
    for (double frame = std::floor(from) + 1; frame < to; ++frame)
        frames.push_back(frame);
    for (const Keys* keys : {&one, &other})
        for (const PlainKey& key : *keys)
            if (static_cast<double>(key.x) > from && static_cast<double>(key.x) < to)
                frames.push_back(static_cast<double>(key.x));
    std::sort(frames.begin(), frames.end());
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    for (const double frame : frames) {
        const double u = (frame - from) / (to - from), weight = u * u * (3 - 2 * u);
        const double a = heldValue(one, frame), b = heldValue(other, frame);
        values.push_back(a + (b - a) * weight);
        slopes.push_back(slopeAt(one, frame) * (1 - weight) + slopeAt(other, frame) * weight +
                         (b - a) * 6 * u * (1 - u) / (to - from));
    }
    return keysThrough(frames, values, slopes, KeyShape::Smooth);
}

void append(Keys& keys, const Keys& more) {
    if (more.empty())
        return;
    if (keys.empty()) {
        keys = more;
        return;
    }
    if (!(more.front().x > keys.back().x)) { // one key in common
        keys.back().outX = more.front().outX;
        keys.back().outY = more.front().outY;
        keys.insert(keys.end(), more.begin() + 1, more.end());
        return;
    }
    const std::size_t last = keys.size() - 1;
    keys.insert(keys.end(), more.begin(), more.end());
    makeStraight(keys[last], keys[last + 1]);
}

} // namespace

Keys mergedCurve(const std::vector<Keys>& parts, const std::vector<std::pair<double, double>>& spans,
                 double crossFade, bool turns) {
    const auto first =
        std::find_if(parts.begin(), parts.end(), [](const Keys& keys) { return !keys.empty(); });
    Keys merged;
    double end = spans.front().first;
    double value = static_cast<double>(first->front().y);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto [from, to] = spans[i];
        const double start = i == 0 ? from : crossFade > 0.0 ? end - crossFade : end + 1.0;
        Keys part =
            parts[i].empty() ? Keys{held(from, value), held(to, value)} : spanning(parts[i], from, to);
        if (parts[i].empty())
            makeStraight(part[0], part[1]);
        part = withTime(part, 1.0, start - from);
        end = start + (to - from);
        if (turns && i > 0) {
            const double apart = value - static_cast<double>(part.front().y);
            part = withValues(part, 1.0, apart - std::remainder(apart, 360.0));
        }
        value = static_cast<double>(part.back().y);
        if (merged.empty() || crossFade <= 0.0) {
            append(merged, part);
            continue;
        }
        const Keys seam = faded(merged, part, start, start + crossFade);
        Keys before = partOf(merged, merged.front().x, seam.front().x);
        if (!(before.back().x > before.front().x))
            before.clear();
        append(before, seam);
        if (end > start + crossFade)
            append(before, partOf(part, seam.back().x, part.back().x));
        merged = before;
    }
    return merged;
}

} // namespace ka::motion
