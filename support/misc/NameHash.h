// The fixed hash that turns names into identifiers. Identifiers of names are stored in files, so it never
// changes.
#pragma once

#include <string_view>

#include "support/Cookie.h"

/// MurmurHash3's 128-bit form for 64-bit machines with seed 0, its two words written high byte first.
/// Any thread may call it.
Zr::UUID hashOfName(std::string_view name) noexcept;
