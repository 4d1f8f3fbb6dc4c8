#include "Lifetime.h"

#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGThread.h>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace osg {

bool FieldContainerPtr::_ignore_change = false;

/// Never destroyed: handles that outlive everything else still ask it.
FieldContainerStore* const FieldContainerStore::_the = FieldContainerStore::makeStore();

FieldContainerStore* FieldContainerStore::makeStore() {
    return new FieldContainerStore;
}

FieldContainerStore::FieldContainerStore() : _slots(1) {}

UInt32 FieldContainerStore::add(FieldContainer* container) {
    const auto id = static_cast<UInt32>(_slots.size());
    FieldContainerPtr slot;
    slot._container = container;
    slot._id = id;
    _slots.push_back(slot);
    return id;
}

FieldContainerPtrBase::FieldContainerPtrBase(FieldContainer* container)
    : _container(container), _id(container == nullptr ? 0 : container->_id) {}

#ifdef KA_STRICT_HANDLES
UInt32 FieldContainerPtrBase::getFieldContainerId() const {
    return readable()->_id;
}

FieldContainer* FieldContainerPtrBase::readable() const {
    const char* fault = nullptr;
    if (_container == nullptr)
        fault = "a null handle is read";
    else if (_container->_id != _id) // the memory of what is gone is kept, and overwritten
        fault = "a handle is read whose container is gone";
    if (fault != nullptr) {
        std::fprintf(stderr, "scene graph: %s (container %u)\n", fault, static_cast<unsigned int>(_id));
        std::abort();
    }
    return _container;
}

Int32 FieldContainerPtrBase::getRefCount() const {
    return isNull() ? 0 : readable()->_refCount;
}
#else
Int32 FieldContainerPtrBase::getRefCount() const {
    return isNull() ? 0 : _container->_refCount;
}
#endif

NodePtr::NodePtr(Node& node) : AttachmentContainerPtr(node) {}

NodePtr::NodePtr(Node* node) : AttachmentContainerPtr(node) {}

NodePtr NodePtr::dcast(const FieldContainerPtr& handle) {
    return NodePtr(dynamic_cast<Node*>(handle.castable()));
}

NodeCore* NodePtr::getCore() const {
    return (*this)->getCore().getCPtr();
}

namespace {

/// Whether counting `handle` down means anything: what is being destroyed already is past it, and osgExit
/// destroys in any order.
bool isCounted(const FieldContainerPtr& handle) {
    if (!isExiting)
        (void)*handle;
    return !ContainerAccess::isGone(handle);
}

} // namespace

void addRefCP(const FieldContainerPtr& handle) {
    if (handle == NullFC)
        return;
    ++handle->_refCount;
    if (ChangeList* changes = PThreadBase::getCurrentChangeList())
        changes->addAddRefd(handle);
}

void releaseRefCP(const FieldContainerPtr& handle) {
    if (handle == NullFC || !isCounted(handle))
        return;
    if (ChangeList* changes = PThreadBase::getCurrentChangeList())
        changes->addSubRefd(handle);
    FieldContainer* container = &*handle;
    if (--container->_refCount <= 0)
        FieldContainer::destroy(container);
}

void beginEditCP(const FieldContainerPtr&, BitVector, UInt32) {}

void endEditCP(const FieldContainerPtr& handle, BitVector mask, UInt32 origin) {
    endEditNotChangedCP(handle, mask, origin);
    changedCP(handle, mask, origin);
}

void changedCP(const FieldContainerPtr& handle, BitVector mask, UInt32 origin) {
    if (handle != NullFC)
        handle->changed(mask, origin);
}

void endEditNotChangedCP(const FieldContainerPtr& handle, BitVector mask, UInt32) {
    if (ChangeList* changes = PThreadBase::getCurrentChangeList())
        changes->addChanged(handle, mask);
}

} // namespace osg
