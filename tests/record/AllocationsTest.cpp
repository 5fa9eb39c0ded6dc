// Operations on records while memory runs out: they are done wholly or not at all.
#include "tests/AllocationFailures.h"

using namespace TestSupport;

namespace {

Zr::Ptr<kesta> threeRows() {
    return makeTextDatabase({"Name", "Reel"}, {{"b", "2"}, {"a text of some length", ""}, {"a", "1"}});
}

}  // namespace

TEST(FailingAllocations, LeaveRecordsColumnsAndQueryAsTheyWere) {
    const Zr::Ptr<kesta> source = threeRows();
    const std::vector<Fields> before = rowsOf(*source);
    void (*const operations[])(kesta&, kesta&) = {
        [](kesta& database, kesta&) { database.add_records(40); },
        [](kesta& database, kesta&) { database.insert_records(1, 60); },
        [](kesta& database, kesta& other) { database.add_kesta(&other); },
        [](kesta& database, kesta&) {
            database.addField({"Another", DBFieldTypes::eText});
        },
        [](kesta& database, kesta&) { database.sort(1, 0); },
        [](kesta& database, kesta& other) { database.set_query(other.get_record(1).get()); },
        [](kesta& database, kesta&) {
            const CapturedNotifications heard(database);
            database.delete_records(0, 2);
        },
    };
    for (const auto& operation : operations) {
        SCOPED_TRACE(&operation - operations);
        const auto prepare = [&] {
            const Zr::Ptr<kesta> database = threeRows();
            database->set_query(source->get_record(2).get());
            return database;
        };
        failEachAllocation(
            prepare, [&](const Zr::Ptr<kesta>& database) { operation(*database, *source); },
            [&](const Zr::Ptr<kesta>& database) {
                EXPECT_EQ(database->get_num_fields(), 2U);
                std::vector<Fields> after = rowsOf(*database);
                for (Fields& row : after) row.resize(2);  // one may have got its new field
                EXPECT_TRUE(same(after, before));
                EXPECT_EQ(database->tag_matching_records(0), 1);
                EXPECT_EQ(database->get_tag(2), 1);
            });
    }
}
