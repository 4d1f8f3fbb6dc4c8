#include "kaEvaluationPlan.h"

#include "kaAnimationCurve2D.h"
#include "kaChildList.h"
#include "kaCurveView.h"
#include "kaEdits.h"
#include "kaObjectClass.h"
#include "kaObjectRegistry.h"
#include "kaTreeWalk.h"

#include <algorithm>
#include <limits>

namespace {

constexpr float Infinity = std::numeric_limits<float>::infinity();

} // namespace

void kaEvaluationPlan::refresh(const kaAnimationObject& object) {
    const kaObjectRegistry& registry = kaObjectRegistry::the();
    if (_stale || (_lacksCurves && _objects != registry.epoch())) {
        remake(object);
        return;
    }
    if (!_touched.empty())
        readAgain();
    if (_fields != registry.fieldEpoch())
        readFields();
    if (_rereadsAll && _edits != kaEdits::count) {
        for (std::size_t i = 0; i < curves.size(); ++i)
            forgetKeys(i);
        _edits = kaEdits::count;
    }
}

void kaEvaluationPlan::changed(std::uint32_t place, kaChange change) noexcept {
    if (change == kaChange::Selection || change == kaChange::Values)
        return;
    if (change == kaChange::Gone && place == RootPlace) {
        _orphaned = true;
        ++_gone;
    }
    if (change == kaChange::Structure || change == kaChange::Gone) {
        _stale = true;
    } else if (place < RootPlace && !_stale && !_isTouched[place]) {
        _isTouched[place] = true;
        _touched.push_back(place);
    }
}

void kaEvaluationPlan::remake(const kaAnimationObject& object) {
    _stale = true; // unless this comes to its end
    kaDependents::leave(*this);
    _told = false;
    leaves.clear();
    curves.clear();
    objects.clear();
    _lacksCurves = false;
    _rereadsAll = false;
    kaDependents::enter(object, *this, RootPlace);
    _told = true;
    _orphaned = false;
    visit(object);
    const std::size_t places = curves.size() + leaves.size();
    _touched.clear();
    _touched.reserve(places);
    _isTouched.assign(places, false);
    _segments.assign(curves.size(), kaSegment({}));
    _places.assign(curves.size(), Place());
    _endValues.assign(2 * curves.size(), EndValue());
    for (std::size_t i = 0; i < curves.size(); ++i)
        kaDependents::enter(*objects[i], *this, static_cast<std::uint32_t>(i));
    for (std::size_t i = 0; i < leaves.size(); ++i)
        kaDependents::enter(*leaves[i].object, *this, static_cast<std::uint32_t>(curves.size() + i));
    _edits = kaEdits::count;
    _objects = kaObjectRegistry::the().epoch();
    _fields = kaObjectRegistry::the().fieldEpoch();
    _stale = false;
}

void kaEvaluationPlan::readAgain() {
    for (const std::uint32_t place : _touched) {
        if (place < curves.size()) {
            readCurve(place);
            forgetKeys(place);
        } else {
            readLeaf(leaves[place - curves.size()]);
        }
        _isTouched[place] = false;
    }
    _touched.clear();
}

void kaEvaluationPlan::readCurve(std::size_t curve) {
    const kaAnimationCurve2D& object = *objects[curve];
    Curve& read = curves[curve];
    readField(curve);
    read.begin = object.isRepeating() ? -Infinity : object.getBegin();
    read.end = object.isRepeating() ? Infinity : object.getEnd();
    _blurred[curve] = object.isMotionBlur();
}

void kaEvaluationPlan::readField(std::size_t curve) {
    curves[curve].field = objects[curve]->isActive() ? objects[curve]->resolvedField() : nullptr;
}

void kaEvaluationPlan::readLeaf(Leaf& leaf) const {
    leaf.begin = leaf.object->getBegin();
    leaf.end = leaf.object->getEnd();
    leaf.repeating = leaf.object->isRepeating();
}

void kaEvaluationPlan::forgetKeys(std::size_t curve) {
    _segments[curve] = kaSegment({});
    _places[curve] = Place();
    _endValues[2 * curve] = _endValues[2 * curve + 1] = EndValue();
}

/// A field has come or gone.
void kaEvaluationPlan::readFields() {
    for (std::size_t i = 0; i < curves.size(); ++i)
        readField(i);
    _fields = kaObjectRegistry::the().fieldEpoch();
}

/// Containers down to the objects that hold curves.
void kaEvaluationPlan::visit(const kaAnimationObject& top) {
    if (kaObjectClass::of(top).isPlayedAsOne()) {
        addLeaf(top);
        return;
    }
    kaWalkPath path;
    kaTreeWalk<const kaAnimationObject, kaWalkChildren<const kaAnimationObject>> walk(path);
    const auto enter = [this, &walk](const kaAnimationObject& object) {
        kaDependents::enter(object, *this, NoPlace);
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
        else if (kaObjectClass::of(*child).isPlayedAsOne())
            addLeaf(*child);
        else
            enter(*child);
    }
}

void kaEvaluationPlan::addLeaf(const kaAnimationObject& object) {
    static_assert(sizeof(Curve) == 64, "one cache line");
    const auto& below = object.resolvedCurves();
    _lacksCurves = _lacksCurves || below.size() != object.getCurveIDs().size();
    if (below.empty()) {
        kaDependents::enter(object, *this, NoPlace);
        return;
    }
    leaves.push_back({&object, 0.0F, 0.0F, curves.size(), below.size(), false});
    readLeaf(leaves.back());
    objects.insert(objects.end(), below.begin(), below.end());
    curves.resize(objects.size());
    _blurred.resize(objects.size());
    for (std::size_t i = objects.size() - below.size(); i < objects.size(); ++i)
        readCurve(i);
}

kaCurveView& kaEvaluationPlan::viewOf(std::size_t curve) {
    kaCurveView& view = objects[curve]->view();
    _rereadsAll = _rereadsAll || !view.isKept();
    return view;
}

/// What plays forward goes on to the next segment, which is found without the curve.
const kaSegment* kaEvaluationPlan::findSegment(std::size_t curve, float frame) {
    Place& place = _places[curve];
    if (place.end - place.segment > 1 && place.segment[1].contains(frame)) {
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

void kaEvaluationPlan::sampleEnd(std::size_t curve, float frame, EndValue& end) {
    const float at = frame < curves[curve].begin ? curves[curve].begin : curves[curve].end;
    end.state = sampleInside(curve, at, end.value) ? EndValue::State::Value : EndValue::State::Nothing;
}
