// kesta find: the records of a log that hold given texts.
#include <cerrno>
#include <optional>

#include "support/StringFunctions.h"
#include "tools/Commands.h"
#include "tools/DisplayText.h"
#include "tools/Failure.h"
#include "tools/FileClaim.h"
#include "tools/LogFile.h"
#include "tools/LogView.h"
#include "tools/Messages.h"
#include "tools/Output.h"
#include "tools/ShowView.h"

namespace {

// The records go into the new log as they are. Saving the view as text would write the view's own tags in the
// place of the log's.
void saveRows(KSTViewRep& view, const std::string& path, FileClaim& claim) {
    claim.requireUnchanged();
    view.tagAll(true);
    view.tagBaseFromTags();
    errno = 0;
    if (view.saveOnlyTagged(Zr::WStringFromAscii(path.c_str())) == 0) throw fileFailure(path, errno);
    claim.release();
    const auto output = standardOutput();
    output->line(harmless(path) + ": " + counted(view.get_num_records(), "record"));
    output->finish();
}

}  // namespace

int Commands::findRecords(const FindOptions& options) {
    const bool saves = !options.output.empty();
    std::optional<FileClaim> claim;
    if (saves) {
        requireOutputApart(options.log, options.output);
        claim.emplace(options.output);
        requireLogMayBeMade(options.output, options.force);
    }
    LogForReading opened;
    if (saves) {
        opened.log = openLogForCopying(options.log, options.force);
    } else {
        opened = openLog(options.log);
    }
    kesta& log = *opened.log;
    const KSTView view = viewOf(log);
    keepMatches(*view, parseSearch(log, options.texts));
    const bool found = view->get_num_records() > 0;
    if (!saves) {
        showView(log, view, options.table);
    } else if (found) {
        if (!options.table.sort.empty()) sortRows(*view, parseSortColumns(log, options.table.sort));
        saveRows(*view, options.output, *claim);
    }
    if (!found) complain("no record matches");
    return found ? opened.exitCode : exitFindings;
}
