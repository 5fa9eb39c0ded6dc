// The columns that a log shows: its column map, which it keeps as a parameter.
//
// Thread-safety: one thread at a time.
#pragma once

#include <vector>

#include "fieldmap/FieldMap.h"

/// A column by its number in the log.
struct ListedColumn {
    unsigned column;
    bool visible;
};

/// The numbers of all columns, in the log's own order.
std::vector<unsigned> allColumns(const kesta& log);

/// The columns of the log's map in its order, those apart that the log does not have; all, visible, when the
/// log keeps no map.
std::vector<ListedColumn> listedColumns(kesta& log);

/// The visible ones of these. Throws Failure when there is none.
std::vector<unsigned> shownColumns(kesta& log);

/// The log's map; all columns, visible, when it keeps none.
FieldMap columnMapOf(kesta& log);

/// Puts the map into the log's parameter. Throws Failure, with the log as it was, when the parameter cannot
/// hold it. Warns of columns that no map can name.
void storeColumnMap(kesta& log, const FieldMap& map);

/// Takes the map away.
void forgetColumnMap(kesta& log);
