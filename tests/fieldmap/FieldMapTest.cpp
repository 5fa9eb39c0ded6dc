// Field maps: the text form of a log's columns, and the list that it becomes.
#include <limits>
#include <random>

#include "fieldmap/FieldMap.h"
#include "tests/TestSupport.h"
#include "view/KSTViewRep.h"

using namespace TestSupport;

namespace {

constexpr const char* parameter = "V5_FIELD_MAP";

/// The columns of a map in order, hidden ones with a "-" before their names.
Fields columnsOf(const FieldMap& map) {
    Fields columns;
    for (int i = 0; i < map.size(); ++i) {
        columns.push_back((map.isVisible(i) ? "" : "-") + str(map[i]));
    }
    return columns;
}

Zr::Ptr<kesta> fourColumns(const char* mapText = nullptr) {
    Zr::Ptr<kesta> database = makeTextDatabase({"Name", "Start", "End", "Reel"});
    if (mapText) database->set_param_val(parameter, mapText);
    return database;
}

/// A database of that many columns, named by their numbers counted from 1.
Zr::Ptr<kesta> manyColumns(int count) {
    std::vector<std::string> names;
    for (int i = 1; i <= count; ++i) names.push_back(std::to_string(i));
    return makeTextDatabase(names);
}

}  // namespace

TEST(FieldMapText, BecomesTheColumnsItNames) {
    struct Case {
        const char* text;
        Fields columns;
        const char* written;
    };
    const Fields all = {"Name", "Start", "End", "Reel"};
    const Case cases[] = {
        {"2 -1", {"Start", "-Name"}, "2 -1"},
        {"1 2 -4 3", {"Name", "Start", "-Reel", "End"}, "1 2 -4 3"},
        {"-3", {"-End"}, "-3"},
        // The first of two counts.
        {"2 1 -2", {"Start", "Name"}, "2 1"},
        {"-2 1 2", {"-Start", "Name"}, "-2 1"},
        // 0 is skipped, in every spelling.
        {"0 3 -0 00 2", {"End", "Start"}, "3 2"},
        {"002 -03 0004", {"Start", "-End"}, "2 -3"},
        // Three characters are read, all digits and signs passed.
        {"1-2 3", {"Name", "End"}, "1 3"},
        {"2----- 3", {"Start", "End"}, "2 3"},
        {"0012 3", {"Name", "End"}, "1 3"},
        // White space beyond the one space.
        {" 2", {"Start"}, "2"},
        {"2  3 ", {"Start", "End"}, "2 3"},
        {"2   3", {"Start", "End"}, "2 3"},
        {"2    3", {"Start"}, "2"},
        // What is no number ends the reading.
        {"3 x 4", {"End"}, "3"},
        {"3 -x 4", {"End"}, "3"},
        {"3 --4", {"End"}, "3"},
        {"3x 4", {"End"}, "3"},
        {"3,4", {"End"}, "3"},
        // A number that nothing may follow, being no part of the format.
        {"3 +4 1", {"End", "Reel"}, "3 4"},
        {"3\t4 1", {"End", "Reel"}, "3 4"},
        // Columns that are not there have no name, which is one column at most.
        {"3 9 -8 7", {"End", ""}, "3 0"},
        {"-9 3", {"-", "End"}, "-0 3"},
        // Nothing that names a column: all columns.
        {"", all, "1 2 3 4"},
        {" ", all, "1 2 3 4"},
        {"x 1", all, "1 2 3 4"},
        {"0 -0", all, "1 2 3 4"},
        {"\xFF", all, "1 2 3 4"},
    };
    for (const Case& c : cases) {
        const Zr::Ptr<kesta> database = fourColumns(c.text);
        const FieldMap map(*database);
        EXPECT_EQ(columnsOf(map), c.columns) << '"' << c.text << '"';
        EXPECT_EQ(map.asString(), c.written) << '"' << c.text << '"';
    }
    EXPECT_EQ(columnsOf(FieldMap(*fourColumns())), all);
}

TEST(FieldMapText, HoldsThreeCharactersOfANumber) {
    const Zr::Ptr<kesta> database = manyColumns(2000);
    const auto read = [&](const char* text) {
        database->set_param_val(parameter, text);
        return columnsOf(FieldMap(*database));
    };
    EXPECT_EQ(read("1234 999 -99"), (Fields{"123", "999", "-99"}));
    EXPECT_EQ(read("-100 1000 1001"), (Fields{"-10", "100"}));

    // Written in full all the same.
    FieldMap map((KSTView(new KSTViewRep(database.get()))));
    map.clear();
    map.append("1234", true);
    map.append("456", false);
    EXPECT_EQ(map.asString(), "1234 -456");
}

TEST(FieldMapText, OfAnyBytesIsReadWithoutFaultAndWhatIsWrittenReadsTheSame) {
    const Zr::Ptr<kesta> database = fourColumns();
    std::mt19937 random(5);
    const std::string alphabet = "0123456789-- +\t,x\x80\"";
    for (int round = 0; round < 5000; ++round) {
        std::string bytes;
        for (auto length = random() % 24; length; --length) {
            const auto roll = random();
            bytes += round % 4 ? alphabet[roll % alphabet.size()] : static_cast<char>(roll);
        }
        database->set_param_val(parameter, bytes.c_str());
        FieldMap map(*database);
        ASSERT_LE(map.numVisible(), 5) << testing::PrintToString(bytes);
        map.remove("");  // unknown columns are not written for good
        if (columnsOf(map).empty()) continue;
        database->set_param_val(parameter, map.asString().c_str());
        ASSERT_EQ(columnsOf(FieldMap(*database)), columnsOf(map)) << testing::PrintToString(bytes);
    }
    database->set_param_val(parameter, std::string(1 << 20, '-').c_str());
    EXPECT_EQ(columnsOf(FieldMap(*database)).size(), 4U);
}

TEST(FieldMapText, LivesInTheFileOfItsLog) {
    const TempFolder folder;
    {
        const Zr::Ptr<kesta> database = fourColumns();
        FieldMap map(*database);
        map.invertVisible(0);
        map.swap(1, 3);
        EXPECT_EQ(map.asString(), "-1 4 3 2");
        database->set_param_val(parameter, map.asString().c_str());
        database->set_filename(wide(folder / "log.kes"));
        database->save_text();
    }
    EXPECT_EQ(columnsOf(FieldMap(*loadDatabase(folder / "log.kes"))),
              (Fields{"-Name", "Reel", "End", "Start"}));
}

TEST(FieldMapColumns, VisibleOnesAreFoundByPlaceAndTakeTheSourcesNumbers) {
    const Zr::Ptr<kesta> database = fourColumns("4 -1 3 9");
    FieldMap map(*database);
    EXPECT_EQ(map.numVisible(), 3);
    EXPECT_EQ(map.getVisibleFieldIndex(0), 3);
    EXPECT_EQ(map.getVisibleFieldIndex(1), 2);
    EXPECT_EQ(map.getVisibleFieldIndex(2), -1);  // unknown to the source
    for (const int bad : {3, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(map.getVisibleFieldIndex(bad), -1) << bad;
    }
    // The map follows its columns when they get other numbers.
    database->removeField("Start");
    EXPECT_EQ(map.getVisibleFieldIndex(0), 2);
    EXPECT_EQ(map.asString(), "3 -1 2 0");
}

TEST(FieldMapColumns, AreToldApartIgnoringCase) {
    FieldMap map;
    map.append("reel", false);
    map.append("Reel", true);
    map.append("Scene", true);
    map.append("", true);
    map.append("", false);
    EXPECT_EQ(columnsOf(map), (Fields{"-reel", "Scene", ""}));
    EXPECT_EQ(map.getFieldIdx("SCENE"), 1);
    EXPECT_TRUE(map.isVisible("scene"));
    EXPECT_FALSE(map.isVisible("REEL"));
    EXPECT_FALSE(map.isVisible("take"));
    EXPECT_EQ(map.asString(), "-1 2 3");  // without a source, places
    EXPECT_EQ(map.getVisibleFieldIndex(0), -1);

    EXPECT_FALSE(map.remove("take"));
    EXPECT_TRUE(map.remove("REEL"));
    EXPECT_EQ(columnsOf(map), (Fields{"Scene", ""}));
    map.set(1, "SCENE", false);  // not checked: the first is found
    EXPECT_EQ(map.getFieldIdx("scene"), 0);
    EXPECT_TRUE(map.remove("scene"));
    EXPECT_EQ(columnsOf(map), Fields{"-SCENE"});
}

TEST(FieldMapColumns, ChangeAtTheirPlacesAndNowhereElse) {
    FieldMap map(*fourColumns("1 -2 3"));
    const Fields before = columnsOf(map);
    for (const int bad : {-1, 3, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        map.setVisible(bad, true);
        map.invertVisible(bad);
        map.setName(bad, "x");
        map.set(bad, "x", true);
        map.swap(bad, 0);
        map.swap(0, bad);
        EXPECT_EQ(map.getName(bad), "") << bad;
        EXPECT_FALSE(map.isVisible(bad)) << bad;
    }
    EXPECT_EQ(columnsOf(map), before);

    map.swap(0, 1);
    EXPECT_EQ(columnsOf(map), (Fields{"-Start", "Name", "End"}));
    map.swap(2, 2);
    map.invertVisible(0);
    map.setVisible(1, false);
    map.setName(2, "Take");
    EXPECT_EQ(columnsOf(map), (Fields{"Start", "-Name", "Take"}));
    map.set(0, "Scene", false);
    EXPECT_EQ(columnsOf(map), (Fields{"-Scene", "-Name", "Take"}));
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
    EXPECT_EQ(map.asString(), "-0 2 -4 1");

    map.clear();
    EXPECT_EQ(map.asString(), "");
    EXPECT_EQ(map.numVisible(), 0);
    map.append("reel", true);  // the source has stayed
    EXPECT_EQ(map.asString(), "4");

    map.setSourceDb(KSTView());
    EXPECT_EQ(map.asString(), "1");
    for (const KSTView& empty : {KSTView(), KSTView(new KSTViewRep(nullptr))}) {
        EXPECT_EQ(columnsOf(FieldMap(empty)), Fields{});
    }
    map.setSourceDb(KSTView(new KSTViewRep(nullptr)));
    EXPECT_EQ(map.getVisibleFieldIndex(0), 0);  // what a view without a database answers
    EXPECT_EQ(map.asString(), "1");
}

TEST(FieldMapSource, OfManyColumnsIsReadAtOnce) {
    const Zr::Ptr<kesta> database = manyColumns(60000);
    database->set_fieldname(59999, "1");  // a name that was there before
    const FieldMap map(KSTView(new KSTViewRep(database.get(), "1")));
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

TEST(FieldMapColumns, RunningOutOfMemoryAddsNone) {
    FieldMap map(*fourColumns("2 -1"));
    const unsigned failures =
        failEachRequest([&] { map.append("a name too long to be anywhere else", false); },
                        [&] {
                            ASSERT_EQ(columnsOf(map), (Fields{"Start", "-Name"}));
                        });
    EXPECT_GT(failures, 0u);
    EXPECT_EQ(map.size(), 3);
}
