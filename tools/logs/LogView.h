// Views on a log: the rows that a command is about, chosen, ordered and tagged without touching the log.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string_view>
#include <vector>

#include "record/kesta.h"
#include "tools/logs/ColumnArguments.h"
#include "tools/logs/RowRanges.h"
#include "view/KSTViewCursor.h"

/// A view of all records of the log, which must outlive its use. A row is tagged when the log's column "Tag"
/// says so.
KSTView viewOf(kesta& log);

/// Takes out all rows but those of the ranges, as parseRowRanges returns them.
void keepRows(KSTViewRep& view, const std::vector<RowRange>& ranges);

/// Takes out all rows that do not match every one of the texts.
void keepMatches(KSTViewRep& view, std::vector<ColumnText> texts);

/// Sorts the rows by columns, as parseSortColumns returns them.
void sortRows(KSTViewRep& view, std::vector<int> columns);

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
