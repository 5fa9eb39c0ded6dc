// Sorting, against a plain model and against the exported comparators.
#include <random>
#include <strings.h>

#include "support/Ascii.h"
#include "tests/TestSupport.h"

namespace {

using namespace TestSupport;

void sortBy(kesta& database, std::vector<int> fields, int direction = 0, int caseInsensitive = 0) {
    fields.push_back(-1);
    database.set_sortfields(fields.data());
    database.sort(direction, caseInsensitive);
}

int compareFirstTwoRows(kesta& database, std::vector<int> fields) {
    fields.push_back(-1);
    database.set_sortfields(fields.data());
    database.sortPrepare(0, 0);
    Zr::Ptr<dbrecord> first = database.get_record(0U);
    Zr::Ptr<dbrecord> second = database.get_record(1U);
    return dbr_cmp(&first, &second);
}

TEST(SortFields, AreListsCutToSixteenBitsAndToNineThatExist) {
    const auto database =
        makeTextDatabase({"A", "B", "C"}, {{"1", "x", "b"}, {"2", "x", "a"}, {"3", "w", "c"}});
    compareFirstTwoRows(*database, {2, 0});
    EXPECT_EQ(database->getSortFieldIdx(), 2);
    database->set_sortfield(0x10001);
    EXPECT_EQ(database->getSortFieldIdx(), 1);
    database->set_sortfield(-1);
    database->sortPrepare(0, 0);
    EXPECT_LT(cmp_fields[0], 0) << "65535 is no column";
    database->set_sortfields(nullptr);
    EXPECT_EQ(database->getSortFieldIdx(), 0);
    sortBy(*database, {1, 2});
    EXPECT_EQ(columnOf(*database, 0), (Fields{"3", "2", "1"}));
    int fill = 0;
    database->get_record(1U)->resizeRecord(2, &fill, false);
    sortBy(*database, {2, 0});
    EXPECT_EQ(columnOf(*database, 0), (Fields{"1", "3", "2"})) << "a field that a record lacks is empty";

    // One that does not exist ends the keys there. The field after the end is the last time code, so field 0
    // compares as text.
    const auto codes = makeDatabase({{"A", DBFieldTypes::eTimecode}, {"B", DBFieldTypes::eTimecode}},
                                    {{"10:00:00:00", "2"}, {"10:00:00;00", "1"}});
    EXPECT_LT(compareFirstTwoRows(*codes, {0, 99, 1}), 0);
    EXPECT_EQ(std::pair(cmp_fields[0], cmp_fields[1]), std::pair(0, -1));
    EXPECT_EQ(compareFirstTwoRows(*codes, {0, 99}), 0);

    // Rows that differ in their tenth field only.
    const auto wide = makeTextDatabase(Fields(10), {Fields(10, "same"), Fields(10, "same")});
    wide->set_field(0, 9, "tame");
    EXPECT_EQ(compareFirstTwoRows(*wide, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}), 0);
    EXPECT_EQ(cmp_fields[9], -1);
    EXPECT_GT(compareFirstTwoRows(*wide, {1, 2, 3, 4, 5, 6, 7, 8, 9}), 0);
}

TEST(Sorting, PreparesThroughADerivedClass) {
    struct Prepared : kesta {
        using kesta::kesta;
        void sortPrepare(int direction, int caseInsensitive) override {
            kesta::sortPrepare(direction, caseInsensitive);
            static int other[] = {1, -1};
            cmp_fields = other;
        }
    };
    const Zr::Ptr<Prepared> database(new Prepared(textColumns({"A", "B"})));
    fill(*database, {{"1", "b"}, {"2", "a"}});
    database->sort(0, 0);
    EXPECT_EQ(columnOf(*database, 0), (Fields{"2", "1"}));
    database->sortPrepare(0, 0);
    Zr::Ptr<dbrecord> record = database->get_record(0);
    Zr::Ptr<dbrecord> none;
    for (const auto compare : {dbr_cmp, dbr_backcmp}) {
        EXPECT_TRUE(compare(&record, &none) < 0 && compare(&none, &record) > 0 &&
                    compare(&none, nullptr) == 0);
    }
    makeTextDatabase({"A"})->sort(0, 0);  // leaves the keys where others expect them
}

// The order in plain words, over plain strings.
class Model {
 public:
    std::vector<int> keys;
    int timecode = -1;
    bool ignoreCase = false;
    bool descending = false;

    int compare(const Fields& a, const Fields& b) const {
        if (a.empty() || b.empty()) return int(a.empty()) - int(b.empty());  // rows without a record
        return descending ? compareDown(a, b) : compareUp(a, b);
    }

 private:
    static bool blank(const Fields& row) { return row == Fields(row.size()); }

    int compareUp(const Fields& a, const Fields& b) const {
        if (blank(a) != blank(b)) return int(blank(a)) - int(blank(b));
        for (const int key : keys) {
            const std::string& x = a[std::size_t(key)];
            const std::string& y = b[std::size_t(key)];
            if (x.empty() || y.empty()) return int(x.empty()) - int(y.empty());
            if (const int result = compareTexts(x.c_str(), y.c_str(), key)) return result;
        }
        return 0;
    }

    // Without leading white space, and up to a zero byte.
    int compareTexts(std::string_view a, std::string_view b, int key) const {
        std::string x(Ascii::withoutLeadingSpace(a));
        std::string y(Ascii::withoutLeadingSpace(b));
        if (key == timecode) {
            if (x.size() > 8) x.erase(8, 1);
            if (y.size() > 8) y.erase(8, 1);
            return strcasecmp(x.c_str(), y.c_str());
        }
        const int folded = strcasecmp(x.c_str(), y.c_str());
        return folded != 0 || ignoreCase ? folded : x.compare(y);
    }

    int compareDown(const Fields& a, const Fields& b) const {
        for (const int key : keys) {
            const int result = strcasecmp(a[std::size_t(key)].c_str(), b[std::size_t(key)].c_str());
            if (result != 0) return -result;
        }
        return 0;
    }
};

class RandomSort {
 public:
    explicit RandomSort(unsigned seed) : m_random(seed) {}

    testing::AssertionResult agreesWithTheModelAndTheComparators() {
        const bool codesOnly = below(4) == 0;
        const auto database = makeDatabase({{"A", DBFieldTypes::eText},
                                            {"B", below(2) ? DBFieldTypes::eTimecode : DBFieldTypes::eText},
                                            {"C", DBFieldTypes::eText}});
        std::vector<Fields> rows(below(4) ? below(300) : 2000, Fields(columns));
        for (Fields& fields : rows) {
            if (below(10) == 0) continue;  // blank
            for (std::string& field : fields) field = codesOnly ? code() : below(5) ? value() : "";
        }
        fill(*database, rows);
        if (!rows.empty() && below(2)) {
            const unsigned at = below(unsigned(rows.size()));
            database->insert_records(at, 4);
            rows.insert(rows.begin() + at, {Fields(columns), Fields(), Fields(), Fields()});
        }

        Model model;
        for (unsigned n = below(5); n != 0; --n) model.keys.push_back(int(below(columns)));
        model.ignoreCase = below(2) != 0;
        model.descending = below(2) != 0;
        if (database->get_field_type(1) == DBFieldTypes::eTimecode) model.timecode = 1;
        const auto before = [&model](const Fields& a, const Fields& b) { return model.compare(a, b) < 0; };

        sortBy(*database, model.keys, model.descending ? -1 : 0, model.ignoreCase);
        std::stable_sort(rows.begin(), rows.end(), before);
        std::vector<Fields> shown = rows;
        for (Fields& row : shown) row = row.empty() ? Fields{"no record"} : row;
        if (auto result = same(rowsOf(*database), shown); !result) return result;

        const auto compare = model.descending ? dbr_backcmp : dbr_cmp;
        for (unsigned row = 1; row < rows.size(); ++row) {
            Zr::Ptr<dbrecord> upper = database->get_record(row - 1);
            Zr::Ptr<dbrecord> lower = database->get_record(row);
            const int compared = compare(&upper, &lower);
            if (compared > 0 || (compared < 0) != before(rows[row - 1], rows[row])) {
                return testing::AssertionFailure() << "the comparator returns " << compared << " at " << row;
            }
        }
        return testing::AssertionSuccess();
    }

 private:
    static constexpr unsigned columns = 3;

    unsigned below(unsigned limit) { return unsigned(m_random() % limit); }

    std::string code() {
        return "10:00:" + std::to_string(below(3)) + std::to_string(below(3)) + ":;"[below(2)] +
               std::to_string(10 + below(9)) + (below(4) ? "" : " or later");
    }

    std::string value() {
        static const std::string parts[] = {"",
                                            " ",
                                            "a",
                                            "A",
                                            "b",
                                            "take",
                                            "é",
                                            "\xFF",
                                            "interview",
                                            "Interview anna",
                                            "Zz",
                                            "z",
                                            "10:00:0",
                                            "10:00:00",
                                            ":",
                                            ";",
                                            "01",
                                            "[",
                                            "\t",
                                            "@",
                                            std::string(1, '\0'),
                                            std::string(5000, 'x')};
        if (below(4) == 0) return code();
        std::string text;
        for (unsigned n = below(4); n != 0; --n) text += parts[below(std::size(parts))];
        return text;
    }

    std::mt19937 m_random;
};

TEST(Sorting, AgreesWithTheModelAndTheComparators) {
    for (unsigned seed = 1; seed <= 120; ++seed) {
        ASSERT_TRUE(RandomSort(seed).agreesWithTheModelAndTheComparators()) << "seed " << seed;
    }
}

}  // namespace
