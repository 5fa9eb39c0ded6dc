// Views on a log: the rows that a command is about, chosen, ordered and tagged without touching the log.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>
#include <vector>

#include "record/kesta.h"
#include "tools/logs/ColumnArguments.h"
#include "tools/logs/RowRanges.h"
#include "view/KSTView.h"

/// A view of all records of the log, which must outlive its use. A row is tagged when the log's column "Tag"
/// says so.
KSTView viewOf(kesta& log);

/// Takes out all rows but those of the ranges, as parseRowRanges answers them.
void keepRows(KSTViewRep& view, const std::vector<RowRange>& ranges);

/// Takes out all rows that do not match every one of the texts.
void keepMatches(KSTViewRep& view, std::vector<ColumnText> texts);

/// Sorts the rows by columns, as parseSortColumns answers them.
void sortRows(KSTViewRep& view, std::vector<int> columns);
