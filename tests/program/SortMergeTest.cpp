// kesta sort and merge: whole logs put in order and put together.
#include "tests/program/ProgramTest.h"

namespace {

class SortMergeTest : public ProgramTest {};

TEST_F(SortMergeTest, SortsByColumnsInTheirOrder) {
    table("b.log", {"A,B,Tag", "x,2,0", "X,3,7", "x,1,1"});
    EXPECT_EQ(run("sort b.log --by A,b").exitCode, 0);
    EXPECT_EQ(records("b.log"), "A,B,Tag\nX,3,7\nx,1,1\nx,2,0\n");
    EXPECT_EQ(run("sort b.log --by A --by B --ignore-case").exitCode, 0);
    EXPECT_EQ(records("b.log"), "A,B,Tag\nx,1,1\nx,2,0\nX,3,7\n");
    EXPECT_EQ(run("sort b.log --by B --desc").exitCode, 0);
    EXPECT_EQ(records("b.log", "--columns B"), "B\n3\n2\n1\n");
    expectRefused({{"sort b.log --by A,B,A,B,A,B,A,B,A,B", 64,
                    "kesta: 10 columns to sort by; at most 9 are possible\n"}});
    EXPECT_EQ(run("sort b.log --by A,B,A,B,A,B,A,B,A").exitCode, 0);
}

TEST_F(SortMergeTest, LogsOfTheSameColumnsAreAppended) {
    table("into.log", {"Name,Tag", "1,1"});
    table("first.log", {"Name,Tag", "2,7", "3,0"});
    table("second.log", {"Name,Tag"});
    EXPECT_EQ(run("merge into.log first.log second.log first.log").out,
              "first.log: 2 records; all columns matched\nsecond.log: 0 records; all columns matched\n"
              "first.log: 2 records; all columns matched\n");
    EXPECT_EQ(records("into.log"), "Name,Tag\n1,1\n2,7\n3,0\n2,7\n3,0\n");
}

TEST_F(SortMergeTest, OtherLogsAreMergedByTheNamesOfTheirColumns) {
    table("into.log", {"Name,Start time:timecode,Reel", "1,01:00:00:00,A1"});
    table("digits.log", {"NAME,Start time:timecode_s,Notes", "2,02000010,x", "3,03000010;", "4,later,y"});
    EXPECT_EQ(run("merge into.log digits.log").out,
              "digits.log: 3 records; matched: NAME, Start time; dropped: Notes; converted: Start time (as "
              "01:00:00:00)\n");
    EXPECT_EQ(records("into.log"),
              "Name,Start time,Reel\n1,01:00:00:00,A1\n2,02:00:00:10,\n3,03:00:00;10,\n4,later,\n");
    EXPECT_EQ(run("merge digits.log into.log").out,
              "into.log: 4 records; matched: Name, Start time; dropped: Reel; converted: Start time (as "
              "01000000)\n");
    EXPECT_NE(records("digits.log").find("\n3,03000010;,\n"), std::string::npos);
}

TEST_F(SortMergeTest, MergesAllLogsOrNone) {
    table("into.log", {"Name,Reel", "1,A"});
    table("good.log", {"Name,Reel", "2,B"});
    std::filesystem::create_symlink("into.log", path("link.log"));
    table("damaged.log", {"Name,Reel", "3,C", "", "4,D"});
    table("other.log", {"X,Y", "3,C"});
    folder.with("plain.csv", "Name,Reel\n3,C\n");
    table("header.log", {"X,Name", "3,kesta"});
    table("one.log", {"Name", "1"});
    expectRefused({
        {"merge into.log good.log none.log", 2, "No such file or directory"},
        {"merge into.log good.log damaged.log", 2, "not copied, because"},
        {"merge into.log good.log other.log", 2, "has no column of the log"},
        {"merge into.log good.log plain.csv", 2, "kesta import"},
        {"merge into.log good.log into.log", 2, "a log is not merged into itself"},
        {"merge into.log good.log link.log", 2, "a log is not merged into itself"},
        {"merge one.log header.log", 2, "row 1: the log does not keep the value"},
        {"merge damaged.log good.log", 2, "not changed, because"},
    });
    EXPECT_EQ(run("merge into.log damaged.log --force").exitCode, 0);
    EXPECT_EQ(records("into.log"), "Name,Reel\n1,A\n3,C\n");
}

}  // namespace
