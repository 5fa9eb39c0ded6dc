// kesta delete: records out of a log.
#include <algorithm>

#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/LogFile.h"
#include "tools/RowRanges.h"

int Commands::deleteRecords(const DeleteOptions& options) {
    const Zr::Ptr<kesta> log = openLogForEditing(options.log, options.force);
    std::vector<RowRange> ranges = parseRowRanges(options.rows, log->get_num_records());
    // From the end, so that the numbers of the rows still to go stay right.
    std::reverse(ranges.begin(), ranges.end());
    for (const RowRange range : ranges) log->delete_records(range.first, range.last - range.first + 1);
    saveLog(*log, options.log);
    return exitDone;
}
