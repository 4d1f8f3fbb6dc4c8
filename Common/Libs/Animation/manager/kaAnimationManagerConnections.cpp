#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaConnections.h"
#include "kaObjectRegistry.h"
#include "kaPlainOutput.h"

// Connections, moves between tracks, diagnostic dumps and the host's callbacks.

namespace {

/// A track with a higher number than any person lays out: a request for one is refused before the tracks
/// below it are made.
constexpr unsigned int LargestTrackNumber = 65535;

constexpr int ActiveCamera = -1;

} // namespace

kaAnimationManager::GetFromAtUp kaAnimationManager::_gCamFAU = nullptr;
kaAnimationManager::SetFromAtUp kaAnimationManager::_sCamFAU = nullptr;
kaAnimationManager::GetRoll kaAnimationManager::_gCamRoll = nullptr;
kaAnimationManager::SetRoll kaAnimationManager::_sCamRoll = nullptr;
kaAnimationManager::ShowCurves kaAnimationManager::_showCurvesFP = nullptr;
kaAnimationManager::FileIOProgress kaAnimationManager::_progressFP = nullptr;
kaAnimationManager::UpdatePaste kaAnimationManager::_updatePasteFP = nullptr;

// Connections.

unsigned long long kaAnimationManager::createConnectionID() {
    unsigned long long id = createUID();
    while (_connections->contains(id))
        id = createUID();
    return id;
}

bool kaAnimationManager::createConnection(kaAnimationObject* source, AnimationTrigger trigger,
                                          kaAnimationObject* target, AnimationAction action) {
    if (!source || !target)
        return false;
    const unsigned long long id = createConnectionID();
    source->addTrigger(trigger, id);
    _connections->add(id, *target, action);
    return true;
}

bool kaAnimationManager::createConnection(kaAnimationObject* source, AnimationTrigger trigger,
                                          void (*function)()) {
    if (!source || !function)
        return false;
    const unsigned long long id = createConnectionID();
    source->addTrigger(trigger, id);
    _connections->add(id, function);
    return true;
}

void kaAnimationManager::executeTriggers(std::vector<unsigned long long> connectionIDs) {
    _connections->execute(connectionIDs);
}

std::map<unsigned long long, std::pair<kaAnimationObject*, kaAnimationManager::AnimationAction>>
kaAnimationManager::getObjectConnections() const {
    return _connections->objects();
}

std::map<unsigned long long, void (*)()> kaAnimationManager::getCallbackConnections() const {
    return _connections->functions();
}

// Moves between tracks.

bool kaAnimationManager::moveObjectToStreak(kaAnimationObject* object, kaAnimationStreak* streak) {
    if (!object || !streak)
        return false;
    kaAnimationObject* parent = object->getParentObject();
    if (!parent || parent->getTypeID() != KA_TYPE_STREAK || !streak->mayAdopt(*object) ||
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
    for (const auto& entry : _registry->ordered())
        out << "Object " << entry.second->getId() << " name " << entry.second->getName() << " type "
            << entry.second->getTypeID() << '\n';
    for (const auto& entry : _registry->fields())
        out << "Field " << entry.second->getId() << " node id " << entry.second->nodeID << " fcid "
            << entry.second->fcID << '\n';
}

void kaAnimationManager::printFieldInfo(const kaAnimationField* field) const {
    if (!field)
        return;
    kaPlainOutput out;
    out << "Field Info:" << std::endl;
    out << "\tid " << field->getId() << std::endl;
    out << "\tname " << field->name << std::endl;
    out << "\tattribute " << field->attribute << std::endl;
    out << "\tfcID " << field->fcID << std::endl;
    out << "\tnodeID " << field->nodeID << std::endl;
    out << "\tvalue " << field->value << std::endl;
    out << "\tvaluePos " << field->valuePos << std::endl;
    out << "\tdirty " << field->dirty << std::endl;
}

// Host callbacks.

void kaAnimationManager::setGetFromAtUpCB(GetFromAtUp callback) {
    _gCamFAU = callback;
}

void kaAnimationManager::setFromAtUpCB(SetFromAtUp callback) {
    _sCamFAU = callback;
}

void kaAnimationManager::setGetRollCB(GetRoll callback) {
    _gCamRoll = callback;
}

void kaAnimationManager::setRollCB(SetRoll callback) {
    _sCamRoll = callback;
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
    if (_sCamFAU)
        _sCamFAU(ActiveCamera, from, at, up);
}

void kaAnimationManager::getFromAtUp(osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up) {
    if (_gCamFAU) {
        _gCamFAU(ActiveCamera, from, at, up);
        return;
    }
    from = osg::Pnt3f(0.0F, 0.0F, 0.0F);
    at = osg::Pnt3f(0.0F, 0.0F, 0.0F);
    up = osg::Vec3f(0.0F, 0.0F, 0.0F);
}

void kaAnimationManager::setRoll(float roll) {
    if (_sCamRoll)
        _sCamRoll(ActiveCamera, roll);
}

void kaAnimationManager::getRoll(float& roll) {
    roll = _gCamRoll ? _gCamRoll(ActiveCamera) : 0.0F;
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
