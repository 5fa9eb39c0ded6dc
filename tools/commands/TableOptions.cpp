#include "tools/commands/TableOptions.h"

#include "tools/commands/Arguments.h"
#include "tools/logs/ColumnArguments.h"
#include "tools/logs/ColumnMap.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogView.h"

void TableOptions::declare(CLI::App& app) {
    CLI::Option* const shown = Arguments::addColumnList(app, "--columns", columns, "the columns to show");
    Arguments::addAllColumns(app, allColumns)->excludes(shown);
    Arguments::addColumnList(app, "--sort", sort, "show them in the order of these columns, at most nine");
    Arguments::addFormat(app, format, {"table", "csv", "json"});
}

void TableOptions::order(const kesta& log, KSTViewRep& rows) const {
    if (!sort.empty()) sortRows(rows, parseSortColumns(log, sort));
}

Selection TableOptions::select(kesta& log, const KSTView& rows) const {
    order(log, *rows);
    if (!columns.empty()) return {rows, columnsNamed(log, columns)};
    return {rows, allColumns ? ::allColumns(log) : shownColumns(log)};
}
