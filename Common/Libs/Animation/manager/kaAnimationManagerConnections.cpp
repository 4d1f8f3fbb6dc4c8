#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaConnections.h"
#include "kaFieldInfo.h"
#include "kaHostCamera.h"
#include "kaObjectStore.h"
#include "kaPlainOutput.h"

// Connections, moves between tracks, diagnostic dumps and the host's callbacks.

namespace {

/// A track with a higher number than any person lays out: a request for one is refused before the tracks
/// below it are made.
constexpr unsigned int LargestTrackNumber = 65535;

} // namespace

kaAnimationManager::ShowCurves kaAnimationManager::_showCurvesFP = nullptr;
kaAnimationManager::FileIOProgress kaAnimationManager::_progressFP = nullptr;
kaAnimationManager::UpdatePaste kaAnimationManager::_updatePasteFP = nullptr;

// Connections.

kaUID kaAnimationManager::createConnectionID() {
    kaUID id = createUID();
    while (_connections->contains(id))
        id = createUID();
    return id;
}

bool kaAnimationManager::createConnection(kaAnimationObject* source, AnimationTrigger trigger,
                                          kaAnimationObject* target, AnimationAction action) {
    if (!source || !target)
        return false;
    const kaUID id = createConnectionID();
    source->addTrigger(trigger, id);
    _connections->add(id, *target, action);
    return true;
}

bool kaAnimationManager::createConnection(kaAnimationObject* source, AnimationTrigger trigger,
                                          void (*function)()) {
    if (!source || !function)
        return false;
    const kaUID id = createConnectionID();
    source->addTrigger(trigger, id);
    _connections->add(id, function);
    return true;
}

void kaAnimationManager::executeTriggers(std::vector<kaUID> connectionIDs) {
    _connections->execute(connectionIDs);
}

std::map<kaUID, std::pair<kaAnimationObject*, kaAnimationManager::AnimationAction>>
kaAnimationManager::getObjectConnections() const {
    return _connections->objects();
}

std::map<kaUID, void (*)()> kaAnimationManager::getCallbackConnections() const {
    return _connections->functions();
}

// Moves between tracks.

bool kaAnimationManager::moveObjectToStreak(kaAnimationObject* object, kaAnimationStreak* streak) {
    if (!object || !streak)
        return false;
    kaAnimationObject* parent = object->getParentObject();
    if (!parent || !kaObjectCast<kaAnimationStreak>(parent) || !streak->mayAdopt(*object) ||
        !parent->subObject(object, false))
        return false;
    return streak->addObject(object) != nullptr;
}

bool kaAnimationManager::moveObjectToStreak(kaAnimationObject* object, kaAnimationStrip* strip,
                                            unsigned int number) {
    if (!object || !strip || number > LargestTrackNumber)
        return false;
    while (strip->getChildCount() <= number) {
        kaAnimationStreak* track = createStreak(0);
        if (!strip->addObject(track)) {
            destroyStreak(track);
            return false;
        }
    }
    const auto tracks = strip->getStreaks();
    const auto found = tracks.find(number);
    return found != tracks.end() && moveObjectToStreak(object, found->second);
}

// Dumps.

void kaAnimationManager::objectInfo() const {
    kaPlainOutput out;
    out << "ANIMATION_MANAGER Object Info\n=============================\n";
    for (const auto& entry : kaObjectRegistry::the().ordered())
        out << "Object " << entry.second->getId() << " name " << entry.second->getName() << " type "
            << entry.second->getTypeID() << '\n';
    for (const auto& entry : kaObjectRegistry::the().fields())
        out << "Field " << entry.second->getId() << " node id " << entry.second->nodeID << " fcid "
            << entry.second->fcID << '\n';
}

void kaAnimationManager::printFieldInfo(const kaAnimationField* field) const {
    kaFieldInfo::print(field);
}

// Host callbacks.

void kaAnimationManager::setGetFromAtUpCB(GetFromAtUp callback) {
    kaHostCamera::callbacks.getFromAtUp = callback;
}

void kaAnimationManager::setFromAtUpCB(SetFromAtUp callback) {
    kaHostCamera::callbacks.setFromAtUp = callback;
}

void kaAnimationManager::setGetRollCB(GetRoll callback) {
    kaHostCamera::callbacks.getRoll = callback;
}

void kaAnimationManager::setRollCB(SetRoll callback) {
    kaHostCamera::callbacks.setRoll = callback;
}

void kaAnimationManager::setShowCurvesCB(ShowCurves callback) {
    _showCurvesFP = callback;
}

void kaAnimationManager::setFileIOProgressCB(FileIOProgress callback) {
    _progressFP = callback;
}

void kaAnimationManager::setUpdatePasteCB(UpdatePaste callback) {
    _updatePasteFP = callback;
}

void kaAnimationManager::setFromAtUp(const osg::Pnt3f& from, const osg::Pnt3f& at, const osg::Vec3f& up) {
    kaHostCamera::setFromAtUp(from, at, up);
}

void kaAnimationManager::getFromAtUp(osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up) {
    kaHostCamera::getFromAtUp(from, at, up);
}

void kaAnimationManager::setRoll(float roll) {
    kaHostCamera::setRoll(roll);
}

void kaAnimationManager::getRoll(float& roll) {
    roll = kaHostCamera::getRoll();
}

void kaAnimationManager::showCurves(const std::vector<kaAnimationCurve2D*>& curves) {
    if (_showCurvesFP)
        _showCurvesFP(curves);
}

void kaAnimationManager::setFileIOProgress(unsigned int percent) {
    if (_progressFP)
        _progressFP(percent);
}

void kaAnimationManager::updatePaste(bool filled) {
    if (_updatePasteFP)
        _updatePasteFP(filled);
}
