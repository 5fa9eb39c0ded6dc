// What matching is made of, apart from any database: how the text of one field is matched, the ranges between
// codes, and asking memory for the records that a walk will match.
//
// Thread-safety: nothing is kept; calls on different threads do not meet.
#pragma once

#include <cstddef>

#include "record/DBFieldTypes.h"
#include "record/parts/GapVector.h"
#include "record/parts/Query.h"
#include "support/LightweightString.h"
#include "support/Ptr.h"

class dbrecord;

namespace Matching {

/// Whether a text satisfies the criteria in the form in which a column of that type shows it: time codes with
/// their separators, which all count as one character; dates as weekday, month, day, time of day and year in
/// local time, and a line feed; anything else as it is. `options` are TextSearch's.
bool fieldMatches(const LightweightString<char>& text, DBFieldTypes::eType type,
                  const TextSearch::Criteria& criteria, unsigned options);

/// The columns that hold the two ends of a range of codes.
struct CodeRange {
    LightweightString<char> start;
    LightweightString<char> end;
};

/// The range that a column is the start or the end of, by its exact name; null when of none.
const CodeRange* codeRangeOf(const LightweightString<char>& column);

/// Whether a code lies in a range, or is what its start begins with. As many bytes as `sought` has are
/// compared, so it stands for every code that begins with it. Without a start nothing is found, without an
/// end only what the start begins with.
bool rangeHolds(const LightweightString<char>& sought, const LightweightString<char>& start,
                const LightweightString<char>& end) noexcept;

/// Asks memory for what a walk that matches one record after the other will read some steps after `row`: a
/// text that has to come from main memory costs more than its match.
void askAhead(const GapVector<Zr::Ptr<dbrecord>>& records, std::size_t row, unsigned field) noexcept;

}  // namespace Matching
