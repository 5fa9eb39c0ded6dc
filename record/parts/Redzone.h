// Redzone: lets the address sanitizer see who reads or writes past things that lie side by side in one block
// of memory. What has ended there it does not know of, as long as the block is there. In other builds nothing
// of it is left.
#pragma once

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KESTA_REDZONES 1
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define KESTA_REDZONES 1
#endif

#if defined(KESTA_REDZONES)
#include <sanitizer/asan_interface.h>
#endif

namespace Redzone {

#if defined(KESTA_REDZONES)

/// The bytes to leave between things.
constexpr std::size_t size = 16;

inline void close(const void* begin, std::size_t bytes) noexcept {
    __asan_poison_memory_region(begin, bytes);
}
inline void open(const void* begin, std::size_t bytes) noexcept {
    __asan_unpoison_memory_region(begin, bytes);
}

#else

constexpr std::size_t size = 0;
inline void close(const void*, std::size_t) noexcept {}
inline void open(const void*, std::size_t) noexcept {}

#endif

}  // namespace Redzone
