#include "kaHugePages.h"

#include "kaWatchedMemory.h"

#include <cstdint>
#include <sys/mman.h>

namespace {

/// In whole huge pages; 0 where that is more than there can be.
std::size_t roundedUp(std::size_t bytes) {
    return (bytes + kaHugePages::Size - 1) / kaHugePages::Size * kaHugePages::Size;
}

bool isMapped(std::size_t bytes) {
    return bytes >= kaHugePages::Size;
}

/// Maps one huge page more than asked for, so that an aligned range lies in it, and unmaps what is left over on
/// both sides: the heap would keep it.
void* map(std::size_t bytes) {
    const std::size_t asked = bytes + kaHugePages::Size;
    if (bytes == 0 || asked < bytes)
        throw std::bad_alloc();
    void* all = mmap(nullptr, asked, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (all == MAP_FAILED)
        throw std::bad_alloc();
    char* const begin = static_cast<char*>(all);
    const std::size_t past = reinterpret_cast<std::uintptr_t>(all) % kaHugePages::Size;
    const std::size_t lead = past > 0 ? kaHugePages::Size - past : 0;
    char* const memory = begin + lead;
    if (lead > 0)
        munmap(begin, lead);
    if (lead < kaHugePages::Size)
        munmap(memory + bytes, kaHugePages::Size - lead);
    madvise(memory, bytes, MADV_HUGEPAGE);
    return memory;
}

} // namespace

void* kaHugePages::allocate(std::size_t bytes, std::size_t alignment) {
    if (!isMapped(bytes))
        return ::operator new (bytes, std::align_val_t{alignment});
    void* memory = map(roundedUp(bytes));
    kaWatchedMemory::search(memory, bytes);
    kaWatchedMemory::shut(static_cast<char*>(memory) + bytes, roundedUp(bytes) - bytes);
    return memory;
}

void kaHugePages::release(void* memory, std::size_t bytes, std::size_t alignment) noexcept {
    if (!isMapped(bytes)) {
        ::operator delete (memory, std::align_val_t{alignment});
        return;
    }
    kaWatchedMemory::allow(memory, roundedUp(bytes)); // whatever the system puts there next
    kaWatchedMemory::searchNoMore(memory, bytes);
    munmap(memory, roundedUp(bytes));
}
