// kesta sort: the records of a log in another order.
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/logs/ColumnArguments.h"
#include "tools/logs/LogFile.h"
#include "tools/terminal/Progress.h"

int Commands::sortRecords(const SortOptions& options) {
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
