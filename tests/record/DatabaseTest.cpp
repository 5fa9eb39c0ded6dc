// The database object: construction, columns, parameters, and fields read and stored by row and column.
#include "support/Configuration.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

constexpr unsigned notFound = 0xFFFFFFFF;

const std::vector<DBFieldDesc> sceneAndDate = {{"Scene", DBFieldTypes::eText}, {"Date", DBFieldTypes::eDate}};

void expectEmpty(const kesta& database, int valid) {
    EXPECT_EQ(database.get_valid(), valid);
    EXPECT_EQ(database.get_num_fields() + database.get_num_records(), 0U);
    EXPECT_TRUE(database.params().empty() && database.get_filename().empty() && !database.get_changed());
    EXPECT_EQ(database.get_revision(), 1);
}

}  // namespace

TEST(DatabaseConstruction, GivesTheDescribedColumnsAndNothingElse) {
    expectEmpty(*Zr::Ptr<kesta>(new kesta), 0);
    expectEmpty(*makeDatabase(std::vector<DBFieldDesc>()), 1);
    const DBFieldDesc* const none = nullptr;
    expectEmpty(*Zr::Ptr<kesta>(new kesta(none)), 1);

    const DBFieldDesc array[] = {sceneAndDate[0], sceneAndDate[1], {"the end", DBFieldTypes::eNone}, {}};
    for (const Zr::Ptr<kesta>& database : {Zr::Ptr<kesta>(new kesta(array)), makeDatabase(sceneAndDate)}) {
        EXPECT_EQ(database->get_valid(), 1);
        EXPECT_EQ(columnNames(*database), (Fields{"Scene", "Date"}));
        EXPECT_EQ(columnTypes(*database), (std::vector<int>{'a', 'd'}));
    }
}

TEST(DatabaseLifeCycle, InitKeepsRecordsAndFreeReleasesThem) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a"}, {{"x"}});
    database->set_param_val("key", "value");
    database->set_field(0, 0, "y");
    const Zr::Ptr<dbrecord> record = database->get_record(0);
    database->set_show_tags_only(1);

    database->init();
    EXPECT_EQ(database->get_record(0).get(), record.get());
    EXPECT_EQ(database->get_fieldnum("a"), notFound);
    EXPECT_FALSE(database->get_changed() || database->get_valid());
    database->setFields(sceneAndDate);
    EXPECT_EQ(record->refCount(), 1) << "columns come with the old records gone";
    EXPECT_TRUE(database->get_valid() && database->get_fieldnum("date") == 1 && database->params().empty());

    database->add_records(2);
    database->set_sortfield(1);
    database->set_param_val("key", "value");
    database->free();
    expectEmpty(*database, 0);
    database->post_init();
    EXPECT_EQ(database->getSortFieldIdx(), 0);
}

TEST(DatabaseCopy, SharesParametersAndCopiesColumnsAndRecordsOnDemand) {
    const Zr::Ptr<kesta> original = makeDatabase(sceneAndDate, {{"1", "  2"}, {"3", "4"}});
    original->set_param_val("Mode", "x");
    original->set_tag(0, 1);
    original->set_field(1, 0, "changed");
    original->set_filename(L"original");
    original->insert_records(1, 2);

    const Zr::Ptr<kesta> shape(new kesta(*original, 0));
    EXPECT_EQ(columnTypes(*shape), columnTypes(*original));
    EXPECT_EQ(shape->get_num_records(), 0U);
    EXPECT_TRUE(shape->get_valid() && !shape->get_changed() && shape->get_filename().empty());

    const Zr::Ptr<kesta> copy(new kesta(*original, -1));
    EXPECT_EQ(rowsOf(*copy), (std::vector<Fields>{{"1", "  2"}, {"", ""}, {"", ""}, {"changed", "4"}}))
        << "empty records for missing ones";
    const Zr::Ptr<dbrecord> copied = copy->get_record(3);
    EXPECT_FALSE(copy->get_tag(0) || copied->get_container() || copied->get_changed());
    copy->set_field(0, 0, "other");
    copy->addField({"New", DBFieldTypes::eText});
    EXPECT_EQ(fieldsOf(*original->get_record(0)), (Fields{"1", "  2"}));
    EXPECT_EQ(original->get_fieldnum("New"), notFound);

    copy->set_param_val("mode", "y");
    shape->set_param_val("Other", "z");
    EXPECT_EQ(paramsOf(*original), (Pairs{{"KESTA", "Rev 1"}, {"Mode", "y"}, {"Other", "z"}}));
}

TEST(DatabaseColumns, AreFoundByTheFirstOfEqualNamesAndNeverByNone) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"Date", "Scene", "", "SCENE"});
    EXPECT_EQ(database->get_fieldnum("sCENE"), 1U);
    for (const char* const missing : {"", "Scene ", "Scen"})
        EXPECT_EQ(database->get_fieldnum(missing), notFound);
    EXPECT_EQ(database->getFieldNameIndexMap().size(), 3U);
    EXPECT_STREQ(database->get_fieldname(notFound), "");
    for (const char* const nothing : {"&", static_cast<const char*>(nullptr)}) {
        EXPECT_TRUE(database->set_fieldname(0, "x") && database->set_fieldname(0, nothing));
        EXPECT_STREQ(database->get_fieldname(0), "");
    }
    EXPECT_EQ(kesta::strip_char_from_string('\xE9', "\xE9&\xE9"), "&");
    EXPECT_EQ(kesta::strip_char_from_string('&', nullptr), "");
}

TEST(DatabaseColumns, EndWithTheMostThatARecordCanHold) {
    Fields names;
    for (int i = 0; i < 65534; ++i) names.push_back('n' + std::to_string(i));
    const Zr::Ptr<kesta> database = makeTextDatabase(names, {{"x"}});
    EXPECT_EQ(database->addField({"last", DBFieldTypes::eNone}), 65534U);
    EXPECT_EQ(database->get_fieldtype(65534), DBFieldTypes::eText) << "a column always has a type";
    EXPECT_EQ(database->addField({"one more", DBFieldTypes::eText}), notFound);
    EXPECT_EQ(database->get_num_fields(), 65535U);
    EXPECT_TRUE(database->set_field(0, 65534, "y") == 1 && database->getField(0, 65534) == "y");
}

TEST(DatabaseParameters, AreKeptInOrderAfterTheRevision) {
    kesta database;
    EXPECT_EQ(database.add_param("", "x"), -1);
    EXPECT_EQ(paramsOf(database), (Pairs{{"KESTA", "Rev 1"}})) << "it comes first, whatever is added";
    EXPECT_EQ(database.add_param("Mode", "x") + database.add_param("MODE", "y"), 0);
    database.set_param_val("Empty", nullptr);
    database.set_param_val(nullptr, "ignored");
    database.set_param_val("kesta", "Rev 5");
    EXPECT_EQ(paramsOf(database), (Pairs{{"KESTA", "Rev 5"}, {"Mode", "y"}, {"Empty", ""}}));
    EXPECT_EQ(str(database.params()[1].asString()), "Mode=y");
    EXPECT_EQ(database.get_revision(), 1);

    EXPECT_EQ(database.get_param_val("mODE") + str(database.getParamVal("Mode")), "yy");
    for (const char* const empty : {"missing", "Empty", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(database.get_param_val(empty) + str(database.getParamVal(empty)), "");
    }
    EXPECT_EQ(database.findParamIndex("EMPTY"), 2);
    EXPECT_EQ(database.findParamIndex("missing"), -1);
}

TEST(DatabaseFields, AreStoredAndReadAsTextNumbersAndFlags) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a", "b"}, {{"", ""}});
    const auto after = [&database](bool stored) {
        EXPECT_TRUE(stored);
        return str(database->getField(0, 1));
    };
    EXPECT_EQ(after(database->set_field(0, 1, -42)), "-42");
    EXPECT_EQ(after(database->set_field(0, 1, 0.125)), "0.12500000");
    EXPECT_EQ(after(database->set_field(0, 1, true)), "t");
    EXPECT_EQ(after(database->set_field(0, 1, "  12abc ") == 1), "12abc ");

    int number = 0;
    double real = 0;
    EXPECT_TRUE(database->in_field(0, 1, number) && database->in_field(0, 1, real));
    EXPECT_EQ(number, 12);
    EXPECT_EQ(real, 12.0);
    // The text is closed by a zero where it ends, and so is the room of one byte more than asked for.
    const std::pair<int, std::string> copies[] = {{0, bytes("\0#########")},
                                                  {2, bytes("12\0#######")},
                                                  {6, bytes("12abc \0###")},
                                                  {8, bytes("12abc \0#\0#")}};
    const Zr::Ptr<dbrecord> record = database->get_record(0);
    for (const auto& [length, copy] : copies) {
        std::string buffer(10, '#');
        std::string second = buffer;
        EXPECT_TRUE(database->in_field(0, 1, buffer.data(), length) &&
                    record->in_field(1, second.data(), length));
        EXPECT_EQ(buffer + second, copy + copy) << length;
    }
    for (const char* const value : {"tomorrow", "f", "T", "1"}) {
        database->set_field(0, 1, value);
        bool flag = *value != 't';
        EXPECT_TRUE(database->in_field(0, 1, flag));
        EXPECT_EQ(flag, *value == 't') << value << ": only the first byte counts";
    }
}

TEST(DatabaseFields, EmptyAndMissingOnesLeaveTheDestinationAlone) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a", "b"}, {{"", "x"}});
    database->insert_records(1, 2);
    const std::pair<unsigned, unsigned> places[] = {{0, 0}, {0, 2}, {0, 65537},   {0, notFound},
                                                    {2, 1}, {3, 1}, {notFound, 1}};
    for (const auto& [row, field] : places) {
        int number = 7;
        double real = 7;
        bool flag = true;
        char buffer[] = "#";
        EXPECT_FALSE(database->in_field(row, field, number) || database->in_field(row, field, real) ||
                     database->in_field(row, field, flag) || database->in_field(row, field, buffer, 1));
        EXPECT_TRUE(number == 7 && real == 7 && flag && *buffer == '#') << row << ' ' << field;
        EXPECT_TRUE(database->getField(row, field).empty());
        if (row == 0 && field == 0) continue;
        EXPECT_EQ(database->set_field(row, field, "y"), 0);
        EXPECT_FALSE(database->setField(row, field, "y") || database->set_field(row, field, 1) ||
                     database->set_field(row, field, 1.0) || database->set_field(row, field, true));
    }
    char buffer[] = "#";
    EXPECT_FALSE(database->in_field(0, 1, nullptr, 1) || database->in_field(0, 1, buffer, -1));
    EXPECT_FALSE(database->get_changed());
}

// --- What a derived class returns counts ---

namespace {

// Knows a column of its own, presents two rows in reverse, and hears what is set.
struct Derived : kesta {
    using kesta::get_record;
    using kesta::kesta;
    Zr::Ptr<dbrecord> get_record(unsigned row) const override { return kesta::get_record(1 - row); }
    const Text& getField(unsigned row, unsigned field) const override {
        return kesta::getField(row, 1 - field);
    }
    unsigned get_fieldnum(const Text& name) const override {
        return name == "known" ? 77 : kesta::get_fieldnum(name);
    }
    int add_param(const Text& key, const Text& value) override {
        heard = str(key) + '=' + str(value);
        return 0;
    }
    std::string heard;
};

}  // namespace

TEST(DerivedDatabase, IsAskedForItsRecordsFieldsAndColumns) {
    Derived database(textColumns({"a", "b"}));
    database.add_records(2);
    kesta& base = database;
    EXPECT_TRUE(base.set_field(0, 0, 5) && base.set_field(0, 1, "6") == 1 && base.setField(1, 0, "7"));
    EXPECT_EQ(rowsOf(base), (std::vector<Fields>{{"5", "6"}, {"7", ""}})) << "where they are shown";
    EXPECT_EQ(fieldsOf(*base.kesta::get_record(1U)), (Fields{"5", "6"}));
    int number = 0;
    EXPECT_TRUE(base.in_field(1, 1, number));
    EXPECT_EQ(number, 7);
    EXPECT_EQ(rowsOf(kesta(base, 1)), rowsOf(base)) << "as they are shown";
    EXPECT_EQ(base.addField({"known", DBFieldTypes::eText}), 77U);
    EXPECT_EQ(base.get_num_fields(), 2U);
    base.set_param_val("key", "value");
    EXPECT_EQ(database.heard, "key=value");
}

// --- Settings, which a process reads once: they are tested in a process of its own ---

namespace {

// Ends the process with 0, or with a bit for each expectation that does not hold.
[[noreturn]] void testWithSettingsOff() {
    config_set_int("remove_fieldname_ampersands", 0);
    config_set_int("dbv_reel_field_editable", 0);
    const Zr::Ptr<kesta> database =
        makeTextDatabase({"name", "reel", "snd reel", "lab reel", "who"}, {{"n", "r", "s", "l", "w"}});
    configb block;
    const bool exported = database->get_record(0)->update(&block) == 2;
    database->set_fieldname(0, "Sc&ene");
    config_set_int("remove_fieldname_ampersands", 1);
    database->set_fieldname(1, "&b");
    const bool names = columnNames(*database) == Fields{"Sc&ene", "&b", "snd reel", "lab reel", "who"};
    const bool kept = block.find("reelid") && block.find("who") && block.find("name");
    const bool leftOut = !block.find("reelid1") && !block.find("lab_reel");
    std::_Exit(!exported + !names * 2 + !kept * 4 + !leftOut * 8);
}

}  // namespace

TEST(DatabaseSettings, KeepAmpersandsAndExportNoSecondaryReelsWhenTheyAreOff) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(testWithSettingsOff(), testing::ExitedWithCode(0), "");
}
