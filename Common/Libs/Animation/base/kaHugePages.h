#pragma once

#include <cstddef>
#include <limits>
#include <new>

/// Memory for large arrays with random access, in huge pages (2 MB) from that size on: the TLB covers a few MB
/// of 4 KB pages only, and each read beyond them would take a page walk.
namespace kaHugePages {

constexpr std::size_t Size = std::size_t{2} << 20; ///< of one huge page, in bytes

/// @param bytes      any number; from `Size` on a multiple of `Size` is taken, straight from the system.
/// @param alignment  a power of two.
/// @return memory to be given back to `release` with the same arguments. Whether the pages are huge is up to
///         the system. @throws std::bad_alloc.
void* allocate(std::size_t bytes, std::size_t alignment);
void release(void* memory, std::size_t bytes, std::size_t alignment) noexcept;

/// An allocator for the containers of the standard library and of Boost. All are equal.
template <class T>
struct Allocator {
    using value_type = T;

    Allocator() = default;
    template <class U>
    Allocator(const Allocator<U>& /*other*/) noexcept {}

    T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T))
            throw std::bad_alloc();
        return static_cast<T*>(kaHugePages::allocate(count * sizeof(T), alignof(T)));
    }
    void deallocate(T* memory, std::size_t count) noexcept {
        kaHugePages::release(memory, count * sizeof(T), alignof(T));
    }

    template <class U>
    bool operator==(const Allocator<U>& /*other*/) const noexcept {
        return true;
    }
    template <class U>
    bool operator!=(const Allocator<U>& /*other*/) const noexcept {
        return false;
    }
};

} // namespace kaHugePages
