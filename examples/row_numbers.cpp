// The three kinds of row numbers: of a view, of its source, of the database.
#include "examples/SampleLog.h"
#include "view/KSTView.h"

int main() {
    const Zr::Ptr<kesta> log = sampleLog();
    const KSTView reel(new KSTViewRep(log.get()));
    reel->displayRecordsAt(2, 2, 0);  // rows 2 and 3 of the log, as rows 0 and 1 of the view
    reel->tagAll(false);
    reel->set_tag(1, 1);
    const KSTView selects(reel->newTagSubview());  // row 1 of the reel, as row 0

    const int viewRow = 0;
    const unsigned sourceRow = 1;
    const int databaseRow = selects->baseIndex(viewRow);
    return databaseRow == 3 && reel->baseIndex(sourceRow) == 3 &&
                   selects->findViewIndexForBaseRow(sourceRow) == viewRow &&
                   selects->getField(viewRow, 0) == log->getField(3, 0)
               ? 0
               : 1;
}
