// Logs in the forms that other programs read.
//
// Thread-safety: pure functions over a log that nobody changes meanwhile.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "record/kesta.h"
#include "tools/Output.h"
#include "tools/RowRanges.h"

/// The part of a log that is written: columns by number, in the order wanted, and rows.
struct Selection {
    std::vector<unsigned> columns;
    std::vector<RowRange> rows;
};

/// All columns and rows.
Selection everythingOf(const kesta& log);

/// Calls `work` with each selected row.
template <class Work>
void forEachRow(const Selection& selection, Work work) {
    for (const RowRange range : selection.rows) {
        for (unsigned row = range.first; row <= range.last; ++row) work(row);
    }
}

/// Comma-separated text by RFC 4180, a header line first. To be given a sink that ends lines with CR LF.
void writeCsv(const kesta& log, const Selection& selection, LineSink& out);

/// A name, and a value written as JSON.
using JsonProperties = std::vector<std::pair<std::string, std::string>>;

/// The text as a JSON string; bytes that are no UTF-8 become U+FFFD.
std::string jsonText(std::string_view bytes);

/// One object: the given properties; "parameters", a list of key and value; "columns", a list of name and
/// type; "records", a list of lists of texts in the order of the columns. Lists, because keys and names may
/// come twice. Warns of bytes that are no UTF-8; they become U+FFFD.
void writeJson(const kesta& log, const Selection& selection, LineSink& out,
               const JsonProperties& properties = {});

/// The tab-separated log exchange form. Standard columns get the names it has for them, time codes their
/// punctuation. Warns of tabs and line ends in values, which become spaces.
void writeAle(const kesta& log, const Selection& selection, LineSink& out);
