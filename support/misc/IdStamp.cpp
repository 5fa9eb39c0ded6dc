// IdStamp: stamps that no other object of the process has.
#include "support/IdStamp.h"

#include <atomic>

namespace {

std::atomic<std::uint64_t> stampsMade{0};

}  // namespace

IdStamp::IdStamp() noexcept : m_number(stampsMade.fetch_add(1, std::memory_order_relaxed)) {}
