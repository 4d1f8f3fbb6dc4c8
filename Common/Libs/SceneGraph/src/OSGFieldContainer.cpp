#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGThread.h>
#include <cstring>
#include <exception>
#include <utility>
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

namespace {

/// Whether containers are being destroyed, and what has been thrown meanwhile first.
bool isDestroying = false;
std::exception_ptr thrown;

/// Takes a step of a destruction, which goes on whatever the step throws.
template <class Step>
void attempt(Step&& step) {
    try {
        step();
    } catch (...) {
        if (!thrown)
            thrown = std::current_exception();
    }
}

} // namespace

void FieldContainer::announceParents(const FieldContainerPtr& container, BitVector mask) {
    if (ContainerAccess::isGone(container))
        return;
    if (isDestroying)
        attempt([&] { endEditCP(container, mask); });
    else
        endEditCP(container, mask);
}

#ifdef KA_STRICT_HANDLES
#if defined(__SANITIZE_ADDRESS__)
#define KA_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KA_ADDRESS_SANITIZER
#endif
#endif

void* FieldContainer::operator new(std::size_t size) {
    return ::operator new(size);
}

void FieldContainer::operator delete(void* memory, [[maybe_unused]] std::size_t size) {
#ifdef KA_ADDRESS_SANITIZER
    ::operator delete(memory);
#else
    std::memset(memory, 0xDD, size);
#endif
}
#endif

void FieldContainer::destroy(FieldContainer* container) {
    // What is owned goes after its owner and not within its destruction: a deep tree needs no deep stack.
    // What waits is linked, so that destroying needs no memory.
    static FieldContainer* waiting = nullptr;

    auto* store = const_cast<FieldContainerStore*>(&FieldContainerStore::the());
    store->remove(container->_id);
    container->_nextWaiting = std::exchange(waiting, container);
    if (isDestroying)
        return;
    isDestroying = true;
    while (waiting != nullptr) {
        FieldContainer* next = waiting;
        waiting = next->_nextWaiting;
        attempt([next] {
            if (ChangeList* changes = PThreadBase::getCurrentChangeList())
                changes->addDestroyed(next->_id);
        });
        attempt([next] { next->onDestroy(); });
        delete next;
    }
    isDestroying = false;
    if (const std::exception_ptr first = std::exchange(thrown, nullptr))
        std::rethrow_exception(first);
}

} // namespace osg
