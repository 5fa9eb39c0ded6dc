// RecentTexts: shares the bodies of texts that come again.
//
// Logs repeat reels, scenes, names, dates and codes from row to row. For each column this keeps some of the
// texts that have been seen, by hash, each in the one place its hash names, and hands out the kept string for
// an equal text. A column whose texts hardly ever come again is left in peace for a while.
//
// Thread-safety: one thread at a time.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "support/LightweightString.h"

class RecentTexts {
 public:
    /// A string of that text, its body shared with an earlier one of the same column where that is kept.
    LightweightString<char> share(std::size_t column, std::string_view text);

 private:
    static constexpr std::size_t placesPerColumn = 128;
    static constexpr std::size_t watchedColumns =
        256;  // enough for any log; bounds the memory for wild files

    struct Place {
        std::uint32_t hash = 0;
        LightweightString<char> text;
    };
    struct Column {
        std::vector<Place> places;
        int patience = fullPatience;
        int rest = 0;
    };
    static constexpr int fullPatience = 256;
    static constexpr int worthOfHit = 8;
    static constexpr int longRest = 4096;

    std::vector<Column> m_columns;
};
