// kesta export: a log in the form of another program.
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/LogFile.h"
#include "tools/LogView.h"
#include "tools/Output.h"
#include "tools/Writers.h"

int Commands::exportLog(const ExportOptions& options) {
    const Zr::Ptr<kesta> log = openLog(options.log);
    const KSTView rows = viewOf(*log);
    const LineEnd end = options.format == "csv" ? LineEnd::crlf : LineEnd::lf;
    const auto output = options.output.empty() ? standardOutput(end) : fileOutput(options.output, end);
    if (options.format == "csv") {
        writeCsv(*log, {rows, allColumns(*log)}, *output);
    } else if (options.format == "json") {
        writeJson(*log, {rows, allColumns(*log)}, *output);
    } else {
        writeAle(*log, rows, *output);
    }
    output->finish();
    return exitDone;
}
