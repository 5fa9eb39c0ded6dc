// kesta sort: the records of a log in another order.
#include "tools/ColumnArguments.h"
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/LogFile.h"

int Commands::sortRecords(const SortOptions& options) {
    LogForEditing log(options.log, options.force);
    std::vector<int> fields = parseSortColumns(*log, options.columns);
    log->set_sortfields(fields.data());
    log->sort(options.descending ? -1 : 1, options.ignoreCase ? 1 : 0);
    log.save();
    return exitDone;
}
