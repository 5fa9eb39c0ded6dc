// Who owns what: databases and records by counted pointers, views by handles.
#include "examples/SampleLog.h"
#include "view/KSTView.h"

int main() {
    Zr::Ptr<kesta> log = sampleLog();
    const KSTView view(new KSTViewRep(log.get()));  // the handle owns the view; the view does not own the log
    view->displayAllRecords();
    const KSTView copy = view.copyWithNewBaseView();  // owns the copy of the log that it stands on

    const Zr::Ptr<dbrecord> take = log->get_record(0);
    log->delete_records(0, 1);  // the record leaves the log, and lives on here
    if (take->getField(0) != "12-1" || view->get_num_records() != 3) return 1;

    log.reset();  // the view has no source now, so its rows have no records
    return !view->get_record(0) && copy->getField(0, 0) == "12-1" ? 0 : 1;
}
