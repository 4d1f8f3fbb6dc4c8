#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGThread.h>
#include <vector>

namespace osg {

namespace {

/// Calls `function(handle)` for every container that an owning field of this one means.
template <class Function>
void forEachOwned(const FieldContainer& container, const Function& function) {
    const FieldContainerType& type = container.getType();
    for (UInt32 id = 1; id <= type.getNumFieldDescs(); ++id) {
        const FieldDescription* description = type.getFieldDescription(id);
        if (!description->isOwning())
            continue;
        const Field* field = description->getField(container);
        for (UInt32 i = 0; i < field->getSize(); ++i)
            function(field->getPointer(i));
    }
}

} // namespace

FieldContainer::FieldContainer() {
    auto* store = const_cast<FieldContainerStore*>(&FieldContainerStore::the());
    _id = store->add(this);
    if (ChangeList* changes = PThreadBase::getCurrentChangeList())
        changes->addCreated(_id);
}

FieldContainer::FieldContainer(const FieldContainer&) : FieldContainer() {}

FieldContainer::~FieldContainer() {
    auto* store = const_cast<FieldContainerStore*>(&FieldContainerStore::the());
    store->remove(_id);
}

FieldContainerType& FieldContainer::getClassType() {
    static auto& type =
        *new FieldContainerType(TypeName, nullptr, nullptr, FieldContainerType::Kind::Other, {}, {});
    return type;
}

Field* FieldContainer::getField(const Char8* name) {
    return const_cast<Field*>(static_cast<const FieldContainer*>(this)->getField(name));
}

const Field* FieldContainer::getField(const Char8* name) const {
    const FieldDescription* description = getType().findFieldDescription(name);
    return description == nullptr ? nullptr : description->getField(*this);
}

Field* FieldContainer::getField(UInt32 fieldId) {
    return const_cast<Field*>(static_cast<const FieldContainer*>(this)->getField(fieldId));
}

const Field* FieldContainer::getField(UInt32 fieldId) const {
    const FieldDescription* description = getType().getFieldDescription(fieldId);
    return description == nullptr ? nullptr : description->getField(*this);
}

FieldContainerPtr FieldContainer::shallowCopy() const {
    const auto copy = getType()._makers.copy;
    return copy == nullptr ? FieldContainerPtr() : FieldContainerPtr(copy(*this));
}

void FieldContainer::changed(BitVector, UInt32) {}

void FieldContainer::visitProperties(const PropertyVisitor&) {}

void FieldContainer::onCopied() {
    forEachOwned(*this, addRefCP);
}

void FieldContainer::onDestroy() {
    forEachOwned(*this, releaseRefCP);
    if (_kept != nullptr) {
        for (const FieldContainerPtr& handle : *_kept)
            releaseRefCP(handle);
    }
}

void FieldContainer::keepAlive(const FieldContainerPtr& handle) {
    if (_kept == nullptr)
        _kept = std::make_unique<std::vector<FieldContainerPtr>>();
    addRefCP(handle);
    _kept->push_back(handle);
}

void FieldContainer::destroy(FieldContainer* container) {
    // What is owned goes after its owner and not within its destruction: a deep tree needs no deep stack.
    static std::vector<FieldContainer*> waiting;
    static bool busy = false;

    auto* store = const_cast<FieldContainerStore*>(&FieldContainerStore::the());
    store->remove(container->_id);
    waiting.push_back(container);
    if (busy)
        return;
    busy = true;
    while (!waiting.empty()) {
        FieldContainer* next = waiting.back();
        waiting.pop_back();
        if (ChangeList* changes = PThreadBase::getCurrentChangeList())
            changes->addDestroyed(next->_id);
        next->onDestroy();
        delete next;
    }
    busy = false;
}

} // namespace osg
