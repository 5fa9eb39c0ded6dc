// Matching one field, ranges of codes, and asking memory ahead.
#include "search/Matching.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <vector>

#include "record/StandardColumns.h"
#include "record/parts/Prefetch.h"
#include "support/StringFunctions.h"
#include "support/time_def.h"

namespace {

LightweightString<char> calendarForm(const LightweightString<char>& seconds) {
    const std::time_t time = Zr::UIntFromString(seconds, 0);
    char text[32] = "";
    return ctime_r(&time, text);
}

std::vector<Matching::CodeRange> standardRanges() {
    std::vector<Matching::CodeRange> ranges;
    for (const StandardColumn& column : StandardColumns::all) {
        if (column.end.empty()) continue;
        ranges.push_back({LightweightString<char>(column.name), LightweightString<char>(column.end)});
    }
    return ranges;
}

}  // namespace

bool Matching::fieldMatches(const LightweightString<char>& text, DBFieldTypes::eType type,
                            const TextSearch::Criteria& criteria, unsigned options) {
    switch (type) {
        case DBFieldTypes::eTimecodeS:
            return TextSearch::match(time_def(text.c_str(), eTimecodeLabel).get_punctuated_str(), criteria,
                                     options | TextSearch::eSeparatorsEqual);
        case DBFieldTypes::eTimecode:
            return TextSearch::match(text, criteria, options | TextSearch::eSeparatorsEqual);
        case DBFieldTypes::eDosDate:
            return TextSearch::match(calendarForm(text), criteria, options);
        default:
            return TextSearch::match(text, criteria, options);
    }
}

const Matching::CodeRange* Matching::codeRangeOf(const LightweightString<char>& column) {
    // Kept as strings, because look-ups of columns take such.
    static const std::vector<CodeRange> ranges = standardRanges();
    const auto found = std::find_if(ranges.begin(), ranges.end(), [&column](const CodeRange& range) {
        return range.start == column || range.end == column;
    });
    return found == ranges.end() ? nullptr : &*found;
}

bool Matching::rangeHolds(const LightweightString<char>& sought, const LightweightString<char>& start,
                          const LightweightString<char>& end) noexcept {
    if (start.empty()) return false;
    const unsigned length = sought.length();
    const int againstStart = std::strncmp(sought.c_str(), start.c_str(), length);
    if (againstStart == 0) return true;
    return againstStart > 0 && !end.empty() && std::strncmp(sought.c_str(), end.c_str(), length) <= 0;
}

void Matching::askAhead(const GapVector<Zr::Ptr<dbrecord>>& records, std::size_t row,
                        unsigned field) noexcept {
    if (row + Prefetch::recordAhead >= records.size()) return;
    Prefetch::record(records[row + Prefetch::recordAhead].get());
    const auto textOf = [&](std::size_t at) -> const LightweightString<char>& {
        return records[at]->getField(static_cast<unsigned short>(field));
    };
    if (records[row + Prefetch::fieldAhead]) Prefetch::field(textOf(row + Prefetch::fieldAhead));
    if (records[row + Prefetch::textAhead]) Prefetch::text(textOf(row + Prefetch::textAhead));
}
