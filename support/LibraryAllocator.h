// LibraryAllocator: gives standard containers the memory of OS()->allocator(), so that they may be made on
// one side of the library's border and end on the other.
//
// Containers that never leave the library do without: its own operator new takes the same road. std::string
// is not among them, since part of its code stands in the standard library's own file; the library uses
// LibraryString.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/Exception.h"
#include "support/OS.h"

template <class T>
struct LibraryAllocator {
    using value_type = T;

    LibraryAllocator() noexcept = default;
    template <class Other>
    LibraryAllocator(const LibraryAllocator<Other>&) noexcept {}

    T* allocate(std::size_t count) {
        static_assert(alignof(T) <= alignof(std::max_align_t));
        if (count > SIZE_MAX / sizeof(T)) throw Zr::Exception::BadAlloc();
        return static_cast<T*>(OS()->allocator()->allocate(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t) noexcept { OS()->allocator()->release(block); }

    friend bool operator==(const LibraryAllocator&, const LibraryAllocator&) noexcept { return true; }
    friend bool operator!=(const LibraryAllocator&, const LibraryAllocator&) noexcept { return false; }
};

template <class T>
using LightweightVector = std::vector<T, LibraryAllocator<T>>;

using LibraryString = std::basic_string<char, std::char_traits<char>, LibraryAllocator<char>>;
