#include "tools/ShowView.h"

#include "tools/ColumnMap.h"
#include "tools/LogFile.h"
#include "tools/LogView.h"
#include "tools/TablePrinter.h"
#include "tools/Writers.h"

namespace {

std::vector<unsigned> chosenColumns(kesta& log, const TableOptions& options) {
    if (!options.columns.empty()) return columnsNamed(log, options.columns);
    return options.allColumns ? allColumns(log) : shownColumns(log);
}

}  // namespace

void showView(kesta& log, const KSTView& view, const TableOptions& options) {
    if (!options.sort.empty()) sortRows(*view, parseSortColumns(log, options.sort));
    const Selection selection{view, chosenColumns(log, options)};
    const auto output = standardOutput(options.format == "csv" ? LineEnd::crlf : LineEnd::lf);
    if (options.format == "csv") {
        writeCsv(log, selection, *output);
    } else if (options.format == "json") {
        writeJson(log, selection, *output);
    } else {
        printTable(log, selection, standardOutputTerminal(), *output);
    }
    output->finish();
}
