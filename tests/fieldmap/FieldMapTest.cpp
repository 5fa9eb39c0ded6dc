// Field maps: the text form of a log's columns, the list that it becomes, what the list stands for.
#include <limits>
#include <random>

#include "tests/TestSupport.h"
#include "tests/fieldmap/FieldMapModel.h"
#include "view/KSTViewRep.h"

using namespace TestSupport;

namespace {

/// The columns of a map in order, hidden ones with a "-" before their names.
Fields columnsOf(const FieldMap& map) {
    Fields columns;
    for (int i = 0; i < map.size(); ++i) columns.push_back((map.isVisible(i) ? "" : "-") + str(map[i]));
    return columns;
}

Zr::Ptr<kesta> fourColumns(const char* mapText = nullptr) {
    Zr::Ptr<kesta> database = makeTextDatabase({"Name", "Start", "End", "Reel"});
    if (mapText) database->set_param_val(FieldMap::parameter, mapText);
    return database;
}

/// What the model asks for, at random.
class RandomInput {
 public:
    explicit RandomInput(unsigned seed) : m_random(seed) {}

    unsigned below(unsigned bound) { return std::uniform_int_distribution<unsigned>(0, bound - 1)(m_random); }
    int number() {
        constexpr int wild[] = {-1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
        return below(8) == 0 ? wild[below(3)] : static_cast<int>(below(14));
    }
    std::string text() {
        constexpr const char* texts[] = {"", "Reel", "rEEL", "Scene"};
        return texts[below(4)];
    }

 private:
    std::mt19937 m_random;
};

void expectSame(const FieldMapModel::Answers& expected, const FieldMapModel::Answers& actual) {
    for (std::size_t i = 0; i < std::min(expected.size(), actual.size()); ++i)
        ASSERT_EQ(expected[i], actual[i]);
    ASSERT_EQ(expected.size(), actual.size());
}

}  // namespace

TEST(FieldMapText, BecomesTheColumnsItNames) {
    const struct {
        const char* text;
        Fields columns;
        const char* written;
    } cases[] = {
        {"1 2 -4 3", {"Name", "Start", "-Reel", "End"}, "1 2 -4 3"},
        {"-2 1 2", {"-Start", "Name"}, "-2 1"},
        {"3 x 4", {"End"}, "3"},
        {"3 +4 1", {"End", "Reel"}, "3 4"},  // nothing may follow what is no part of the format
        {"-9 3 -8", {"-", "End"}, "-0 3"},
        {"0 -0", {"Name", "Start", "End", "Reel"}, "1 2 3 4"},
    };
    for (const auto& c : cases) {
        const Zr::Ptr<kesta> database = fourColumns(c.text);
        EXPECT_EQ(columnsOf(FieldMap(*database)), c.columns) << '"' << c.text << '"';
        EXPECT_EQ(FieldMap(*database).asString(), c.written) << '"' << c.text << '"';
    }
}

TEST(FieldMapText, IsReadAsTheModelDoesAndWhatIsWrittenReadsTheSame) {
    RandomInput random(5);
    for (const unsigned count : {6u, 1005u}) {
        kesta log(FieldMapModel::fields(count));
        for (int round = 0; round < 700 && !testing::Test::HasFatalFailure(); ++round) {
            std::string text;
            for (unsigned length = random.below(24); length > 0; --length)
                text += random.below(9) == 0 ? static_cast<char>(1 + random.below(255))
                                             : "0123456789-- +\t,x"[random.below(17)];
            SCOPED_TRACE(testing::PrintToString(text));
            log.set_param_val(FieldMap::parameter, text.c_str());
            FieldMap map(log);
            if (map.size() > 99) continue;  // all columns
            expectSame(FieldMapModel::answers(FieldMapModel::read(text, count), log),
                       FieldMapModel::answers(map));
            map.remove("");  // columns that are not there are not written for good
            log.set_param_val(FieldMap::parameter, map.asString().c_str());
            if (map.size() > 0) {
                expectSame(FieldMapModel::answers(map), FieldMapModel::answers(FieldMap(log)));
            }
        }
        log.set_param_val(FieldMap::parameter, std::string(1 << 20, '-').c_str());
        EXPECT_EQ(FieldMap(log).size(), static_cast<int>(count));
    }
}

TEST(FieldMapColumns, ChangeAsTheModelDoes) {
    const kesta log(FieldMapModel::fields(12));
    for (unsigned seed = 1; seed <= 100; ++seed) {
        RandomInput random(seed);
        FieldMap map(const_cast<kesta&>(log));
        FieldMapModel::Columns columns = FieldMapModel::read("", 12);
        for (int step = 0; step < 60; ++step) {
            FieldMapModel::change(map, columns, random);
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            expectSame(FieldMapModel::answers(columns, log), FieldMapModel::answers(map));
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

TEST(FieldMapColumns, RunningOutOfMemoryAddsNone) {
    FieldMap map(*fourColumns("2 -1"));
    const unsigned failures =
        failEachRequest([&] { map.append("a name too long to be anywhere else", true); },
                        [&] {
                            ASSERT_EQ(columnsOf(map), (Fields{"Start", "-Name"}));
                            ASSERT_EQ(map.numVisible(), 1);
                        });
    EXPECT_GT(failures, 0u);
    EXPECT_EQ(columnsOf(map).back(), "a name too long to be anywhere else");
}

TEST(FieldMapSource, AddsItsColumnsToThoseThatAreThere) {
    const Zr::Ptr<kesta> plain = fourColumns();
    const Zr::Ptr<kesta> mapped = fourColumns("-4 1 -2");
    FieldMap map;
    map.append("Scene", false);
    map.append("Start", true);
    map.setSourceDb(KSTView(new KSTViewRep(plain.get())));
    EXPECT_EQ(columnsOf(map), (Fields{"-Scene", "Start"}));  // no parameter, nothing to add
    map.setSourceDb(KSTView(new KSTViewRep(mapped.get())));
    EXPECT_EQ(columnsOf(map), (Fields{"-Scene", "Start", "-Reel", "Name"}));
    mapped->removeField("End");  // the map follows its columns when they get other numbers
    EXPECT_EQ(map.asString(), "-0 2 -3 1");
    map.clear();
    map.append("reel", true);  // the source has stayed
    EXPECT_EQ(map.asString(), "3");
}

TEST(FieldMapSource, MayBeNoneOrWithoutADatabase) {
    for (const KSTView& empty : {KSTView(), KSTView(new KSTViewRep(nullptr))}) {
        EXPECT_EQ(FieldMap(empty).size(), 0);
    }
    FieldMap map;
    map.append("Scene", true);
    map.append("Take", false);
    EXPECT_EQ(map.asString(), "1 -2");  // places
    EXPECT_EQ(map.getVisibleFieldIndex(0), -1);
    map.setSourceDb(KSTView(new KSTViewRep(nullptr)));
    EXPECT_EQ(map.getVisibleFieldIndex(0), 0);
    EXPECT_EQ(map.asString(), "1 -1");
}

TEST(FieldMapSource, OfManyColumnsIsReadAtOnce) {
    kesta log(FieldMapModel::fields(60000));
    log.set_fieldname(59999, "1");  // a name that was there before
    const FieldMap map(KSTView(new KSTViewRep(&log, "1")));
    EXPECT_EQ(map.numVisible(), 59999);
    EXPECT_EQ(map.getName(59998), "59999");
}

TEST(FieldMapCopies, AreTheirOwn) {
    const Zr::Ptr<kesta> database = fourColumns("2 -1");
    FieldMap map(*database);
    FieldMap assigned;
    assigned.append("Scene", true);
    assigned = map;
    const FieldMap copy(map);
    const FieldMap& self = map;
    map = self;
    EXPECT_EQ(columnsOf(map), (Fields{"Start", "-Name"}));
    map.clear();
    for (const FieldMap* const kept : {&copy, static_cast<const FieldMap*>(&assigned)}) {
        EXPECT_EQ(columnsOf(*kept), (Fields{"Start", "-Name"}));
        EXPECT_EQ(kept->asString(), "2 -1");  // the source came with the columns
    }
}
