// kesta add: a record at the end of a log.
#include <set>

#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/logs/ColumnArguments.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"

namespace {

struct Options {
    std::string log;
    std::vector<std::string> values;  // COLUMN=VALUE
    Saving saving;
};

int run(const Options& options) {
    LogForEditing log(options.log, options.saving.force);
    std::vector<ColumnText> assignments;
    std::set<unsigned> columns;
    for (const std::string& text : options.values) {
        assignments.push_back(parseColumnText(*log, text, "COLUMN=VALUE"));
        requireKeptValue(*log, assignments.back().column, assignments.back().text);
        if (!columns.insert(assignments.back().column).second) {
            throw Failure("two values for the column of \"" + text + '"', exitUsage);
        }
    }
    const unsigned row = log->add_records(1);
    for (const ColumnText& assignment : assignments) {
        log->setField(row, assignment.column, libraryText(assignment.text));
    }
    log.save(options.saving, {"row " + std::to_string(row + 1)});
    return exitDone;
}

void declare(CLI::App& app, Options& options) {
    Arguments::addEdit(app, options.log, options.saving);
    app.add_option("COLUMN=VALUE", options.values, "the record's values; other columns stay empty")
        ->required();
}

}  // namespace

Command Commands::add() {
    return makeCommand("add", "Append a record", "kesta add day1.log Name=\"Shot 9\" Reel=A004", declare,
                       run);
}
