// Tags: those of the records and those of a view.
#include "examples/SampleLog.h"
#include "view/KSTView.h"

int main() {
    const Zr::Ptr<kesta> log = sampleLog();
    log->set_tag(2, 1);  // the record's own tag

    const KSTView view(new KSTViewRep(log.get()));
    view->displayAllRecords();
    view->tagAll(false);
    view->set_tag(0, 1);  // a tag of the view: the record's stays
    if (log->get_tag(0) != 0 || view->countTags() != 1) return 1;

    view->tagBaseFromTags();  // now the log has the view's tags
    if (log->get_tag(0) != 1 || log->get_tag(2) != 0) return 1;

    const unsigned deleted = log->delete_tagged_records();
    return deleted == 1 && view->get_num_records() == 3 ? 0 : 1;
}
