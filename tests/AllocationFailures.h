// Runs an operation again and again, each time with another of its allocations failing.
#pragma once

#include "tests/TestSupport.h"

namespace TestSupport {

/// Makes the first allocation of `operation` fail, then the second, and so on until it runs through without
/// a failure. `prepare` answers a fresh subject; `check` sees each subject whose operation failed. Nothing
/// may be left behind.
template <class Prepare, class Operation, class Check>
void failEachAllocation(const Prepare& prepare, const Operation& operation, const Check& check) {
    operation(prepare());  // what is made once for the process is made now
    CountingAllocator allocator;
    for (unsigned request = 1;; ++request) {
        SCOPED_TRACE("allocation " + std::to_string(request));
        const std::size_t heldBefore = allocator.held();
        bool failed = false;
        {
            const auto subject = prepare();
            allocator.failAt(request, false);
            try {
                operation(subject);
            } catch (const Zr::Exception::BadAlloc&) {
                failed = true;
            }
            const bool reached = allocator.requests() >= request;
            allocator.failNever();
            if (failed) check(subject);
            if (!reached) return;
        }
        ASSERT_EQ(allocator.held(), heldBefore);
    }
}

}  // namespace TestSupport
