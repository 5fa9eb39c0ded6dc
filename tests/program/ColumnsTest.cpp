// kesta columns, and what show and export make of the columns chosen with it.
#include "tests/program/ProgramTest.h"

namespace {

class ColumnsTest : public ProgramTest {
 protected:
    void threeColumns(const std::string& map = {}) const {
        table("a.log", {"Name,Reel,Notes", "1,A1,x"}, map.empty() ? map : "\"V5_FIELD_MAP:" + map + "\"\n");
    }
    std::string shown(const std::string& more = {}) {
        const std::string out = records("a.log", more);
        return out.substr(0, out.find('\n'));
    }
    std::string map() { return run("param a.log V5_FIELD_MAP").out; }

    /// A log of columns that are named by their numbers.
    void manyColumns(const std::string& name, int count) const {
        std::string names = "1";
        for (int i = 2; i <= count; ++i) names += ',' + std::to_string(i);
        table(name, {names});
    }
};

TEST_F(ColumnsTest, ChoiceAndOrderAreKeptWithTheLog) {
    threeColumns();
    EXPECT_EQ(run("columns a.log").out, "1  shown     Name\n2  shown     Reel\n3  shown     Notes\n");
    EXPECT_EQ(run("columns a.log --hide name --order Notes,NAME").exitCode, 0);
    EXPECT_EQ(map(), "3 -1 2\n");
    EXPECT_EQ(run("columns a.log").out, "3  shown     Notes\n1  hidden    Name\n2  shown     Reel\n");
    EXPECT_EQ(shown(), "Notes,Reel");
    EXPECT_EQ(shown("--all-columns"), "Name,Reel,Notes");
    EXPECT_EQ(shown("--columns Name,Notes,Name"), "Name,Notes,Name");

    EXPECT_EQ(run("columns a.log --show Name --hide Reel --order Reel").exitCode, 0);
    EXPECT_EQ(map(), "-2 3 1\n");
    EXPECT_EQ(run("columns a.log --reset --hide Notes").exitCode, 0);
    EXPECT_EQ(map(), "1 2 -3\n");
    EXPECT_EQ(run("columns a.log --reset").exitCode, 0);
    EXPECT_EQ(map(), "\n");
    EXPECT_EQ(shown(), "Name,Reel,Notes");
}

TEST_F(ColumnsTest, ColumnsThatTheLogLacksAreLeftOut) {
    threeColumns("9 3 -8");
    EXPECT_EQ(run("columns a.log").out, "3  shown     Notes\n1  unlisted  Name\n2  unlisted  Reel\n");
    EXPECT_EQ(run("columns a.log --names").out, "Name\nReel\nNotes\n");
    EXPECT_EQ(shown(), "Notes");
    EXPECT_EQ(run("columns a.log --show Reel").exitCode, 0);
    EXPECT_EQ(map(), "3 2\n");
}

TEST_F(ColumnsTest, ExportsHoldTheShownColumns) {
    threeColumns("3 -1 2");
    EXPECT_EQ(run("export a.log --format csv").out, "Notes,Reel\r\nx,A1\r\n");
    EXPECT_EQ(run("export a.log --format csv --all-columns").out, "Name,Reel,Notes\r\n1,A1,x\r\n");
    EXPECT_NE(run("export a.log --format json").out.find("    [\"x\", \"A1\"]\n"), std::string::npos);

    // The map numbers the log's columns: it goes along only with all of them.
    const std::string heading = "Heading\nFIELD_DELIM\tTABS\n";
    EXPECT_EQ(run("export a.log --format ale").out, heading + "\nColumn\nComments\tTape\n\nData\nx\tA1\n");
    EXPECT_EQ(run("export a.log --format ale --all-columns").out,
              heading + "V5_FIELD_MAP\t3 -1 2\n\nColumn\nName\tTape\tComments\n\nData\n1\tA1\tx\n");
}

TEST_F(ColumnsTest, NamesThatHoldCommasAreToldFromLists) {
    table("a.log", {"In,In,Out", "1,2,3"});
    std::string text = content("a.log");
    folder.with("a.log", text.replace(text.rfind("\"In\""), 4, "\"In,now\""));
    EXPECT_EQ(shown("--columns Out,In,now,In"), "Out,\"In,now\",In");
    EXPECT_EQ(shown("--columns in,out"), "In,Out");
}

TEST_F(ColumnsTest, RefusesWhatCannotBeKeptAndLeavesTheLog) {
    threeColumns("-1");
    manyColumns("many.log", 1000);
    manyColumns("fewer.log", 999);
    EXPECT_EQ(run("columns fewer.log --hide 99").exitCode, 0);
    EXPECT_EQ(records("fewer.log").find(",99,"), std::string::npos);
    expectRefused({
        {"columns a.log --hide Real", 2, "did you mean \"Reel\"?"},
        {"columns a.log --show Reel,reel", 64, "column \"Reel\" is named twice"},
        {"columns a.log --show Reel --hide REEL", 64, "shown and hidden at once"},
        {"columns a.log --names --show Name", 64, "excludes"},
        {"columns many.log --hide 1", 2, "column 1000 (1000) cannot be shown"},
        {"columns fewer.log --hide 100", 2, "column 100 (100) cannot be hidden"},
        {"show a.log", 2, "shows none; use --all-columns"},
        {"show a.log --columns Name --all-columns", 64, "excludes"},
        {"export a.log --format csv -o a.csv", 2, "shows none"},
    });
}

TEST_F(ColumnsTest, ColumnsOfOneNameAreShownUntilTheyCouldOnlyBeListedOnce) {
    table("a.log", {"X,x,Y", "1,2,3"});
    EXPECT_EQ(shown(), "X,x,Y");
    EXPECT_EQ(
        run("columns a.log --hide Y").err,
        "kesta: warning: column 2 (x) cannot be listed, because it has no name of its own; --all-columns "
        "still shows it\n");
    EXPECT_EQ(shown(), "X");
    EXPECT_EQ(shown("--all-columns"), "X,x,Y");
}

}  // namespace
