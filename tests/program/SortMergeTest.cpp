// kesta sort and merge: whole logs put in order and put together.
#include "tests/program/ProgramTest.h"

namespace {

class SortMergeTest : public ProgramTest {
 protected:
    /// A log with a time code column of this type.
    std::string codes(const std::string& name, const std::string& type, const std::string& names,
                      const std::string& lines) const {
        return folder
            .with(name, "\"KESTA:Rev 1\"\n\"KESTA\"\n\"4\",\"4\",\"4\"\n\"text\",\"" + type +
                            "\",\"text\"\n" + names + '\n' + lines)
            .string();
    }
};

TEST_F(SortMergeTest, SortsByColumnsInTheirOrder) {
    const std::string file =
        log("b.log", "\"A\",\"B\",\"Tag\"", "\"x\",\"2\",\"0\"\n\"X\",\"3\",\"7\"\n\"x\",\"1\",\"1\"\n");
    EXPECT_EQ(run({"sort", file, "--by", "A,b"}).exitCode, 0);
    EXPECT_EQ(records(file), "A,B,Tag\r\nX,3,7\r\nx,1,1\r\nx,2,0\r\n");
    EXPECT_EQ(run({"sort", file, "--by", "A", "--by", "B", "--ignore-case"}).exitCode, 0);
    EXPECT_EQ(records(file), "A,B,Tag\r\nx,1,1\r\nx,2,0\r\nX,3,7\r\n");
    EXPECT_EQ(run({"sort", file, "--by", "B", "--desc"}).exitCode, 0);
    EXPECT_EQ(records(file, {"--columns", "B"}), "B\r\n3\r\n2\r\n1\r\n");
    expectRefused({{{"sort", file, "--by", "A,B,A,B,A,B,A,B,A,B"},
                    64,
                    "kesta: 10 columns to sort by; at most 9 are possible\n"}});
    EXPECT_EQ(run({"sort", file, "--by", "A,B,A,B,A,B,A,B,A"}).exitCode, 0);
}

TEST_F(SortMergeTest, LogsOfTheSameColumnsAreAppended) {
    const std::string names = "\"Name\",\"Tag\"";
    const std::string into = log("into.log", names, "\"1\",\"1\"\n");
    const std::string first = log("first.log", names, "\"2\",\"7\"\n\"3\",\"0\"\n");
    const std::string second = log("second.log", names, "");
    EXPECT_EQ(run({"merge", into, first, second, first}).out,
              first + ": 2 records; all columns matched\n" + second + ": 0 records; all columns matched\n" +
                  first + ": 2 records; all columns matched\n");
    EXPECT_EQ(records(into), "Name,Tag\r\n1,1\r\n2,7\r\n3,0\r\n2,7\r\n3,0\r\n");
}

TEST_F(SortMergeTest, OtherLogsAreMergedByTheNamesOfTheirColumns) {
    const std::string into =
        codes("into.log", "timecode", "\"Name\",\"Start time\",\"Reel\"", "\"1\",\"01:00:00:00\",\"A1\"\n");
    const std::string digits =
        codes("digits.log", "timecode_s", "\"NAME\",\"Start time\",\"Notes\"",
              "\"2\",\"02000010\",\"x\"\n\"3\",\"03000010;\",\"\"\n\"4\",\"later\",\"y\"\n");
    EXPECT_EQ(run({"merge", into, digits}).out,
              digits +
                  ": 3 records; matched: NAME, Start time; dropped: Notes; converted: Start time (as "
                  "01:00:00:00)\n");
    EXPECT_EQ(records(into),
              "Name,Start time,Reel\r\n1,01:00:00:00,A1\r\n2,02:00:00:10,\r\n3,03:00:00;10,\r\n"
              "4,later,\r\n");
    EXPECT_EQ(run({"merge", digits, into})
                  .out.find(into + ": 4 records; matched: Name, Start time; dropped: "
                                   "Reel; converted: Start time (as 01000000)"),
              0U);
    EXPECT_NE(records(digits).find("\r\n3,03000010;,\r\n"), std::string::npos);
}

TEST_F(SortMergeTest, MergesAllLogsOrNone) {
    const std::string names = "\"Name\",\"Reel\"";
    const std::string into = log("into.log", names, "\"1\",\"A\"\n");
    const std::string good = log("good.log", names, "\"2\",\"B\"\n");
    const std::string link = path("link.log");
    std::filesystem::create_symlink(into, link);
    const std::string damaged = log("damaged.log", names, "\"3\",\"C\"\n\n\"4\",\"D\"\n");
    const std::string apart = log("other.log", "\"X\",\"Y\"", "\"3\",\"C\"\n");
    const std::string plain = folder.with("plain.csv", "Name,Reel\n3,C\n").string();
    const std::string header = log("header.log", "\"X\",\"Name\"", "\"3\",\"kesta\"\n");
    const std::string one = log("one.log", "\"Name\"", "\"1\"\n");
    expectRefused({
        {{"merge", into, good, path("none.log")}, 2, "No such file or directory"},
        {{"merge", into, good, damaged}, 2, "not copied, because"},
        {{"merge", into, good, apart}, 2, "has no column of the log"},
        {{"merge", into, good, plain}, 2, "kesta import"},
        {{"merge", into, good, into}, 2, "a log is not merged into itself"},
        {{"merge", into, good, link}, 2, "a log is not merged into itself"},
        {{"merge", one, header}, 2, "row 1: the log does not keep the value"},
        {{"merge", damaged, good}, 2, "not changed, because"},
    });
    EXPECT_EQ(run({"merge", into, damaged, "--force"}).exitCode, 0);
    EXPECT_EQ(records(into), "Name,Reel\r\n1,A\r\n3,C\r\n");
}

}  // namespace
