// kesta columns, and what show and export make of the columns chosen with it.
#include "tests/program/ProgramTest.h"

namespace {

class ColumnsTest : public ProgramTest {
 protected:
    std::string threeColumns(const std::string& map = {}) const {
        return log("a.log", "\"Name\",\"Reel\",\"Notes\"", "\"1\",\"A1\",\"x\"\n",
                   map.empty() ? map : "\"V5_FIELD_MAP:" + map + "\"\n");
    }
    std::string shown(const std::string& file, const Arguments& more = {}) {
        const std::string out = records(file, more);
        return out.substr(0, out.find("\r\n"));
    }
    std::string mapOf(const std::string& file) { return run({"param", file, "V5_FIELD_MAP"}).out; }

    /// A log of columns that are named by their numbers.
    std::string manyColumns(int count) const {
        std::string names;
        for (int i = 1; i <= count; ++i) names += (i > 1 ? ",\"" : "\"") + std::to_string(i) + '"';
        return log("many.log", names, "");
    }
};

TEST_F(ColumnsTest, ChoiceAndOrderAreKeptWithTheLog) {
    const std::string file = threeColumns();
    EXPECT_EQ(run({"columns", file}).out, "1  shown     Name\n2  shown     Reel\n3  shown     Notes\n");
    EXPECT_EQ(run({"columns", file, "--hide", "name", "--order", "Notes,NAME"}).exitCode, 0);
    EXPECT_EQ(mapOf(file), "3 -1 2\n");
    EXPECT_EQ(run({"columns", file}).out, "3  shown     Notes\n1  hidden    Name\n2  shown     Reel\n");
    EXPECT_EQ(shown(file), "Notes,Reel");
    EXPECT_EQ(shown(file, {"--all-columns"}), "Name,Reel,Notes");
    EXPECT_EQ(shown(file, {"--columns", "Name,Notes,Name"}), "Name,Notes,Name");

    EXPECT_EQ(run({"columns", file, "--show", "Name", "--hide", "Reel", "--order", "Reel"}).exitCode, 0);
    EXPECT_EQ(mapOf(file), "-2 3 1\n");
    EXPECT_EQ(run({"columns", file, "--reset", "--hide", "Notes"}).exitCode, 0);
    EXPECT_EQ(mapOf(file), "1 2 -3\n");
    EXPECT_EQ(run({"columns", file, "--reset"}).exitCode, 0);
    EXPECT_EQ(mapOf(file), "\n");
    EXPECT_EQ(shown(file), "Name,Reel,Notes");
    EXPECT_EQ(run({"show", file, "--columns", "Name", "--all-columns"}).exitCode, 64);
}

TEST_F(ColumnsTest, ColumnsThatTheLogLacksAreLeftOut) {
    const std::string file = threeColumns("9 3 -8");
    EXPECT_EQ(run({"columns", file}).out, "3  shown     Notes\n1  unlisted  Name\n2  unlisted  Reel\n");
    EXPECT_EQ(run({"columns", file, "--names"}).out, "Name\nReel\nNotes\n");
    EXPECT_EQ(run({"columns", file, "--names", "--show", "Name"}).exitCode, 64);
    EXPECT_EQ(shown(file), "Notes");
    EXPECT_EQ(run({"columns", file, "--show", "Reel"}).exitCode, 0);
    EXPECT_EQ(mapOf(file), "3 2\n");
}

TEST_F(ColumnsTest, ExportsHoldTheShownColumns) {
    const std::string file = threeColumns("3 -1 2");
    EXPECT_EQ(run({"export", file, "--format", "csv"}).out, "Notes,Reel\r\nx,A1\r\n");
    EXPECT_EQ(run({"export", file, "--format", "csv", "--all-columns"}).out, "Name,Reel,Notes\r\n1,A1,x\r\n");
    EXPECT_NE(run({"export", file, "--format", "json"}).out.find("    [\"x\", \"A1\"]\n"), std::string::npos);

    // The map numbers the log's columns: it goes along only with all of them.
    const std::string part = run({"export", file, "--format", "ale"}).out;
    EXPECT_EQ(part.find("V5_FIELD_MAP"), std::string::npos);
    EXPECT_EQ(part.substr(part.find("Data")), "Data\nx\tA1\n");
    const std::string whole = run({"export", file, "--format", "ale", "--all-columns"}).out;
    EXPECT_NE(whole.find("V5_FIELD_MAP\t3 -1 2\n"), std::string::npos);
    EXPECT_EQ(whole.substr(whole.find("Data")), "Data\n1\tA1\tx\n");
}

TEST_F(ColumnsTest, NamesThatHoldCommasAreToldFromLists) {
    const std::string file = log("a.log", "\"In\",\"In\",\"Out\"", "\"1\",\"2\",\"3\"\n");
    std::string text = content("a.log");
    text.replace(text.rfind("\"In\""), 4, "\"In,now\"");
    folder.with("a.log", text);
    EXPECT_EQ(shown(file, {"--columns", "Out,In,now,In"}), "Out,\"In,now\",In");
    EXPECT_EQ(shown(file, {"--columns", "in,out"}), "In,Out");
}

TEST_F(ColumnsTest, RefusesWhatCannotBeKeptAndLeavesTheLog) {
    const std::string file = threeColumns("-1");
    const std::string many = manyColumns(1000);
    expectRefused({
        {{"columns", file, "--hide", "Real"}, 2, "did you mean \"Reel\"?"},
        {{"columns", file, "--show", "Reel,reel"}, 64, "column \"Reel\" is named twice"},
        {{"columns", file, "--show", "Reel", "--hide", "REEL"}, 64, "shown and hidden at once"},
        {{"columns", many, "--hide", "1"}, 2, "column 1000 (1000) cannot be shown"},
        {{"show", file}, 2, "shows none; use --all-columns"},
        {{"export", file, "--format", "csv", "-o", path("a.csv")}, 2, "shows none"},
    });

    const std::string fewer = manyColumns(999);
    EXPECT_EQ(run({"columns", fewer, "--hide", "99"}).exitCode, 0);
    EXPECT_EQ(shown(fewer).find(",99,"), std::string::npos);
    expectRefused({{{"columns", fewer, "--hide", "100"}, 2, "column 100 (100) cannot be hidden"}});
}

TEST_F(ColumnsTest, ColumnsOfOneNameAreShownUntilTheyCouldOnlyBeListedOnce) {
    const std::string file = log("a.log", "\"X\",\"x\",\"Y\"", "\"1\",\"2\",\"3\"\n");
    EXPECT_EQ(shown(file), "X,x,Y");
    EXPECT_EQ(
        run({"columns", file, "--hide", "Y"}).err,
        "kesta: warning: column 2 (x) cannot be listed, because it has no name of its own; --all-columns "
        "still shows it\n");
    EXPECT_EQ(shown(file), "X");
    EXPECT_EQ(shown(file, {"--all-columns"}), "X,x,Y");
}

}  // namespace
