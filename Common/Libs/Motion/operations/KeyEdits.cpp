#include "operations/KeyEdits.h"

#include "operations/BezierSplit.h"
#include "operations/CurveEdit.h"

#include <algorithm>
#include <array>
#include <kaMotion/DocumentNumber.h>

namespace ka::motion {

namespace {

PlainKey heldKey(float frame, double value) {
    const float y = documentFloat(value);
    return {frame, y, frame, y, frame, y};
}

void makeStep(PlainKey& left, PlainKey& right) {
    left.outX = left.x;
    left.outY = left.y;
    right.inX = right.x;
    right.inY = right.y;
}

/// Puts a key on the segment between two others, whose facing handles it shortens.
PlainKey split(PlainKey& left, float frame, PlainKey& right) {
    const kaSegmentPoints segment = segmentBetween(left, right);
    if (segment.isStep())
        return heldKey(frame, static_cast<double>(segment.y0));
    const kaSegmentPoints before = segmentUpTo(segment, frame), after = segmentFrom(segment, frame);
    const auto f = [](float number) { return documentFloat(static_cast<double>(number)); };
    left.outX = f(before.x1);
    left.outY = f(before.y1);
    right.inX = f(after.x2);
    right.inY = f(after.y2);
    return {frame, f(before.y3), f(before.x2), f(before.y2), f(after.x1), f(after.y1)};
}

/// Keys of which several may stand at one frame.
Keys withoutDoubles(const Keys& keys) {
    Keys single;
    for (const PlainKey& key : keys) {
        if (!single.empty() && !(key.x > single.back().x)) {
            const PlainKey before = single.back();
            single.back() = key;
            single.back().inX = before.inX;
            single.back().inY = before.inY;
            single.back().x = before.x;
            continue;
        }
        single.push_back(key);
    }
    return single;
}

} // namespace

void makeStraight(PlainKey& left, PlainKey& right) {
    const auto middle = documentFloat((static_cast<double>(left.x) + static_cast<double>(right.x)) / 2);
    // With both handles on the first key that key's own frame would have no value.
    left.outX = right.inX = middle > left.x ? middle : right.x;
    const double part = (static_cast<double>(left.outX) - static_cast<double>(left.x)) /
                        (static_cast<double>(right.x) - static_cast<double>(left.x));
    left.outY = right.inY = documentFloat(
        static_cast<double>(left.y) + (static_cast<double>(right.y) - static_cast<double>(left.y)) * part);
}

Keys withKeysAt(const Keys& keys, const std::vector<float>& frames) {
    Keys more;
    more.reserve(keys.size() + frames.size());
    std::size_t next = 0;
    for (PlainKey right : keys) {
        for (; next < frames.size() && frames[next] < right.x; ++next)
            if (!more.empty() && frames[next] > more.back().x)
                more.push_back(split(more.back(), frames[next], right));
        more.push_back(right);
    }
    return more;
}

Keys withKeyAt(const Keys& keys, float frame) {
    return withKeysAt(keys, {frame});
}

Keys partOf(const Keys& keys, float from, float to) {
    if (keys.size() < 2)
        return keys;
    const Keys cut = withKeyAt(withKeyAt(keys, from), to);
    Keys part;
    for (const PlainKey& key : cut)
        if (key.x >= from && key.x <= to)
            part.push_back(key);
    if (!part.empty())
        return part;
    part = {heldKey(from, heldValue(keys, static_cast<double>(from))),
            heldKey(to, heldValue(keys, static_cast<double>(to)))};
    makeStraight(part[0], part[1]);
    return part;
}

Keys withTime(const Keys& keys, double scale, double shift) {
    Keys moved = keys;
    for (PlainKey& key : moved)
        for (float* frame : {&key.x, &key.inX, &key.outX})
            *frame = documentFloat(static_cast<double>(*frame) * scale + shift);
    moved = withoutDoubles(moved);
    // A rounding may have moved a handle off its key, and a step would be none any more.
    for (std::size_t i = 0; i + 1 < moved.size() && moved.size() == keys.size(); ++i)
        if (segmentBetween(keys[i], keys[i + 1]).isStep())
            makeStep(moved[i], moved[i + 1]);
    if (moved.size() == 1)
        moved.push_back(heldKey(documentNeighbour(moved.front().x, 1), static_cast<double>(moved.front().y)));
    return moved;
}

Keys reversed(const Keys& keys) {
    if (keys.size() < 2)
        return keys;
    const double sum = static_cast<double>(keys.front().x) + static_cast<double>(keys.back().x);
    const auto mirrored = [sum](float frame) { return documentFloat(sum - static_cast<double>(frame)); };
    Keys back;
    for (std::size_t i = keys.size(); i-- > 0;) {
        const PlainKey& key = keys[i];
        PlainKey made{mirrored(key.x), key.y, mirrored(key.outX), key.outY, mirrored(key.inX), key.inY};
        const bool holdsNext = i > 0 && segmentBetween(keys[i - 1], key).isStep();
        const bool wasHeld = i + 1 < keys.size() && segmentBetween(key, keys[i + 1]).isStep();
        if (wasHeld) {
            made.inX = made.x;
            made.inY = made.y;
        }
        if (!holdsNext || keys[i - 1].y == key.y) {
            back.push_back(made);
            if (holdsNext)
                back.back().outX = made.x, back.back().outY = made.y;
            continue;
        }
        // What was held before this key is held from here on.
        if (!wasHeld && i + 1 < keys.size()) {
            made.outX = made.x;
            made.outY = made.y;
            back.push_back(made);
            made.x = documentNeighbour(made.x, 1);
        }
        back.push_back(heldKey(made.x, static_cast<double>(keys[i - 1].y)));
    }
    // The curve's own ends stay where they were, to the last digit.
    back.front().x = keys.front().x;
    if (segmentBetween(back[0], back[1]).isStep() || back.front().outX < back.front().x)
        back.front().outX = back.front().x;
    return withoutDoubles(back);
}

Keys withValues(const Keys& keys, double factor, double offset) {
    Keys changed = keys;
    for (PlainKey& key : changed)
        for (float* value : {&key.y, &key.inY, &key.outY})
            *value = documentFloat(static_cast<double>(*value) * factor + offset);
    return changed;
}

double slopeAt(const Keys& keys, double frame) {
    constexpr double around = 0.125;
    const double first = static_cast<double>(keys.front().x), last = static_cast<double>(keys.back().x);
    const double from = std::max(frame - around, first), to = std::min(frame + around, last);
    return to > from ? (heldValue(keys, to) - heldValue(keys, from)) / (to - from) : 0.0;
}

Keys keysThrough(const std::vector<double>& frames, const std::vector<double>& values,
                 const std::vector<double>& slopes, KeyShape shape) {
    Keys keys;
    std::vector<double> slopeOf;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const PlainKey key = heldKey(documentFloat(frames[i]), values[i]);
        if (!keys.empty() && !(key.x > keys.back().x))
            continue;
        keys.push_back(key);
        slopeOf.push_back(shape == KeyShape::Smooth ? slopes[i] : 0.0);
    }
    if (keys.size() == 1) {
        const float next = std::max(documentFloat(static_cast<double>(keys.front().x) + 1.0),
                                    documentNeighbour(keys.front().x, 1));
        keys.push_back(heldKey(next, static_cast<double>(keys.front().y)));
        slopeOf.push_back(0.0);
    }
    for (std::size_t i = 0; i + 1 < keys.size() && shape != KeyShape::Step; ++i) {
        PlainKey &left = keys[i], &right = keys[i + 1];
        makeStraight(left, right);
        if (shape == KeyShape::Straight)
            continue;
        // A little short of the thirds, where the coefficient of t³ vanishes and the sampler loses digits.
        constexpr double part = 0.33;
        const double x0 = static_cast<double>(left.x), x3 = static_cast<double>(right.x),
                     h = part * (x3 - x0);
        const float out = documentFloat(x0 + h), in = documentFloat(x3 - h);
        if (!(out > left.x && in < right.x && out < in))
            continue;
        left.outX = out;
        left.outY = documentFloat(static_cast<double>(left.y) + slopeOf[i] * (static_cast<double>(out) - x0));
        right.inX = in;
        right.inY =
            documentFloat(static_cast<double>(right.y) - slopeOf[i + 1] * (x3 - static_cast<double>(in)));
    }
    return keys;
}

} // namespace ka::motion
