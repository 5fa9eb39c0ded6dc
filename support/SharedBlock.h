// SharedBlock: a block of OS()->allocator()'s that begins with the count of what lives in it, and goes with
// the last of it.
//
// Thread-safety: the count is atomic, so shares of one block may be given back on different threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include "support/OS.h"
#include "support/Ptr.h"

namespace Zr {

/// The beginning of such a block; the rest follows it.
class SharedBlock {
 public:
    /// A block with `size` bytes after the count, of which `shares` have been taken.
    static SharedBlock* make(std::size_t size, std::int32_t shares) {
        return new (OS()->allocator()->allocate(sizeof(SharedBlock) + size)) SharedBlock(shares);
    }

    /// The bytes after the count, aligned for it.
    char* room() noexcept { return reinterpret_cast<char*>(this + 1); }

    /// Gives back shares; with the last ones the block.
    void release(std::int32_t shares = 1) noexcept {
        if (m_count.fetch_sub(shares, std::memory_order_acq_rel) == shares) PtrTraits::discard(&m_count);
    }

    /// A Ptr to something in the block that takes over a share.
    struct PtrTraits {
        template <class T>
        static void destroy(T*) noexcept {}
        static void discard(RefCounter* count) noexcept { OS()->allocator()->release(count); }
    };
    template <class T>
    using PtrInside = Ptr<T, PtrTraits, PtrTraits>;

    template <class T>
    PtrInside<T> adopt(T* object) noexcept {
        return PtrInside<T>::adopt(&m_count, object);
    }

 private:
    explicit SharedBlock(std::int32_t shares) noexcept : m_count(shares) {}

    RefCounter m_count;
};

}  // namespace Zr
