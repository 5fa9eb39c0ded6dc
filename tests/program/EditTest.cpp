// kesta set, add, delete and param: what they change, and that they lose nothing.
#include <cstdio>
#include <cstdlib>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/program/ProgramTest.h"

namespace {

class EditTest : public ProgramTest {};

TEST_F(EditTest, ChangesWhatIsAskedForAndNothingElse) {
    table("a.log", {"Name,a=b,Tag", "1,x,0", "2,y,7", "3,z,1"});
    EXPECT_EQ(run("set a.log 2 NAME 'say \"x\",\ny'").exitCode, 0);
    EXPECT_EQ(run("set a.log 3 Tag 255").exitCode, 0);
    EXPECT_EQ(run("add a.log Name=-5 a=b=c=d").out, "row 4\n");
    EXPECT_EQ(records("a.log"), "Name,a=b,Tag\n1,x,0\n\"say \"\"x\"\",\ny\",y,7\n3,z,255\n-5,c=d,0\n");
    EXPECT_EQ(run("delete a.log 3,1,3-3").exitCode, 0);
    EXPECT_EQ(records("a.log"), "Name,a=b,Tag\n\"say \"\"x\"\",\ny\",y,7\n-5,c=d,0\n");
    EXPECT_EQ(run("delete a.log 1-").exitCode, 0);
    EXPECT_EQ(records("a.log"), "Name,a=b,Tag\n") << "a log may be without records";

    EXPECT_EQ(run("param a.log Mode ''").exitCode, 0);
    EXPECT_EQ(run("param a.log MODE a:b").exitCode, 0);
    EXPECT_EQ(run("param a.log mode").out, "a:b\n");
    EXPECT_EQ(run("param a.log").out, "KESTA: Rev 1\nMode: a:b\n");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.log"});
}

TEST_F(EditTest, ValuesAreTakenAsTheyAre) {
    table("a.log", {"Name,Notes", "1"});
    for (const std::string value : {"show", "", "-5", "[a,b]", "{}", "%%", "\\", "\\\\n", "x\\"}) {
        EXPECT_EQ(run({"set", "a.log", "1", "Notes", value}).exitCode, 0) << value;
        EXPECT_EQ(records("a.log", "--columns Notes"),
                  "Notes\n" + (value.empty() || value == "[a,b]" ? '"' + value + '"' : value) + "\n");
    }
    EXPECT_EQ(run("set a.log 1 Notes -- --force").exitCode, 0);
    EXPECT_EQ(records("a.log"), "Name,Notes\n1,--force\n");
}

TEST_F(EditTest, RefusesWhatALogWouldNotGiveBackAndWhatItDoesNotUnderstand) {
    table("a.log", {"Name,Notes,Tag", "1,2,0"});
    table("one.log", {"Name", "1"});
    const std::string longest(dbrecord::longestField, 'x');
    const std::string longer = "longer than " + std::to_string(longest.size() - 1) + " bytes";
    std::string names = "A0";
    for (int i = 1; i < 65; ++i) names += ",A" + std::to_string(i);
    table("wide.log", {names});
    table("long.log", {std::string(64, 'x')});
    expectRefused({
        {"set a.log 1 Notes ' x'", 2, "begins with white space"},
        {"set a.log 1 Notes 'x\n'", 2, "ends with white space"},
        {"set a.log 1 Notes a\rb", 2, "carriage return"},
        {"set a.log 1 Notes C:\\new", 2, "backslash followed by n"},
        {"set a.log 1 Notes " + longest, 2, longer},
        {"set one.log 1 Name Kesta", 2, "beginning of a header"},
        {"set a.log 1 Tag 256", 2, "tags are numbers from 0 to 255"},
        {"set a.log 1 Tag 01", 2, "tags are numbers from 0 to 255"},
        {"set a.log 1 Note x", 2, "did you mean \"Notes\"?"},
        {"set a.log 2 Notes x", 2, "no row 2; the log's rows are 1 to 1"},
        {"set a.log -1 Notes x", 2, "\"-1\" is no row's number; the log's rows are 1 to 1"},
        {"set a.log 99999999999 Notes x", 2, "no row 99999999999; the log's rows are 1 to 1"},
        {"add a.log Name=x 'Notes= x'", 2, "begins with white space"},
        {"add a.log Nme=x", 2, "did you mean \"Name\"?"},
        {"add a.log Name=x name=y", 64, "two values for the column"},
        {"add wide.log A0", 64, "\"A0\" names no column; write COLUMN=VALUE"},
        {"delete a.log 1-2", 2, "no row 2; the log's rows are 1 to 1"},
        {"param a.log a:b x", 2, "keys no colon"},
        {"param a.log a 'say \"x\"'", 2, "no double quotes"},
        {"param a.log a 'x '", 2, "keys no colon"},
        {"param a.log a x\ny", 2, "keys no colon"},
        {"param a.log '' x", 2, "keys no colon"},
        {"param a.log kesta 'Rev 2'", 2, "stays as it is"},
        {"param a.log none", 1, "no parameter \"none\""},
        {"sho wide.log", 64, "no command \"sho\"; did you mean \"show\"? The commands are: info, show, "},
        {"'' wide.log", 64, "no command \"\"; the commands are: "},
        {"show wide.log --columns none", 2, ", A19 ... and 45 more; kesta info lists them\n"},
        {"show long.log --columns Y" + std::string(63, 'x'), 2, "did you mean"},
        {"show wide.log --columns ''", 64, "--columns needs a value"},
        {"show wide.log --rows=", 64, "--rows"},
        {"export wide.log --format csv -o ''", 64, "--output needs a value"},
        {"export wide.log --format csv -n", 64, "--output"},
    });
}

TEST_F(EditTest, NeverSavesALogThatWasNotReadWhole) {
    table("blank.log", {"A,B", "1,2", "", "3,4"});
    table("fields.log", {"A,B", "1,2", "\"3\"", "5,6"});
    table("long.log", {"A,B", "1,2", '"' + std::string(4100, 'x') + '"'});
    table("quote.log", {"A,B", "1,2", "5\" reel,6"});
    table("tag.log", {"A,Tag", "1,2", "3,yes"});
    table("param.log", {"A,B", "1,2"}, "\"no colon\"\n");
    for (const std::string& file : folder.names()) {
        const std::string why = file + ": not changed, because saving would lose what the warnings name";
        expectRefused({{"set " + file + " 1 A x", 2, "kesta: warning: " + file + ':'},
                       {"set " + file + " 1 A x", 2, why},
                       {"add " + file + " A=x", 2, why},
                       {"delete " + file + " 1", 2, why},
                       {"param " + file + " k v", 2, why}});
        EXPECT_EQ(run("set " + file + " 1 A x --force").exitCode, 0);
        EXPECT_EQ(run("check " + file).exitCode, 0);
    }
    folder.with("a.csv", "A,B\n1,2\n");
    expectRefused({{"set a.csv 1 A x --force", 2, "comma-separated"}});
}

TEST_F(EditTest, EditsAtTheSameTimeAllCountAlsoOfALogWithTheLongestName) {
    const std::string file = std::string(251, 'x') + ".log";
    table(file, {"Name"});
    const std::string command = "cd '" + folder.path().string() +
                                "'; for i in 1 2 3 4 5 6 7 8; do '" KESTA_PROGRAM "' add " + file +
                                " Name=$i >.out & done; wait; rm .out";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(records(file, "--sort Name"), "Name\n1\n2\n3\n4\n5\n6\n7\n8\n");
    EXPECT_EQ(folder.names(), std::vector<std::string>{file});
}

TEST_F(EditTest, SaysWhoElseIsEditingTheLog) {
    table("a.log", {"Name", "1"});
    table("b.log", {"Name", "1"});
    folder.with("a.csv", "Name\n2\n");
    std::filesystem::create_symlink("a.log", path("link.log"));
    const std::string lock = folder.with(".a.log.lock", "4711 \x1b[7mlogger\n").string();
    const int holder = open(lock.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(holder, LOCK_EX), 0);
    const EnvironmentSetting noWait("KESTA_LOCK_WAIT", "0");
    const std::string why =
        ".log is being edited by \\x1b[7mlogger, process 4711; try again when it has ended\n";
    expectRefused({{"add a.log Name=2", 2, why},
                   {"add link.log Name=2", 2, why},
                   {"merge a.log b.log", 2, why},
                   {"import a.csv -o a.log --force", 2, why},
                   {"find b.log Name=1 -o a.log --force", 2, why},
                   {"export b.log --format csv -o a.log --force", 2, why},
                   {"pack M1 --name x -o a.log --force", 2, why}});
    EXPECT_EQ(records("a.log"), "Name\n1\n") << "reading needs no lock";
    EXPECT_EQ(run("add b.log Name=2").exitCode, 0) << "a log of the same folder";

    close(holder);
    EXPECT_EQ(run("add a.log Name=2").exitCode, 0) << "a lock that nobody holds any more";
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.csv", "a.log", "b.log", "link.log"}));
}

TEST_F(EditTest, WhatIsNoLockIsNeverTouched) {
    table("a.log", {"Name", "1"});
    const std::string lock = path(".a.log.lock");
    const std::vector<Refused> refused = {{"add a.log Name=2", 2, ".a.log.lock is no lock file"}};
    std::filesystem::create_symlink(folder.with("victim", "4711 kesta\n"), lock);
    expectRefused(refused);
    std::filesystem::remove(lock);
    mkfifo(lock.c_str(), 0600);
    expectRefused(refused);
    for (const char* const text :
         {"4711 kesta", "4711\n", "kesta 4711\n", "4711 kesta\n\n", "\"KESTA:Rev 1\"\n"}) {
        std::filesystem::remove(lock);
        TestSupport::writeFile(lock, text);
        expectRefused(refused);
    }
}

// The program stops in the middle of its work when nobody takes what it says: its warnings, each with a long
// path, are more than a pipe holds.
TEST_F(EditTest, NoticesAProgramThatTakesNoLock) {
    std::vector<std::string> rows = {"A,B"};
    for (int line = 0; line < 20; ++line) rows.insert(rows.end(), {"1,2", "5\" reel,6"});
    table("a.log", rows);
    std::string file = path("");
    while (file.size() < 3900) file += "./";
    const std::string command = "'" KESTA_PROGRAM "' set '" + file + "a.log' 1 A x --force 2>&1";
    std::FILE* const said = popen(command.c_str(), "r");
    ASSERT_NE(said, nullptr);
    std::string text(1, static_cast<char>(std::fgetc(said)));
    rows[1] = "1,3";
    table("a.log", rows);
    const std::string changed = content("a.log");
    for (int c; (c = std::fgetc(said)) != EOF;) text += static_cast<char>(c);
    EXPECT_EQ(WEXITSTATUS(pclose(said)), 2);
    EXPECT_NE(
        text.find("a.log was changed by another program while it was being edited; nothing was saved: do it "
                  "again\n"),
        std::string::npos)
        << text.substr(text.size() - 200);
    EXPECT_EQ(content("a.log"), changed);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.log"});
}

TEST_F(EditTest, SaysWhyASaveFailedOrThatOnlyItsReportDid) {
    folder.with("a.csv", "A\n");
    expectRefused({{"import a.csv -o . --force", 2, ".: Is a directory\n"},
                   {"import a.csv -o none/a.log", 2, "none/a.log: No such file or directory\n"}});
    table("a.log", {"Name"});
    const Outcome full = run("add a.log Name=1", "/dev/full");
    EXPECT_EQ(full.exitCode, 2);
    EXPECT_EQ(full.err.find("kesta: a.log: is saved, but "), 0U) << full.err;
    EXPECT_EQ(records("a.log"), "Name\n1\n");
}

}  // namespace
