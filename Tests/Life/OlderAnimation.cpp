#include "OlderAnimation.h"

#include "OlderScene.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace ka_older {

namespace {

/// A curve where it stands: in a block with a span and a loop.
struct Entry {
    OlderCurve curve;
    Address address;
    long double begin;
    long double end;
    bool repeating;
};

std::string todaysName(const std::string& attribute) {
    const std::string stem = attribute.substr(0, attribute.size() - 1);
    return stem == "translate" || stem == "rotate"
               ? stem.substr(0, stem.size() - 1) + "ion" + attribute.back()
               : attribute;
}

/// The curves of a block. A curve that names no node animates that of the curves before it.
void collect(const osg::AnimationBlockPtr& block, bool active, bool repeating, std::vector<Entry>& entries) {
    std::vector<Entry> own;
    osg::UInt32 blockNode = 0;
    for (const osg::AnimationCurvePtr& curve : block->getCurves()) {
        const osg::UInt32 node =
            curve->getNode() != osg::NullFC ? curve->getNode().getFieldContainerId() : blockNode;
        blockNode = blockNode == 0 ? node : blockNode;
        const std::string& name = curve->getAttribute().empty() ? curve->getName() : curve->getAttribute();
        own.push_back({OlderCurve(curve), {node, todaysName(name)}, 0.0L, 0.0L, repeating});
    }
    long double begin = 1e23L;
    long double end = -1e23L;
    for (const Entry& entry : own) {
        if (entry.curve.isEmpty())
            continue;
        begin = std::min(begin, entry.curve.begin());
        end = std::max(end, entry.curve.end());
    }
    for (Entry& entry : own) {
        entry.begin = begin;
        entry.end = end;
        if (active && entry.curve.hasValues())
            entries.push_back(entry);
    }
}

/// Flags reach down to everything that is contained, and those set last, further out, stand: the outermost
/// clip says whether there is a loop, the outermost track whether anything plays.
struct Flags {
    bool repeating;
    std::optional<bool> active;
};

void collect(const osg::AnimationClipPtr& clip, const Flags& flags, std::vector<Entry>& entries);

void collectBlocks(const osg::MFAnimationBlockPtr& blocks, const Flags& flags, std::vector<Entry>& entries) {
    for (const osg::AnimationBlockPtr& block : blocks)
        collect(block, flags.active.value_or(true), flags.repeating, entries);
}

void collectNested(const osg::MFFieldContainerPtr& nested, const Flags& flags, std::vector<Entry>& entries) {
    for (const osg::FieldContainerPtr& entry : nested)
        if (const auto clip = osg::AnimationClipPtr::dcast(entry); clip != osg::NullFC)
            collect(clip, flags, entries);
}

void collect(const osg::AnimationClipPtr& clip, const Flags& flags, std::vector<Entry>& entries) {
    collectBlocks(clip->getBlocks(), flags, entries);
    collectNested(clip->getEntries(), flags, entries);
    for (const osg::AnimationTrackPtr& track : clip->getTracks()) {
        const Flags below{flags.repeating, flags.active.value_or(track->getActive())};
        collectBlocks(track->getBlocks(), below, entries);
        collectNested(track->getEntries(), below, entries);
    }
}

/// How strongly an entry claims its value at a frame; larger wins.
std::pair<int, long double> claim(const Entry& entry, long double frame) {
    if (frame < entry.begin)
        return {0, -entry.end};
    return frame <= entry.end ? std::make_pair(2, entry.begin) : std::make_pair(1, entry.begin);
}

Values valuesAt(const std::vector<Entry>& entries, long double frame) {
    std::map<Address, const Entry*> winners;
    for (const Entry& entry : entries) {
        const Entry*& winner = winners[entry.address];
        if (!winner || claim(entry, frame) >= claim(*winner, frame))
            winner = &entry;
    }
    Values values;
    for (const auto& [address, entry] : winners) {
        const long double span = entry->end - entry->begin;
        const long double at =
            entry->repeating ? frame - span * std::floor((frame - entry->begin) / span) : frame;
        values[address] = entry->curve.at(at);
    }
    return values;
}

} // namespace

OlderCurve::OlderCurve(const osg::AnimationCurvePtr& curve) {
    std::map<float, Key> keys;
    for (const osg::AnimationControlPointPtr& point : curve->getPoints()) {
        const osg::Vec2f at = point->getPosition();
        const osg::Vec2f in = point->getInTangent();
        const osg::Vec2f out = point->getOutTangent();
        keys[at[0]] = {at[0], at[1], in[0], in[1], out[0], out[1], point->getTangentType()};
    }
    for (const auto& entry : keys)
        _keys.push_back(entry.second);
    for (std::size_t i = 0; _keys.size() > 1 && i < _keys.size(); ++i)
        placeHandles(i);
}

/// Handles reach half way to the neighbour on their side; those on one straight line, at most a third of the
/// way between the neighbours.
void OlderCurve::placeHandles(std::size_t index) {
    Key& key = _keys[index];
    const Key* previous = index > 0 ? &_keys[index - 1] : nullptr;
    const Key* next = index + 1 < _keys.size() ? &_keys[index + 1] : nullptr;
    if (key.code == User)
        return;
    long double in = previous ? (key.x - previous->x) / 2 : (next->x - key.x) / 2;
    long double out = next ? (next->x - key.x) / 2 : (key.x - previous->x) / 2;
    if (previous && next && key.code != Broken) {
        const long double third = (next->x - previous->x) / 3;
        in = std::min(in, third);
        out = std::min(out, third);
    }
    const auto slope = [](const Key& a, const Key& b) { return (b.y - a.y) / (b.x - a.x); };
    long double inSlope = 0.0L;
    long double outSlope = 0.0L;
    switch (key.code) {
    case Collapsed:
        in = out = 0.0L;
        break;
    case Broken:
        inSlope = previous ? slope(*previous, key) : 0.0L;
        outSlope = next ? slope(key, *next) : 0.0L;
        break;
    case Smooth:
        inSlope = outSlope = slope(previous ? *previous : key, next ? *next : key);
        break;
    case Forward:
        inSlope = outSlope = next ? slope(key, *next) : 0.0L;
        break;
    default:
        break;
    }
    key.inX = key.x - in;
    key.inY = key.y - in * inSlope;
    key.outX = key.x + out;
    key.outY = key.y + out * outSlope;
}

namespace {

long double bernstein(long double a, long double b, long double c, long double d, long double t) {
    const long double s = 1.0L - t;
    return s * s * s * a + 3.0L * s * s * t * b + 3.0L * s * t * t * c + t * t * t * d;
}

} // namespace

/// Between two keys; a segment whose handles lie on its keys is a step.
long double OlderCurve::along(const Key& from, const Key& to, long double x) {
    if (from.outX == from.x && from.outY == from.y && to.inX == to.x && to.inY == to.y)
        return from.y;
    long double low = 0.0L;
    long double high = 1.0L;
    for (int i = 0; i < 200; ++i) {
        const long double middle = (low + high) / 2;
        (bernstein(from.x, from.outX, to.inX, to.x, middle) < x ? low : high) = middle;
    }
    return bernstein(from.y, from.outY, to.inY, to.y, low);
}

long double OlderCurve::at(long double frame) const {
    if (frame <= begin())
        return _keys.front().y;
    if (frame >= end())
        return _keys.back().y;
    std::size_t right = 1;
    while (_keys[right].x <= frame)
        ++right;
    return along(_keys[right - 1], _keys[right], frame);
}

Values evaluate(const osg::AnimationBlockPtr& block, long double frame) {
    std::vector<Entry> entries;
    collect(block, true, block->getRepeating(), entries);
    return valuesAt(entries, frame);
}

Values evaluate(const osg::AnimationClipPtr& clip, long double frame) {
    std::vector<Entry> entries;
    collect(clip, {clip->getRepeating(), std::nullopt}, entries);
    return valuesAt(entries, frame);
}

} // namespace ka_older
