// Inserting, appending and deleting records, finding them, and their identifiers.
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

class Identifiers : public ::testing::Test {
 protected:
    static std::string textOf(const char* name) { return str(named(name).asString(false)); }

    Zr::Ptr<kesta> database = makeTextDatabase(
        {"Name", "COOKIE"}, {{"0", textOf("a")}, {"1", textOf("b")}, {"2", textOf("a")}, {"3", ""}});
};

}  // namespace

// --- Inserting and appending ---

TEST(InsertingRecords, MakesRoomWithASingleRecordAtItsFrontAndAppendsMany) {
    const Zr::Ptr<kesta> database = numbered(5);
    CapturedNotifications heard(*database);
    database->insert_records(2, 3);
    EXPECT_EQ(rowsOf(*database),
              (std::vector<Fields>{{"0"}, {"1"}, {""}, {"no record"}, {"no record"}, {"2"}, {"3"}, {"4"}}));
    EXPECT_EQ(database->get_record(2)->get_container(), database.get());
    EXPECT_FALSE(database->get_changed());

    database->insert_records(8, 1);
    EXPECT_EQ(database->get_num_records(), 9U);
    EXPECT_TRUE(database->get_record(8));
    database->insert_records(10, 1);
    database->insert_records(notFound, 1);
    database->insert_records(0, 0);
    EXPECT_EQ(database->get_num_records(), 9U);
    EXPECT_FALSE(database->get_changed());
    EXPECT_TRUE(heard.texts().empty());

    const Zr::Ptr<kesta> empty = numbered(0);
    empty->delete_records(0, 1);
    empty->insert_records(0, 2);
    EXPECT_EQ(rowsOf(*empty), (std::vector<Fields>{{""}, {"no record"}}));

    EXPECT_EQ(database->add_records(2), 9U) << "the row of the first";
    EXPECT_EQ(database->add_records(0), 11U);
    EXPECT_EQ(database->add_records(-3), 11U);
    EXPECT_EQ(database->get_record(10)->get_container(), database.get());
    EXPECT_NE(database->get_record(9).get(), database->get_record(10).get());
    EXPECT_FALSE(database->get_changed());
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

TEST(DeletingRecords, RemovesTheRowsAndTellsTheirNumbers) {
    const Zr::Ptr<kesta> database = numbered(12);
    CapturedNotifications heard(*database);
    database->delete_records(9, 2);
    EXPECT_EQ(heard.texts(), (std::vector<std::string>{"9 10 "}));
    EXPECT_FALSE(heard.anyWithObject());
    EXPECT_TRUE(database->get_changed());
    EXPECT_EQ(columnOf(*database, 0), (Fields{"0", "1", "2", "3", "4", "5", "6", "7", "8", "11"}));

    database->clear_changed();
    heard.clear();
    database->delete_records(0, 1);
    database->delete_records(1, 1);
    EXPECT_EQ(heard.texts(), (std::vector<std::string>{"0 ", "1 "}));
    EXPECT_EQ(columnOf(*database, 0), (Fields{"1", "3", "4", "5", "6", "7", "8", "11"}));
    EXPECT_TRUE(database->get_changed());

    heard.clear();
    database->delete_records(6, 9);
    EXPECT_EQ(heard.texts(), (std::vector<std::string>{"6 7 "})) << "only rows that exist";
    database->delete_records(1, notFound);
    EXPECT_EQ(heard.texts(), (std::vector<std::string>{"6 7 ", "1 2 3 4 5 "}));
    EXPECT_EQ(columnOf(*database, 0), (Fields{"1"}));

    heard.clear();
    database->clear_changed();
    for (const unsigned past : {1U, notFound}) database->delete_records(past, 1);
    database->delete_records(0, 0);
    EXPECT_FALSE(database->get_changed());
    EXPECT_TRUE(heard.texts().empty()) << "nothing is told of no rows";
}

TEST(DeletingRecords, AListenerMayEndTheDatabase) {
    const int type = NotifyMsgTypeDictionary::instance().intern("recordsDeleted");
    for (const bool tagged : {false, true}) {
        auto database = std::make_unique<kesta>(textColumns({"a"}));
        database->add_records(9);
        for (const unsigned row : {1U, 4U, 7U}) database->set_tag(row, 1);
        const Zr::Ptr<dbrecord> kept = database->get_record(8);
        const auto guard = database->registerNotification(type, [&](const NotifyMsg&) {
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

TEST(DeletingRecords, LetsGoOfThemAndTellsBeforeTheDatabaseIsMarked) {
    const Zr::Ptr<kesta> database = numbered(4);
    const Zr::Ptr<dbrecord> kept = database->get_record(1);
    EXPECT_EQ(kept->refCount(), 2);
    bool called = false;
    const auto guard = database->registerNotification(
        NotifyMsgTypeDictionary::instance().intern("recordsDeleted"), [&](const NotifyMsg&) {
            called = true;
            EXPECT_EQ(columnOf(*database, 0), (Fields{"0", "3"}));
            EXPECT_FALSE(database->get_changed());
            return 0;
        });
    database->delete_records(1, 2);
    EXPECT_TRUE(called);
    EXPECT_TRUE(database->get_changed());
    EXPECT_EQ(kept->refCount(), 1);
}

TEST(DeletingRecords, AgreesWithAPlainListWhateverTheOrder) {
    const Zr::Ptr<kesta> database = numbered(300);
    Fields expected = columnOf(*database, 0);
    unsigned seed = 1;
    const auto next = [&seed](std::size_t below) {
        seed = seed * 1103515245 + 12345;
        return (seed >> 16) % static_cast<unsigned>(below);
    };
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
    EXPECT_EQ(database->getRowIndexByID(named("a")), 0U);
    EXPECT_EQ(database->getRowIndexByID(named("b")), 1U);
    EXPECT_EQ(database->getRowIndexByID(Cookie()), 3U) << "an empty text is the null identifier";
    EXPECT_EQ(database->getRowIndexByID(named("c")), notFound);
    EXPECT_EQ(database->get_record(named("b")).get(), database->get_record(1U).get());
    EXPECT_FALSE(database->get_record(named("c")));
    EXPECT_EQ(makeTextDatabase({"a"}, {{"x"}})->getRowIndexByID(Cookie()), notFound);

    // Rows without a record carry the null identifier too.
    database->insert_records(0, 2);
    EXPECT_EQ(database->getRowIndexByID(Cookie()), 0U);
    database->delete_records(0, 1);
    EXPECT_EQ(database->getRowIndexByID(Cookie()), 0U);
    EXPECT_FALSE(database->get_record(Cookie()));
}

TEST_F(Identifiers, AreStoredAsTextAndFiledAtOnce) {
    EXPECT_EQ(database->getRowIndexByID(named("a")), 0U);
    EXPECT_TRUE(database->set_field(3, named("c")));
    EXPECT_EQ(str(database->getField(3, 1)), textOf("c"));
    EXPECT_EQ(database->getRowIndexByID(named("c")), 3U);
    EXPECT_EQ(database->getRowIndexByID(Cookie()), 3U) << "the entry of the identifier before stays";
    EXPECT_TRUE(database->set_field(2, named("b")));
    EXPECT_EQ(database->getRowIndexByID(named("b")), 2U) << "the last row stored is filed";

    EXPECT_FALSE(database->set_field(4, named("d")));
    EXPECT_EQ(database->getRowIndexByID(named("d")), notFound);
    EXPECT_FALSE(makeTextDatabase({"a"}, {{"x"}})->set_field(0, named("d")));
}

TEST_F(Identifiers, AnIndexThatWasNeverBuiltHoldsJustWhatIsStored) {
    EXPECT_TRUE(database->set_field(1, named("c")));
    EXPECT_EQ(database->getRowIndexByID(named("c")), 1U);
    EXPECT_EQ(database->getRowIndexByID(named("a")), notFound);
    database->add_records(0);
    EXPECT_EQ(database->getRowIndexByID(named("a")), 0U);
}

TEST_F(Identifiers, AreLookedUpAnewOnlyAfterTheListHasChanged) {
    const auto rows = [this] {
        return std::vector<unsigned>{database->getRowIndexByID(named("a")),
                                     database->getRowIndexByID(named("b"))};
    };
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1}));
    // Other setters leave what was found.
    database->set_field(0, 1, textOf("b").c_str());
    database->set_field(1, 1, textOf("z").c_str());
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1}));
    int byName[] = {0, -1};
    database->set_sortfields(byName);
    database->sort(-1, 0);
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1}));
    database->sort(1, 0);

    database->insert_records(0, 1);
    EXPECT_EQ(rows(), (std::vector<unsigned>{3, 1}));
    database->delete_records(0, 0);
    EXPECT_EQ(rows(), (std::vector<unsigned>{3, 1}));
    database->set_field(1, 1, textOf("a").c_str());
    database->delete_records(0, 0);
    EXPECT_EQ(rows(), (std::vector<unsigned>{1, notFound}));
    database->delete_records(0, 1);
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, notFound}));
    database->set_field(1, 1, textOf("b").c_str());
    database->add_records(-1);
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1}));
    database->removeField("cookie");
    EXPECT_EQ(rows(), (std::vector<unsigned>{0, 1}));
    database->add_records(1);
    EXPECT_EQ(rows(), (std::vector<unsigned>{notFound, notFound}));
}

TEST_F(Identifiers, AddingByIdentifierKeepsTheRowThatIsFiled) {
    EXPECT_EQ(database->getRowIndexByID(named("a")), 0U);
    const Zr::Ptr<dbrecord> again = database->addRecord(named("a"));
    EXPECT_EQ(again.get(), database->get_record(4U).get());
    EXPECT_EQ(str(again->getField(1)), textOf("a"));
    EXPECT_EQ(again->get_container(), database.get());
    EXPECT_EQ(database->getRowIndexByID(named("a")), 0U);
    const Zr::Ptr<dbrecord> added = database->addRecord(named("new"));
    EXPECT_EQ(database->getRowIndexByID(named("new")), 5U);
    EXPECT_TRUE(database->get_changed());

    // With the index not built, nothing is filed; building finds it.
    database->add_records(0);
    database->addRecord(named("newer"));
    EXPECT_EQ(database->getRowIndexByID(named("b")), 1U);
    EXPECT_EQ(database->getRowIndexByID(named("newer")), 6U);

    database->set_show_tags_only(1);
    database->addRecord(named("while only tagged ones are shown"));
    database->set_show_tags_only(0);
    EXPECT_EQ(database->get_num_records(), 8U);
    const Zr::Ptr<kesta> plain = makeTextDatabase({"a"});
    EXPECT_EQ(fieldsOf(*plain->addRecord(named("x"))), (Fields{""})) << "without a column for it";
}

TEST_F(Identifiers, ManyAreAllFound) {
    const Zr::Ptr<kesta> many = makeTextDatabase({"cookie"});
    many->add_records(5000);
    for (unsigned row = 0; row < 5000; ++row) {
        ASSERT_TRUE(many->set_field(row, named(std::to_string(row).c_str())));
    }
    for (const bool rebuilt : {false, true}) {
        if (rebuilt) many->add_records(0);
        for (unsigned row = 0; row < 5000; ++row) {
            ASSERT_EQ(many->getRowIndexByID(named(std::to_string(row).c_str())), row);
        }
        EXPECT_EQ(many->getRowIndexByID(named("5000")), notFound);
    }
}

// --- Finding by text ---

TEST(FindingRecords, ComparesWholeTextsOrTheirBeginnings) {
    const Zr::Ptr<kesta> database = makeTextDatabase(
        {"Name", "Reel"}, {{"x", "B001"}, {"y", "a001"}, {"", "A001"}, {"w", "A0"}, {"v", ""}});
    EXPECT_EQ(database->findFirst("REEL", "A001", 0), 2);
    EXPECT_EQ(database->findFirst("Reel", "A00", 0), -1);
    EXPECT_EQ(database->findFirst("Reel", "A00", 2), 2);
    EXPECT_EQ(database->findFirst("Reel", "A0", 3), 3) << "a shorter text ends where it ends";
    EXPECT_EQ(database->findFirst("Reel", "B9", 1), 0);
    EXPECT_EQ(database->findFirst("Reel", "", 0), 4);
    EXPECT_EQ(database->findFirst("Name", "", 5), 2);
    EXPECT_EQ(database->findFirst("Name", "z", 0), -1);
    EXPECT_EQ(database->findFirst("missing", "x", 0), -1);
    EXPECT_EQ(database->findFirst("", "x", 0), -1);
    EXPECT_EQ(database->findFirst(nullptr, "x", 0), -1);
    EXPECT_EQ(database->findFirst("Name", nullptr, 0), 2);
    EXPECT_EQ(makeTextDatabase({"a"})->findFirst("a", "", 0), -1);
}

TEST(FindingRecords, WalksTheRowsThatTheInterfaceCounts) {
    class Short : public kesta {
     public:
        using kesta::kesta;
        unsigned get_num_records() const override { return 1; }
    };
    Short database(textColumns({"a"}));
    database.add_records(2);
    database.set_field(1, 0, "x");
    EXPECT_EQ(database.findFirst("a", "x", 0), -1);
}

TEST_F(Identifiers, AreFoundThroughTheCookieColumnsOfAnyCase) {
    EXPECT_EQ(database->findFirst("cOOkie", "b", 0), 1) << "a name stands for its identifier";
    EXPECT_EQ(database->findFirst("Cookie", textOf("a").c_str(), 0), 0);
    EXPECT_EQ(database->findFirst("Cookie", textOf("c").c_str(), 0), -1);
    EXPECT_EQ(database->findFirst("Cookie", textOf("b").substr(0, 8).c_str(), 8), 1)
        << "what is no identifier of a row is searched as text";
    EXPECT_EQ(database->findFirst("Name", textOf("a").c_str(), 0), -1);
}
