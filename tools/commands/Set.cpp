// kesta set: one value of a log.
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"
#include "tools/logs/RowRanges.h"

int Commands::setValue(const SetOptions& options) {
    LogForEditing log(options.log, options.saving.force);
    const unsigned column = columnNamed(*log, options.column);
    const unsigned row = parseRow(options.row, log->get_num_records());
    requireKeptValue(*log, column, options.value);
    log->setField(row, column, libraryText(options.value));
    log.save(options.saving);
    return exitDone;
}
