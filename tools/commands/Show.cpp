// kesta show: the records of logs.
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/forms/ShowView.h"
#include "tools/logs/EveryLog.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogView.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/StandardStreams.h"

int Commands::showRecords(const ShowOptions& options) {
    ShownViews shown(options.table, options.logs.size());
    const int exitCode = forEveryLog(options.logs, [&](const std::string& path) -> int {
        const LogForReading opened = openLog(path);
        kesta& log = *opened.log;
        const KSTView view = viewOf(log);
        if (options.rows) keepRows(*view, parseRowRanges(*options.rows, log.get_num_records()));
        if (options.tagged) view->removeNonTagged();
        shown.add(path, log, view);
        if (!options.tagged || view->get_num_records() > 0) return opened.exitCode;
        complain((options.logs.size() > 1 ? shownName(path) + ": " : "") + "no record is tagged");
        return exitFindings;
    });
    shown.finish();
    return exitCode;
}
