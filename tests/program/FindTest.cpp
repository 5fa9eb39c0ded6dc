// kesta find and the rows of kesta show: which records they choose, in which order, and under which numbers.
#include "tests/program/ProgramTest.h"

namespace {

class FindTest : public ProgramTest {
 protected:
    std::string codes() const {
        return folder
            .with("codes.log",
                  "\"KESTA:Rev 1\"\n\"Title:x\"\n\"KESTA\"\n\"4\",\"4\",\"4\",\"4\",\"4\"\n"
                  "\"text\",\"timecode\",\"timecode\",\"text\",\"numeric\"\n"
                  "\"Name\",\"Start time\",\"End time\",\"Notes\",\"Tag\"\n"
                  "\"a\",\"01:00:00:00\",\"01:00:08:00\",\"Circle take\",\"0\"\n"
                  "\"b\",\"01:00:05:00\",\"01:00:20:00\",\"circle, good sound\",\"7\"\n"
                  "\"c\",\"01:00:14:00\",\"01:00:15:00\",\"MOS\",\"1\"\n"
                  "\"d\",\"\",\"01:00:20:00\",\"circle\",\"0\"\n")
            .string();
    }
    /// The numbers and names that are shown.
    std::string found(const Arguments& arguments) {
        return run(arguments + Arguments{"--columns", "Name"}).out;
    }
};

TEST_F(FindTest, EveryTextMustMatchAndCodesFindTheRangesThatCoverThem) {
    const std::string file = codes();
    EXPECT_EQ(found({"find", file, "Start time=01:00:1"}), "Row  Name\n  2  b\n  3  c\n");
    EXPECT_EQ(found({"find", file, "End time=01:00:1", "NOTES=CIRCLE"}), "Row  Name\n  2  b\n");
    EXPECT_EQ(found({"find", file, "Start time=01:00:00", "End time=01:00:06"}), "Row  Name\n  1  a\n");
    EXPECT_EQ(found({"find", file, "Notes=circle", "Notes=sound"}), "Row  Name\n  2  b\n")
        << "texts for one column are both looked for";
    EXPECT_EQ(run({"find", file, "Notes=circle"}).exitCode, 0);
    const Outcome nothing = run({"find", file, "Notes=circle", "Notes=MOS", "--format", "csv"});
    EXPECT_EQ(nothing.exitCode, 1);
    EXPECT_EQ(nothing.out, "Name,Start time,End time,Notes,Tag\r\n");
    EXPECT_EQ(nothing.err, "kesta: no record matches\n");
}

TEST_F(FindTest, RowsKeepTheirNumbersWhenSortedAndSelected) {
    const std::string file = codes();
    EXPECT_EQ(found({"show", file, "--sort", "Notes,Name", "--rows", "1,3-"}),
              "Row  Name\n  4  d\n  1  a\n  3  c\n");
    EXPECT_EQ(found({"show", file, "--tagged", "--sort", "Notes", "--rows", "2-4"}),
              "Row  Name\n  2  b\n  3  c\n");
    EXPECT_EQ(found({"find", file, "Notes=circle", "--sort", "Start time"}),
              "Row  Name\n  1  a\n  2  b\n  4  d\n")
        << "an empty value comes last";
}

TEST_F(FindTest, SeveralLogsAreShownBelowTheirNames) {
    const std::string file = codes();
    const std::string other = log("other.log", "\"Name\",\"Notes\"", "\"x\",\"MOS\"\n\"y\",\"\"\n");
    EXPECT_EQ(found({"find", file, other, "Notes=mos"}),
              file + ":\nRow  Name\n  3  c\n\n" + other + ":\nRow  Name\n  1  x\n");
    EXPECT_EQ(found({"find", file, other, "Notes=circle", "--sort", "Notes"}),
              file + ":\nRow  Name\n  4  d\n  1  a\n  2  b\n")
        << "logs without a match are left out";
    const Outcome missing = run({"show", other, path("none.log"), other, "--columns", "Name", "--rows", "2"});
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_EQ(missing.out, other + ":\nRow  Name\n  2  y\n\n" + other + ":\nRow  Name\n  2  y\n");
    const std::string one = run({"show", other, "--format", "json"}).out.substr(2);
    const std::string named = "{\n  \"log\": \"" + other + "\",\n" + one;
    EXPECT_EQ(run({"show", other, other, "--format", "json"}).out, "[\n" + named + ",\n" + named + "]\n");
    EXPECT_EQ(run({"info", other, other}).out, run({"info", other}).out + '\n' + run({"info", other}).out);
}

TEST_F(FindTest, WhatIsFoundBecomesALogOfItsOwn) {
    const std::string file = codes();
    const std::string before = content("codes.log");
    const std::string selects = path("selects.log");
    EXPECT_EQ(run({"find", file, "Notes=circle", "--sort", "Notes", "-o", selects}).out,
              selects + ": 3 records\n");
    EXPECT_EQ(run({"check", selects}).exitCode, 0);
    EXPECT_EQ(run({"param", selects}).out, "KESTA: Rev 1\nTitle: x\n");
    EXPECT_EQ(run({"show", selects, "--format", "csv"}).out,
              "Name,Start time,End time,Notes,Tag\r\n"
              "d,,01:00:20:00,circle,0\r\n"
              "a,01:00:00:00,01:00:08:00,Circle take,0\r\n"
              "b,01:00:05:00,01:00:20:00,\"circle, good sound\",7\r\n");
    EXPECT_EQ(content("codes.log"), before);

    EXPECT_EQ(run({"find", file, "Notes=MOS", "-o", selects}).exitCode, 2) << "it is there already";
    EXPECT_EQ(run({"find", file, "Notes=MOS", "-o", selects, "--force"}).exitCode, 0);
    EXPECT_EQ(found({"show", selects}), "Row  Name\n  1  c\n");
    EXPECT_EQ(run({"find", file, "Notes=none", "-o", selects, "--force"}).exitCode, 1);
    EXPECT_EQ(found({"show", selects}), "Row  Name\n  1  c\n") << "nothing found, nothing written";
}

TEST_F(FindTest, RefusesWhatItCannotLookForOrCopyWhole) {
    const std::string file = codes();
    const std::string damaged = log("damaged.log", "\"A\",\"B\"", "\"1\",\"2\"\n\n\"3\",\"4\"\n");
    const std::string link = path("link.log");
    std::filesystem::create_symlink(file, link);
    expectRefused({
        {{"find", file, "Note=x"}, 2, "did you mean \"Notes\"?"},
        {{"find", file, "Notes"}, 64, "names no column; write COLUMN=TEXT"},
        {{"find", file, "Notes=x", file}, 64, "names no column; write COLUMN=TEXT"},
        {{"find", file, "Notes="}, 64, "holds no text to look for"},
        {{"find", file, "Notes=x", "--sort", "Nam"}, 2, "did you mean \"Name\"?"},
        {{"find", file, "Notes=x", "-o", path("x.log"), "--columns", "Name"}, 64, "--output"},
        {{"find", file, file, "Notes=x", "-o", path("x.log")}, 64, "-o takes the records of one log"},
        {{"show", file, file, "--format", "csv"}, 64, "--format csv takes one log"},
        {{"find", file, "Notes=x", "-o", path("x.csv")}, 2, "a log cannot have this name"},
        {{"find", damaged, "A=1", "-o", path("x.log")}, 2, "not copied, because its copy would lack"},
        {{"find", file, "Notes=circle", "-o", path("none/x.log")}, 2, "No such file or directory"},
        {{"find", file, "Notes=circle", "-o", link, "--force"}, 2, "is the log itself"},
    });
    EXPECT_NE(run({"find", damaged, "A=1"}).out, "") << "showing loses nothing";
}

}  // namespace
