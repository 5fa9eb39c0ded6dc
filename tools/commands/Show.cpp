// kesta show: the records of logs.
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/commands/TableOptions.h"
#include "tools/forms/ShownLogs.h"
#include "tools/logs/EveryLog.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogView.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/StandardStreams.h"

namespace {

struct Options {
    std::vector<std::string> logs;
    std::optional<std::string> rows;
    bool tagged = false;
    TableOptions table;
};

int run(const Options& options) {
    ShownLogs shown(formNamed(options.table.format), options.logs.size());
    const int exitCode = forEveryLog(options.logs, [&](const std::string& path) -> int {
        const LogForReading opened = openLog(path);
        kesta& log = *opened.log;
        const KSTView view = viewOf(log);
        if (options.rows) keepRows(*view, parseRowRanges(*options.rows, log.get_num_records()));
        if (options.tagged) view->removeNonTagged();
        shown.add(path, log, options.table.select(log, view));
        if (!options.tagged || view->get_num_records() > 0) return opened.exitCode;
        complain((options.logs.size() > 1 ? shownName(path) + ": " : "") + "no record is tagged");
        return exitFindings;
    });
    shown.finish();
    return exitCode;
}

void declare(CLI::App& app, Options& options) {
    Arguments::addSources(app, options.logs);
    Arguments::addRows(app, "--rows", options.rows, "the rows to show")->type_name("ROWS");
    app.add_flag("--tagged", options.tagged,
                 "show tagged records only; with --rows, the tagged ones among those rows");
    options.table.declare(app);
}

}  // namespace

Command Commands::show() {
    return makeCommand(
        "show", "Show the records of logs",
        "kesta show day1.log --columns Reel,\"Start time\" --rows 10-20\n\n"
        "Several logs are shown below their names, in JSON as a list of objects with the name as \"log\".",
        declare, run);
}
