#include "PoseDrag.h"

#include "KeySupport.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <QCoreApplication>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationUtils.h>
#include <kaNodeUtils.h>

namespace ka::studio {

namespace {

osg::NodePtr nodeWithId(unsigned int id) {
    return osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(id));
}

/// The curve for each of X, Y and Z of an attribute; of several the first that is active.
std::array<kaUID, 3> curvesFor(unsigned int node, const std::string& attribute) {
    std::array<kaUID, 3> found{};
    const std::string letters = "XYZ";
    for (const kaAnimationCurve2D* curve : curvesOfNode(node)) {
        const kaAnimationField* field = kaAnimationManager::the()->getField(curve->getField());
        for (std::size_t i = 0; i < 3; ++i)
            if (found[i] == 0 && curve->isActive() && field->attribute == attribute + letters[i])
                found[i] = curve->getId();
    }
    return found;
}

Ids scopeOf(const std::array<kaUID, 3>& a, const std::array<kaUID, 3>& b) {
    Ids ids;
    for (const auto* three : {&a, &b})
        for (const kaUID id : *three)
            if (id != 0)
                ids.push_back(id);
    return ids;
}

} // namespace

std::vector<kaAnimationCurve2D*> curvesOfNode(unsigned int node) {
    std::vector<kaAnimationCurve2D*> curves;
    for (const kaAnimationField* field : kaAnimationUtils::getAnimationFields(nodeWithId(node)))
        for (kaAnimationCurve2D* curve : kaAnimationManager::the()->getReferencedCurves(field->getId()))
            curves.push_back(curve);
    return curves;
}

std::array<float, 3> rotationOfNode(unsigned int node) {
    const osg::TransformAttachmentPtr turned = kaNodeUtils::getTransformAttachment(nodeWithId(node));
    if (turned == osg::NullFC)
        return {};
    const osg::Vec3f angles = turned->getRotation();
    return {angles[0], angles[1], angles[2]};
}

PoseDrag::PoseDrag(Document& document, unsigned int node, float frame, bool autoKey)
    : _document(document),
      _frame(frame),
      _autoKey(autoKey),
      _translations(curvesFor(node, "translation")),
      _rotations(curvesFor(node, "rotation")),
      _gesture(document, {scopeOf(_translations, _rotations), {}}) {}

bool PoseDrag::canKey() const {
    for (const kaUID id : scopeOf(_translations, _rotations)) {
        const kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(id);
        if (_autoKey || curve->findPoint(_frame) != nullptr)
            return true;
    }
    return false;
}

void PoseDrag::add(const std::array<kaUID, 3>& curves, const std::array<float, 3>& by) {
    Ids changed;
    for (std::size_t i = 0; i < 3; ++i) {
        kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(curves[i]);
        if (curve == nullptr || by[i] == 0.0F || !std::isfinite(by[i]))
            continue;
        kaControlPoint2D* key = curve->findPoint(_frame);
        if (key == nullptr && _autoKey) {
            float value = 0.0F;
            const float held = std::max(curve->getBegin(), std::min(_frame, curve->getEnd()));
            kaAnimationController::the()->computeCurveValue(curve, held, value);
            kaAnimationManager::the()->createCurvePoint(curve, _frame, value, false, false, false);
            key = curve->findPoint(_frame);
        }
        if (key == nullptr)
            continue;
        setNumber(*key, *curve, KeyNumber::Value, key->getMaximum() + by[i]);
        takeInChange(*curve);
        changed.push_back(curves[i]);
    }
    if (!changed.empty())
        _document.announce(changed);
}

void PoseDrag::translate(const std::array<float, 3>& by) {
    add(_translations, by);
}

void PoseDrag::rotate(const std::array<float, 3>& by) {
    add(_rotations, by);
}

bool PoseDrag::commit() {
    return _gesture.commit(QCoreApplication::translate("Edits", "Pose"));
}

} // namespace ka::studio
