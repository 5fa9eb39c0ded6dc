// kesta find: the records of logs that hold given texts.
#include <algorithm>
#include <cerrno>
#include <optional>

#include "support/StringFunctions.h"
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/files/FileClaim.h"
#include "tools/forms/ShowView.h"
#include "tools/logs/EveryLog.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogView.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/StandardStreams.h"

namespace {

/// What is looked for, and where.
struct Search {
    std::vector<std::string> logs;
    std::vector<std::string> texts;
};

// What stands in front of the first argument with "=" is a log.
Search searchOf(const FindOptions& options) {
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
    ShownViews shown(table, search.logs.size());
    const int exitCode = forEveryLog(search.logs, [&](const std::string& path) -> int {
        const LogForReading opened = openLog(path);
        const KSTView view = matchesIn(*opened.log, search);
        if (view->get_num_records() > 0) found = true;
        if (!several || view->get_num_records() > 0) shown.add(path, *opened.log, view);
        return opened.exitCode;
    });
    shown.finish();
    return answerFor(found, exitCode);
}

// The records go into the new log as they are. Saving the view as text would write the view's own tags in the
// place of the log's.
void saveRows(kesta& log, KSTViewRep& view, const FindOptions& options, FileClaim* claim) {
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

int copy(const Search& search, const FindOptions& options) {
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
        if (!options.table.sort.empty()) sortRows(*view, parseSortColumns(*log, options.table.sort));
        saveRows(*log, *view, options, claim ? &*claim : nullptr);
    }
    return answerFor(found, exitDone);
}

}  // namespace

int Commands::findRecords(const FindOptions& options) {
    const Search search = searchOf(options);
    return options.output.empty() ? show(search, options.table) : copy(search, options);
}
