#include "kaCurveView.h"

#include "kaAnimationCurve2D.h"
#include "kaChildList.h"

void kaCurveView::refresh(const kaAnimationCurve2D& curve, const kaChildList* keys) {
    const bool mirrored = keys && keys->isMirrored();
    if (mirrored && _packed && keys->revision() == _revision)
        return;
    pack(curve, keys);
    _packed = mirrored;
    _revision = keys ? keys->revision() : 0;
}

void kaCurveView::pack(const kaAnimationCurve2D& curve, const kaChildList* keys) {
    _x.clear();
    _keys.clear();
    _left = NoSegment;
    _count = 0;
    if (!keys)
        return;
    bool ascending = true;
    keys->forEach([&](kaAnimationObject& child) {
        if (child.getTypeID() != KA_TYPE_POINT)
            return;
        ++_count;
        const auto& point = static_cast<const kaControlPoint2D&>(child);
        const float x = point.getPosition()[0];
        if (_x.empty() || x > _x.back())
            add(point);
        else if (x != _x.back())
            ascending = false;
    });
    if (ascending)
        return;
    _x.clear();
    _keys.clear();
    for (const auto& entry : curve.getPoints())
        add(*entry.second);
}

void kaCurveView::add(const kaControlPoint2D& point) {
    const osg::Pnt2f& position = point.getPosition();
    const osg::Pnt2f& in = point.getInTangent() ? point.getInTangent()->getPosition() : position;
    const osg::Pnt2f& out = point.getOutTangent() ? point.getOutTangent()->getPosition() : position;
    _x.push_back(position[0]);
    _keys.push_back({position[1], in[0], in[1], out[0], out[1]});
}

/// The first key after `frame`. Halves without branching on the comparison: random frames would mispredict
/// each.
std::size_t kaCurveView::upperBound(float frame) const {
    const float* base = _x.data();
    std::size_t length = _x.size();
    while (length > 1) {
        const std::size_t half = length / 2;
        base += frame < base[half - 1] ? 0 : half;
        length -= half;
    }
    const auto index = static_cast<std::size_t>(base - _x.data());
    return frame < *base ? index : index + 1;
}

const kaSegment& kaCurveView::segment(std::size_t left) {
    if (_left != left) {
        const Key& a = _keys[left];
        const Key& b = _keys[left + 1];
        _segment = kaSegment({_x[left], a.y, a.outX, a.outY, b.inX, b.inY, _x[left + 1], b.y});
        _left = left;
    }
    return _segment;
}

bool kaCurveView::sample(float frame, float& value) {
    if (_count < 2)
        return false;
    if (_x.size() < 2)
        return _keys.front().y != 0.0F; // every key at one frame
    if (_left != NoSegment && _x[_left] <= frame && frame < _x[_left + 1])
        return _segment.sample(frame, value);
    const std::size_t right = upperBound(frame);
    if (right == 0) {
        value = _keys[1].y;
        return true;
    }
    if (right == _x.size()) {
        value = _keys.back().y;
        return true;
    }
    return segment(right - 1).sample(frame, value);
}
