// The operating-system object: its allocator and file operations.
#include "support/OS.h"

#include <atomic>
#include <cstdlib>

#include "support/Exception.h"
#include "support/os/FileSystem.h"

iAllocator::~iAllocator() = default;
iFileSystem::~iFileSystem() = default;
OperatingSystem::~OperatingSystem() = default;

namespace {

class Heap final : public iAllocator {
 public:
    constexpr Heap() = default;

    void* allocate(std::size_t size) override {
        // malloc(0) may return null, which would look like exhaustion.
        void* const block = std::malloc(size ? size : 1);
        if (!block) throw Zr::Exception::BadAlloc();
        return block;
    }

    void release(void* block) noexcept override { std::free(block); }
};

// Initialised before any code runs and never destroyed: destructors of other static objects still release
// their blocks when the process ends.
template <class T>
union Immortal {
    constexpr Immortal() : object() {}
    ~Immortal() {}
    T object;
};

Immortal<Heap> heap;
Immortal<FileSystem> files;

class ThisSystem final : public OperatingSystem {
 public:
    constexpr ThisSystem() = default;

    iAllocator* allocator() noexcept override { return m_allocator.load(std::memory_order_acquire); }

    iAllocator* setAllocator(iAllocator* allocator) noexcept override {
        return m_allocator.exchange(allocator ? allocator : &heap.object, std::memory_order_acq_rel);
    }

    iFileSystem* fileSystem() noexcept override { return &files.object; }

 private:
    std::atomic<iAllocator*> m_allocator{&heap.object};
};

Immortal<ThisSystem> thisSystem;

}  // namespace

OperatingSystem* OS() noexcept {
    return &thisSystem.object;
}
