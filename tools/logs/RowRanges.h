// Row numbers as the user writes them: "3,5-9", counted from 1 as `kesta show` counts.
#pragma once

#include <string>
#include <vector>

/// Rows first .. last, counted from 0.
struct RowRange {
    unsigned first;
    unsigned last;
};

/// The ranges of a list such as "3,5-9", "10-" (to the last row) or "-20" (from the first), in rising order,
/// overlapping and neighbouring ones joined. Throws Failure for anything else, and for rows beyond
/// `rowCount`.
std::vector<RowRange> parseRowRanges(const std::string& text, unsigned rowCount);

/// One row, counted from 0. Throws Failure when it is no number or not there.
unsigned parseRow(const std::string& text, unsigned rowCount);
