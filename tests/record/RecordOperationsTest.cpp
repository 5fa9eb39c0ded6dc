// Inserting, appending and deleting records, finding them, and their identifiers.
#include <random>

#include "support/Cookie.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

constexpr unsigned notFound = 0xFFFFFFFF;

Cookie named(const char* name) {
    return Cookie(name, false);
}

Zr::Ptr<kesta> numbered(unsigned rows) {
    std::vector<Fields> fields;
    for (unsigned row = 0; row < rows; ++row) fields.push_back({std::to_string(row)});
    return makeTextDatabase({"n"}, fields);
}

int recordsDeleted() {
    return NotifyMsgTypeDictionary::instance().intern("recordsDeleted");
}

class Identifiers : public ::testing::Test {
 protected:
    static std::string textOf(const char* name) { return str(named(name).asString(false)); }

    // Where a, b and c are found.
    std::vector<unsigned> rows() const {
        return {database->getRowIndexByID(named("a")), database->getRowIndexByID(named("b")),
                database->getRowIndexByID(named("c"))};
    }

    Zr::Ptr<kesta> database = makeTextDatabase(
        {"Name", "COOKIE"}, {{"0", textOf("a")}, {"1", textOf("b")}, {"2", textOf("a")}, {"3", ""}});
};

}  // namespace

// --- Inserting and appending ---

TEST(InsertingRecords, MakesRoomWithASingleRecordAtItsFrontAndAppendsMany) {
    const Zr::Ptr<kesta> database = numbered(3);
    CapturedNotifications heard(*database);
    database->insert_records(2, 3);
    EXPECT_EQ(rowsOf(*database),
              (std::vector<Fields>{{"0"}, {"1"}, {""}, {"no record"}, {"no record"}, {"2"}}));
    EXPECT_EQ(database->get_record(2)->get_container(), database.get());
    database->insert_records(7, 1);
    database->insert_records(notFound, 1);
    EXPECT_EQ(database->get_num_records(), 6U);

    EXPECT_EQ(database->add_records(2), 6U) << "the row of the first";
    EXPECT_EQ(database->add_records(0), 8U);
    EXPECT_EQ(database->add_records(-3), 8U);
    EXPECT_EQ(database->get_record(7)->get_container(), database.get());
    EXPECT_NE(database->get_record(6).get(), database->get_record(7).get());
    EXPECT_FALSE(database->get_changed());
    EXPECT_TRUE(heard.texts().empty());
}

TEST(ChangingTheList, IsRefusedWhileOnlyTaggedRecordsAreShown) {
    const Zr::Ptr<kesta> database = numbered(3);
    CapturedNotifications heard(*database);
    database->set_show_tags_only(1);
    database->insert_records(0, 1);
    EXPECT_EQ(database->add_records(1), notFound);
    database->delete_records(0, 1);
    database->set_show_tags_only(0);
    EXPECT_EQ(columnOf(*database, 0), (Fields{"0", "1", "2"}));
    EXPECT_TRUE(heard.texts().empty());
    EXPECT_FALSE(database->get_changed());
}

// --- Deleting ---

TEST(DeletingRecords, TellsTheNumbersOfTheRowsThatExistBeforeTheDatabaseIsMarked) {
    const Zr::Ptr<kesta> database = numbered(12);
    const Zr::Ptr<dbrecord> kept = database->get_record(9);
    bool changedWhenTold = true;
    const auto guard = database->registerNotification(recordsDeleted(), [&](const NotifyMsg&) {
        changedWhenTold = database->get_changed();
        EXPECT_EQ(kept->refCount(), 1);
        return 0;
    });
    const CapturedNotifications heard(*database);
    database->delete_records(9, 2);
    EXPECT_FALSE(changedWhenTold);
    EXPECT_TRUE(database->get_changed());
    EXPECT_FALSE(heard.anyWithObject());
    database->delete_records(8, notFound);
    EXPECT_EQ(heard.texts(), (std::vector<std::string>{"9 10 ", "8 9 "}));

    database->clear_changed();
    for (const unsigned past : {8U, notFound}) database->delete_records(past, 1);
    database->delete_records(0, 0);
    EXPECT_FALSE(database->get_changed());
    EXPECT_EQ(heard.texts().size(), 2U) << "nothing is told of no rows";
    EXPECT_EQ(columnOf(*database, 0), (Fields{"0", "1", "2", "3", "4", "5", "6", "7"}));
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
        if (tagged) {
            EXPECT_EQ(database->delete_tagged_records(), 1U);
        } else {
            database->delete_records(0, 2);
        }
        EXPECT_FALSE(database);
        EXPECT_EQ(kept->get_container(), nullptr);
        EXPECT_TRUE(kept->set_field(0, "a record outlives its database", true));
    }
}

TEST(DeletingRecords, AgreesWithAPlainListWhateverTheOrder) {
    const Zr::Ptr<kesta> database = numbered(300);
    Fields expected = columnOf(*database, 0);
    std::mt19937 random(1);
    const auto next = [&random](std::size_t below) { return static_cast<unsigned>(random() % below); };
    for (int step = 0; step < 2000; ++step) {
        const unsigned at = next(expected.size() + 1);
        const unsigned count = next(6);
        const auto place = expected.begin() + at;
        if (next(2) == 0 || expected.size() > 600) {
            const auto end = place + std::min<std::ptrdiff_t>(count, expected.end() - place);
            expected.erase(place, end);
            database->delete_records(at, count);
        } else if (next(3) == 0) {
            const unsigned first = database->add_records(static_cast<int>(count));
            for (unsigned i = 0; i < count; ++i) database->set_field(first + i, 0, static_cast<int>(step));
            expected.insert(expected.end(), count, std::to_string(step));
        } else {
            expected.insert(place, count, "");
            database->insert_records(at, count);
        }
        ASSERT_EQ(columnOf(*database, 0), expected) << "step " << step;
    }
}

// --- Identifiers ---

TEST_F(Identifiers, NameTheFirstRowThatCarriesThem) {
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1, notFound}));
    EXPECT_EQ(database->getRowIndexByID(Cookie()), 3U) << "an empty text is the null identifier";
    EXPECT_EQ(database->get_record(named("b")).get(), database->get_record(1U).get());
    EXPECT_FALSE(database->get_record(named("c")));
    EXPECT_EQ(makeTextDatabase({"a"}, {{"x"}})->getRowIndexByID(Cookie()), notFound);

    // Rows without a record carry the null identifier too.
    database->insert_records(0, 2);
    database->delete_records(0, 1);
    EXPECT_EQ(database->getRowIndexByID(Cookie()), 0U);
    EXPECT_FALSE(database->get_record(Cookie()));
}

TEST_F(Identifiers, AreStoredAsTextAndFiledAtOnce) {
    EXPECT_TRUE(database->set_field(3, named("c")));
    EXPECT_EQ(str(database->getField(3, 1)), textOf("c"));
    EXPECT_EQ(rows(), (std::vector<unsigned>{notFound, notFound, 3}))
        << "an index that was never built holds just what is stored";
    database->add_records(0);
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1, 3}));
    EXPECT_TRUE(database->set_field(2, named("b")));
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 2, 3})) << "the last row stored is filed";
    EXPECT_TRUE(database->set_field(3, named("d")));
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 2, 3})) << "the entry of the identifier before stays";

    EXPECT_FALSE(database->set_field(4, named("e")));
    EXPECT_EQ(database->getRowIndexByID(named("e")), notFound);
    EXPECT_FALSE(makeTextDatabase({"a"}, {{"x"}})->set_field(0, named("d")));
}

TEST_F(Identifiers, AreLookedUpAnewOnlyAfterTheListHasChanged) {
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1, notFound}));
    // Other setters and sorting leave what was found.
    database->set_field(0, 1, textOf("b").c_str());
    database->set_field(1, 1, textOf("z").c_str());
    int byName[] = {0, -1};
    database->set_sortfields(byName);
    database->sort(-1, 0);
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1, notFound}));
    database->sort(1, 0);

    database->insert_records(0, 1);
    EXPECT_EQ(rows(), (std::vector<unsigned>{3, 1, notFound}));
    database->set_field(1, 1, textOf("a").c_str());
    database->delete_records(0, 0);  // of no rows, but the list may have changed
    EXPECT_EQ(rows(), (std::vector<unsigned>{1, notFound, notFound}));
    database->delete_records(0, 1);
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, notFound, notFound}));
    database->set_field(1, 1, textOf("b").c_str());
    database->add_records(-1);
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1, notFound}));
    database->removeField("cookie");
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1, notFound}));
    database->add_records(1);
    EXPECT_EQ(rows(), (std::vector<unsigned>{notFound, notFound, notFound}));
}

TEST_F(Identifiers, AddingByIdentifierKeepsTheRowThatIsFiled) {
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1, notFound}));
    const Zr::Ptr<dbrecord> again = database->addRecord(named("a"));
    EXPECT_EQ(again.get(), database->get_record(4U).get());
    EXPECT_EQ(str(again->getField(1)), textOf("a"));
    EXPECT_EQ(again->get_container(), database.get());
    database->addRecord(named("c"));
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1, 5}));
    EXPECT_TRUE(database->get_changed());

    // With the index not built, nothing is filed; building finds it.
    database->add_records(0);
    database->addRecord(named("newer"));
    EXPECT_EQ(database->getRowIndexByID(named("newer")), 6U);
    database->set_show_tags_only(1);
    database->addRecord(named("while only tagged ones are shown"));
    database->set_show_tags_only(0);
    EXPECT_EQ(database->get_num_records(), 8U);
    EXPECT_EQ(fieldsOf(*makeTextDatabase({"a"})->addRecord(named("x"))), (Fields{""})) << "without a column";
}

TEST_F(Identifiers, ManyAreAllFound) {
    database->add_records(5000);
    const auto name = [](unsigned row) { return named(std::to_string(row).c_str()); };
    for (unsigned row = 0; row < 5000; ++row) ASSERT_TRUE(database->set_field(row, name(row)));
    for (unsigned row = 0; row < 5000; ++row) ASSERT_EQ(database->getRowIndexByID(name(row)), row);
    database->add_records(0);  // the index is to be built anew
    for (unsigned row = 0; row < 5000; ++row) ASSERT_EQ(database->getRowIndexByID(name(row)), row);
}

// --- Finding by text ---

TEST(FindingRecords, ComparesWholeTextsOrTheirBeginnings) {
    const Zr::Ptr<kesta> database = makeTextDatabase(
        {"Name", "Reel"}, {{"x", "B001"}, {"y", "a001"}, {"", "A001"}, {"w", "A0"}, {"v", ""}});
    struct Case {
        const char* column;
        const char* text;
        int length;
        int row;
    };
    const Case cases[] = {
        {"REEL", "A001", 0, 2},  {"Reel", "A00", 0, -1},  {"Reel", "A00", 2, 2},
        {"Reel", "A0", 3, 3},  // a shorter text ends where it ends
        {"Reel", "B9", 1, 0},    {"Reel", "", 0, 4},      {"Name", "", 5, 2},
        {"Name", "z", 0, -1},    {"missing", "x", 0, -1}, {nullptr, "x", 0, -1},
        {"Name", nullptr, 0, 2},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(database->findFirst(c.column, c.text, c.length), c.row)
            << testing::PrintToString(c.column) << testing::PrintToString(c.text) << c.length;
    }

    class Short : public kesta {
     public:
        using kesta::kesta;
        unsigned get_num_records() const override { return 1; }
    };
    Short counting(textColumns({"a"}));
    counting.add_records(2);
    counting.set_field(1, 0, "x");
    EXPECT_EQ(counting.findFirst("a", "x", 0), -1) << "only the rows that the interface counts";
}

TEST_F(Identifiers, AreFoundThroughTheCookieColumnsOfAnyCase) {
    EXPECT_EQ(database->findFirst("cOOkie", "b", 0), 1) << "a name stands for its identifier";
    EXPECT_EQ(database->findFirst("Cookie", textOf("a").c_str(), 0), 0);
    EXPECT_EQ(database->findFirst("Cookie", textOf("c").c_str(), 0), -1);
    EXPECT_EQ(database->findFirst("Cookie", textOf("b").substr(0, 8).c_str(), 8), 1)
        << "what is no identifier of a row is searched as text";
    EXPECT_EQ(database->findFirst("Name", textOf("a").c_str(), 0), -1);
}
