#include "kaAnimationField.h"

#include "kaObjectRegistry.h"
#include "kaWatchedMemory.h"
#include "kaWeakSlots.h"

#include <memory_resource>

namespace {

kaUID freshID() {
    return kaObjectRegistry::the().createUID();
}

/// Never destroyed: records may outlive all other statics.
std::pmr::memory_resource& records() {
    static std::pmr::memory_resource& resource = *new std::pmr::unsynchronized_pool_resource;
    return resource;
}

kaWatchedMemory::Quarantine quarantine;

} // namespace

void* kaAnimationField::operator new(std::size_t size) {
    void* record = records().allocate(size, alignof(kaAnimationField));
    kaWatchedMemory::take(record, size);
    return record;
}

/// The pool keeps its notes elsewhere and never touches a free record.
void kaAnimationField::operator delete(void* record, std::size_t size) noexcept {
    kaWatchedMemory::forbid(record, size);
    if (void* free = quarantine.exchange(record))
        records().deallocate(free, size, alignof(kaAnimationField));
}

kaAnimationField::kaAnimationField(kaUID id) : _id(id != 0 ? id : freshID()) {}

kaAnimationField::kaAnimationField(kaAnimationField& source)
    : _id(freshID()),
      fcID(source.fcID),
      name(source.name),
      value(source.value),
      valuePos(source.valuePos),
      nodeID(source.nodeID),
      attribute(source.attribute),
      dirty(source.dirty) {}

kaAnimationField::~kaAnimationField() {
    kaWeakSlots::giveBack(_weakSlot);
}

std::uint32_t kaAnimationField::weakSlot() const {
    if (_weakSlot == 0)
        _weakSlot = kaWeakSlots::take(const_cast<kaAnimationField*>(this));
    return _weakSlot;
}
