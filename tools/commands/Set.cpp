// kesta set: one value of a log.
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"
#include "tools/logs/RowRanges.h"

namespace {

struct Options {
    std::string log;
    std::string row;
    std::string column;
    std::string value;
    Saving saving;
};

int run(const Options& options) {
    LogForEditing log(options.log, options.saving.force);
    const unsigned column = columnNamed(*log, options.column);
    const unsigned row = parseRow(options.row, log->get_num_records());
    requireKeptValue(*log, column, options.value);
    log->setField(row, column, libraryText(options.value));
    log.save(options.saving);
    return exitDone;
}

void declare(CLI::App& app, Options& options) {
    Arguments::addEdit(app, options.log, options.saving);
    app.add_option("ROW", options.row, "the row's number")->required();
    app.add_option("COLUMN", options.column, "the column's name")->required();
    app.add_option("VALUE", options.value, "the new value")->required();
}

}  // namespace

Command Commands::set() {
    return makeCommand("set", "Change one value", "kesta set day1.log 12 Notes \"good sound\"", declare, run);
}
