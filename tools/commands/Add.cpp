// kesta add: a record at the end of a log.
#include <set>

#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/LogFile.h"
#include "tools/LogForm.h"
#include "tools/Output.h"

namespace {

struct Assignment {
    unsigned column;
    std::string value;
};

// A column's own name may hold "=": the first split that names a column counts.
Assignment parseAssignment(const kesta& log, const std::string& text) {
    const std::size_t first = text.find('=');
    if (first == std::string::npos) throw Failure('"' + text + "\" is not COLUMN=VALUE", exitUsage);
    for (std::size_t at = first; at != std::string::npos; at = text.find('=', at + 1)) {
        const unsigned column = log.get_fieldnum(libraryText(text.substr(0, at)));
        if (column < log.get_num_fields()) return {column, text.substr(at + 1)};
    }
    return {columnNamed(log, text.substr(0, first)), {}};
}

}  // namespace

int Commands::addRecord(const AddOptions& options) {
    const Zr::Ptr<kesta> log = openLogForEditing(options.log, options.force);
    std::vector<Assignment> assignments;
    std::set<unsigned> columns;
    for (const std::string& text : options.values) {
        assignments.push_back(parseAssignment(*log, text));
        requireKeptValue(*log, assignments.back().column, assignments.back().value);
        if (!columns.insert(assignments.back().column).second) {
            throw Failure("two values for the column of \"" + text + '"', exitUsage);
        }
    }
    const unsigned row = log->add_records(1);
    for (const Assignment& assignment : assignments) {
        log->setField(row, assignment.column, libraryText(assignment.value));
    }
    saveLog(*log, options.log);
    const auto output = standardOutput();
    output->line("row " + std::to_string(row + 1));
    output->finish();
    return exitDone;
}
