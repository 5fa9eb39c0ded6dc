// kesta show: the records of a log.
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/LogFile.h"
#include "tools/LogView.h"
#include "tools/Messages.h"
#include "tools/ShowView.h"

int Commands::showRecords(const ShowOptions& options) {
    const LogForReading opened = openLog(options.log);
    const Zr::Ptr<kesta>& log = opened.log;
    const KSTView view = viewOf(*log);
    if (!options.rows.empty()) keepRows(*view, parseRowRanges(options.rows, log->get_num_records()));
    if (options.tagged) view->removeNonTagged();
    showView(*log, view, options.table);
    if (!options.tagged || view->get_num_records() > 0) return opened.exitCode;
    complain("no record is tagged");
    return exitFindings;
}
