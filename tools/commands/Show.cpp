// kesta show: the records of a log.
#include "tools/ColumnMap.h"
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/LogFile.h"
#include "tools/TablePrinter.h"
#include "tools/Writers.h"

namespace {

Selection selected(kesta& log, const ShowOptions& options) {
    Selection selection = everythingOf(log);
    if (!options.columns.empty()) {
        selection.columns = columnsNamed(log, options.columns);
    } else if (!options.allColumns) {
        selection.columns = shownColumns(log);
    }
    if (!options.rows.empty()) selection.rows = parseRowRanges(options.rows, log.get_num_records());
    return selection;
}

}  // namespace

int Commands::showRecords(const ShowOptions& options) {
    const Zr::Ptr<kesta> log = openLog(options.log);
    const Selection selection = selected(*log, options);
    const auto output = standardOutput(options.format == "csv" ? LineEnd::crlf : LineEnd::lf);
    if (options.format == "csv") {
        writeCsv(*log, selection, *output);
    } else if (options.format == "json") {
        writeJson(*log, selection, *output);
    } else {
        printTable(*log, selection, standardOutputTerminal(), *output);
    }
    output->finish();
    return exitDone;
}
