#include "kaAnimationManager.h"
#include "kaAnimationObject.h"
#include "kaAnimationUtils.h"
#include "kaObjectStore.h"
#include "kaSceneNodes.h"
#include "kaSceneSync.h"
#include "kaWeak.h"

#include <utility>

// Scene synchronisation.

osg::Action::ResultE kaAnimationManager::collectActualObjectsAndFields(const osg::NodePtr& node) {
    the()->_sceneSync->collect(node);
    return osg::Action::Continue;
}

void kaAnimationManager::updateActualSceneObjectsAndFields() {
    _sceneSync->mark(getSceneRootNode());
}

void kaAnimationManager::destroyUnreferencedObjectsAndFields() {
    updateActualSceneObjectsAndFields();
    _sceneSync->sweep();
}

void kaAnimationManager::destroyNodeObjects(const osg::NodePtr& node, bool recursive) {
    kaSceneSync::destroyNodeObjects(node, recursive);
}

// Copy and paste.

namespace {

/// Emptied before anything is destroyed: destroying announces changes, and what the host copies then stays.
void empty(kaWeakList<kaAnimationObject>& buffer, bool destroy) {
    const kaWeakList<kaAnimationObject> copies = std::exchange(buffer, {});
    if (destroy)
        copies.visit([](kaAnimationObject& object) { kaObjectStore::destroy(&object); });
}

} // namespace

void kaAnimationManager::clearCopyBuffer(bool destroy) {
    if (_copyBuffer->empty())
        return;
    empty(*_copyBuffer, destroy);
    updatePaste(!_copyBuffer->empty());
}

bool kaAnimationManager::copy(kaAnimationObject* object) {
    return object && copy(std::vector<kaAnimationObject*>{object});
}

/// Clearing the buffer may free some of what is to be copied.
bool kaAnimationManager::copy(const std::vector<kaAnimationObject*>& objects) {
    const kaWeakList<kaAnimationObject> sources(objects);
    clearCopyBuffer(true);
    const bool copiedMeanwhile = !_copyBuffer->empty(); // by a host that was told just now
    empty(*_copyBuffer, true);
    sources.visit([this](kaAnimationObject& object) {
        if (kaAnimationObject* duplicate = duplicateObject(&object))
            _copyBuffer->append(*duplicate);
    });
    const bool copied = !_copyBuffer->empty();
    if (copied || copiedMeanwhile)
        updatePaste(copied);
    return copied;
}

bool kaAnimationManager::copy(const osg::NodePtr& node) {
    if (node == osg::NullFC)
        return false;
    const std::vector<kaAnimationObject*> objects = kaAnimationUtils::getAnimationObjects(node);
    return !objects.empty() && copy(objects);
}

/// The buffer is emptied first: attaching announces changes, and what the host does then must find the
/// duplicates in one place only.
bool kaAnimationManager::paste(const osg::NodePtr& node, bool force) {
    if (node == osg::NullFC)
        return false;
    if (!force && !kaAnimationUtils::checkPasteTo(node, _copyBuffer->objects()))
        return false;
    if (_copyBuffer->empty())
        return true;
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    const kaWeakList<kaAnimationObject> copies = std::exchange(*_copyBuffer, {});
    copies.visit([nodeID](kaAnimationObject& object) {
        const osg::NodePtr target = kaSceneNodes::find(nodeID);
        if (target == osg::NullFC)
            return;
        kaAnimationUtils::changeObjectReferenceFields(&object, target);
        kaAnimationUtils::addAnimationObject(target, &object);
    });
    updatePaste(!_copyBuffer->empty());
    return true;
}

std::vector<kaAnimationObject*> kaAnimationManager::getCopyBuffer() const {
    return _copyBuffer->objects();
}
