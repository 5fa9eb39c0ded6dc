// Bringing one database's records into another.
#include "tests/TestSupport.h"

namespace {

using namespace TestSupport;

const DBFieldDesc name("Name", DBFieldTypes::eText);
const DBFieldDesc start("Start", DBFieldTypes::eTimecode);
const std::vector<DBFieldDesc> columns = {name, start};

TEST(Appending, CopiesTheRecordsOfALikeDatabase) {
    const auto target = makeDatabase(columns, {{"a", "1"}});
    const auto source = makeDatabase(columns, {{"  b", "2"}, {"c", "3"}});
    source->set_all_tags(1);
    EXPECT_EQ(target->add_kesta(source.get()), 2);
    EXPECT_EQ(rowsOf(*target), (std::vector<Fields>{{"a", "1"}, {"  b", "2"}, {"c", "3"}}));
    EXPECT_EQ(target->get_tag(1), 0);
    EXPECT_FALSE(target->get_changed());

    target->set_field(1, 0, "changed");
    EXPECT_TRUE(target->get_changed());  // the copy knows whose it is
    EXPECT_EQ(columnOf(*source, 0), (Fields{"  b", "c"}));
    EXPECT_FALSE(source->get_changed());
}

TEST(Appending, RefusesWhatIsNotAlike) {
    const auto target = makeDatabase(columns, {{"a", "1"}});
    const std::vector<DBFieldDesc> others[] = {
        {name, {"start", start.type}}, {name, {"Start", DBFieldTypes::eTimecodeS}}, {start, name}, {name}};
    for (const auto& other : others) EXPECT_EQ(target->add_kesta(makeDatabase(other, {{"b"}}).get()), -1);
    EXPECT_EQ(target->add_kesta(nullptr), -1);
    EXPECT_EQ(target->add_kesta(makeDatabase(columns).get()), 0);

    const CapturedLog log;
    const TempFolder folder;
    const auto older =
        loadDatabase(folder.with("older", "KESTA:Rev 0\nKESTA\n1,1\ntext,timecode\nName,Start\n"));
    ASSERT_EQ(columnNames(*older), columnNames(*target));
    EXPECT_EQ(target->add_kesta(older.get()), -1);

    target->set_show_tags_only(1);
    EXPECT_EQ(target->add_kesta(makeDatabase(columns, {{"b", "2"}}).get()), -1);
    target->set_show_tags_only(0);
    EXPECT_EQ(columnOf(*target, 0), Fields{"a"});
}

TEST(Merging, ReadsItselfOnceAndMissingRowsAsEmptyRecords) {
    const auto database = makeDatabase(columns, {{"a", "1"}, {"b", "2"}});
    database->insert_records(2, 2);
    EXPECT_EQ(database->add_kesta(database.get()), 4);
    ASSERT_EQ(columnOf(*database, 0), (Fields{"a", "b", "", "", "a", "b", "", ""}));
    EXPECT_FALSE(database->get_record(3));
    EXPECT_EQ(fieldsOf(*database->get_record(7)), (Fields{"", ""}));
    EXPECT_EQ(database->merge_all_matching(database.get()), 1);
    EXPECT_EQ(database->get_num_records(), 16U);

    const auto source = makeTextDatabase({"Name"}, {{"c"}});
    database->set_show_tags_only(1);
    EXPECT_EQ(database->merge_all_matching(source.get()), 1) << "though it could append nothing";
    database->set_show_tags_only(0);
    EXPECT_EQ(database->get_num_records(), 16U);
}

TEST(Merging, FillsColumnsOfTheSameNameOnly) {
    const auto target = makeTextDatabase({"Name", "Reel"}, {{"a", "A1"}});
    const auto source = makeTextDatabase({"Tape", "NAME"}, {{"T1", "  b"}, {"T2", ""}});
    EXPECT_EQ(target->merge_all_matching(source.get()), 1);
    EXPECT_EQ(rowsOf(*target), (std::vector<Fields>{{"a", "A1"}, {"b", ""}, {"", ""}}));
    EXPECT_EQ(columnNames(*target), (Fields{"Name", "Reel"}));

    EXPECT_EQ(target->merge_all_matching(makeTextDatabase({"Other"}, {{"x"}}).get()), 0);
    EXPECT_EQ(target->merge_all_matching(nullptr), 0);
    EXPECT_EQ(Zr::Ptr<kesta>(new kesta)->merge_all_matching(source.get()), 0);
    EXPECT_EQ(target->get_num_records(), 3U);
}

TEST(Merging, ConvertsTimecodesBetweenTheirTypes) {
    constexpr auto stored = DBFieldTypes::eTimecodeS;
    constexpr auto shown = DBFieldTypes::eTimecode;
    const std::tuple<DBFieldTypes::eType, const char*, DBFieldTypes::eType, const char*> cases[] = {
        {stored, "01000010;", shown, "01:00:00;10"},
        {shown, "01:00:00;10", stored, "01000010;"},
        {shown, "no code", stored, "no code"},
        {shown, "01000010", shown, "01000010"},
        {stored, "01000010", DBFieldTypes::eText, "01000010"},
        {DBFieldTypes::eText, "01:00:00:10", stored, "01:00:00:10"},
    };
    for (const auto& [from, text, to, merged] : cases) {
        const auto target = makeDatabase({{"Start", to}});
        target->merge_all_matching(makeDatabase({{"Start", from}}, {{text}}).get());
        EXPECT_EQ(target->getField(0, 0), merged) << text;
    }
}

TEST(Merging, SeesTheRowsAndColumnsThatADerivedClassPresents) {
    // Presents one record, as often as its count says, and counts one less at every look.
    struct Derived : kesta {
        using kesta::kesta;
        unsigned get_num_records() const override { return presenting ? rows-- : kesta::get_num_records(); }
        Zr::Ptr<dbrecord> get_record(unsigned) const override { return kesta::get_record(0); }
        unsigned get_fieldnum(const Text&) const override { return 40; }
        DBFieldTypes::eType get_field_type(unsigned field) const override {
            return presenting ? kesta::get_field_type(field) : DBFieldTypes::eTimecodeS;
        }
        const Text& getField(unsigned, unsigned) const override { return code; }
        const Text code = "01000010";
        mutable unsigned rows = 6;
        bool presenting = false;
    };
    const Zr::Ptr<Derived> source(new Derived(columns));
    fill(*source, {{"own", "1"}});
    const auto target = makeDatabase(columns);
    EXPECT_EQ(target->merge_all_matching(source.get()), 1);
    EXPECT_EQ(rowsOf(*target), (std::vector<Fields>{{"01000010", "01000010"}}));

    source->presenting = true;
    EXPECT_EQ(target->add_kesta(source.get()), 3);  // 6 at row 0, 5 at row 1, 4 at row 2, 3 at row 3
    EXPECT_EQ(columnOf(*target, 0), (Fields{"01000010", "own", "own", "own"}));
}

}  // namespace
