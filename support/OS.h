// The process's operating-system object: where memory comes from, and the file operations that are more than
// plain reading and writing.
//
// Thread-safety: the allocator and the file system may be used from any thread. setAllocator is for start-up
// and tests, while no other thread runs library code.
#pragma once

#include <cstddef>

#include "support/Export.h"

template <class Char>
class LightweightString;

/// Hands out and takes back every block the libraries use. Blocks come from malloc and go back to free, so
/// they pass between library and application whatever operator new the application has.
class KESTA_API iAllocator {
 public:
    virtual ~iAllocator();

    /// A block of at least `size` bytes, aligned for any standard type. A size of 0 gives a block too.
    /// Throws Zr::Exception::BadAlloc when there is no memory; never returns null.
    virtual void* allocate(std::size_t size) = 0;

    /// Gives back a block of allocate's; null is ignored.
    virtual void release(void* block) noexcept = 0;
};

/// File operations that the libraries need beyond text files.
class KESTA_API iFileSystem {
 public:
    virtual ~iFileSystem();

    /// Renames `from` to `to` in one atomic step, replacing a file that has that name. `flags` is reserved;
    /// pass 0. Returns false, with both names as they were, when the system refuses.
    virtual bool move(const LightweightString<wchar_t>& from, const LightweightString<wchar_t>& to,
                      int flags) = 0;
};

class KESTA_API OperatingSystem {
 public:
    virtual ~OperatingSystem();

    virtual iAllocator* allocator() noexcept = 0;

    /// Installs another allocator and returns the one before it; null brings back the built-in one. The
    /// caller keeps ownership. It must hand out blocks that free() accepts: blocks from before outlive the
    /// change.
    virtual iAllocator* setAllocator(iAllocator* allocator) noexcept = 0;

    virtual iFileSystem* fileSystem() noexcept = 0;
};

/// The one operating-system object of the process; never null.
KESTA_API OperatingSystem* OS() noexcept;
