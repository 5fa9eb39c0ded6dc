// kesta add: a record at the end of a log.
#include <set>

#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/logs/ColumnArguments.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"

int Commands::addRecord(const AddOptions& options) {
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
