// kesta sort: the records of a log in another order.
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/logs/ColumnArguments.h"
#include "tools/logs/LogFile.h"
#include "tools/terminal/Progress.h"

namespace {

struct Options {
    std::string log;
    std::vector<std::string> columns;  // the most important first
    bool descending = false;
    bool ignoreCase = false;
    Saving saving;
};

int run(const Options& options) {
    LogForEditing log(options.log, options.saving.force);
    std::vector<int> fields = parseSortColumns(*log, options.columns);
    log->set_sortfields(fields.data());
    {
        const Progress progress("sorting", options.log);
        log->sort(options.descending ? -1 : 1, options.ignoreCase ? 1 : 0);
    }
    log.save(options.saving);
    return exitDone;
}

void declare(CLI::App& app, Options& options) {
    Arguments::addEdit(app, options.log, options.saving);
    Arguments::addColumnList(app, "--by", options.columns,
                             "the columns to sort by, at most nine, the first one first")
        ->required();
    app.add_flag("--desc", options.descending, "from last to first, values as plain text in either case");
    app.add_flag("--ignore-case", options.ignoreCase,
                 "let values that differ in case only be equal, so that the next column decides");
}

}  // namespace

Command Commands::sort() {
    return makeCommand(
        "sort", "Sort the records",
        "kesta sort day1.log --by \"Scene,Start time\"\n\n"
        "Values are compared as text, so that 10 comes before 9; time codes as well, which is their order\n"
        "in time. Records without a value in one of the columns come after the others; further columns do\n"
        "not order them.",
        declare, run);
}
