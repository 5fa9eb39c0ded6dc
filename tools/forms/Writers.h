// Logs in the forms that other programs read.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "record/kesta.h"
#include "tools/terminal/Output.h"
#include "view/KSTViewCursor.h"

/// The part of a log that is written: the rows of a view on it, in the view's order, and columns by number,
/// in the order wanted.
struct Selection {
    KSTView rows;
    std::vector<unsigned> columns;
};

std::vector<unsigned> allColumns(const kesta& log);

/// All columns and rows of the log, which must outlive its use.
Selection everythingOf(kesta& log);

/// Calls `work` with the number that each row has in the log, from 0, and its record.
template <class Work>
void forEachRow(const KSTView& rows, Work work) {
    for (KSTViewCursor cursor(rows, 0); cursor.index() >= 0; ++cursor) {
        const dbrecord* const record = *cursor;
        if (record) work(static_cast<unsigned>(rows->baseIndex(cursor.index())), *record);
    }
}

/// The record's text in a column of its log.
inline std::string_view valueIn(const dbrecord& record, unsigned column) noexcept {
    return record.getField(static_cast<unsigned short>(column)).view();
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
