// The library's own operator new and delete, all forms, over the allocator of OS(). Linked into each shared
// library and exported by none, so they never replace the application's.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "support/Exception.h"
#include "support/OS.h"

namespace {

void* allocate(std::size_t size) {
    return OS()->allocator()->allocate(size);
}

void* allocateNothrow(std::size_t size) noexcept {
    try {
        return allocate(size);
    } catch (...) {
        return nullptr;
    }
}

void release(void* block) noexcept {
    if (block) OS()->allocator()->release(block);
}

// Stricter alignments than malloc's: the block's own address stands in the word before the aligned one.
void* allocateAligned(std::size_t size, std::align_val_t alignment) {
    const auto align = static_cast<std::size_t>(alignment);
    const std::size_t extra = align + sizeof(void*);
    if (size > SIZE_MAX - extra) throw Zr::Exception::BadAlloc();
    void* const block = allocate(size + extra);
    const auto first = reinterpret_cast<std::uintptr_t>(block) + sizeof(void*);
    void** const aligned = reinterpret_cast<void**>((first + align - 1) / align * align);
    aligned[-1] = block;
    return aligned;
}

void* allocateAlignedNothrow(std::size_t size, std::align_val_t alignment) noexcept {
    try {
        return allocateAligned(size, alignment);
    } catch (...) {
        return nullptr;
    }
}

void releaseAligned(void* aligned) noexcept {
    if (aligned) release(static_cast<void**>(aligned)[-1]);
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocateNothrow(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocateNothrow(size);
}
void* operator new(std::size_t size, std::align_val_t align) {
    return allocateAligned(size, align);
}
void* operator new[](std::size_t size, std::align_val_t align) {
    return allocateAligned(size, align);
}
void* operator new(std::size_t size, std::align_val_t align, const std::nothrow_t&) noexcept {
    return allocateAlignedNothrow(size, align);
}
void* operator new[](std::size_t size, std::align_val_t align, const std::nothrow_t&) noexcept {
    return allocateAlignedNothrow(size, align);
}

void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    releaseAligned(block);
}
void operator delete[](void* block, std::align_val_t) noexcept {
    releaseAligned(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    releaseAligned(block);
}
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept {
    releaseAligned(block);
}
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    releaseAligned(block);
}
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    releaseAligned(block);
}
