#include "tools/logs/RowRanges.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "tools/Failure.h"

namespace {

[[noreturn]] void refuseList(const std::string& text) {
    throw Failure("\"" + text + "\" names no rows; write them like 3,5-9", exitUsage);
}

std::string rowsOf(unsigned rowCount) {
    return rowCount == 0 ? "the log has no rows" : "the log's rows are 1 to " + std::to_string(rowCount);
}

bool isNumber(std::string_view text) noexcept {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// The number of a row of the log, from 1.
unsigned rowNumber(std::string_view digits, unsigned rowCount) {
    unsigned number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec == std::errc() && number >= 1 && number <= rowCount) return number;
    throw Failure("no row " + std::string(digits) + "; " + rowsOf(rowCount));
}

unsigned rowNumberOr(std::string_view digits, unsigned fallback, unsigned rowCount, const std::string& text) {
    if (!digits.empty() && !isNumber(digits)) refuseList(text);
    return rowNumber(digits.empty() ? std::to_string(fallback) : std::string(digits), rowCount);
}

RowRange parseRange(std::string_view piece, unsigned rowCount, const std::string& text) {
    const std::size_t dash = piece.find('-');
    if (piece.empty() || piece == "-") refuseList(text);
    const std::string_view last = dash == std::string_view::npos ? piece : piece.substr(dash + 1);
    const unsigned from = rowNumberOr(piece.substr(0, dash), 1, rowCount, text);
    const unsigned to = rowNumberOr(last, rowCount, rowCount, text);
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
    if (!isNumber(text)) throw Failure('"' + text + "\" is no row's number; " + rowsOf(rowCount));
    return rowNumber(text, rowCount) - 1;
}
