#include "kaAnimationCurve2D.h"
#include "kaControlPoint2D.h"
#include "kaObjectClass.h"
#include "kaTangents.h"

// How a key has its handles placed. Apart from the key itself, which curves know.

bool kaControlPoint2D::computeTangents() {
    if (!_inTangent || !_outTangent || _tangentType == TANGENT_USER)
        return false;
    const auto* curve = kaObjectCast<kaAnimationCurve2D>(getParentObject());
    if (!curve)
        return false;
    const kaAnimationCurve2D::Neighbours neighbours = curve->neighboursByX(_position[0]);
    if (!neighbours.exists || (!neighbours.previous && !neighbours.next))
        return false;
    const kaHandles handles = kaPlaceHandles(*this, neighbours.previous, neighbours.next);
    _inTangent->setPosition(handles.in);
    _outTangent->setPosition(handles.out);
    return true;
}
