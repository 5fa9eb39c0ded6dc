// kesta export: a log in the form of another program.
#include <optional>

#include "tools/ColumnMap.h"
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/FileClaim.h"
#include "tools/Files.h"
#include "tools/LogFile.h"
#include "tools/Output.h"
#include "tools/Writers.h"

int Commands::exportLog(const ExportOptions& options) {
    std::optional<FileClaim> claim;
    if (!options.output.empty()) {
        requireOutputApart(options.log, options.output);
        claim.emplace(options.output);
        requireReplaceable(options.output, options.force);
    }
    const LogForReading opened = openLog(options.log);
    const Zr::Ptr<kesta>& log = opened.log;
    const LineEnd end = options.format == "csv" ? LineEnd::crlf : LineEnd::lf;
    const auto output = options.output.empty() ? standardOutput(end) : fileOutput(options.output, end);
    Selection selection = everythingOf(*log);
    if (!options.allColumns) selection.columns = shownColumns(*log);
    if (options.format == "csv") {
        writeCsv(*log, selection, *output);
    } else if (options.format == "json") {
        writeJson(*log, selection, *output);
    } else {
        writeAle(*log, selection, *output);
    }
    if (claim) claim->requireUnchanged();
    output->finish();
    return opened.exitCode;
}
