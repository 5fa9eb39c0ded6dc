// kesta export: a log in the form of another program.
#include "tools/Commands.h"
#include "tools/files/OutputFile.h"
#include "tools/forms/Writers.h"
#include "tools/logs/ColumnMap.h"
#include "tools/logs/LogFile.h"
#include "tools/terminal/DisplayText.h"

namespace {

void write(kesta& log, const ExportOptions& options, LineSink& out) {
    Selection selection = everythingOf(log);
    if (!options.allColumns) selection.columns = shownColumns(log);
    if (options.format == "csv") {
        writeCsv(log, selection, out);
    } else if (options.format == "json") {
        writeJson(log, selection, out);
    } else {
        writeAle(log, selection, out);
    }
}

}  // namespace

int Commands::exportLog(const ExportOptions& options) {
    OutputFile output(options.log, options.output, options.saving);
    const LogForReading opened = openLog(options.log);
    output.write(options.format == "csv" ? LineEnd::crlf : LineEnd::lf,
                 counted(opened.log->get_num_records(), "record"),
                 [&](LineSink& out) { ::write(*opened.log, options, out); });
    return opened.exitCode;
}
