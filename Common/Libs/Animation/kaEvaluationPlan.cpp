#include "kaEvaluationPlan.h"

#include "kaAnimationCurve2D.h"
#include "kaChildList.h"
#include "kaCurveView.h"
#include "kaEdits.h"
#include "kaFieldAccess.h"

#include <algorithm>

void kaEvaluation::Plan::refresh(const kaAnimationObject& object) {
    if (_edits == kaEdits::count)
        return;
    _edits = 0; // unless this comes to its end
    leaves.clear();
    curves.clear();
    _path.clear();
    visit(object);
    _edits = kaEdits::count;
}

/// Containers down to the objects that hold curves.
void kaEvaluation::Plan::visit(const kaAnimationObject& object) {
    if (object.getTypeID() <= KA_TYPE_UNIT) {
        addLeaf(object);
        return;
    }
    // A host can bend child lists into a ring; each object is entered once on the way down.
    if (_path.size() >= KA_MAX_DEPTH || std::find(_path.begin(), _path.end(), &object) != _path.end())
        return;
    _path.push_back(&object);
    if (const kaChildList* children = object.childrenOrNull())
        children->forEach([this](const kaAnimationObject& child) { visit(child); });
    _path.pop_back();
}

void kaEvaluation::Plan::addLeaf(const kaAnimationObject& object) {
    const auto& below = object.resolvedCurves();
    if (below.empty())
        return;
    leaves.push_back(
        {&object, object.getBegin(), object.getEnd(), curves.size(), below.size(), object.isRepeating()});
    for (kaAnimationCurve2D* curve : below)
        curves.push_back({curve,
                          &curve->view(),
                          curve->resolvedField(),
                          curve->getBegin(),
                          curve->getEnd(),
                          {0.0F, 0.0F},
                          {Curve::Held::Unknown, Curve::Held::Unknown},
                          curve->isActive(),
                          curve->isRepeating(),
                          curve->isMotionBlur()});
}

void kaEvaluation::Plan::Curve::hold(std::size_t side) {
    held[side] = sampleView(side == 0 ? begin : end, heldValue[side]) ? Held::Value : Held::Nothing;
}

/// In steps, for what lies further on is found through what lies nearer.
void kaEvaluation::Plan::fetchAhead(std::size_t index, float frame) const {
    constexpr std::size_t Step = 4;
    if (index + 3 * Step >= curves.size())
        return;
    const Curve& near = curves[index + Step];
    const Curve& middle = curves[index + 2 * Step];
    const Curve& far = curves[index + 3 * Step];
    if (far.field)
        kaFieldAccess::fetchRecord(*far.field);
    if (middle.field)
        kaFieldAccess::fetchBinding(*middle.field);
    if (near.field)
        kaFieldAccess::fetchTarget(*near.field);
    if (far.isInside(frame))
        far.view->fetch();
    if (middle.isInside(frame))
        middle.view->fetchSegment();
}
