#include "check/DocumentCurves.h"

#include <algorithm>
#include <kaTangents.h>

namespace ka::motion {

namespace {

using Point = DocumentOutline::Point;

/// @return null for no values.
const kaControlPoint2D* set(kaControlPoint2D& point, const Point* values) {
    if (values == nullptr)
        return nullptr;
    point.setPosition(values->position[0], values->position[1]);
    point.setTangentType(values->tangentType);
    point.setTangentLengthMode(values->lengthMode);
    return &point;
}

} // namespace

void DocumentCurves::set(const Element& curve) {
    _points.clear();
    _doubles.clear();
    _keys.clear();
    for (std::uint32_t i = 0; i < curve.references; ++i) {
        const Element* target = _byId.find(_outline.references[curve.firstReference + i].id);
        if (target != nullptr && target->kind == Kind::Point)
            _points.push_back(target);
    }
    std::stable_sort(_points.begin(), _points.end(), [this](const Element* a, const Element* b) {
        return pointOf(a).position[0] < pointOf(b).position[0];
    });
    const auto isDouble = [this](const Element* kept, const Element* other) {
        if (kept != other && pointOf(kept).position[0] != pointOf(other).position[0])
            return false;
        if (kept != other)
            _doubles.emplace_back(kept, other);
        return true;
    };
    _points.erase(std::unique(_points.begin(), _points.end(), isDouble), _points.end());
    for (std::size_t i = 0; i < _points.size(); ++i)
        _keys.push_back(place(i));
}

PlainKey DocumentCurves::place(std::size_t index) {
    const Point& key = pointOf(_points[index]);
    PlainKey plain{key.position[0], key.position[1], key.in[0], key.in[1], key.out[0], key.out[1]};
    if (key.tangentType == kaControlPoint2D::TANGENT_USER || _points.size() < 2)
        return plain;
    const Point* previous = index > 0 ? &pointOf(_points[index - 1]) : nullptr;
    const Point* next = index + 1 < _points.size() ? &pointOf(_points[index + 1]) : nullptr;
    const kaHandles handles =
        kaPlaceHandles(*motion::set(_key, &key), motion::set(_previous, previous), motion::set(_next, next));
    plain.inX = handles.in[0];
    plain.inY = handles.in[1];
    plain.outX = handles.out[0];
    plain.outY = handles.out[1];
    return plain;
}

} // namespace ka::motion
