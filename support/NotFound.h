// What unsigned results say instead of a number when nothing was found.
#pragma once

namespace Zr {

/// -1 as an unsigned number: all bits set.
constexpr unsigned notFound = static_cast<unsigned>(-1);

}  // namespace Zr
