// kesta export: a log in the form of another program.
#include <optional>

#include "tools/ColumnMap.h"
#include "tools/Commands.h"
#include "tools/DisplayText.h"
#include "tools/Failure.h"
#include "tools/FileClaim.h"
#include "tools/Files.h"
#include "tools/LogFile.h"
#include "tools/Output.h"
#include "tools/Progress.h"
#include "tools/StandardStreams.h"
#include "tools/Writers.h"

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
    std::optional<FileClaim> claim;
    const std::string target = options.output.empty() ? "-" : options.output;
    if (!isStandardStream(target)) {
        requireOutputApart(options.log, target);
        claim.emplace(target);
        requireReplaceable(target, options.saving.force);
    }
    const LogForReading opened = openLog(options.log);
    const LineEnd end = options.format == "csv" ? LineEnd::crlf : LineEnd::lf;
    if (isStandardStream(target) && !options.saving.dryRun) {
        const auto output = standardOutput(end);
        write(*opened.log, options, *output);
        output->finish();
        return opened.exitCode;
    }
    const auto output = fileOutput(target, end);
    {
        const Progress progress("exporting", options.log);
        write(*opened.log, options, *output);
    }
    const std::string content = counted(opened.log->get_num_records(), "record");
    save(target, claim ? &*claim : nullptr, options.saving, content, {}, [&] { output->finish(); });
    return opened.exitCode;
}
