#include "kaAnimationManager.h"
#include "kaAnimationObject.h"
#include "kaAnimationUtils.h"
#include "kaCopyBuffer.h"
#include "kaSceneNodes.h"
#include "kaSceneSync.h"

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

/// What a host hands over to be copied. Clearing the buffer may free some of it.
class CopySources {
  public:
    explicit CopySources(const std::vector<kaAnimationObject*>& objects) {
        for (kaAnimationObject* object : objects)
            if (object)
                _sources.push_back({object, object->getId(), isRegistered(object, object->getId())});
    }

    /// What is still there. An object that was never registered is not the buffer's to free.
    std::vector<kaAnimationObject*> remaining() const {
        std::vector<kaAnimationObject*> objects;
        for (const Source& source : _sources)
            if (!source.registered || isRegistered(source.object, source.id))
                objects.push_back(source.object);
        return objects;
    }

  private:
    struct Source {
        kaAnimationObject* object;
        kaUID id;
        bool registered;
    };

    static bool isRegistered(const kaAnimationObject* object, kaUID id) {
        return kaAnimationManager::the()->getObject(id) == object;
    }

    std::vector<Source> _sources;
};

void destroyAll(const std::vector<kaUID>& ids) {
    for (kaUID id : ids)
        kaAnimationManager::the()->destroyObject(kaAnimationManager::the()->getObject(id));
}

} // namespace

void kaAnimationManager::clearCopyBuffer(bool destroy) {
    if (_copyBuffer->empty())
        return;
    const std::vector<kaUID> ids = _copyBuffer->take();
    if (destroy)
        destroyAll(ids);
    updatePaste(!_copyBuffer->empty());
}

bool kaAnimationManager::copy(kaAnimationObject* object) {
    return object && copy(std::vector<kaAnimationObject*>{object});
}

bool kaAnimationManager::copy(const std::vector<kaAnimationObject*>& objects) {
    const CopySources sources(objects);
    clearCopyBuffer(true);
    const std::vector<kaUID> copiedMeanwhile = _copyBuffer->take(); // by a host that was told just now
    destroyAll(copiedMeanwhile);
    for (kaAnimationObject* object : sources.remaining())
        if (kaAnimationObject* duplicate = duplicateObject(object))
            _copyBuffer->append(*duplicate);
    const bool copied = !_copyBuffer->empty();
    if (copied || !copiedMeanwhile.empty())
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
    for (kaUID id : _copyBuffer->take()) {
        kaAnimationObject* object = getObject(id);
        const osg::NodePtr target = kaSceneNodes::find(nodeID);
        if (!object || target == osg::NullFC)
            continue;
        kaAnimationUtils::changeObjectReferenceFields(object, target);
        kaAnimationUtils::addAnimationObject(target, object);
    }
    updatePaste(!_copyBuffer->empty());
    return true;
}

std::vector<kaAnimationObject*> kaAnimationManager::getCopyBuffer() const {
    return _copyBuffer->objects();
}
