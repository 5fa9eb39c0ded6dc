// The exceptions of the support libraries. The only one the record store lets through is BadAlloc.
#pragma once

#include <new>

#include "support/Export.h"

namespace Zr::Exception {

/// Root of the support libraries' exceptions. Copyable.
class KESTA_API Base {
 public:
    Base() = default;
    Base(const Base&) = default;
    Base& operator=(const Base&) = default;
    virtual ~Base();

    /// What went wrong, for a log line. Never null; the text belongs to the exception.
    virtual const char* message() const noexcept = 0;
};

/// Memory is exhausted. Also a std::bad_alloc, so that callers who know only the standard library catch it
/// too.
class KESTA_API BadAlloc : public Base, public std::bad_alloc {
 public:
    ~BadAlloc() override;
    const char* message() const noexcept override;
    const char* what() const noexcept override;
};

}  // namespace Zr::Exception
