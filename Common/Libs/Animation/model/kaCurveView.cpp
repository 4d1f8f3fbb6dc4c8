#include "kaCurveView.h"

#include "kaChildList.h"
#include "kaControlPoint2D.h"
#include "kaObjectClass.h"
#include "kaSegmentIteration.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

namespace {

/// Fewer keys than this are searched as they are.
constexpr std::size_t FewKeys = 8;

/// By x the keys of a list that is not in order, of several at one x the first.
std::map<float, const kaControlPoint2D*> firstAtEach(const kaChildList& keys) {
    std::map<float, const kaControlPoint2D*> points;
    keys.forEach([&points](kaAnimationObject& child) {
        const auto* point = kaObjectCast<kaControlPoint2D>(&child);
        if (point && !std::isnan(point->getPosition()[0]))
            points.emplace(point->getPosition()[0], point);
    });
    return points;
}

} // namespace

void kaCurveView::update(const kaChildList* keys) {
    const bool linked = keys && keys->isLinked();
    if (!linked || !(_packed || _unpacked) || keys->revision() != _revision)
        renew(keys);
    _kept = linked || !keys;
    _edits = kaEdits::count;
}

void kaCurveView::renew(const kaChildList* keys) {
    const bool linked = keys && keys->isLinked();
    const bool wasPacked = std::exchange(_packed, false); // unless this comes to its end
    const bool isMended = wasPacked && linked && mend(*keys);
    const bool wasAny = wasPacked || _unpacked;
    _unpacked.reset();
    if (!isMended && wasAny && linked && kaUnpackedKeys::isFor(*keys)) {
        _unpacked = std::make_unique<kaUnpackedKeys>(*keys);
        _begin = _end = 0.0F; // no frame is among packed keys
    } else {
        if (!isMended) {
            pack(keys);
            divide();
        }
        _packed = linked;
    }
    _revision = keys ? keys->revision() : 0;
}

/// Packs the segments next to the keys that have changed. @return false where everything has to be packed; the
/// segments are invalid then.
bool kaCurveView::mend(const kaChildList& keys) {
    if (!_inListOrder || _segments.empty())
        return false;
    bool ordered = true;
    bool regroup = false;
    const bool known = keys.forEachChanged(_revision, [&](const kaAnimationObject& child) {
        const auto& point = static_cast<const kaControlPoint2D&>(child);
        const std::size_t place = keys.positionOf(child);
        const auto beside = keys.beside(child);
        const float x = point.getPosition()[0];
        regroup = regroup || !staysInCell(place, x);
        _frames[place] = x;
        if (const auto* previous = static_cast<const kaControlPoint2D*>(beside.first)) {
            ordered = ordered && previous->getPosition()[0] < x;
            _segments[place - 1] = kaUnpackedKeys::between(*previous, point);
        }
        if (const auto* next = static_cast<const kaControlPoint2D*>(beside.second)) {
            ordered = ordered && x < next->getPosition()[0];
            _segments[place] = kaUnpackedKeys::between(point, *next);
        }
    });
    if (!known || !ordered)
        return false;
    if (regroup) {
        noteEnds();
        divide();
    }
    return true;
}

/// Whether the cells stay as they are when the key at `place` goes to `frame`.
bool kaCurveView::staysInCell(std::size_t place, float frame) const {
    const float former = _frames[place];
    if (frame == former)
        return true;
    const bool isBetween = place > 0 && place < _segments.size() && frame >= _begin && frame < _end;
    return isBetween && !_cells.empty() && cellOf(frame) == cellOf(former);
}

void kaCurveView::pack(const kaChildList* keys) {
    static std::vector<const kaControlPoint2D*> points; // kept, or every edited curve would allocate its own
    points.clear();
    _count = 0;
    bool ascending = true;
    if (keys) {
        keys->forEach([&](kaAnimationObject& child) {
            const auto* point = kaObjectCast<kaControlPoint2D>(&child);
            if (!point)
                return;
            const float x = point->getPosition()[0];
            if (std::isnan(x))
                return; // it stands nowhere in the order
            ++_count;
            const float last = points.empty() ? 0.0F : points.back()->getPosition()[0];
            if (points.empty() || x > last)
                points.push_back(point);
            else if (x != last)
                ascending = false;
        });
        if (!ascending) {
            points.clear();
            for (const auto& entry : firstAtEach(*keys))
                points.push_back(entry.second);
        }
    }
    pack(points);
    _inListOrder = ascending && keys && keys->isLinked() && points.size() == keys->size();
}

void kaCurveView::pack(const std::vector<const kaControlPoint2D*>& ascending) {
    _segments.clear();
    _frames.clear();
    _last = 0;
    _firstValue = ascending.empty() ? 0.0F : ascending.front()->getPosition()[1];
    _segments.reserve(ascending.empty() ? 0 : ascending.size() - 1);
    _frames.reserve(ascending.size());
    const kaControlPoint2D* left = nullptr;
    for (const kaControlPoint2D* right : ascending) {
        _frames.push_back(right->getPosition()[0]);
        if (left)
            _segments.push_back(kaUnpackedKeys::between(*left, *right));
        left = right;
    }
    noteEnds();
}

void kaCurveView::noteEnds() {
    _begin = _frames.empty() ? 0.0F : _frames.front();
    _end = _frames.empty() ? 0.0F : _frames.back();
}

void kaCurveView::divide() {
    _cells.clear();
    _even = false;
    if (_frames.size() <= FewKeys || _frames.size() >= std::numeric_limits<std::int32_t>::max())
        return;
    const auto count = static_cast<float>(_frames.size() - 1);
    _cellsPerFrame = count / (_end - _begin);
    if (!std::isfinite(_cellsPerFrame) || !(_cellsPerFrame > 0.0F))
        return;
    _cells.assign(_frames.size(), 0);
    for (float frame : _frames)
        ++_cells[cellOf(frame) + 1];
    for (std::size_t i = 1; i < _cells.size(); ++i)
        _cells[i] += _cells[i - 1];
    std::size_t own = 0;
    for (std::size_t i = 0; i < _segments.size(); ++i)
        own += cellOf(_frames[i] + (_frames[i + 1] - _frames[i]) / 2.0F) == i ? 1 : 0;
    _even = own > _segments.size() / 2;
}

std::size_t kaCurveView::searchIndex(float frame) const {
    if (_cells.empty())
        return upperBoundAmong(0, _frames.size(), frame) - 1;
    const std::size_t cell = cellOf(frame);
    return upperBoundAmong(_cells[cell], _cells[cell + 1], frame) - 1;
}

/// Halves without branching on the comparison, which random frames would mispredict each time: a product is
/// no branch whatever the compiler makes of it.
std::size_t kaCurveView::upperBoundAmong(std::size_t from, std::size_t to, float frame) const {
    for (std::size_t count = to - from; count > 0;) {
        const std::size_t half = (count + 1) / 2;
        from += static_cast<std::size_t>(_frames[from + half - 1] <= frame) * half;
        count = count / 2;
    }
    return from;
}

const kaSegment* kaCurveView::segmentAt(float frame) {
    if (!(frame >= _begin && frame < _end))
        return _unpacked ? unpackedSegmentAt(frame) : nullptr;
    if (!_segments[_last].contains(frame))
        _last = indexAt(frame);
    return &_segments[_last];
}

const kaSegment* kaCurveView::unpackedSegmentAt(float frame) {
    if (!_unpacked->isWornOut())
        return _unpacked->segmentAt(frame);
    pack(&_unpacked->list());
    divide();
    _packed = true;
    _unpacked.reset();
    return segmentAt(frame);
}

bool kaCurveView::sample(float frame, float& value) {
    if (const kaSegment* segment = segmentAt(frame))
        return kaSegmentIteration::sample(*segment, frame, value);
    if (_unpacked)
        return _unpacked->sampleOutside(frame, value);
    if (_count < 2)
        return false;
    if (_segments.empty())
        return _firstValue != 0.0F; // every key at one frame
    // Before the first key the second one's value: what hosts have always got.
    value = (frame < _begin ? _segments.front() : _segments.back()).points().y3;
    return true;
}
