// A mutual-exclusion lock that its holder may take again.
#pragma once

#include <mutex>

#include "support/Export.h"

class KESTA_API CriticalSection {
 public:
    CriticalSection();
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    ~CriticalSection();

    /// Waits for the lock. Each enter needs a leave on the same thread.
    void enter();
    void leave() noexcept;

    /// The same under the standard library's names, for std::lock_guard.
    void lock() { enter(); }
    void unlock() noexcept { leave(); }

 private:
    std::recursive_mutex m_mutex;
};
