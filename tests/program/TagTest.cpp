// kesta tag and delete --tagged: tags live from one command to the next.
#include "tests/program/ProgramTest.h"

namespace {

class TagTest : public ProgramTest {
 protected:
    /// The names of the tagged records, in the log's order.
    std::string tagged(const std::string& file) {
        std::string names = run({"tag", file, "--list", "--columns", "Name", "--format", "csv"}).out;
        names.erase(0, names.find('\n') + 1);
        names.erase(std::remove(names.begin(), names.end(), '\r'), names.end());
        std::replace(names.begin(), names.end(), '\n', ' ');
        return names;
    }
};

TEST_F(TagTest, TagsLiveFromCommandToCommand) {
    const std::string file =
        log("a.log", "\"Name\",\"Notes\"",
            "\"1\",\"MOS\"\n\"2\",\"good\"\n\"3\",\"mos, good\"\n\"4\",\"\"\n\"5\",\"good\"\n");
    EXPECT_EQ(run({"tag", file, "--list"}).exitCode, 1);
    EXPECT_EQ(run({"show", file, "--tagged"}).exitCode, 1);
    EXPECT_EQ(run({"tag", file, "--where", "Notes=mos"}).out,
              "column \"Tag\" added\n2 of 5 records tagged\n");
    EXPECT_EQ(tagged(file), "1 3 ");
    EXPECT_EQ(run({"tag", file, "--rows", "4-", "--keep"}).out, "4 of 5 records tagged\n");
    EXPECT_EQ(tagged(file), "1 3 4 5 ");
    EXPECT_EQ(run({"tag", file, "--where", "Notes=mos", "Notes=good"}).exitCode, 0);
    EXPECT_EQ(tagged(file), "3 ") << "without --keep other tags go";
    EXPECT_EQ(run({"set", file, "1", "Tag", "7"}).exitCode, 0);
    EXPECT_EQ(run({"tag", file, "--rows", "2", "--keep"}).exitCode, 0);
    EXPECT_EQ(records(file, {"--columns", "Tag"}), "Tag\r\n7\r\n1\r\n1\r\n0\r\n0\r\n")
        << "a tag that stays keeps its number";
    EXPECT_EQ(run({"tag", file, "--invert"}).exitCode, 0);
    EXPECT_EQ(tagged(file), "4 5 ");
    EXPECT_EQ(run({"sort", file, "--by", "Name", "--desc"}).exitCode, 0);
    EXPECT_EQ(tagged(file), "5 4 ");
    EXPECT_EQ(run({"delete", file, "--tagged"}).out, "2 records deleted\n");
    EXPECT_EQ(run({"show", file, "--columns", "Name"}).out, "Row  Name\n  1  3\n  2  2\n  3  1\n");
    EXPECT_EQ(run({"delete", file, "--tagged"}).exitCode, 1);
    EXPECT_EQ(run({"tag", file, "--rows", "1-3"}).exitCode, 0);
    EXPECT_EQ(run({"tag", file, "--clear"}).out, "0 of 3 records tagged\n");
    EXPECT_EQ(run({"tag", file, "--list"}).exitCode, 1);
}

TEST_F(TagTest, FindsFirstAndLaterRecordsOfAValueInTheLogsOrder) {
    const std::string file =
        log("a.log", "\"Name\",\"Reel\"",
            "\"1\",\"b\"\n\"2\",\"\"\n\"3\",\"A1\"\n\"4\",\"a1\"\n\"5\",\"B\"\n\"6\",\"\"\n\"7\",\"a1\"\n"
            "\"8\",\"c\"\n");
    EXPECT_EQ(run({"tag", file, "--duplicates", "Reel"}).exitCode, 0);
    EXPECT_EQ(tagged(file), "4 5 7 ");
    EXPECT_EQ(run({"tag", file, "--distinct", "Reel"}).exitCode, 0);
    EXPECT_EQ(tagged(file), "1 3 8 ");
    EXPECT_EQ(records(file, {"--columns", "Name"}), "Name\r\n1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n8\r\n");
}

TEST_F(TagTest, RefusesUnclearRequestsAndDamagedLogs) {
    const std::string file = log("a.log", "\"Name\",\"Tag\"", "\"1\",\"1\"\n");
    const std::string damaged = log("damaged.log", "\"Name\",\"Tag\"", "\"1\",\"yes\"\n\"2\",\"1\"\n");
    expectRefused({
        {{"tag", file}, 64, "tag needs one of"},
        {{"tag", file, "--clear", "--invert"}, 64, "tag needs one of"},
        {{"tag", file, "--clear", "--keep"}, 64, "--keep"},
        {{"tag", file, "--clear", "--columns", "Name"}, 64, "--list"},
        {{"tag", file, "--where", "Name="}, 64, "holds no text"},
        {{"tag", file, "--duplicates", "Nme"}, 2, "did you mean \"Name\"?"},
        {{"tag", file, "--rows", "2"}, 2, "no row 2"},
        {{"delete", file}, 64, "either ROWS or --tagged"},
        {{"delete", file, "1", "--tagged"}, 64, "either ROWS or --tagged"},
        {{"tag", damaged, "--clear"}, 2, "not changed, because saving would lose"},
        {{"delete", damaged, "--tagged"}, 2, "not changed, because saving would lose"},
        {{"sort", damaged, "--by", "Name"}, 2, "not changed, because saving would lose"},
    });
    EXPECT_EQ(run({"tag", damaged, "--rows", "1", "--force"}).exitCode, 0);
    EXPECT_EQ(tagged(damaged), "1 ");
}

}  // namespace
