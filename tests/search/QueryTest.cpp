// Queries: matching records and fields, and tagging by match and by distinct value.
#include <ctime>
#include <limits>
#include <random>

#include "support/Ascii.h"
#include "tests/TestSupport.h"

using namespace TestSupport;
using TextSearch::Criteria;
using TextSearch::Criterion;

namespace {

void setQuery(kesta& database, const Fields& texts) {
    database.set_query(makeRecord(texts).get());
}

Criteria contains(const char* wanted) {
    return Criteria(Criterion(wanted, TextSearch::eContains));
}

std::vector<int> matches(const kesta& database) {
    std::vector<int> answers(database.get_num_records());
    for (unsigned row = 0; row < answers.size(); ++row) answers[row] = database.match_record(int(row));
    return answers;
}

std::vector<int> tagsOf(kesta& database) {
    std::vector<int> tags(database.get_num_records());
    for (unsigned row = 0; row < tags.size(); ++row) tags[row] = database.get_tag(row);
    return tags;
}

Zr::Ptr<kesta> shots() {
    return makeTextDatabase({"Name", "Reel"},
                            {{"Wide harbour", "A001"}, {"close harbour", "A002"}, {"Wide roof", "B001"}});
}

// What a query finds, in plain words.
class Model {
 public:
    Fields names;
    Fields query;

    int matches(const Fields& row) const {
        if (query.empty()) return -1;
        for (std::size_t i = 0; i < names.size() && i < query.size(); ++i) {
            if (!query[i].empty() && !matches(row, i)) return 0;
        }
        return 1;
    }

 private:
    bool matches(const Fields& row, std::size_t i) const {
        static const std::pair<const char*, const char*> pairs[] = {
            {"Start time", "End time"},         {"snd start", "snd end"},
            {"start 24P code", "end 24P code"}, {"start keycode", "end keycode"},
            {"start camcode", "end camcode"},   {"start inkcode", "end inkcode"}};
        for (const auto& [start, end] : pairs) {
            if (names[i] == start || names[i] == end)
                return inRange(textOf(row, start), textOf(row, end), query[i]);
        }
        return Ascii::folded(row[i]).find(Ascii::folded(query[i])) != std::string::npos;
    }

    // As many characters as are sought are compared.
    static bool inRange(const std::string& start, const std::string& end, const std::string& sought) {
        const std::string from = start.substr(0, sought.size());
        if (start.empty() || from == sought) return !start.empty();
        return !end.empty() && from < sought && sought <= end.substr(0, sought.size());
    }

    std::string textOf(const Fields& row, const char* name) const {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (Ascii::equalFolded(names[i], name)) return row[i];
        }
        return "";
    }
};

}  // namespace

// --- Matching ---

TEST(Query, FindsWhatTheModelFindsWhateverBecomesOfTheColumns) {
    std::mt19937 random(3);
    const auto any = [&](const auto& choices) { return choices[random() % std::size(choices)]; };
    constexpr const char* columns[] = {
        "Start time",    "End time",      "snd start",   "snd end",       "start 24P code",
        "end 24P code",  "start keycode", "end keycode", "start camcode", "end camcode",
        "start inkcode", "end inkcode",   "start time",  "Name",          ""};
    constexpr const char* texts[] = {"", "10", "15", "20", "a", "A", "1a5", "1A", "2"};
    const auto textsFor = [&](const kesta& database) {
        Fields chosen(database.get_num_fields());
        for (std::string& each : chosen) each = any(texts);
        return chosen;
    };
    for (int round = 0; round < 3000; ++round) {
        const Zr::Ptr<kesta> database = makeTextDatabase({"Start time", "Name"});
        if (round % 4 == 0) database->free();
        const auto changeColumns = [&] {
            // Mostly the two columns of a pair.
            const std::size_t which = random() % std::size(columns);
            const char* const column = random() % 4 ? columns[which & ~1U] : columns[which];
            for (const char* const name : {column, columns[which | (which < 14)]}) {
                switch (random() % 5) {
                    case 0:
                        database->removeField(name);
                        break;
                    case 1:
                        database->set_fieldname(unsigned(random() % 3), name);
                        break;
                    default:
                        database->addField({name, DBFieldTypes::eText});
                }
            }
        };
        for (auto n = random() % 4; n != 0; --n) changeColumns();
        Model model;
        model.query = textsFor(*database);
        setQuery(*database, model.query);
        for (auto n = random() % 3; n != 0; --n) changeColumns();
        model.names = columnNames(*database);
        for (unsigned row = 0; row < 10; ++row) {
            const Fields fields = textsFor(*database);
            fill(*database, {fields});
            ASSERT_EQ(database->match_record(static_cast<int>(row)), model.matches(fields))
                << "round " << round << ": columns, query and row "
                << testing::PrintToString(std::tie(model.names, model.query, fields));
        }
    }
}

TEST(Query, StaysWhenTheNewOneIsTooShortAndGoesWithTheColumns) {
    const auto database = shots();
    EXPECT_EQ(matches(*database), (std::vector<int>{-1, -1, -1}));
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
    for (const int missing : {3, -1}) EXPECT_EQ(database->match_record(missing), -1);
    EXPECT_EQ(database->match_record(Zr::Ptr<dbrecord>()), -1);
    for (const int column : {-1, 70'000}) EXPECT_TRUE(database->match_field(nullptr, column));

    database->setFields(textColumns({"Scene"}));
    database->add_records(1);
    EXPECT_EQ(matches(*database), (std::vector<int>{-1}));
}

TEST(Query, ADerivedClassesNumberOfFieldsEndsTheMatch) {
    struct Narrow : kesta {
        using kesta::kesta;
        unsigned get_num_fields() const override { return fields; }
        unsigned fields = 2;
    };
    const Zr::Ptr<Narrow> database(new Narrow(textColumns({"A", "B"})));
    database->add_records(1);
    setQuery(*database, {"", "x"});
    for (const unsigned fields : {2U, 1U, 100'000U, std::numeric_limits<unsigned>::max()}) {
        database->fields = fields;
        EXPECT_EQ(database->match_record(0), fields == 1) << fields;
    }
    setQuery(*database, {"", ""});
    EXPECT_EQ(database->match_record(0), 0) << "too short for so many fields";
}

TEST(MatchingFields, CodesMatchAsShownAndDatesAsCalendarDates) {
    const auto date = [](std::time_t time) { return std::string(std::ctime(&time)); };
    const std::tuple<DBFieldTypes::eType, const char*, std::string, bool> cases[] = {
        {DBFieldTypes::eTimecodeS, "01000010", "01:00:00:10", true},
        {DBFieldTypes::eTimecodeS, "01000010;", "00:00.10", true},
        {DBFieldTypes::eTimecodeS, "01000010", "0100", false},
        {DBFieldTypes::eTimecode, "01:00:00;10", "00;00:10", true},
        {DBFieldTypes::eTimecode, "01000010", "01:00", false},
        {DBFieldTypes::eText, "01:00;00", "01:00:00", false},
        {DBFieldTypes::eDosDate, "0", date(0), true},
        {DBFieldTypes::eDosDate, "no number", date(0), true},
        {DBFieldTypes::eDosDate, "4000000000", date(4000000000), true},
        {DBFieldTypes::eDosDate, "0", "zero", false},
        {DBFieldTypes::eDate, "0", date(0), false},
    };
    for (const auto& [type, stored, wanted, found] : cases) {
        const auto database = makeDatabase({{"Value", type}}, {{stored}});
        const dbrecord* const record = database->get_record(0).get();
        EXPECT_EQ(database->matchField(record, 0, contains(wanted.c_str())), found) << stored << wanted;
        EXPECT_FALSE(database->matchField(nullptr, 0, Criteria()) ||
                     database->matchField(record, 9, contains("x")));
        EXPECT_TRUE(database->matchField(record, 9, Criteria()));
    }
}

TEST(MatchingRanges, LookAtTheFirstCriterionAloneAndAtNothingElseOfIt) {
    const auto ranges =
        makeTextDatabase({"start inkcode", "end inkcode", "Name"}, {{"B", "D", ""}, {"", "D", ""}});
    for (const char* const first : {"C", ""}) {
        Criteria criteria(Criterion(first, TextSearch::eWhole));  // one without text wants a start
        criteria.add(Criterion("Z", TextSearch::eWhole));
        ranges->setQuery({criteria, Criteria(), contains("x")});
        for (const unsigned row : {0U, 1U}) {
            EXPECT_EQ(ranges->match_field(ranges->get_record(row).get(), 0), row == 0) << first;
        }
    }
    EXPECT_FALSE(ranges->found_in_special_label_field(nullptr, 0));
    for (const int plain : {1, 2, 3, -1}) EXPECT_TRUE(ranges->found_in_special_label_field(nullptr, plain));
}

// --- Tagging ---

TEST(TaggingMatches, KeepsOrReplacesTagsAndCountsMissingRows) {
    const auto database = shots();
    database->set_tag(2, 3);
    EXPECT_EQ(database->tag_matching_records(0), 0);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{0, 0, 3}));

    setQuery(*database, {"harbour", ""});
    EXPECT_EQ(database->tag_matching_records(1), 2);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{1, 1, 3}));
    setQuery(*database, {"wide", ""});
    database->insert_records(0, 2);
    EXPECT_EQ(database->tag_matching_records(0), 3);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{0, -1, 1, 0, 1}));
}

TEST(TaggingMatches, AsksADerivedClassForItsRows) {
    struct Picky : kesta {
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
    EXPECT_EQ(columnOf(*database, 0), (Fields{"A", "a", "B", "b", "", ""}));
    // The empty values follow others, so their run has a first as well.
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{1, 0, 1, 0, 1, 0}));

    EXPECT_EQ(database->tag_all_different(1), 3);
    EXPECT_EQ(database->tag_all_different(2) + database->tag_all_different(-1), 0);
    EXPECT_EQ(makeTextDatabase({"Name"}, {{""}, {""}})->tag_all_different(0), 0);

    // Values beyond 255 characters all differ.
    const std::string longest(255, 'x');
    const auto cut = makeTextDatabase({"Name"}, {{longest}, {longest}, {longest + "y"}, {longest + "y"}});
    EXPECT_EQ(cut->tag_all_different(0), 3);
    EXPECT_EQ(tagsOf(*cut), (std::vector<int>{1, 0, 1, 1}));
}

TEST(TaggingDifferent, ClearsTheTagsOfShownRowsOnlyAndShowsAll) {
    const auto database = makeTextDatabase({"Row", "Name"}, {{"", "a"}, {"", "A"}});
    database->set_all_tags(9);
    database->set_show_tags_only(1);
    EXPECT_EQ(database->tag_all_different(1), 2);
    EXPECT_TRUE(database->get_show_tags_only() == 0 && database->getSortFieldIdx() == 1);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{1, 9}));
}
