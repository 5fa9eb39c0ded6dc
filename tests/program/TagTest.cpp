// kesta tag and delete --tagged: tags live from one command to the next.
#include "tests/program/ProgramTest.h"

namespace {

class TagTest : public ProgramTest {
 protected:
    /// The names of the tagged records, in the log's order.
    std::string tagged(const std::string& file = "a.log") {
        std::string names = run("tag " + file + " --list --columns Name --format csv").out;
        names.erase(0, names.find('\n') + 1);
        names.erase(std::remove(names.begin(), names.end(), '\r'), names.end());
        std::replace(names.begin(), names.end(), '\n', ' ');
        return names;
    }
};

TEST_F(TagTest, TagsLiveFromCommandToCommand) {
    table("a.log", {"Name,Notes", "1,MOS", "2,good", "\"3\",\"mos, good\"", "4", "5,good"});
    EXPECT_EQ(run("tag a.log --list").exitCode, 1);
    EXPECT_EQ(run("show a.log --tagged").exitCode, 1);
    EXPECT_EQ(run("tag a.log --where Notes=mos").out, "column \"Tag\" added\n2 of 5 records tagged\n");
    EXPECT_EQ(tagged(), "1 3 ");
    EXPECT_EQ(run("tag a.log --rows 4- --keep").out, "4 of 5 records tagged\n");
    EXPECT_EQ(tagged(), "1 3 4 5 ");
    EXPECT_EQ(run("tag a.log --where Notes=mos Notes=good").exitCode, 0);
    EXPECT_EQ(tagged(), "3 ") << "without --keep other tags go";
    EXPECT_EQ(run("set a.log 1 Tag 7").exitCode, 0);
    EXPECT_EQ(run("tag a.log --rows 2 --keep").exitCode, 0);
    EXPECT_EQ(records("a.log", "--columns Tag"), "Tag\n7\n1\n1\n0\n0\n")
        << "a tag that stays keeps its number";
    EXPECT_EQ(run("tag a.log --invert").exitCode, 0);
    EXPECT_EQ(tagged(), "4 5 ");
    EXPECT_EQ(run("sort a.log --by Name --desc").exitCode, 0);
    EXPECT_EQ(tagged(), "5 4 ");
    EXPECT_EQ(run("delete a.log --tagged").out, "2 records deleted\n");
    EXPECT_EQ(records("a.log", "--columns Name"), "Name\n3\n2\n1\n");
    EXPECT_EQ(run("delete a.log --tagged").exitCode, 1);
    EXPECT_EQ(run("tag a.log --rows 1-3").exitCode, 0);
    EXPECT_EQ(run("tag a.log --clear").out, "0 of 3 records tagged\n");
    EXPECT_EQ(run("tag a.log --list").exitCode, 1);
}

TEST_F(TagTest, FindsFirstAndLaterRecordsOfAValueInTheLogsOrder) {
    table("a.log", {"Name,Reel", "1,b", "2", "3,A1", "4,a1", "5,B", "6", "7,a1", "8,c"});
    EXPECT_EQ(run("tag a.log --duplicates Reel").exitCode, 0);
    EXPECT_EQ(tagged(), "4 5 7 ");
    EXPECT_EQ(run("tag a.log --distinct Reel").exitCode, 0);
    EXPECT_EQ(tagged(), "1 3 8 ");
    EXPECT_EQ(records("a.log", "--columns Name"), "Name\n1\n2\n3\n4\n5\n6\n7\n8\n");
}

TEST_F(TagTest, RefusesUnclearRequestsAndDamagedLogs) {
    table("a.log", {"Name,Tag", "1,1"});
    table("damaged.log", {"Name,Tag", "1,yes", "2,1"});
    expectRefused({
        {"tag a.log", 64, "tag needs one of"},
        {"tag a.log --clear --invert", 64, "tag needs one of"},
        {"tag a.log --clear --keep", 64, "--keep"},
        {"tag a.log --clear --columns Name", 64, "--list"},
        {"tag a.log --where Name=", 64, "holds no text"},
        {"tag a.log --duplicates Nme", 2, "did you mean \"Name\"?"},
        {"tag a.log --rows 2", 2, "no row 2"},
        {"delete a.log", 64, "either ROWS or --tagged"},
        {"delete a.log 1 --tagged", 64, "either ROWS or --tagged"},
        {"tag damaged.log --clear", 2, "not changed, because saving would lose"},
        {"delete damaged.log --tagged", 2, "not changed, because saving would lose"},
        {"sort damaged.log --by Name", 2, "not changed, because saving would lose"},
    });
    EXPECT_EQ(run("tag damaged.log --rows 1 --force").exitCode, 0);
    EXPECT_EQ(tagged("damaged.log"), "1 ");
}

}  // namespace
