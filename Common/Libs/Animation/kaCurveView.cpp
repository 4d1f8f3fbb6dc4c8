#include "kaCurveView.h"

#include "kaAnimationCurve2D.h"
#include "kaChildList.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Fewer keys than this are searched as they are.
constexpr std::size_t FewKeys = 8;

} // namespace

void kaCurveView::refresh(const kaAnimationCurve2D& curve, const kaChildList* keys) {
    const bool mirrored = keys && keys->isMirrored();
    if (mirrored && _packed && keys->revision() == _revision)
        return;
    pack(curve, keys);
    divide();
    _packed = mirrored;
    _revision = keys ? keys->revision() : 0;
}

void kaCurveView::pack(const kaAnimationCurve2D& curve, const kaChildList* keys) {
    _keys.clear();
    _left = NoSegment;
    _count = 0;
    if (!keys)
        return;
    bool ascending = true;
    keys->forEach([&](kaAnimationObject& child) {
        if (child.getTypeID() != KA_TYPE_POINT)
            return;
        const auto& point = static_cast<const kaControlPoint2D&>(child);
        const float x = point.getPosition()[0];
        if (std::isnan(x))
            return; // it stands nowhere in the order
        ++_count;
        if (_keys.empty() || x > _keys.back().x)
            add(point);
        else if (x != _keys.back().x)
            ascending = false;
    });
    if (ascending)
        return;
    _keys.clear();
    for (const auto& entry : curve.getPoints())
        add(*entry.second);
}

void kaCurveView::add(const kaControlPoint2D& point) {
    const osg::Pnt2f& position = point.getPosition();
    const osg::Pnt2f& in = point.getInTangent() ? point.getInTangent()->getPosition() : position;
    const osg::Pnt2f& out = point.getOutTangent() ? point.getOutTangent()->getPosition() : position;
    _keys.push_back({position[0], position[1], in[0], in[1], out[0], out[1]});
}

void kaCurveView::divide() {
    _cells.clear();
    if (_keys.size() <= FewKeys || _keys.size() >= std::numeric_limits<std::uint32_t>::max())
        return;
    const auto count = static_cast<float>(_keys.size() - 1);
    _cellsPerFrame = count / (_keys.back().x - _keys.front().x);
    if (!std::isfinite(_cellsPerFrame) || !(_cellsPerFrame > 0.0F))
        return;
    _cells.assign(_keys.size() + 1, 0);
    for (const Key& key : _keys)
        ++_cells[cellOf(key.x) + 1];
    for (std::size_t i = 1; i < _cells.size(); ++i)
        _cells[i] += _cells[i - 1];
}

/// Never falls while the frame grows, so a key in an earlier cell is an earlier key.
std::size_t kaCurveView::cellOf(float frame) const {
    const auto cell = static_cast<std::size_t>((frame - _keys.front().x) * _cellsPerFrame);
    return std::min(cell, _keys.size() - 1);
}

/// The first key after `frame`, which stands between the first key and the last.
std::size_t kaCurveView::upperBound(float frame) const {
    if (_cells.empty())
        return upperBoundAmong(0, _keys.size(), frame);
    const std::size_t cell = cellOf(frame);
    return upperBoundAmong(_cells[cell], _cells[cell + 1], frame);
}

/// Halves without branching on the comparison: random frames would mispredict each.
std::size_t kaCurveView::upperBoundAmong(std::size_t from, std::size_t to, float frame) const {
    while (from < to) {
        const std::size_t half = (to - from) / 2;
        const bool later = frame < _keys[from + half].x;
        to = later ? from + half : to;
        from = later ? from : from + half + 1;
    }
    return from;
}

const kaSegment& kaCurveView::segment(std::size_t left) {
    if (_left != left) {
        const Key& a = _keys[left];
        const Key& b = _keys[left + 1];
        _segment = kaSegment({a.x, a.y, a.outX, a.outY, b.inX, b.inY, b.x, b.y});
        _left = left;
    }
    return _segment;
}

bool kaCurveView::sample(float frame, float& value) {
    if (_count < 2)
        return false;
    if (_keys.size() < 2)
        return _keys.front().y != 0.0F; // every key at one frame
    if (_left != NoSegment && _keys[_left].x <= frame && frame < _keys[_left + 1].x)
        return _segment.sample(frame, value);
    if (frame < _keys.front().x) {
        value = _keys[1].y; // the second key's: what hosts have always got
        return true;
    }
    if (!(frame < _keys.back().x)) {
        value = _keys.back().y;
        return true;
    }
    return segment(upperBound(frame) - 1).sample(frame, value);
}
