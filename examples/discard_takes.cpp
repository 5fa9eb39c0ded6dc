// From a log to a log: opens one, builds a view on it, finds the takes that are no good, deletes them through
// the view, saves the log and, in the view's order, what is left of one reel.
//
// Usage: discard_takes LOG TEXT REEL SELECTS
#include <climits>
#include <cstdio>

#include "record/kesta.h"
#include "support/StringFunctions.h"
#include "view/KSTView.h"
#include "view/KSTViewCursor.h"

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fputs("usage: discard_takes LOG TEXT REEL SELECTS\n", stderr);
        return 2;
    }
    const Zr::Ptr<kesta> log(new kesta(fromUTF8(argv[1]), INT_MAX, true));
    const unsigned notes = log->get_fieldnum("Notes");
    const unsigned reel = log->get_fieldnum("Reel");
    if (!log->get_valid() || notes == UINT_MAX || reel == UINT_MAX) {
        std::fprintf(stderr, "%s: no log with the columns Notes and Reel\n", argv[1]);
        return 1;
    }

    const KSTView all(new KSTViewRep(log.get()));  // the log outlives its views
    all->displayAllRecords();

    // What a query record's fields hold is what the columns must contain.
    const Zr::Ptr<dbrecord> unwanted = all->make_dummy_record();
    unwanted->set_field(static_cast<int>(notes), argv[2], true);
    all->set_query(unwanted.get());
    const int found = all->tagMatches(0);
    const int deleted = all->deleteTagged();  // from the log; the view hears of each and follows
    std::printf("%d takes found, %d deleted, %u left\n", found, deleted, log->get_num_records());

    const Zr::Ptr<dbrecord> wanted = all->make_dummy_record();
    wanted->set_field(static_cast<int>(reel), argv[3], true);
    all->set_query(wanted.get());
    all->tagMatches(0);
    const KSTView selects(all->newTagSubview());
    selects->set_sortfield(static_cast<int>(log->get_fieldnum("Start time")));
    selects->sort(1, 0);
    for (KSTViewCursor row(selects, 0); row.index() >= 0; ++row) {
        std::printf("%s  %s\n", (*row)->getField(static_cast<unsigned short>(reel)).c_str(),
                    (*row)->get_field(0));
    }

    const bool saved = log->save_text() == static_cast<int>(log->get_num_records()) &&
                       selects->saveAsText(argv[4], false) == static_cast<int>(selects->get_num_records());
    return saved ? 0 : 1;
}
