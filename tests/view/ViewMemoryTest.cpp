// Memory that runs out: whichever request fails on a typical road, the exception is BadAlloc, nothing leaks,
// and what has been made so far still holds together.
#include <gtest/gtest.h>

#include "tests/TestSupport.h"
#include "view/KSTViewCursor.h"

namespace {

using TestSupport::CountingAllocator;
using TestSupport::TempFolder;
using TestSupport::wide;

constexpr unsigned manyRows = 400;

Zr::Ptr<kesta> newDatabase() {
    auto database = TestSupport::makeTextDatabase({"Name", "Scene", "Tag"});
    database->add_records(static_cast<int>(manyRows));
    for (unsigned row = 0; row < manyRows; ++row) {
        database->set_field(row, 0, static_cast<int>(row));
        database->set_field(row, 1, static_cast<int>(row % 7));
    }
    return database;
}

struct Road {
    Zr::Ptr<kesta> database = newDatabase();
    KSTView base;
    KSTView top;

    void walk(const LightweightString<wchar_t>& file) {
        base = KSTView(new KSTViewRep(database.get()));
        base->displayAllRecords();
        top = KSTView(new KSTViewRep(database.get(), "Scene,Name"));
        top->baseView(base.rep());
        top->displayRecordsAt(100, 300, 0);
        top->set_sortfield(1);
        top->sort(1, 0);
        for (unsigned row = 0; row < 90; row += 3) top->set_tag(row, 1);
        const KSTView sub(top->newTagSubview());
        const KSTView copied = base.copy();
        base->tagDuplicates(1);
        base->displayAllFromAt(copied.rep(), 3);
        top->deleteTagged();
        top->insertBlankRecords(5, 3);
        copied->removeTagged();
        KSTViewCursor(top).remove();
        top->saveAsText(file, false);
        const KSTView apart = top.copyWithNewBaseView();
        apart->deleteRecords(0, 40);
    }

    // Every row still names a record of the database; made rows without one apart.
    void check() const {
        for (const KSTView& view : {base, top}) {
            if (!view) continue;
            for (unsigned row = 0; row < view->get_num_records(); ++row) {
                ASSERT_LT(static_cast<unsigned>(view->baseIndex(static_cast<int>(row))),
                          database->get_num_records());
            }
            view->displayAllRecords();
            ASSERT_EQ(view->db()->get_num_records(), view->get_num_records());
        }
    }
};

TEST(ViewMemory, RunningOutLeavesNothingBehindAndNothingBroken) {
    const TempFolder folder;
    const auto file = wide(folder / "view.kst");
    Road().walk(file);  // what is made once for the process is there now
    unsigned requests = 0;
    {
        CountingAllocator allocator;
        Road road;
        const unsigned before = allocator.requests();
        road.walk(file);
        requests = allocator.requests() - before;
    }
    const unsigned stride = requests / 150 + 1;
    for (const bool lasting : {false, true}) {
        for (unsigned request = 1; request <= requests; request += request < 200 ? 1 : stride) {
            SCOPED_TRACE("request " + std::to_string(request) + (lasting ? " and all after" : ""));
            CountingAllocator allocator;
            const std::size_t held = allocator.held();
            {
                Road road;
                allocator.failAt(request, lasting);
                try {
                    road.walk(file);
                } catch (const Zr::Exception::BadAlloc&) {
                }
                allocator.failNever();
                road.check();
            }
            ASSERT_EQ(held, allocator.held());
        }
    }
}

}  // namespace
