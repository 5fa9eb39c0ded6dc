#include "tools/ShowView.h"

#include "tools/LogView.h"
#include "tools/TablePrinter.h"
#include "tools/Writers.h"

void showView(const kesta& log, const KSTView& view, const TableOptions& options) {
    if (!options.sort.empty()) sortRows(*view, parseSortColumns(log, options.sort));
    const Selection selection{view,
                              options.columns.empty() ? allColumns(log) : parseColumns(log, options.columns)};
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
