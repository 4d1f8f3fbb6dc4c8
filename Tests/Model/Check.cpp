#include "Run.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationUnit.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace ka_model {

namespace {

std::uint32_t bitsOf(float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

/// The same bits; every NaN is one NaN.
bool sameFloat(float a, float b) {
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

std::string differs(const std::string& what, float expected, float actual) {
    char text[96];
    std::snprintf(text, sizeof(text), ": expected %.9g, got %.9g", static_cast<double>(expected),
                  static_cast<double>(actual));
    return what + text;
}

template <class Ids>
std::string listed(const Ids& ids) {
    std::string text;
    for (Id id : ids)
        text += " " + std::to_string(id);
    return text.empty() ? " nothing" : text;
}

template <class Expected, class Actual>
std::string compareIDs(const std::string& what, const Expected& expected, const Actual& actual) {
    if (std::equal(expected.begin(), expected.end(), actual.begin(), actual.end()))
        return {};
    return what + ": expected" + listed(expected) + ", got" + listed(actual);
}

struct Number {
    const char* what;
    float expected;
    float actual;
};

struct Flag {
    const char* what;
    bool expected;
    bool actual;
};

std::vector<Flag> flagsOf(const Object& object, const kaAnimationObject& actual) {
    return {{"active", object.active, actual.isActive()},
            {"playing", object.playing, actual.isPlaying()},
            {"reversePlay", object.reversePlay, actual.isReversePlay()},
            {"repeating", object.repeating, actual.isRepeating()},
            {"flipped", object.flipped, actual.isFlipped()},
            {"trimmed", object.trimmed, actual.isTrimmed()},
            {"selected", object.selected, actual.isSelected()},
            {"locked", object.locked, actual.isLocked()},
            {"internal", object.internal, actual.isInternal()},
            {"motionBlur", object.motionBlur, actual.isMotionBlur()},
            {"useCustomRange", object.useCustomRange, actual.isUseCustomRange()}};
}

/// Handles are placed by slopes and angles, for which no order of rounding is stated.
constexpr float HANDLE_TOLERANCE = 1e-5F;

bool nearlySame(float expected, float actual, float scale) {
    if (sameFloat(expected, actual) || (!std::isfinite(expected) && !std::isfinite(actual)))
        return true;
    return std::fabs(expected - actual) <=
           HANDLE_TOLERANCE * (1.0F + std::fabs(expected) + std::fabs(actual) + std::fabs(scale));
}

} // namespace

std::string Run::compareRegistry() {
    const auto actual = manager().getObjects();
    std::vector<Id> expectedIDs;
    std::vector<Id> actualIDs;
    for (const auto& entry : world.objects)
        expectedIDs.push_back(entry.first);
    for (const auto& entry : actual)
        actualIDs.push_back(entry.first);
    const std::string difference = compareIDs("registered ids", expectedIDs, actualIDs);
    if (!difference.empty())
        return difference;
    for (const auto& entry : world.objects)
        if (actual.at(entry.first) != real(entry.second))
            return "id " + std::to_string(entry.first) + " stands for another object";
    const auto fields = manager().getFields();
    if (fields.size() != world.fields.size())
        return "number of fields";
    for (const auto& entry : world.fields) {
        const auto found = fields.find(entry.first);
        if (found == fields.end() || found->second != realField(entry.second))
            return "field " + std::to_string(entry.first);
        if (!sameFloat(entry.second->value, found->second->value))
            return differs("value of field " + std::to_string(entry.first), entry.second->value,
                           found->second->value);
    }
    return {};
}

std::string Run::compareObject(Object& object) {
    const kaAnimationObject& actual = *real(&object);
    const std::string name = nameOf(&object) + " ";
    if (actual.getId() != object.id || actual.getTypeID() != object.type)
        return name + "id or type";
    if (actual.getParent() != object.parent)
        return name + "parent: expected " + std::to_string(object.parent) + ", got " +
               std::to_string(actual.getParent());
    for (const std::string& difference : {compareIDs("children", object.children, actual.getChildIDs()),
                                          compareIDs("curves", object.curves, actual.getCurveIDs()),
                                          compareIDs("sequences", object.sequences, actual.getSequenceIDs())})
        if (!difference.empty())
            return name + difference;
    const Number numbers[] = {{"begin", object.begin(), actual.getBegin()},
                              {"end", object.end(), actual.getEnd()},
                              {"maximum", object.maximum(), actual.getMaximum()},
                              {"minimum", object.minimum(), actual.getMinimum()},
                              {"custom begin", object.customBegin, actual.getCustomBegin()},
                              {"custom end", object.customEnd, actual.getCustomEnd()},
                              {"last frame", object.lastFrame, actual.getLastFrame()}};
    const bool isHandle = object.owner != nullptr;
    const bool holdsHandle = !isHandle && isHandleListed();
    for (const Number& number : numbers)
        // Of a zero that an extent takes in from two keys the sign is nobody's.
        if (!isHandle && !sameFloat(number.expected, number.actual) &&
            !(object.type != POINT && number.expected == number.actual) &&
            !(holdsHandle && nearlySame(number.expected, number.actual, 0.0F)))
            return differs(name + number.what, number.expected, number.actual);
    if (object.type != POINT)
        object.extent = {actual.getBegin(), actual.getEnd(), actual.getMaximum(), actual.getMinimum()};
    for (const Flag& flag : flagsOf(object, actual))
        if (flag.expected != flag.actual)
            return name + flag.what;
    if (object.type == POINT)
        return compareKey(object);
    if (object.type == UNIT && realUnit(&object)->getNodeID() != object.nodeID)
        return name + "node";
    if (object.type == STREAK && realTrack(&object)->getIndex() != object.index)
        return name + "number";
    if (object.type == SEQUENCE && realSequence(&object)->isArmed() != object.armed)
        return name + "armed";
    return {};
}

/// A handle that stands among the keys of a curve widens it by where it was rounded to.
bool Run::isHandleListed() const {
    return std::any_of(_alive.begin(), _alive.end(), [this](const Object* lister) {
        return std::any_of(lister->children.begin(), lister->children.end(), [&](Id id) {
            const Object* child = world.find(id);
            return child && child->owner && child != lister;
        });
    });
}

std::string Run::compareKey(Object& key) {
    const kaControlPoint2D& actual = *realPoint(&key);
    if (actual.isTangent() != key.isTangent || actual.getTangentType() != key.tangentType ||
        actual.getTangentLengthMode() != key.lengthMode)
        return nameOf(&key) + " tangent kind";
    std::string difference = compareHandle(key, key.in, actual.getInTangent());
    if (difference.empty())
        difference = compareHandle(key, key.out, actual.getOutTangent());
    return difference;
}

/// The model goes on with the module's own rounding.
std::string Run::compareHandle(Object& key, Object* handle, const kaControlPoint2D* actual) {
    const std::string name = "handle of " + nameOf(&key);
    if ((handle == nullptr) != (actual == nullptr))
        return name + (handle ? " is missing" : " is still there");
    if (!handle)
        return {};
    if (real(handle) != actual)
        return name + " is another";
    const float x = actual->getPosition()[0];
    const float y = actual->getPosition()[1];
    if (!nearlySame(handle->position.x, x, key.position.x))
        return differs(name + " x", handle->position.x, x);
    if (!nearlySame(handle->position.y, y, key.position.y))
        return differs(name + " y", handle->position.y, y);
    handle->position = {x, y};
    return {};
}

std::string Run::compareCurve(const Object& curve, const Step& step) const {
    const kaAnimationCurve2D& actual = *realCurve(&curve);
    const std::string name = nameOf(&curve) + " ";
    if (actual.getField() != curve.field)
        return name + "field";
    const auto expectedPoints = world.pointsOf(curve);
    const auto points = actual.getPoints();
    if (points.size() != expectedPoints.size())
        return name + "number of points";
    for (auto expected = expectedPoints.begin(), found = std::map<float, Object*>::const_iterator(expected);
         found != expectedPoints.end(); ++found) {
        const auto same = points.find(found->first);
        if (!std::isnan(found->first) && (same == points.end() || same->second != real(found->second)))
            return name + "point at " + std::to_string(found->first);
    }
    for (float frame : {step.x, step.y, curve.begin(), curve.begin() * 0.75F + curve.end() * 0.25F}) {
        const auto expected = world.around(curve, frame);
        const auto around = actual.getPreviousAndNextPoint(frame);
        if (around.first != (expected.first ? real(expected.first) : nullptr) ||
            around.second != (expected.second ? real(expected.second) : nullptr))
            return name + "neighbours of " + std::to_string(frame);
        if (actual.checkInsertConstraints(frame) != world.checkInsertConstraints(curve, frame))
            return name + "insert constraints at " + std::to_string(frame);
        const float mark = -7.77e33F;
        float value = mark;
        const bool returned =
            kaAnimationController::the()->computeCurveValue(realCurve(&curve), frame, value);
        const Value sample = world.sample(curve, frame);
        if (returned != sample.returned || (value != mark) != sample.written ||
            (sample.written && !sameFloat(sample.value, value)))
            return differs(name + "sample at " + std::to_string(frame), sample.value, value);
    }
    for (const Object* key : world.childrenOf(curve)) {
        if (key->type != POINT)
            continue;
        const auto expected = world.around(curve, key);
        const auto around = actual.getPreviousAndNextPoint(realPoint(key));
        if (around.first != (expected.first ? real(expected.first) : nullptr) ||
            around.second != (expected.second ? real(expected.second) : nullptr))
            return name + "neighbours of " + nameOf(key);
        if (actual.checkMoveConstraints2(realPoint(key), step.x, step.c % 2 == 0) !=
            world.checkMoveConstraints2(curve, key, step.x, step.c % 2 == 0))
            return name + "move constraints of " + nameOf(key);
    }
    return {};
}

/// Whoever else may hold a pointer: the copy buffer, the scene's lists, the controller.
std::string Run::compareAround() {
    std::vector<kaAnimationObject*> buffer = manager().getCopyBuffer();
    buffer.erase(std::remove(buffer.begin(), buffer.end(), nullptr), buffer.end());
    std::vector<kaAnimationObject*> expected;
    for (const Object* object : world.copyBuffer)
        expected.push_back(real(object));
    if (buffer != expected)
        return "copy buffer";
    for (const Node& node : world.nodes) {
        const auto attachment =
            osg::AnimAttachmentPtr::dcast(kaAnimationUtils::getAnimationAttachment(realNode(node)));
        const auto& ids = *attachment->getMFObjectIDs();
        const std::string difference =
            compareIDs("objects of node " + std::to_string(node.id), node.objectIDs, ids);
        if (!difference.empty())
            return difference;
    }
    return comparePlayback();
}

/// Who waits, runs or belongs to the last jump; whoever is gone must have left.
std::string Run::comparePlayback() const {
    const kaAnimationController* controller = kaAnimationController::the();
    const auto isReal = [this](const kaAnimationObject* actual, const Object* expected) {
        return actual == real(expected);
    };
    const auto areReal = [&isReal](const auto& actual, const std::vector<Object*>& expected) {
        return std::equal(actual.begin(), actual.end(), expected.begin(), expected.end(), isReal);
    };
    const auto& running = controller->getRunningObjects();
    if (!std::equal(running.begin(), running.end(), world.runningByID.begin(), world.runningByID.end(),
                    [&isReal](const auto& actual, const auto& expected) {
                        return actual.first == expected.first && isReal(actual.second, expected.second);
                    }))
        return "running objects";
    if (!areReal(controller->getWaitingObjects(), world.waiting))
        return "waiting objects";
    if (!areReal(kaAnimationController::getCurves(), world.jumpCurves))
        return "curves of the last jump";
    return areReal(kaAnimationController::getSeqs(), world.jumpSequences) ? std::string()
                                                                          : "sequences of the last jump";
}

std::string Run::compare(const Step& step) {
    std::string difference = compareRegistry();
    for (Object* object : _alive) {
        if (!difference.empty())
            return difference;
        if (!real(object))
            return nameOf(object) + " has no counterpart";
        difference = compareObject(*object);
    }
    for (const Object* object : _alive)
        if (difference.empty() && object->type == CURVE)
            difference = compareCurve(*object, step);
    return difference.empty() ? compareAround() : difference;
}

} // namespace ka_model
