// What a log's file gives back of the texts that are put into it. It is found out from the library itself,
// which writes each text and reads it back; only the reasons are worded here.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>
#include <string_view>

#include "record/dbrecord.h"

class kesta;

/// The library's string of these bytes.
LightweightString<char> libraryText(std::string_view bytes);

/// Whether the two names are the same to the library.
bool sameName(std::string_view a, std::string_view b) noexcept;

/// Whether the library reads the file as plain comma-separated text.
bool isCommaSeparated(const std::string& path);

/// Writes records as lines of a log and reads them back.
class LineRoundTrip {
 public:
    /// The record as the log gives it back; valid until the next call. Clears the record's changed mark.
    const dbrecord& operator()(const dbrecord& record);

    /// Whether a log gives `value` back exactly, in a column with others after it.
    bool keeps(std::string_view value);

 private:
    dbrecord m_back{0};
};

/// Whether the text is one of those, by far the most, that a line of a log holds as they are: of a plain
/// field's length, without quotes, backslashes and line ends, and without white space at its ends. A log
/// surely gives it back; of any other, LineRoundTrip tells.
bool needsNoCare(std::string_view value) noexcept;

/// Why a log does not give `value` back exactly, as in "it begins with white space, which is dropped".
std::string whyNotKept(std::string_view value);

/// The most bytes of a value that every column keeps.
constexpr std::size_t longestSafeValue = dbrecord::longestField - 1;

/// Whether a saved log gives the parameter back exactly; and what that takes, in words.
bool keepsParameter(std::string_view key, std::string_view value);
std::string parameterRules();

/// Whether a saved log gives the column's name back exactly.
bool keepsColumnName(std::string_view name);

/// The nearest name that a log keeps; empty when nothing is left of it.
std::string keepableColumnName(std::string_view name);

/// Whether the loader takes the record for a repeated header, as only a one-column log can have it: it then
/// drops what follows.
bool readsAsHeader(const dbrecord& record) noexcept;

/// Whether the text is what saving writes into a column "Tag": a number from 0 to 255 as the library writes
/// it. `tag` gets the number.
bool readTag(std::string_view text, int& tag) noexcept;
