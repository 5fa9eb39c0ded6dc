// Queries: matching records and fields, and tagging by match and by distinct value.
#include <ctime>
#include <gtest/gtest.h>
#include <limits>

#include "tests/AllocationFailures.h"

namespace {

using namespace TestSupport;
using TextSearch::Criteria;
using TextSearch::Criterion;

void setQuery(kesta& database, const Fields& texts) {
    const Zr::Ptr<dbrecord> query(new dbrecord(static_cast<unsigned short>(texts.size())));
    for (unsigned short i = 0; i < texts.size(); ++i) query->setField(i, text(texts[i]));
    database.set_query(query.get());
}

Criteria contains(const char* wanted) {
    return Criteria(Criterion(wanted, TextSearch::eContains));
}

std::vector<int> matches(const kesta& database) {
    std::vector<int> answers;
    for (unsigned row = 0; row < database.get_num_records(); ++row) {
        answers.push_back(database.match_record(static_cast<int>(row)));
    }
    return answers;
}

std::vector<int> tagsOf(kesta& database) {
    std::vector<int> tags;
    for (unsigned row = 0; row < database.get_num_records(); ++row) tags.push_back(database.get_tag(row));
    return tags;
}

Zr::Ptr<kesta> shots() {
    return makeTextDatabase({"Name", "Reel"},
                            {{"Wide harbour", "A001"}, {"close harbour", "A002"}, {"Wide roof", "B001"}});
}

TEST(Query, EveryFieldWithATextMustContainIt) {
    const auto database = shots();
    EXPECT_EQ(matches(*database), (std::vector<int>{-1, -1, -1}));
    setQuery(*database, {"HARBOUR", "a"});
    EXPECT_EQ(matches(*database), (std::vector<int>{1, 1, 0}));
    setQuery(*database, {"wide", "01"});
    EXPECT_EQ(matches(*database), (std::vector<int>{1, 0, 1}));
    setQuery(*database, {"", ""});
    EXPECT_EQ(matches(*database), (std::vector<int>{1, 1, 1}));
    EXPECT_EQ(database->match_record(3), -1);
    EXPECT_EQ(database->match_record(-1), -1);
    EXPECT_EQ(database->match_record(Zr::Ptr<dbrecord>()), -1);
    EXPECT_TRUE(database->match_field(database->get_record(0).get(), -1));
    EXPECT_TRUE(database->match_field(nullptr, 70'000));
}

TEST(Query, StaysWhenTheNewOneIsTooShort) {
    const auto database = shots();
    setQuery(*database, {"roof", ""});
    setQuery(*database, {"harbour"});
    database->set_query(nullptr);
    database->setQuery({contains("harbour")});
    EXPECT_EQ(matches(*database), (std::vector<int>{0, 0, 1}));
    database->setQuery({contains("harbour"), Criteria(), contains("never looked at")});
    EXPECT_EQ(matches(*database), (std::vector<int>{1, 1, 0}));

    Criteria both = contains("harbour");
    both.add(Criterion("wide", TextSearch::eBeginsWith));
    database->setQuery({both, Criteria()});
    EXPECT_EQ(matches(*database), (std::vector<int>{1, 0, 0}));

    // Columns that come later have no condition; without columns everything matches.
    database->addField({"Scene", DBFieldTypes::eText});
    EXPECT_EQ(matches(*database), (std::vector<int>{1, 0, 0}));
    for (const char* name : {"Name", "Reel", "Scene"}) database->removeField(name);
    EXPECT_EQ(matches(*database), (std::vector<int>{1, 1, 1}));
}

TEST(Query, AnHeirsNumberOfFieldsEndsTheMatch) {
    class Narrow : public kesta {
     public:
        using kesta::kesta;
        unsigned get_num_fields() const override { return fields; }
        unsigned fields = 2;
    };
    const Zr::Ptr<Narrow> database(new Narrow(textColumns({"A", "B"})));
    database->add_records(1);
    setQuery(*database, {"", "x"});
    EXPECT_EQ(database->match_record(0), 0);
    database->fields = 1;
    EXPECT_EQ(database->match_record(0), 1);
    database->fields = 100'000;
    EXPECT_EQ(database->match_record(0), 0);
    setQuery(*database, {"", ""});
    EXPECT_EQ(database->match_record(0), 0);
    database->fields = 2;
    setQuery(*database, {"", ""});
    database->fields = std::numeric_limits<unsigned>::max();
    EXPECT_EQ(database->match_record(0), 1);
}

bool fieldMatches(DBFieldTypes::eType type, const char* stored, const char* wanted) {
    const auto database = makeDatabase({{"Value", type}}, {{stored}});
    return database->matchField(database->get_record(0).get(), 0, contains(wanted));
}

TEST(MatchingFields, CodesMatchAsShownAndDatesAsCalendarDates) {
    EXPECT_TRUE(fieldMatches(DBFieldTypes::eTimecodeS, "01000010", "01:00:00:10"));
    EXPECT_TRUE(fieldMatches(DBFieldTypes::eTimecodeS, "01000010;", "00:00.10"));
    EXPECT_FALSE(fieldMatches(DBFieldTypes::eTimecodeS, "01000010", "0100"));
    EXPECT_TRUE(fieldMatches(DBFieldTypes::eTimecode, "01:00:00;10", "00;00:10"));
    EXPECT_FALSE(fieldMatches(DBFieldTypes::eTimecode, "01000010", "01:00"));
    EXPECT_FALSE(fieldMatches(DBFieldTypes::eText, "01:00;00", "01:00:00"));

    const std::time_t epoch = 0;
    const std::time_t late = 4'000'000'000;
    EXPECT_TRUE(fieldMatches(DBFieldTypes::eDosDate, "0", std::ctime(&epoch)));
    EXPECT_TRUE(fieldMatches(DBFieldTypes::eDosDate, "no number", std::ctime(&epoch)));
    EXPECT_TRUE(fieldMatches(DBFieldTypes::eDosDate, "4000000000", std::ctime(&late)));
    EXPECT_FALSE(fieldMatches(DBFieldTypes::eDosDate, "0", "zero"));
    EXPECT_FALSE(fieldMatches(DBFieldTypes::eDate, "0", std::ctime(&epoch)));

    const auto database = shots();
    EXPECT_FALSE(database->matchField(nullptr, 0, Criteria()));
    EXPECT_TRUE(database->matchField(database->get_record(0).get(), 9, Criteria()));
    EXPECT_FALSE(database->matchField(database->get_record(0).get(), 9, contains("x")));
}

TEST(MatchingRanges, AQueryInEitherFieldOfAPairFindsTheRangesItTouches) {
    const auto database = makeTextDatabase({"Start time", "End time"}, {{"01:00:05:00", "01:00:20:00"},
                                                                        {"01:00:30:00", "01:00:40:00"},
                                                                        {"", "01:00:20:00"},
                                                                        {"01:00:05:00", ""}});
    for (const bool inStart : {true, false}) {
        SCOPED_TRACE(inStart);
        const auto query = [&](const char* wanted) {
            setQuery(*database, inStart ? Fields{wanted, ""} : Fields{"", wanted});
            return matches(*database);
        };
        EXPECT_EQ(query("01:00:1"), (std::vector<int>{1, 0, 0, 0}));
        EXPECT_EQ(query("01:00:2"), (std::vector<int>{1, 0, 0, 0}));
        EXPECT_EQ(query("01:00:05"), (std::vector<int>{1, 0, 0, 1}));
        EXPECT_EQ(query("01:00"), (std::vector<int>{1, 1, 0, 1}));
        EXPECT_EQ(query("01:00:41"), (std::vector<int>{0, 0, 0, 0}));
        EXPECT_EQ(query("00"), (std::vector<int>{0, 0, 0, 0}));
        EXPECT_EQ(query(";"), (std::vector<int>{0, 0, 0, 0}));
    }
}

TEST(MatchingRanges, NeedTheirStartColumnAndMindCase) {
    const auto noEnd = makeTextDatabase({"start keycode"}, {{"KJ 10"}, {"KJ 20"}});
    setQuery(*noEnd, {"KJ 1"});
    EXPECT_EQ(matches(*noEnd), (std::vector<int>{1, 0}));
    setQuery(*noEnd, {"kj 1"});
    EXPECT_EQ(matches(*noEnd), (std::vector<int>{0, 0}));

    const auto noStart = makeTextDatabase({"snd end"}, {{"01"}});
    setQuery(*noStart, {"01"});
    EXPECT_EQ(matches(*noStart), std::vector<int>{0});
    EXPECT_FALSE(noStart->found_in_special_label_field(nullptr, 0));
    EXPECT_TRUE(noStart->found_in_special_label_field(nullptr, -1));

    // In another case the name is that of a plain column.
    const auto plain = makeTextDatabase({"start time", "Start Keycode"}, {{"x01", ""}});
    setQuery(*plain, {"01", ""});
    EXPECT_EQ(matches(*plain), std::vector<int>{1});
    EXPECT_TRUE(plain->found_in_special_label_field(plain->get_record(0).get(), 0));

    // The first criterion alone counts, however it wants to match; one without text wants a start.
    const auto ranges = makeTextDatabase({"start inkcode", "end inkcode"}, {{"B", "D"}, {"", "D"}});
    Criteria criteria(Criterion("", TextSearch::eContains));
    criteria.add(Criterion("Z", TextSearch::eWhole));
    ranges->setQuery({criteria, Criteria()});
    EXPECT_EQ(matches(*ranges), (std::vector<int>{1, 0}));
    criteria = Criteria(Criterion("C", TextSearch::eWhole));
    criteria.add(Criterion("Z", TextSearch::eWhole));
    ranges->setQuery({criteria, Criteria()});
    EXPECT_EQ(matches(*ranges), (std::vector<int>{1, 0}));
}

TEST(TaggingMatches, KeepsOrReplacesTagsAndCountsMissingRows) {
    const auto database = shots();
    database->set_tag(2, 3);
    EXPECT_EQ(database->tag_matching_records(0), 0);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{0, 0, 3}));

    setQuery(*database, {"harbour", ""});
    EXPECT_EQ(database->tag_matching_records(1), 2);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{1, 1, 3}));
    setQuery(*database, {"wide", ""});
    EXPECT_EQ(database->tag_matching_records(0), 2);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{1, 0, 1}));

    database->insert_records(0, 2);
    EXPECT_EQ(database->tag_matching_records(0), 3);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{0, -1, 1, 0, 1}));
}

TEST(TaggingMatches, AsksAnHeirForItsRows) {
    class Picky : public kesta {
     public:
        using kesta::kesta;
        int match_record(int row) const override { return row % 2; }
        void set_tag(unsigned row, int value) override { kesta::set_tag(row, value + 4); }
    };
    const Zr::Ptr<Picky> database(new Picky(textColumns({"Name"})));
    database->add_records(3);
    setQuery(*database, {""});
    EXPECT_EQ(database->tag_matching_records(0), 1);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{4, 5, 4}));
}

TEST(TaggingDifferent, TagsTheFirstOfEachRunOfEqualValues) {
    const auto database =
        makeTextDatabase({"Name", "Row"}, {{"b", ""}, {"A", ""}, {"", "x"}, {"a", ""}, {"B", ""}, {"", "y"}});
    database->set_all_tags(9);
    EXPECT_EQ(database->tag_all_different(0), 3);
    EXPECT_EQ(database->getSortFieldIdx(), 0);
    EXPECT_EQ(columnOf(*database, 0), (Fields{"A", "a", "B", "b", "", ""}));
    // The empty values follow others, so their run has a first as well.
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{1, 0, 1, 0, 1, 0}));

    EXPECT_EQ(database->tag_all_different(1), 3);
    EXPECT_EQ(database->tag_all_different(2), 0);
    EXPECT_EQ(database->tag_all_different(-1), 0);
    EXPECT_EQ(makeTextDatabase({"Name"}, {{""}, {""}})->tag_all_different(0), 0);
}

TEST(TaggingDifferent, ClearsTheTagsOfShownRowsOnlyAndShowsAll) {
    const auto database = makeTextDatabase({"Row", "Name"}, {{"", "a"}, {"", "A"}});
    database->set_all_tags(9);
    database->set_show_tags_only(1);
    EXPECT_EQ(database->tag_all_different(1), 2);
    EXPECT_EQ(database->get_show_tags_only(), 0);
    EXPECT_EQ(database->getSortFieldIdx(), 1);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{1, 9}));
}

TEST(TaggingDifferent, ValuesBeyond255CharactersAllDiffer) {
    const std::string longest(255, 'x');
    const auto database =
        makeTextDatabase({"Name"}, {{longest}, {longest}, {longest + "y"}, {longest + "y"}});
    EXPECT_EQ(database->tag_all_different(0), 3);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{1, 0, 1, 1}));
}

TEST(Query, SurvivesRunningOutOfMemory) {
    const auto prepare = [] {
        auto database = makeDatabase({{"Start", DBFieldTypes::eTimecodeS}, {"Day", DBFieldTypes::eDosDate}},
                                     {{"01000010", "0"}, {"02000010", "0"}});
        setQuery(*database, {"02:00", ""});
        return database;
    };
    const auto operation = [](const Zr::Ptr<kesta>& database) {
        setQuery(*database, {"01:00", "19"});
        database->tag_matching_records(0);
        database->tag_all_different(0);
    };
    failEachAllocation(prepare, operation, [](const Zr::Ptr<kesta>& database) {
        // Either query, but nothing between.
        const std::vector<int> found = matches(*database);
        EXPECT_EQ(found[0] + found[1], 1);
        EXPECT_EQ(database->tag_matching_records(0), 1);
    });
}

}  // namespace

TEST(Querying, AQueryEndsWithTheColumnsItWasMadeFor) {
    const Zr::Ptr<kesta> database = shots();
    setQuery(*database, {"Wide", ""});
    database->setFields(textColumns({"Scene"}));
    database->add_records(1);
    EXPECT_EQ(matches(*database), (std::vector<int>{-1}));
}

TEST(SpecialColumns, AreSoByTheirOwnNamesWhateverWasThereBefore) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"Start time", "End time", "Name"});
    database->free();
    for (const char* const name : {"Name", "Start time"}) database->addField({name, DBFieldTypes::eText});
    fill(*database, {{"abc", "01:00:00:00"}});
    setQuery(*database, {"zzz", ""});
    EXPECT_EQ(matches(*database), (std::vector<int>{0})) << "a name is matched as text";
    setQuery(*database, {"", "01:00"});
    EXPECT_EQ(matches(*database), (std::vector<int>{1}));
    database->set_fieldname(1, "Reel");
    setQuery(*database, {"", "00:00:00"});
    EXPECT_EQ(matches(*database), (std::vector<int>{1})) << "renamed, it is text like any other";
}
