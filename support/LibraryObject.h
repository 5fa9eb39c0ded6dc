// LibraryObject: memory from the library's allocator for objects that one side of the library's border makes
// and the other side ends, whatever operator new the application has.
#pragma once

#include <cstddef>
#include <new>

#include "support/OS.h"

/// A base without data. Derived objects are made by new and ended through a virtual destructor, on whichever
/// side.
class LibraryObject {
 public:
    static void* operator new(std::size_t size) { return OS()->allocator()->allocate(size); }
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
        try {
            return OS()->allocator()->allocate(size);
        } catch (...) {
            return nullptr;
        }
    }
    static void* operator new(std::size_t, void* place) noexcept { return place; }

    static void operator delete(void* block) noexcept { OS()->allocator()->release(block); }
    static void operator delete(void* block, const std::nothrow_t&) noexcept {
        OS()->allocator()->release(block);
    }
    static void operator delete(void*, void*) noexcept {}

 protected:
    LibraryObject() = default;
    ~LibraryObject() = default;
};
