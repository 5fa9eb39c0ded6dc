// kesta show: the records of a log.
#include <algorithm>

#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/LogFile.h"
#include "tools/LogForm.h"
#include "tools/TablePrinter.h"
#include "tools/Writers.h"

namespace {

// A list with commas between, unless it is the name of a column as a whole.
void selectColumns(const kesta& log, const std::string& list, std::vector<unsigned>& columns) {
    const unsigned whole = log.get_fieldnum(libraryText(list));
    if (whole < log.get_num_fields()) {
        columns.push_back(whole);
        return;
    }
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t comma = std::min(list.find(',', begin), list.size());
        columns.push_back(columnNamed(log, list.substr(begin, comma - begin)));
        begin = comma + 1;
    }
}

Selection selected(const kesta& log, const ShowOptions& options) {
    Selection selection = everythingOf(log);
    if (!options.columns.empty()) selection.columns.clear();
    for (const std::string& list : options.columns) selectColumns(log, list, selection.columns);
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
