// kesta sort and merge: whole logs put in order and put together.
#include "tests/program/ProgramTest.h"

namespace {

class SortMergeTest : public ProgramTest {
 protected:
    std::string records(const std::string& file) { return run({"show", file, "--format", "csv"}).out; }

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
    const std::string file = codes("a.log", "timecode", "\"Scene\",\"Start time\",\"Tag\"",
                                   "\"12\",\"02:00:00:00\",\"0\"\n"
                                   "\"\",\"01:00:00:00\",\"3\"\n"
                                   "\"12\",\"01:00:00;09\",\"1\"\n"
                                   "\"12\",\"01:00:00:10\",\"0\"\n"
                                   "\"11a\",\"\",\"0\"\n"
                                   "\"11A\",\"05:00:00:00\",\"0\"\n");
    EXPECT_EQ(run({"sort", file, "--by", "Scene,start time"}).exitCode, 0);
    EXPECT_EQ(records(file),
              "Scene,Start time,Tag\r\n11A,05:00:00:00,0\r\n11a,,0\r\n12,01:00:00;09,1\r\n"
              "12,01:00:00:10,0\r\n12,02:00:00:00,0\r\n,01:00:00:00,3\r\n");
    EXPECT_EQ(run({"sort", file, "--by", "Start time", "--desc"}).exitCode, 0);
    EXPECT_EQ(run({"show", file, "--columns", "Start time", "--format", "csv"}).out,
              "Start time\r\n05:00:00:00\r\n02:00:00:00\r\n01:00:00;09\r\n01:00:00:10\r\n01:00:00:00\r\n"
              "\"\"\r\n");

    const std::string cased = log("b.log", "\"A\",\"B\"", "\"x\",\"2\"\n\"X\",\"3\"\n\"x\",\"1\"\n");
    EXPECT_EQ(run({"sort", cased, "--by", "A,B"}).exitCode, 0);
    EXPECT_EQ(records(cased), "A,B\r\nX,3\r\nx,1\r\nx,2\r\n");
    EXPECT_EQ(run({"sort", cased, "--by", "A", "--by", "B", "--ignore-case"}).exitCode, 0);
    EXPECT_EQ(records(cased), "A,B\r\nx,1\r\nx,2\r\nX,3\r\n");

    const Outcome tooMany = run({"sort", cased, "--by", "A,B,A,B,A,B,A,B,A,B"});
    EXPECT_EQ(tooMany.exitCode, 64);
    EXPECT_EQ(tooMany.err, "kesta: 10 columns to sort by; at most 9 are possible\n");
    EXPECT_EQ(run({"sort", cased, "--by", "A,B,A,B,A,B,A,B,A"}).exitCode, 0);
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
    struct Refused {
        std::string from;
        std::string why;
    };
    const std::vector<Refused> cases = {
        {path("none.log"), "No such file or directory"},
        {log("damaged.log", names, "\"3\",\"C\"\n\n\"4\",\"D\"\n"), "not copied, because"},
        {log("other.log", "\"X\",\"Y\"", "\"3\",\"C\"\n"), "has no column of the log"},
        {folder.with("plain.csv", "Name,Reel\n3,C\n").string(), "kesta import"},
        {into, "a log is not merged into itself"},
        {link, "a log is not merged into itself"},
    };
    const std::string before = content("into.log");
    for (const Refused& refused : cases) {
        const Outcome outcome = run({"merge", into, good, refused.from});
        EXPECT_EQ(outcome.exitCode, 2) << refused.why;
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err.find(refused.why), std::string::npos) << outcome.err;
        EXPECT_EQ(content("into.log"), before);
    }
    const std::string header = log("header.log", "\"X\",\"Name\"", "\"3\",\"kesta\"\n");
    const Outcome intoOneColumn = run({"merge", log("one.log", "\"Name\"", "\"1\"\n"), header});
    EXPECT_EQ(intoOneColumn.exitCode, 2);
    EXPECT_NE(intoOneColumn.err.find("row 1: the log does not keep the value"), std::string::npos)
        << intoOneColumn.err;
    EXPECT_EQ(run({"merge", path("damaged.log"), good}).exitCode, 2);
    EXPECT_EQ(run({"merge", into, path("damaged.log"), "--force"}).exitCode, 0);
    EXPECT_EQ(records(into), "Name,Reel\r\n1,A\r\n3,C\r\n");
}

}  // namespace
