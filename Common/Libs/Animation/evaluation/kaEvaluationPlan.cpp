#include "kaEvaluationPlan.h"

#include "kaAnimationCurve2D.h"
#include "kaChildList.h"
#include "kaCurveView.h"
#include "kaDescent.h"
#include "kaEdits.h"

#include <algorithm>
#include <limits>

void kaEvaluationPlan::refresh(const kaAnimationObject& object) {
    if (_edits == kaEdits::count)
        return;
    const auto forget = [this](const kaAnimationObject& curve) { forgetKeysOf(curve); };
    if (!_mendable || !kaEdits::keysOf.forEachSince(_edits, forget))
        remake(object);
    _edits = kaEdits::count;
}

void kaEvaluationPlan::remake(const kaAnimationObject& object) {
    _mendable = false; // unless this comes to its end
    leaves.clear();
    curves.clear();
    objects.clear();
    visit(object);
    _segments.assign(curves.size(), kaSegment({}));
    _places.assign(curves.size(), Place());
    _held.assign(2 * curves.size(), Held());
    _mendable = true;
}

/// The curve may stand below several objects.
void kaEvaluationPlan::forgetKeysOf(const kaAnimationObject& curve) {
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (objects[i] != &curve)
            continue;
        _segments[i] = kaSegment({});
        _places[i] = Place();
        _held[2 * i] = _held[2 * i + 1] = Held();
    }
}

/// Containers down to the objects that hold curves.
void kaEvaluationPlan::visit(const kaAnimationObject& top) {
    const auto holdsCurves = [](const kaAnimationObject& object) {
        return object.getTypeID() <= KA_TYPE_UNIT;
    };
    if (holdsCurves(top)) {
        addLeaf(top);
        return;
    }
    kaDescentPath path;
    kaDescent<const kaAnimationObject, kaDescentChildren<const kaAnimationObject>> walk(path);
    const auto enter = [&walk](const kaAnimationObject& object) {
        const kaChildList* children = object.childrenOrNull();
        if (children && walk.enter(object))
            children->forEach(
                [&walk](const kaAnimationObject& child) { walk.level().list.push_back(&child); });
    };
    enter(top);
    while (!walk.isDone()) {
        const kaAnimationObject* child = walk.level().takeNext();
        if (!child)
            walk.leave();
        else if (holdsCurves(*child))
            addLeaf(*child);
        else
            enter(*child);
    }
}

void kaEvaluationPlan::addLeaf(const kaAnimationObject& object) {
    static_assert(sizeof(Curve) == 64, "one cache line");
    constexpr float Infinity = std::numeric_limits<float>::infinity();
    const auto& below = object.resolvedCurves();
    if (below.empty())
        return;
    leaves.push_back(
        {&object, object.getBegin(), object.getEnd(), curves.size(), below.size(), object.isRepeating()});
    objects.insert(objects.end(), below.begin(), below.end());
    for (kaAnimationCurve2D* curve : below)
        curves.push_back(
            {curve->resolvedField(), kaFieldGlance(), curve->isRepeating() ? -Infinity : curve->getBegin(),
             curve->isRepeating() ? Infinity : curve->getEnd(), curve->isActive(), curve->isMotionBlur()});
}

/// What is remembered of a view that does not last would be of no use after the next edit of any key.
kaCurveView& kaEvaluationPlan::viewOf(std::size_t curve) {
    kaCurveView& view = objects[curve]->view();
    _mendable = _mendable && view.isKept();
    return view;
}

/// What plays forward goes on to the next segment, which is found without the curve.
const kaSegment* kaEvaluationPlan::findSegment(std::size_t curve, float frame) {
    Place& place = _places[curve];
    if (place.end - place.segment > 1 && place.segment[1].holds(frame)) {
        ++place.segment;
    } else {
        kaCurveView& view = viewOf(curve);
        const kaSegment* found = view.segmentAt(frame);
        if (!found)
            return nullptr;
        place = {found, view.segmentsEnd()};
    }
    _segments[curve] = *place.segment;
    return &_segments[curve];
}

bool kaEvaluationPlan::sampleInside(std::size_t curve, float frame, float& value) {
    kaCurveView& view = viewOf(curve);
    return view.hasSpan() && view.sample(frame, value);
}

void kaEvaluationPlan::hold(std::size_t curve, float frame, Held& held) {
    const float end = frame < curves[curve].begin ? curves[curve].begin : curves[curve].end;
    held.state = sampleInside(curve, end, held.value) ? Held::State::Value : Held::State::Nothing;
}
