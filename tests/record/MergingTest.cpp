// Bringing one database's records into another.
#include <gtest/gtest.h>

#include "tests/AllocationFailures.h"

namespace {

using namespace TestSupport;

std::vector<DBFieldDesc> columns() {
    return {{"Name", DBFieldTypes::eText}, {"Start", DBFieldTypes::eTimecode}};
}

TEST(Appending, CopiesTheRecordsOfALikeDatabase) {
    const auto target = makeDatabase(columns(), {{"a", "1"}});
    const auto source = makeDatabase(columns(), {{"  b", "2"}, {"c", "3"}});
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
    const auto target = makeDatabase(columns(), {{"a", "1"}});
    const auto refuses = [&target](const std::vector<DBFieldDesc>& other) {
        return target->add_kesta(makeDatabase(other, {{"b", "2"}}).get()) == -1;
    };
    EXPECT_TRUE(refuses({{"Name", DBFieldTypes::eText}, {"start", DBFieldTypes::eTimecode}}));
    EXPECT_TRUE(refuses({{"Name", DBFieldTypes::eText}, {"Start", DBFieldTypes::eTimecodeS}}));
    EXPECT_TRUE(refuses({{"Start", DBFieldTypes::eTimecode}, {"Name", DBFieldTypes::eText}}));
    EXPECT_TRUE(refuses({{"Name", DBFieldTypes::eText}}));
    EXPECT_EQ(target->add_kesta(nullptr), -1);

    const CapturedLog log;
    const TempFolder folder;
    const auto older = loadDatabase(folder.with(
        "older", "\"KESTA:Rev 0\"\n\"KESTA\"\n\"1\",\"1\"\n\"text\",\"timecode\"\n\"Name\",\"Start\"\n"));
    ASSERT_EQ(columnNames(*older), columnNames(*target));
    EXPECT_EQ(target->add_kesta(older.get()), -1);
    EXPECT_EQ(target->add_kesta(makeDatabase(columns()).get()), 0);

    target->set_show_tags_only(1);
    EXPECT_EQ(target->add_kesta(makeDatabase(columns(), {{"b", "2"}}).get()), -1);
    target->set_show_tags_only(0);
    EXPECT_EQ(columnOf(*target, 0), Fields{"a"});
}

TEST(Appending, ReadsItselfOnceAndMissingRowsAsEmptyRecords) {
    const auto database = makeDatabase(columns(), {{"a", "1"}, {"b", "2"}});
    database->insert_records(2, 2);
    EXPECT_EQ(database->add_kesta(database.get()), 4);
    ASSERT_EQ(columnOf(*database, 0), (Fields{"a", "b", "", "", "a", "b", "", ""}));
    EXPECT_FALSE(database->get_record(3));
    EXPECT_EQ(fieldsOf(*database->get_record(7)), (Fields{"", ""}));
}

// Presents one record, as often as its count says, and counts one less at every look.
class Shrinking : public kesta {
 public:
    Shrinking() : kesta(columns()) { fill(*this, {{"own", "1"}}); }
    unsigned get_num_records() const override { return shrinking ? rows-- : kesta::get_num_records(); }
    Zr::Ptr<dbrecord> get_record(unsigned) const override { return kesta::get_record(0); }
    mutable unsigned rows = 6;
    bool shrinking = false;
};

TEST(Appending, SeesTheRowsThatAnHeirPresents) {
    const Zr::Ptr<Shrinking> source(new Shrinking);
    source->shrinking = true;
    const auto target = makeDatabase(columns());
    EXPECT_EQ(target->add_kesta(source.get()), 3);  // 6 at row 0, 5 at row 1, 4 at row 2, 3 at row 3
    EXPECT_EQ(columnOf(*target, 0), (Fields{"own", "own", "own"}));
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
    const auto stored = DBFieldTypes::eTimecodeS;
    const auto shown = DBFieldTypes::eTimecode;
    const auto merged = [](DBFieldTypes::eType to, DBFieldTypes::eType from, const char* text) {
        const auto target = makeDatabase({{"Start", to}});
        target->merge_all_matching(makeDatabase({{"Start", from}}, {{text}}).get());
        return str(target->getField(0, 0));
    };
    EXPECT_EQ(merged(shown, stored, "01000010"), "01:00:00:10");
    EXPECT_EQ(merged(shown, stored, "01000010;"), "01:00:00;10");
    EXPECT_EQ(merged(stored, shown, "01:00:00;10"), "01000010;");
    EXPECT_EQ(merged(stored, shown, "no code"), "no code");
    EXPECT_EQ(merged(shown, shown, "01000010"), "01000010");
    EXPECT_EQ(merged(DBFieldTypes::eText, stored, "01000010"), "01000010");
    EXPECT_EQ(merged(stored, DBFieldTypes::eText, "01:00:00:10"), "01:00:00:10");
}

TEST(Merging, StopsWhereRowsCannotBeAppendedAndReadsItselfOnce) {
    const auto database = makeTextDatabase({"Name"}, {{"a"}, {"b"}});
    EXPECT_EQ(database->merge_all_matching(database.get()), 1);
    EXPECT_EQ(columnOf(*database, 0), (Fields{"a", "b", "a", "b"}));
    const auto source = makeTextDatabase({"Name"}, {{"c"}});
    database->set_show_tags_only(1);
    EXPECT_EQ(database->merge_all_matching(source.get()), 1);
    database->set_show_tags_only(0);
    EXPECT_EQ(database->get_num_records(), 4U);
}

TEST(Merging, TakesColumnsThatOnlyAnHeirKnows) {
    class Claiming : public kesta {
     public:
        using kesta::kesta;
        unsigned get_fieldnum(const LightweightString<char>&) const override { return 40; }
        DBFieldTypes::eType get_field_type(unsigned) const override { return DBFieldTypes::eTimecodeS; }
        const LightweightString<char>& getField(unsigned, unsigned) const override { return code; }
        const LightweightString<char> code = "01000010";
    };
    const Zr::Ptr<Claiming> source(new Claiming(textColumns({"Name"})));
    fill(*source, {{"x"}});
    const auto target = makeDatabase(columns());
    EXPECT_EQ(target->merge_all_matching(source.get()), 1);
    EXPECT_EQ(rowsOf(*target), (std::vector<Fields>{{"01000010", "01000010"}}));
}

TEST(Merging, SurvivesRunningOutOfMemory) {
    const auto source = makeDatabase(columns(), {{"b", "1"}, {"a longer name than that", "01:00:00:00"}});
    const auto prepare = [] { return makeDatabase(columns(), {{"a", "0"}}); };
    failEachAllocation(
        prepare, [&](const Zr::Ptr<kesta>& target) { target->add_kesta(source.get()); },
        [](const Zr::Ptr<kesta>& target) { EXPECT_EQ(columnOf(*target, 0), Fields{"a"}); });
    failEachAllocation(
        prepare, [&](const Zr::Ptr<kesta>& target) { target->merge_all_matching(source.get()); },
        [&](const Zr::Ptr<kesta>& target) {
            const unsigned before = target->get_num_records();
            EXPECT_EQ(target->merge_all_matching(source.get()), 1);
            EXPECT_EQ(target->get_num_records(), before + 2);
            EXPECT_EQ(str(target->getField(before, 0)), "b");
        });
}

}  // namespace
