#include "tools/RowRanges.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "tools/Failure.h"

namespace {

[[noreturn]] void refuseList(const std::string& text) {
    throw Failure("\"" + text + "\" names no rows; write them like 3,5-9", exitUsage);
}

unsigned numberOr(std::string_view digits, unsigned fallback, const std::string& text) {
    if (digits.empty()) return fallback;
    unsigned number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec != std::errc() || result.ptr != digits.data() + digits.size()) refuseList(text);
    return number;
}

void requireRow(unsigned number, unsigned rowCount) {
    if (number >= 1 && number <= rowCount) return;
    throw Failure(
        "no row " + std::to_string(number) + "; " +
        (rowCount == 0 ? "the log has no rows" : "the log's rows are 1 to " + std::to_string(rowCount)));
}

RowRange parseRange(std::string_view piece, unsigned rowCount, const std::string& text) {
    const std::size_t dash = piece.find('-');
    if (piece.empty() || piece == "-") refuseList(text);
    const std::string_view last = dash == std::string_view::npos ? piece : piece.substr(dash + 1);
    const unsigned from = numberOr(piece.substr(0, dash), 1, text);
    const unsigned to = numberOr(last, rowCount, text);
    requireRow(from, rowCount);
    requireRow(to, rowCount);
    if (from > to) refuseList(text);
    return {from - 1, to - 1};
}

std::vector<RowRange> joined(std::vector<RowRange> ranges) {
    std::sort(ranges.begin(), ranges.end(), [](RowRange a, RowRange b) { return a.first < b.first; });
    std::vector<RowRange> result;
    for (const RowRange range : ranges) {
        if (!result.empty() && range.first <= result.back().last + 1) {
            result.back().last = std::max(result.back().last, range.last);
        } else {
            result.push_back(range);
        }
    }
    return result;
}

}  // namespace

std::vector<RowRange> parseRowRanges(const std::string& text, unsigned rowCount) {
    std::vector<RowRange> ranges;
    std::size_t begin = 0;
    while (begin <= text.size()) {
        const std::size_t comma = std::min(text.find(',', begin), text.size());
        ranges.push_back(parseRange(std::string_view(text).substr(begin, comma - begin), rowCount, text));
        begin = comma + 1;
    }
    return joined(std::move(ranges));
}

unsigned parseRow(const std::string& text, unsigned rowCount) {
    const unsigned number = text.empty() ? 0 : numberOr(text, 0, text);
    requireRow(number, rowCount);
    return number - 1;
}
