// What the model of the operations leaves out: containers, listeners, derived classes, many identifiers.
#include "support/Cookie.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

Cookie named(unsigned number) {
    return Cookie(std::to_string(number).c_str(), false);
}

int recordsDeleted() {
    return NotifyMsgTypeDictionary::instance().intern("recordsDeleted");
}

}  // namespace

TEST(AddedRecords, BelongToTheDatabaseButDummiesToNone) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a", "b"});
    database->add_records(2);
    database->insert_records(0, 1);
    EXPECT_NE(database->get_record(1).get(), database->get_record(2).get());
    for (const Zr::Ptr<dbrecord>& record : {database->get_record(0), database->get_record(2),
                                            database->addRecord(Cookie()), database->newRecord()}) {
        EXPECT_TRUE(record->get_container() == database.get() && record->get_num_fields() == 2);
    }
    const Zr::Ptr<dbrecord> dummy = database->make_dummy_record();
    EXPECT_TRUE(!dummy->get_container() && dummy->get_num_fields() == 2);
}

TEST(DeletingRecords, IsToldBeforeTheDatabaseIsMarked) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a"}, {{"0"}, {"1"}, {"2"}});
    const Zr::Ptr<dbrecord> kept = database->get_record(1);
    bool told = false;
    const auto guard = database->registerNotification(recordsDeleted(), [&](const NotifyMsg& message) {
        told = true;
        EXPECT_FALSE(database->get_changed() || message.object());
        EXPECT_EQ(kept->refCount(), 1);
        EXPECT_EQ(columnOf(*database, 0), Fields{"0"});
        return 0;
    });
    database->delete_records(1, 2);
    EXPECT_TRUE(told && database->get_changed());
}

TEST(DeletingRecords, AListenerMayEndTheDatabase) {
    for (const bool tagged : {false, true}) {
        auto database = std::make_unique<kesta>(textColumns({"a"}));
        database->add_records(9);
        for (const unsigned row : {1U, 4U, 7U}) database->set_tag(row, 1);
        const Zr::Ptr<dbrecord> kept = database->get_record(8);
        const auto guard = database->registerNotification(recordsDeleted(), [&](const NotifyMsg&) {
            database.reset();
            return 0;
        });
        tagged ? void(database->delete_tagged_records()) : database->delete_records(0, 2);
        EXPECT_FALSE(database);
        EXPECT_EQ(kept->get_container(), nullptr);
        EXPECT_TRUE(kept->set_field(0, "a record outlives its database", true));
    }
}

TEST(Identifiers, ManyAreAllFoundAndRowsWithoutARecordCarryTheNullIdentifier) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"COOKIE"});
    database->add_records(5000);
    for (unsigned row = 0; row < 5000; ++row) ASSERT_TRUE(database->set_field(row, named(row)));
    for (const bool built : {false, true}) {
        if (built) database->add_records(0);  // empties the index
        for (unsigned row = 0; row < 5000; ++row)
            ASSERT_EQ(database->getRowIndexByID(named(row)), row) << built;
    }
    database->sort(-1, 0);
    EXPECT_EQ(database->getRowIndexByID(named(0)), 0U) << "sorting leaves the index as it was";
    EXPECT_EQ(database->findFirst("cookie", "4999", 0), 4999);
    EXPECT_EQ(database->findFirst("cookie", "9", 0), 9);
    database->insert_records(0, 2);
    database->delete_records(0, 1);
    EXPECT_EQ(database->getRowIndexByID(Cookie()), 0U);
    EXPECT_FALSE(database->get_record(Cookie()));
}

TEST(FindingRecords, TakesNullAndMindsCaseAndLength) {
    const Zr::Ptr<kesta> database =
        makeTextDatabase({"Name", "Reel"}, {{"x", "a001"}, {"", "A0"}, {"y", "A001"}});
    const std::tuple<const char*, const char*, int, int> cases[] = {
        {"REEL", "A001", 0, 2},  {"Reel", "A00", 0, -1}, {"Reel", "A00", 3, 2},
        {"Reel", "A0x", 2, 1},   {"Reel", "A0", 9, 1},   {"Reel", "", 0, -1},
        {"missing", "x", 0, -1}, {nullptr, "x", 0, -1},  {"Name", nullptr, 0, 1},
    };
    for (const auto& [column, text, length, row] : cases) {
        EXPECT_EQ(database->findFirst(column, text, length), row) << testing::PrintToString(text);
    }

    struct Short : kesta {
        using kesta::kesta;
        unsigned get_num_records() const override { return 1; }
    };
    Short counting(textColumns({"a"}));
    counting.add_records(2);
    counting.set_field(1, 0, "x");
    EXPECT_EQ(counting.findFirst("a", "x", 0), -1) << "only the rows that the interface counts";
}
