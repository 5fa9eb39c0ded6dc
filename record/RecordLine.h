// The record line syntax: quoted, comma-separated fields, one record a line. The one place that reads or
// writes it.
//
// Reader and writer are deliberately no exact inverses: the writer drops carriage returns, writes a line feed
// as backslash and n and leaves backslashes alone; the reader takes backslash and n for a line feed, trims
// white space from both ends of a field, inside quotes too, and cuts fields at dbrecord::longestField.
#pragma once

#include <cstddef>
#include <string_view>

#include "record/parts/FieldList.h"

class LoadObserver;
class RecentTexts;

namespace RecordLine {

/// Who hears what reading a line loses, and the line's number.
struct Hearer {
    LoadObserver* observer = nullptr;  ///< null when nobody does
    unsigned line = 0;
};

/// Puts the fields of `line` into the empty list `fields`, sharing texts through `recent` unless that is
/// null. Returns the number of fields plus the number of control characters skipped between fields; 0 for a
/// blank line.
int read(std::string_view line, FieldList& fields, RecentTexts* recent, Hearer hearer);

/// The most bytes that the fields can take as a line.
std::size_t longestLine(const FieldList& fields) noexcept;

/// Writes the line, without an end, to memory that has room for longestLine. Returns where the line ends.
char* write(const FieldList& fields, char* out) noexcept;

}  // namespace RecordLine
