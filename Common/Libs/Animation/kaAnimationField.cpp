#include "kaAnimationField.h"

#include "kaObjectRegistry.h"

#include <memory_resource>

namespace {

kaUID freshID() {
    return kaObjectRegistry::the().createUID();
}

/// Never destroyed: records may outlive all other statics. Where memory is being watched each record is a
/// block of its own, or a use of a freed one would go unseen.
std::pmr::memory_resource& records() {
#ifdef KA_WATCHED_MEMORY
    static std::pmr::memory_resource* resource = std::pmr::new_delete_resource();
#else
    static std::pmr::memory_resource* resource = new std::pmr::unsynchronized_pool_resource;
#endif
    return *resource;
}

} // namespace

void* kaAnimationField::operator new(std::size_t size) {
    return records().allocate(size, alignof(kaAnimationField));
}

void kaAnimationField::operator delete(void* record, std::size_t size) noexcept {
    records().deallocate(record, size, alignof(kaAnimationField));
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

kaAnimationField::~kaAnimationField() = default;
