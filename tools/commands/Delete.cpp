// kesta delete: records out of a log.
#include <algorithm>

#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogView.h"
#include "tools/logs/RowRanges.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"

namespace {

struct Options {
    std::string log;
    std::optional<std::string> rows;  // or
    bool tagged = false;
    Saving saving;
};

int deleteRows(LogForEditing& log, const Options& options) {
    std::vector<RowRange> ranges = parseRowRanges(*options.rows, log->get_num_records());
    // From the end, so that the numbers of the rows still to go stay right.
    std::reverse(ranges.begin(), ranges.end());
    for (const RowRange range : ranges) log->delete_records(range.first, range.last - range.first + 1);
    log.save(options.saving);
    return exitDone;
}

int deleteTagged(LogForEditing& log, const Options& options) {
    const int count = viewOf(*log)->deleteTagged();
    if (count == 0) {
        complain("no record is tagged");
        return exitFindings;
    }
    log.save(options.saving, {counted(static_cast<std::size_t>(count), "record") + " deleted"});
    return exitDone;
}

int run(const Options& options) {
    if (options.rows.has_value() == options.tagged) {
        throw Failure("delete needs either ROWS or --tagged", exitUsage);
    }
    LogForEditing log(options.log, options.saving.force);
    return options.tagged ? deleteTagged(log, options) : deleteRows(log, options);
}

void declare(CLI::App& app, Options& options) {
    Arguments::addEdit(app, options.log, options.saving);
    Arguments::addRows(app, "ROWS", options.rows, "the rows to delete");
    app.add_flag("--tagged", options.tagged, "delete the tagged records; not to be given with ROWS");
}

}  // namespace

Command Commands::deleteRecords() {
    return makeCommand("delete", "Delete records", "kesta delete day1.log 3,5-9", declare, run);
}
