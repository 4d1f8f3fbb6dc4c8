#include "FailingAllocation.h"

#include <cstdlib>
#include <new>

namespace {

bool armed = false;
bool failed = false;
std::size_t remaining = 0;

void* allocateOrNull(std::size_t size) noexcept {
    if (armed && remaining-- == 0) {
        armed = false;
        failed = true;
        return nullptr;
    }
    return std::malloc(size > 0 ? size : 1);
}

void* allocate(std::size_t size) {
    if (void* memory = allocateOrNull(size))
        return memory;
    throw std::bad_alloc();
}

} // namespace

FailingAllocation::FailingAllocation(std::size_t successes) {
    remaining = successes;
    failed = false;
    armed = true;
}

void FailingAllocation::disarm() {
    armed = false;
}

bool FailingAllocation::hasFailed() {
    return failed;
}

void* operator new(std::size_t size) {
    return allocate(size);
}

void* operator new[](std::size_t size) {
    return allocate(size);
}

void* operator new(std::size_t size, const std::nothrow_t& /*nothrow*/) noexcept {
    return allocateOrNull(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& /*nothrow*/) noexcept {
    return allocateOrNull(size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t& /*nothrow*/) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, const std::nothrow_t& /*nothrow*/) noexcept {
    std::free(memory);
}
