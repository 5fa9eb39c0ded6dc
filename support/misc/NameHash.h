// The hash that turns names into identifiers, and the mixing step it shares with other hashes.
#pragma once

#include <cstdint>
#include <string_view>

#include "support/Cookie.h"

/// Spreads every bit over all others.
constexpr std::uint64_t spread(std::uint64_t word) noexcept {
    word = (word ^ word >> 33) * 0xFF51AFD7ED558CCD;
    word = (word ^ word >> 33) * 0xC4CEB9FE1A85EC53;
    return word ^ word >> 33;
}

/// Identifiers of names are stored in files, so this never changes: MurmurHash3's 128-bit form for 64-bit
/// machines with seed 0, its two words written high byte first. Any thread may call it.
Zr::UUID hashOfName(std::string_view name) noexcept;
