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
    const std::string file =
        log("a.log", "\"Name\",\"a=b\",\"Tag\"", "\"1\",\"x\",\"0\"\n\"2\",\"y\",\"7\"\n\"3\",\"z\",\"1\"\n");
    EXPECT_EQ(run({"set", file, "2", "NAME", "say \"x\",\ny"}).exitCode, 0);
    EXPECT_EQ(run({"set", file, "3", "Tag", "255"}).exitCode, 0);
    EXPECT_EQ(run({"add", file, "Name=-5", "a=b=c=d"}).out, "row 4\n");
    EXPECT_EQ(records(file), "Name,a=b,Tag\r\n1,x,0\r\n\"say \"\"x\"\",\ny\",y,7\r\n3,z,255\r\n-5,c=d,0\r\n");
    EXPECT_EQ(run({"delete", file, "3,1,3-3"}).exitCode, 0);
    EXPECT_EQ(records(file), "Name,a=b,Tag\r\n\"say \"\"x\"\",\ny\",y,7\r\n-5,c=d,0\r\n");
    EXPECT_EQ(run({"delete", file, "1-"}).exitCode, 0);
    EXPECT_EQ(records(file), "Name,a=b,Tag\r\n") << "a log may be without records";

    EXPECT_EQ(run({"param", file, "Mode", ""}).exitCode, 0);
    EXPECT_EQ(run({"param", file, "MODE", "a:b"}).exitCode, 0);
    EXPECT_EQ(run({"param", file, "mode"}).out, "a:b\n");
    EXPECT_EQ(run({"param", file}).out, "KESTA: Rev 1\nMode: a:b\n");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.log"});
}

TEST_F(EditTest, ValuesAreTakenAsTheyAre) {
    const std::string file = log("a.log", "\"Name\",\"Notes\"", "\"1\",\"\"\n");
    for (const std::string value : {"show", "", "-5", "[a,b]", "{}", "%%", "\\", "\\\\n", "x\\"}) {
        EXPECT_EQ(run({"set", file, "1", "Notes", value}).exitCode, 0) << value;
        EXPECT_EQ(records(file, {"--columns", "Notes"}),
                  "Notes\r\n" + (value.empty() || value == "[a,b]" ? '"' + value + '"' : value) + "\r\n");
    }
    EXPECT_EQ(run({"set", file, "1", "Notes", "--", "--force"}).exitCode, 0);
    EXPECT_NE(records(file).find("--force"), std::string::npos);
}

TEST_F(EditTest, RefusesWhatALogWouldNotGiveBack) {
    const std::string file = log("a.log", "\"Name\",\"Notes\",\"Tag\"", "\"1\",\"2\",\"0\"\n");
    const std::string oneColumn = log("one.log", "\"Name\"", "\"1\"\n");
    expectRefused({
        {{"set", file, "1", "Notes", " x"}, 2, "begins with white space"},
        {{"set", file, "1", "Notes", "x\n"}, 2, "ends with white space"},
        {{"set", file, "1", "Notes", "a\rb"}, 2, "carriage return"},
        {{"set", file, "1", "Notes", "C:\\new"}, 2, "backslash followed by n"},
        {{"set", file, "1", "Notes", std::string(4095, 'x')}, 2, "longer than 4094 bytes"},
        {{"set", oneColumn, "1", "Name", "Kesta"}, 2, "beginning of a header"},
        {{"set", file, "1", "Tag", "256"}, 2, "tags are numbers from 0 to 255"},
        {{"set", file, "1", "Tag", "01"}, 2, "tags are numbers from 0 to 255"},
        {{"set", file, "1", "Note", "x"}, 2, "did you mean \"Notes\"?"},
        {{"set", file, "2", "Notes", "x"}, 2, "no row 2; the log's rows are 1 to 1"},
        {{"set", file, "-1", "Notes", "x"}, 2, "\"-1\" is no row's number; the log's rows are 1 to 1"},
        {{"set", file, "99999999999", "Notes", "x"}, 2, "no row 99999999999; the log's rows are 1 to 1"},
        {{"add", file, "Name=x", "Notes= x"}, 2, "begins with white space"},
        {{"add", file, "Nme=x"}, 2, "did you mean \"Name\"?"},
        {{"delete", file, "1-2"}, 2, "no row 2; the log's rows are 1 to 1"},
        {{"param", file, "a:b", "x"}, 2, "keys no colon"},
        {{"param", file, "a", "say \"x\""}, 2, "no double quotes"},
        {{"param", file, "a", "x "}, 2, "keys no colon"},
        {{"param", file, "a", "x\ny"}, 2, "keys no colon"},
        {{"param", file, "", "x"}, 2, "keys no colon"},
        {{"param", file, "kesta", "Rev 2"}, 2, "stays as it is"},
        {{"add", file, "Name=x", "name=y"}, 64, "two values for the column"},
        {{"param", file, "none"}, 1, "no parameter \"none\""},
    });
}

TEST_F(EditTest, SaysWhatTheCommandLineShouldHaveBeen) {
    std::string names = "\"A0\"";
    for (int i = 1; i < 65; ++i) names += ",\"A" + std::to_string(i) + '"';
    const std::string wide = log("wide.log", names, "");
    expectRefused({
        {{"sho", wide}, 64, "no command \"sho\"; did you mean \"show\"? The commands are: info, show, "},
        {{"", wide}, 64, "no command \"\"; the commands are: "},
        {{"show", wide, "--columns", "none"}, 2, ", A19 ... and 45 more; kesta info lists them\n"},
        {{"show", wide, "--columns", ""}, 64, "--columns needs a value"},
        {{"show", wide, "--rows="}, 64, "--rows"},
        {{"export", wide, "--format", "csv", "-o", ""}, 64, "--output needs a value"},
        {{"export", wide, "--format", "csv", "-n"}, 64, "--output"},
        {{"add", wide, "A0"}, 64, "\"A0\" names no column; write COLUMN=VALUE"},
    });
}

TEST_F(EditTest, NeverSavesALogThatWasNotReadWhole) {
    const std::vector<std::string> damaged = {
        log("blank.log", "\"A\",\"B\"", "\"1\",\"2\"\n\n\"3\",\"4\"\n"),
        log("fields.log", "\"A\",\"B\"", "\"1\",\"2\"\n\"3\"\n\"5\",\"6\"\n"),
        log("long.log", "\"A\",\"B\"", "\"1\",\"2\"\n\"" + std::string(4100, 'x') + "\"\n"),
        log("quote.log", "\"A\",\"B\"", "\"1\",\"2\"\n\"5\" reel\",\"6\"\n"),
        log("tag.log", "\"A\",\"Tag\"", "\"1\",\"2\"\n\"3\",\"yes\"\n"),
        log("param.log", "\"A\",\"B\"", "\"1\",\"2\"\n", "\"no colon\"\n"),
    };
    for (const std::string& file : damaged) {
        const std::string why = file + ": not changed, because saving would lose what the warnings name";
        expectRefused({{{"set", file, "1", "A", "x"}, 2, "kesta: warning: " + file + ':'},
                       {{"set", file, "1", "A", "x"}, 2, why},
                       {{"add", file, "A=x"}, 2, why},
                       {{"delete", file, "1"}, 2, why},
                       {{"param", file, "k", "v"}, 2, why}});
        EXPECT_EQ(run({"set", file, "1", "A", "x", "--force"}).exitCode, 0);
        EXPECT_EQ(run({"check", file}).exitCode, 0);
    }
    const std::string plain = folder.with("a.csv", "A,B\n1,2\n").string();
    expectRefused({{{"set", plain, "1", "A", "x", "--force"}, 2, "comma-separated"}});
}

TEST_F(EditTest, EditsAtTheSameTimeAllCount) {
    const std::string file = log("a.log", "\"Name\"", "");
    const std::string command = "for i in 1 2 3 4 5 6 7 8; do '" KESTA_PROGRAM "' add '" + file +
                                "' Name=$i >'" + path(".out") + "' & done; wait";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::filesystem::remove(path(".out"));
    EXPECT_EQ(run({"sort", file, "--by", "Name"}).exitCode, 0);
    EXPECT_EQ(records(file), "Name\r\n1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n8\r\n");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.log"});
}

TEST_F(EditTest, SaysWhoElseIsEditingTheLog) {
    const std::string file = log("a.log", "\"Name\"", "\"1\"\n");
    const std::string other = log("b.log", "\"Name\"", "\"1\"\n");
    const std::string table = folder.with("a.csv", "Name\n2\n").string();
    std::filesystem::create_symlink("a.log", path("link.log"));
    const std::string lock = folder.with(".a.log.lock", "4711 \x1b[7mlogger\n").string();
    const int holder = open(lock.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(holder, LOCK_EX), 0);
    const EnvironmentSetting noWait("KESTA_LOCK_WAIT", "0");
    const std::string why =
        ".log is being edited by \\x1b[7mlogger, process 4711; try again when it has ended\n";
    expectRefused({{{"add", file, "Name=2"}, 2, why},
                   {{"add", path("link.log"), "Name=2"}, 2, why},
                   {{"merge", file, other}, 2, why},
                   {{"import", table, "-o", file, "--force"}, 2, why},
                   {{"find", other, "Name=1", "-o", file, "--force"}, 2, why},
                   {{"export", other, "--format", "csv", "-o", file, "--force"}, 2, why},
                   {{"pack", "M1", "--name", "x", "-o", file, "--force"}, 2, why}});
    EXPECT_EQ(records(file), "Name\r\n1\r\n") << "reading needs no lock";
    EXPECT_EQ(run({"add", other, "Name=2"}).exitCode, 0) << "a log of the same folder";

    close(holder);
    EXPECT_EQ(run({"add", file, "Name=2"}).exitCode, 0) << "a lock that nobody holds any more";
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.csv", "a.log", "b.log", "link.log"}));
}

TEST_F(EditTest, WhatIsNoLockIsNeverTouched) {
    const std::string file = log("a.log", "\"Name\"", "\"1\"\n");
    const std::string lock = path(".a.log.lock");
    const std::string victim = folder.with("victim", "4711 kesta\n").string();
    const std::vector<Refused> refused = {{{"add", file, "Name=2"}, 2, lock + " is no lock file"}};
    std::filesystem::create_symlink(victim, lock);
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

TEST_F(EditTest, LogsWithTheLongestNamesAreLockedToo) {
    const std::string file = log(std::string(251, 'x') + ".log", "\"Name\"", "");
    EXPECT_EQ(run({"add", file, "Name=2"}).exitCode, 0);
    EXPECT_EQ(records(file), "Name\r\n2\r\n");
}

// The program stops in the middle of its work when nobody takes what it says: its warnings, each with a long
// path, are more than a pipe holds.
TEST_F(EditTest, NoticesAProgramThatTakesNoLock) {
    std::string damaged;
    for (int line = 0; line < 20; ++line) damaged += "\"1\",\"2\"\n\"5\" reel\",\"6\"\n";
    log("a.log", "\"A\",\"B\"", damaged);
    std::string file = path("");
    while (file.size() < 3900) file += "./";
    file += "a.log";
    const std::string command = "'" KESTA_PROGRAM "' set '" + file + "' 1 A x --force 2>&1";
    std::FILE* const said = popen(command.c_str(), "r");
    ASSERT_NE(said, nullptr);
    std::string text(1, static_cast<char>(std::fgetc(said)));
    std::string changed = content("a.log");
    changed.replace(changed.find("\"1\",\"2\""), 7, "\"1\",\"3\"");
    TestSupport::writeFile(path("a.log"), changed);
    for (int c; (c = std::fgetc(said)) != EOF;) text += static_cast<char>(c);
    const int status = pclose(said);
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_NE(
        text.find("a.log was changed by another program while it was being edited; nothing was saved: do it "
                  "again\n"),
        std::string::npos)
        << text.substr(text.size() - 200);
    EXPECT_EQ(content("a.log"), changed);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.log"});
}

TEST_F(EditTest, SaysWhyASaveFailedOrThatOnlyItsReportDid) {
    const std::string source = folder.with("a.csv", "A\n").string();
    const std::string here = folder.path().string();
    const std::string nowhere = path("none/a.log");
    expectRefused({{{"import", source, "-o", here, "--force"}, 2, here + ": Is a directory\n"},
                   {{"import", source, "-o", nowhere}, 2, nowhere + ": No such file or directory\n"}});
    const std::string file = log("a.log", "\"Name\"", "");
    const Outcome full = run({"add", file, "Name=1"}, "/dev/full");
    EXPECT_EQ(full.exitCode, 2);
    EXPECT_EQ(full.err.find("kesta: " + file + ": is saved, but "), 0U) << full.err;
    EXPECT_EQ(run({"show", file}).out, "Row  Name\n  1  1\n");
}

}  // namespace
