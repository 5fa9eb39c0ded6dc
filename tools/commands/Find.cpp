// kesta find: the records of logs that hold given texts.
#include <algorithm>
#include <cerrno>
#include <optional>

#include "support/StringFunctions.h"
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/commands/TableOptions.h"
#include "tools/files/FileClaim.h"
#include "tools/files/Files.h"
#include "tools/forms/ShownLogs.h"
#include "tools/logs/EveryLog.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogView.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/StandardStreams.h"

namespace {

struct Options {
    std::string log;
    std::vector<std::string> arguments;  // further logs, then COLUMN=TEXT
    TableOptions table;
    std::string output;  // the log to save to; empty to show
    Saving saving;
};

/// What is looked for, and where.
struct Search {
    std::vector<std::string> logs;
    std::vector<std::string> texts;
};

// What stands before the first argument with "=" is a log.
Search searchOf(const Options& options) {
    const auto isText = [](const std::string& argument) { return argument.find('=') != std::string::npos; };
    const auto firstText = std::find_if(options.arguments.begin(), options.arguments.end(), isText);
    if (firstText == options.arguments.end()) {
        throw Failure('"' + options.arguments.back() + "\" names no column; write COLUMN=TEXT", exitUsage);
    }
    Search search{{options.log}, {firstText, options.arguments.end()}};
    search.logs.insert(search.logs.end(), options.arguments.begin(), firstText);
    return search;
}

KSTView matchesIn(kesta& log, const Search& search) {
    const KSTView view = viewOf(log);
    keepMatches(*view, parseSearch(log, search.texts));
    return view;
}

int answerFor(bool found, int exitCode) {
    if (found) return exitCode;
    complain("no record matches");
    return std::max<int>(exitCode, exitFindings);
}

int show(const Search& search, const TableOptions& table) {
    const bool several = search.logs.size() > 1;
    bool found = false;
    ShownLogs shown(formNamed(table.format), search.logs.size());
    const int exitCode = forEveryLog(search.logs, [&](const std::string& path) -> int {
        const LogForReading opened = openLog(path);
        const KSTView view = matchesIn(*opened.log, search);
        if (view->get_num_records() > 0) found = true;
        if (several && view->get_num_records() == 0) return opened.exitCode;
        shown.add(path, *opened.log, table.select(*opened.log, view));
        return opened.exitCode;
    });
    shown.finish();
    return answerFor(found, exitCode);
}

// The records go into the new log as they are. Saving the view as text would write the view's own tags in the
// place of the log's.
void saveRows(kesta& log, KSTViewRep& view, const Options& options, FileClaim* claim) {
    const std::string content = counted(view.get_num_records(), "record");
    const std::string& path = options.output;
    save(path, claim, options.saving, content, {path + ": " + content}, [&] {
        if (!claim) {
            writeRecords(log, view);
            return;
        }
        view.tagAll(true);
        view.tagBaseFromTags();
        errno = 0;
        if (view.saveOnlyTagged(Zr::WStringFromAscii(path.c_str())) == 0) throw fileFailure(path, errno);
    });
}

int copy(const Search& search, const Options& options) {
    const std::string& source = search.logs.front();
    if (search.logs.size() > 1) throw Failure("-o takes the records of one log", exitUsage);
    requireOutputApart(source, options.output);
    std::optional<FileClaim> claim;
    if (!isStandardStream(options.output)) claim.emplace(options.output);
    requireLogMayBeMade(options.output, options.saving.force);
    const Zr::Ptr<kesta> log = openLogForCopying(source, options.saving.force);
    const KSTView view = matchesIn(*log, search);
    const bool found = view->get_num_records() > 0;
    if (found) {
        options.table.order(*log, *view);
        saveRows(*log, *view, options, claim ? &*claim : nullptr);
    }
    return answerFor(found, exitDone);
}

int run(const Options& options) {
    const Search search = searchOf(options);
    return options.output.empty() ? show(search, options.table) : copy(search, options);
}

void declare(CLI::App& app, Options& options) {
    Arguments::addSource(app, options.log);
    app.add_option("COLUMN=TEXT", options.arguments,
                   "what the records' columns must hold, each of them, in either case; further logs go "
                   "before it")
        ->required();
    options.table.declare(app);
    CLI::Option* const output = Arguments::addOutput(
        app, options.output, "the log to write, - for standard output, instead of showing the records");
    for (const char* const shown : {"--columns", "--all-columns", "--format"}) output->excludes(shown);
    Arguments::addSaving(app, options.saving,
                         "replace a file that is there already; save even what could not be read whole");
    Arguments::requireOutputForSaving(app);
}

}  // namespace

Command Commands::find() {
    return makeCommand("find", "Show the records that hold given texts, or save them as a log of their own",
                       "kesta find day1.log Notes=circle \"Start time=01:00:1\" -o selects.log\n"
                       "  kesta find day1.log day2.log Scene=12A\n\n"
                       "Further arguments are logs up to the first one with \"=\"." +
                           Arguments::searchRules,
                       declare, run);
}
