#include "kaHugePages.h"

#include <sys/mman.h>

namespace {

/// What is asked of the heap.
struct Request {
    Request(std::size_t wanted, std::size_t alignment)
        : isHuge(wanted >= kaHugePages::Size),
          bytes(isHuge ? (wanted + kaHugePages::Size - 1) / kaHugePages::Size * kaHugePages::Size : wanted),
          align(std::align_val_t{isHuge ? kaHugePages::Size : alignment}) {}

    bool isHuge;
    std::size_t bytes;
    std::align_val_t align;
};

} // namespace

void* kaHugePages::allocate(std::size_t bytes, std::size_t alignment) {
    const Request request(bytes, alignment);
    if (request.bytes < bytes)
        throw std::bad_alloc();
    void* memory = ::operator new(request.bytes, request.align);
    if (request.isHuge)
        madvise(memory, request.bytes, MADV_HUGEPAGE);
    return memory;
}

void kaHugePages::release(void* memory, std::size_t bytes, std::size_t alignment) noexcept {
    const Request request(bytes, alignment);
    ::operator delete(memory, request.align);
}
