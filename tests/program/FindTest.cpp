// kesta find and the rows of kesta show: which records they choose, in which order, and under which numbers.
#include "tests/program/ProgramTest.h"

namespace {

class FindTest : public ProgramTest {
 protected:
    void SetUp() override {
        table("a.log",
              {"Name,Start time:timecode,End time:timecode,Notes,Tag:numeric",
               "a,01:00:00:00,01:00:08:00,Circle take,0",
               "\"b\",\"01:00:05:00\",\"01:00:20:00\",\"circle, good sound\",\"7\"",
               "c,01:00:14:00,01:00:15:00,MOS,1", "d,,01:00:20:00,circle,0"},
              "\"Title:x\"\n");
    }
    /// The numbers and names that are shown.
    std::string found(const Arguments& arguments) { return run(arguments + "--columns Name").out; }
};

TEST_F(FindTest, EveryTextMustMatchAndCodesFindTheRangesThatCoverThem) {
    EXPECT_EQ(found("find a.log 'Start time=01:00:1'"), "Row  Name\n  2  b\n  3  c\n");
    EXPECT_EQ(found("find a.log 'End time=01:00:1' NOTES=CIRCLE"), "Row  Name\n  2  b\n");
    EXPECT_EQ(found("find a.log 'Start time=01:00:00' 'End time=01:00:06'"), "Row  Name\n  1  a\n");
    EXPECT_EQ(found("find a.log Notes=circle Notes=sound"), "Row  Name\n  2  b\n")
        << "texts for one column are both looked for";
    const Outcome nothing = run("find a.log Notes=circle Notes=MOS --format csv");
    EXPECT_EQ(nothing.exitCode, 1);
    EXPECT_EQ(nothing.out, "Name,Start time,End time,Notes,Tag\r\n");
    EXPECT_EQ(nothing.err, "kesta: no record matches\n");
}

TEST_F(FindTest, RowsKeepTheirNumbersWhenSortedAndSelected) {
    EXPECT_EQ(found("show a.log --sort Notes,Name --rows 1,3-"), "Row  Name\n  4  d\n  1  a\n  3  c\n");
    EXPECT_EQ(found("show a.log --tagged --sort Notes --rows 2-4"), "Row  Name\n  2  b\n  3  c\n");
    EXPECT_EQ(found("find a.log Notes=circle --sort 'Start time'"), "Row  Name\n  1  a\n  2  b\n  4  d\n")
        << "an empty value comes last";
}

TEST_F(FindTest, SeveralLogsAreShownBelowTheirNames) {
    table("b.log", {"Name,Notes", "x,MOS", "y"});
    EXPECT_EQ(found("find a.log b.log Notes=mos"),
              "a.log:\nRow  Name\n  3  c\n\nb.log:\nRow  Name\n  1  x\n");
    EXPECT_EQ(found("find a.log b.log Notes=circle --sort Notes"),
              "a.log:\nRow  Name\n  4  d\n  1  a\n  2  b\n")
        << "logs without a match are left out";
    EXPECT_EQ(run("find a.log b.log Notes=none --format json").out, "[\n]\n");
    const Outcome missing = run("show b.log none.log b.log --columns Name --rows 2");
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_EQ(missing.out, "b.log:\nRow  Name\n  2  y\n\nb.log:\nRow  Name\n  2  y\n");
    const std::string named = "{\n  \"log\": \"b.log\",\n" + run("show b.log --format json").out.substr(2);
    EXPECT_EQ(run("show b.log b.log --format json").out, "[\n" + named + ",\n" + named + "]\n");
    EXPECT_EQ(run("info b.log b.log").out, run("info b.log").out + '\n' + run("info b.log").out);
}

TEST_F(FindTest, WhatIsFoundBecomesALogOfItsOwn) {
    const std::string before = content("a.log");
    EXPECT_EQ(run("find a.log Notes=circle --sort Notes -o b.log").out, "b.log: 3 records\n");
    EXPECT_EQ(run("check b.log").exitCode, 0);
    EXPECT_EQ(run("param b.log").out, "KESTA: Rev 1\nTitle: x\n");
    EXPECT_EQ(
        records("b.log"),
        "Name,Start time,End time,Notes,Tag\nd,,01:00:20:00,circle,0\n"
        "a,01:00:00:00,01:00:08:00,Circle take,0\nb,01:00:05:00,01:00:20:00,\"circle, good sound\",7\n");
    EXPECT_EQ(content("a.log"), before);

    EXPECT_EQ(run("find a.log Notes=MOS -o b.log").exitCode, 2) << "it is there already";
    EXPECT_EQ(run("find a.log Notes=MOS -o b.log --force").exitCode, 0);
    EXPECT_EQ(found("show b.log"), "Row  Name\n  1  c\n");
    EXPECT_EQ(run("find a.log Notes=none -o b.log --force").exitCode, 1);
    EXPECT_EQ(found("show b.log"), "Row  Name\n  1  c\n") << "nothing found, nothing written";
}

TEST_F(FindTest, RefusesWhatItCannotLookForOrCopyWhole) {
    table("damaged.log", {"A,B", "1,2", "", "3,4"});
    std::filesystem::create_symlink("a.log", path("link.log"));
    expectRefused({
        {"find a.log Note=x", 2, "did you mean \"Notes\"?"},
        {"find a.log Notes", 64, "names no column; write COLUMN=TEXT"},
        {"find a.log Notes=x a.log", 64, "names no column; write COLUMN=TEXT"},
        {"find a.log Notes=", 64, "holds no text to look for"},
        {"find a.log Notes=x --sort Nam", 2, "did you mean \"Name\"?"},
        {"find a.log Notes=x -o x.log --columns Name", 64, "--output"},
        {"find a.log a.log Notes=x -o x.log", 64, "-o takes the records of one log"},
        {"show a.log a.log --format csv", 64, "--format csv takes one log"},
        {"find a.log Notes=x -o x.csv", 2, "a log cannot have this name"},
        {"find damaged.log A=1 -o x.log", 2, "not copied, because its copy would lack"},
        {"find a.log Notes=circle -o none/x.log", 2, "No such file or directory"},
        {"find a.log Notes=circle -o link.log --force", 2, "is the log itself"},
    });
    EXPECT_NE(run("find damaged.log A=1").out, "") << "showing loses nothing";
}

}  // namespace
