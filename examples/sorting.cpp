// Sorting: a log's records, or only what a view shows.
#include "examples/SampleLog.h"
#include "view/KSTView.h"

int main() {
    const Zr::Ptr<kesta> log = sampleLog();
    const KSTView view(new KSTViewRep(log.get()));
    view->displayAllRecords();

    int fields[] = {static_cast<int>(log->get_fieldnum("Reel")),
                    static_cast<int>(log->get_fieldnum("Start time")), -1};
    view->set_sortfields(fields);  // the sort fields are the log's, also through a view
    view->sort(-1, 0);             // descending; case never counts here
    if (view->getField(0, 0) != "14-2" || log->getField(0, 0) != "12-1") return 1;

    log->sort(-1, 0);  // now the log's own rows: views are not told, and show other records than before
    view->displayAllRecords();
    return log->getField(0, 0) == "14-2" && view->getField(0, 0) == "14-2" ? 0 : 1;
}
