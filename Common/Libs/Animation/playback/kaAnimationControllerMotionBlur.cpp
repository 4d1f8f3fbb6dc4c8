#include "kaAnimationController.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationUnit.h"
#include "kaPlainOutput.h"
#include "kaSceneObjects.h"
#include "kaWeak.h"

// Motion blur.

namespace {

bool isBlurred(const kaAnimationCurve2D* curve, float frame) {
    return curve && curve->isActive() && curve->isMotionBlur() && curve->getBegin() <= frame &&
           frame <= curve->getEnd();
}

void collectBlurred(const kaAnimationObject& object, float frame, std::vector<kaAnimationCurve2D*>& curves) {
    for (kaAnimationCurve2D* curve : object.getCurves())
        if (isBlurred(curve, frame))
            curves.push_back(curve);
}

} // namespace

/// @return false, with a line on standard output, when there is no active camera.
bool kaAnimationController::blurredFrame(float sample, const char* operation, float& frame) {
    osg::PerspectiveCamera2Ptr camera = osg::NullFC;
    if (_cameraCB)
        _cameraCB(camera);
    if (camera == osg::NullFC) {
        kaPlainOutput() << "ERROR: kaAnimationController::" << operation << ": Can't get active camera!\n";
        return false;
    }
    frame = _currentFrame + 1.0F / camera->getShutterSpeed() * _fps * sample;
    return true;
}

void kaAnimationController::executeMotionBlur(float sample) {
    float frame = 0.0F;
    if (!blurredFrame(sample, "executeMotionBlur", frame))
        return;
    evaluate(frame, true);
    if (_updateNavCB)
        _updateNavCB(0);
}

void kaAnimationController::executeMotionBlur(float sample, kaAnimationObject* object) {
    if (!object)
        return;
    const kaWeak<kaAnimationObject> alive(*object);
    float frame = 0.0F;
    if (!blurredFrame(sample, "executeMotionBlur", frame) || !alive)
        return;
    std::vector<kaAnimationCurve2D*> curves;
    collectBlurred(*object, frame, curves);
    if (!curves.empty())
        evaluateCurves(std::move(curves), object->getBegin(), object->getEnd(), frame, false);
}

void kaAnimationController::executeMotionBlurOnActiveUnits(float sample) {
    float frame = 0.0F;
    if (!blurredFrame(sample, "executeMotionBlurOnActiveUnits", frame))
        return;
    kaExtent joint;
    std::vector<kaAnimationCurve2D*> curves;
    for (const kaAnimationUnit* unit : kaActiveSceneObjects<kaAnimationUnit>()) {
        if (!unit)
            continue;
        joint.includeSpan(unit->getBegin(), unit->getEnd());
        if (unit->getBegin() <= frame && frame <= unit->getEnd())
            collectBlurred(*unit, frame, curves);
    }
    if (!curves.empty())
        evaluateCurves(std::move(curves), joint.begin, joint.end, frame, false);
}

void kaAnimationController::resetMotionBlur() {
    evaluate(_currentFrame, true);
}
