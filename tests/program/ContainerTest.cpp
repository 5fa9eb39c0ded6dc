// kesta pack and kesta items: container files made and shown.
#include "tests/program/ProgramTest.h"

namespace {

class ContainerTest : public ProgramTest {};

const std::string identifier = "M0123456789abcdef0123456789abcdef07";
const std::string spelled = "M01234567-89ab-cdef-0123-456789abcdef07";

TEST_F(ContainerTest, WhatIsPackedIsShown) {
    const Outcome packed = run("pack -o box.rak --name 'Dag \xC3\xA9\x1B' --permanent " + identifier +
                               " B000102030405060708090a0b0c0d0e0f00 " + spelled);
    EXPECT_EQ(packed.out, "box.rak: 2 items\n");
    EXPECT_EQ(packed.err, "kesta: warning: \"" + spelled + "\" is named twice and kept once\n");

    EXPECT_EQ(run("items box.rak").out,
              "name:      Dag \xC3\xA9\\x1b\npermanent: yes\nkind:      B\nitems:     2\n"
              "Row  Cookie\n  1  " +
                  spelled + "\n  2  B00010203-0405-0607-0809-0a0b0c0d0e0f00\n");
    EXPECT_EQ(run("items box.rak --format csv").out,
              "Cookie\r\n" + spelled + "\r\nB00010203-0405-0607-0809-0a0b0c0d0e0f00\r\n");
    const std::string json = run("items box.rak --format json").out;
    const std::string head =
        "{\n  \"name\": \"Dag \xC3\xA9\\u001b\",\n  \"permanent\": true,\n  \"kind\": \"B\",\n";
    EXPECT_EQ(json.substr(0, head.size()), head);
    EXPECT_NE(json.find("[\"" + spelled + "\"],\n"), std::string::npos) << json;
}

TEST_F(ContainerTest, AnExistingFileIsReplacedOnlyWhenAskedFor) {
    EXPECT_EQ(run("pack -o box.sg --name Old " + identifier).exitCode, 0);
    expectRefused(
        {{"pack -o box.sg --name New " + identifier, 2, "box.sg: is there already; --force replaces it\n"}});
    EXPECT_EQ(run("pack -o box.sg --name New --force --names clip").exitCode, 0);
    const std::string items = run("items box.sg").out;
    EXPECT_EQ(items.find("name:      New\npermanent: no\nkind:      M\nitems:     1\n"), 0U) << items;
    EXPECT_EQ(folder.names(), std::vector<std::string>{"box.sg"});

    std::filesystem::create_symlink("box.sg", path("link.sg"));
    EXPECT_EQ(run("pack -o link.sg --name Newer --force " + identifier).exitCode, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.sg")));
    EXPECT_EQ(run("items box.sg").out.find("name:      Newer\n"), 0U) << "the link leads to it";
}

TEST_F(ContainerTest, WhatCannotBeDoneIsSaidAndLeavesNothing) {
    std::filesystem::create_directory(folder / "folder");
    table("a.log", {"Name", "1"});
    table("full.sg", {"Name", "1"});
    folder.with("full.sg.tmp", "another file");
    expectRefused({
        {"pack --name B -o b.sg I0123456789abcdef0123456789abcdef07", 64, "of kind I"},
        {"pack --name B -o b.sg " + identifier + " ' '", 64, "an identifier is empty"},
        {"pack --name 'say \"B\"' -o b.sg " + identifier, 2, "does not keep this name"},
        {"pack --name B -o b.csv " + identifier, 2, "cannot have this name"},
        {"pack --name B -o absent/b.sg " + identifier, 2, "No such file or directory"},
        {"pack --name B -o - " + identifier, 64, "is not written to standard output"},
        {"pack --name B -o folder --force " + identifier, 2, "is no plain file"},
        {"pack --name B -o full.sg --force " + identifier, 2, "full.sg.tmp is in the way"},
        {"pack --name B -o b.sg " + identifier + "0", 64, "is no identifier"},
        {"pack --name B -o b.sg M01234567-89ab-cdef-0123456789abcdef07", 64, "is no identifier"},
        {"pack --name B -o b.sg M0123456789abcdef0123456789abcdef0g", 64, "is no identifier"},
        {"pack --name B -o b.sg", 64, "IDENTIFIER"},
        {"items a.log", 2, "is a log, but no container"},
        {"items b.sg", 2, "No such file or directory"},
    });
}

}  // namespace
