// What all commands that write have in common: quiet runs, dry runs, and the old file that is kept.
#include "tests/program/ProgramTest.h"

namespace {

class SavingTest : public ProgramTest {};

TEST_F(SavingTest, EveryCommandThatSavesCanBeQuietRehearsedAndKeepTheOldFile) {
    folder.with("b.csv", "Name,Notes\nb,2\n");
    table("b.log", {"Name,Notes", "b,2"});
    for (const std::string command :
         {"set a.log 1 Notes new", "add a.log Name=new", "delete a.log 1", "sort a.log --by Name --desc",
          "tag a.log --rows 1", "merge a.log b.log", "param a.log Mode new", "columns a.log --hide Notes",
          "import b.csv -o a.log --force", "find b.log Name=b -o a.log --force",
          "export b.log --format csv -o a.log --force",
          "pack M0123456789abcdef0123456789abcdef00 --name N -o a.log --force"}) {
        SCOPED_TRACE(command);
        table("a.log", {"Name,Notes", "1,x", "2,y"});
        const std::string before = content("a.log");
        const Outcome rehearsal = run(command + " --dry-run");
        EXPECT_EQ(rehearsal.exitCode, 0);
        EXPECT_NE(rehearsal.out.find("would save a.log: "), std::string::npos) << rehearsal.out;
        EXPECT_EQ(run(command + " -n -q").out, "");
        EXPECT_EQ(content("a.log"), before);
        EXPECT_FALSE(std::filesystem::exists(path("a.log~")));

        const Outcome real = run(command + " --quiet --backup");
        EXPECT_EQ(real.exitCode, 0);
        EXPECT_EQ(real.out + real.err, "");
        EXPECT_NE(content("a.log"), before);
        EXPECT_EQ(content("a.log~"), before);
        std::filesystem::remove(path("a.log~"));
    }
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.log", "b.csv", "b.log"}));
}

TEST_F(SavingTest, TheNewestOldFileIsKeptAndWithoutItNothingIsSaved) {
    table("a.log", {"Name"});
    std::filesystem::create_symlink("a.log", path("link.log"));
    for (const char* const command : {"add link.log Name=1 --backup", "add link.log Name=2 --backup"}) {
        const std::string before = content("a.log");
        EXPECT_EQ(run(command).exitCode, 0);
        EXPECT_EQ(content("a.log~"), before);
    }
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.log", "a.log~", "link.log"}));
    std::filesystem::remove(path("a.log~"));
    std::filesystem::create_directory(path("a.log~"));
    expectRefused({{"add a.log Name=3 --backup", 2, "not saved, because the old file cannot be kept: "}});
}

TEST_F(SavingTest, ARehearsalFailsAsTheRealRunWould) {
    table("a.log", {"Name", "1"});
    for (const std::string command :
         {"find a.log Name=1 -o none/x.log", "export a.log --format ale -o . --force",
          "find a.log Name=9 -o x.log", "delete a.log --tagged"}) {
        const Outcome rehearsal = run(command + " -n");
        const Outcome real = run(command);
        EXPECT_NE(real.exitCode, 0);
        EXPECT_EQ(rehearsal.exitCode, real.exitCode) << command;
        EXPECT_EQ(rehearsal.err, real.err);
    }
}

TEST_F(SavingTest, ADashIsStandardInputAndOutput) {
    table("a.log", {"Name,Tag", "1,0", "2,7"});
    ASSERT_EQ(run("export a.log --format csv -o a.csv").exitCode, 0);
    ASSERT_EQ(run("export a.log --format ale -o a.ale").exitCode, 0);
    for (Arguments command :
         {Arguments("show a.log"), Arguments("find a.log Name=2"), Arguments("find a.log Name=2 -o -"),
          Arguments("export a.log --format json -o -"), Arguments("tag a.log --list"),
          Arguments("param a.log"), Arguments("columns a.log")}) {
        const std::string expected = run(command).out;
        EXPECT_NE(expected, "");
        command[1] = "-";
        EXPECT_EQ(run(command, {}, "a.log").out, expected) << command.front();
    }
    EXPECT_EQ(run("info -", {}, "a.log").out.find("file:     standard input\nsize:     "), 0U);
    EXPECT_EQ(run("check -", {}, "a.csv").out.find("standard input:1: "), 0U);
    for (const std::string source : {"a.csv", "a.ale"}) {
        EXPECT_EQ(run("import - -o made.log", {}, source).exitCode, 0);
        EXPECT_EQ(run("import - -o -", {}, source).out, content("made.log"));
        std::filesystem::remove(path("made.log"));
    }
    EXPECT_EQ(run("import - --format csv -o -", {}, "a.ale").exitCode, 0);
    const std::string why = "kesta: standard input cannot be changed; name the log's file\n";
    expectRefused({{"set - 1 Name x", 64, why}, {"param - a b", 64, why}, {"columns - --reset", 64, why}});
    EXPECT_EQ(run("export - --format csv -o a.log --force", {}, "a.log").exitCode, 2) << "the log itself";
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.ale", "a.csv", "a.log"}));
}

}  // namespace
