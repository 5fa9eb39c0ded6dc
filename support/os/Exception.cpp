// Exceptions: what is emitted once for all libraries.
#include "support/Exception.h"

namespace Zr::Exception {

Base::~Base() = default;

BadAlloc::~BadAlloc() = default;

const char* BadAlloc::message() const noexcept {
    return "out of memory";
}

const char* BadAlloc::what() const noexcept {
    return message();
}

}  // namespace Zr::Exception
