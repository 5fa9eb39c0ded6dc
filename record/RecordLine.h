// The record line syntax: quoted, comma-separated fields, one record a line. The one place that reads or
// writes it.
//
// Reader and writer are deliberately no exact inverses: the writer drops carriage returns, writes a line feed
// as backslash and n and leaves backslashes alone; the reader takes backslash and n for a line feed, trims
// white space from both ends of a field, inside quotes too, and cuts fields of more than 4095 bytes.
#pragma once

#include <cstddef>
#include <string_view>

#include "record/parts/FieldList.h"

class RecentTexts;

namespace RecordLine {

/// The longest field that the reader takes in one piece, in bytes.
constexpr std::size_t longestField = 4095;

/// Appends the fields of `line` to `fields`, sharing texts through `recent` unless that is null. Answers the
/// number of fields plus the number of control characters skipped between fields; 0 for a blank line.
int read(std::string_view line, FieldList& fields, RecentTexts* recent);

/// The most bytes that the fields can take as a line.
std::size_t longestLine(const FieldList& fields) noexcept;

/// Writes the line, without an end, to memory that has room for longestLine. Answers where the line ends.
char* write(const FieldList& fields, char* out) noexcept;

}  // namespace RecordLine
