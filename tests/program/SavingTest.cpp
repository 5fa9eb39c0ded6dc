// What all commands that write have in common: quiet runs, dry runs, and the old file that is kept.
#include "tests/program/ProgramTest.h"

namespace {

class SavingTest : public ProgramTest {};

TEST_F(SavingTest, EveryCommandThatSavesCanBeQuietRehearsedAndKeepTheOldFile) {
    const std::string table = folder.with("b.csv", "Name,Notes\nb,2\n").string();
    const std::string other = log("b.log", "\"Name\",\"Notes\"", "\"b\",\"2\"\n");
    const std::string file = path("a.log");
    const std::vector<Arguments> commands = {
        {"set", file, "1", "Notes", "new"},
        {"add", file, "Name=new"},
        {"delete", file, "1"},
        {"sort", file, "--by", "Name", "--desc"},
        {"tag", file, "--rows", "1"},
        {"merge", file, other},
        {"param", file, "Mode", "new"},
        {"columns", file, "--hide", "Notes"},
        {"import", table, "-o", file, "--force"},
        {"find", other, "Name=b", "-o", file, "--force"},
        {"export", other, "--format", "csv", "-o", file, "--force"},
        {"pack", "M0123456789abcdef0123456789abcdef00", "--name", "N", "-o", file, "--force"},
    };
    for (const Arguments& command : commands) {
        SCOPED_TRACE(command.front());
        log("a.log", "\"Name\",\"Notes\"", "\"1\",\"x\"\n\"2\",\"y\"\n");
        const std::string before = content("a.log");
        const Outcome rehearsal = run(command + Arguments{"--dry-run"});
        EXPECT_EQ(rehearsal.exitCode, 0);
        EXPECT_NE(rehearsal.out.find("would save " + file + ": "), std::string::npos) << rehearsal.out;
        EXPECT_EQ(run(command + Arguments{"-n", "-q"}).out, "");
        EXPECT_EQ(content("a.log"), before);
        EXPECT_FALSE(std::filesystem::exists(path("a.log~")));

        const Outcome real = run(command + Arguments{"--quiet", "--backup"});
        EXPECT_EQ(real.exitCode, 0);
        EXPECT_EQ(real.out + real.err, "");
        EXPECT_NE(content("a.log"), before);
        EXPECT_EQ(content("a.log~"), before);
        std::filesystem::remove(path("a.log~"));
    }
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.log", "b.csv", "b.log"}));
}

TEST_F(SavingTest, TheNewestOldFileIsKeptAndWithoutItNothingIsSaved) {
    const std::string file = log("a.log", "\"Name\"", "");
    const std::string link = path("link.log");
    std::filesystem::create_symlink("a.log", link);
    for (const char* const name : {"Name=1", "Name=2"}) {
        const std::string before = content("a.log");
        EXPECT_EQ(run({"add", link, name, "--backup"}).exitCode, 0);
        EXPECT_EQ(content("a.log~"), before);
    }
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.log", "a.log~", "link.log"}));
    std::filesystem::remove(path("a.log~"));
    std::filesystem::create_directory(path("a.log~"));
    expectRefused(
        {{{"add", file, "Name=3", "--backup"}, 2, "not saved, because the old file cannot be kept: "}});
}

TEST_F(SavingTest, ARehearsalFailsAsTheRealRunWould) {
    const std::string file = log("a.log", "\"Name\"", "\"1\"\n");
    const std::vector<Arguments> commands = {
        {"find", file, "Name=1", "-o", path("none/x.log")},
        {"export", file, "--format", "ale", "-o", folder.path().string(), "--force"},
        {"find", file, "Name=9", "-o", path("x.log")},
        {"delete", file, "--tagged"}};
    for (const Arguments& command : commands) {
        const Outcome rehearsal = run(command + Arguments{"-n"});
        const Outcome real = run(command);
        EXPECT_NE(real.exitCode, 0);
        EXPECT_EQ(rehearsal.exitCode, real.exitCode);
        EXPECT_EQ(rehearsal.err, real.err);
    }
}

TEST_F(SavingTest, ADashIsStandardInputAndOutput) {
    const std::string file = log("a.log", "\"Name\",\"Tag\"", "\"1\",\"0\"\n\"2\",\"7\"\n");
    const std::string table = path("a.csv");
    const std::string ale = path("a.ale");
    ASSERT_EQ(run({"export", file, "--format", "csv", "-o", table}).exitCode, 0);
    ASSERT_EQ(run({"export", file, "--format", "ale", "-o", ale}).exitCode, 0);
    for (Arguments command : std::vector<Arguments>{
             {"show", file},
             {"find", file, "Name=2"},
             {"find", file, "Name=2", "-o", "-"},
             {"export", file, "--format", "json", "-o", "-"},
             {"tag", file, "--list"},
             {"param", file},
             {"columns", file},
         }) {
        const std::string expected = run(command).out;
        EXPECT_NE(expected, "");
        command[1] = "-";
        EXPECT_EQ(run(command, {}, file).out, expected) << command.front();
    }
    EXPECT_EQ(run({"info", "-"}, {}, file).out.find("file:     standard input\nsize:     "), 0U);
    EXPECT_EQ(run({"check", "-"}, {}, table).out.find("standard input:1: "), 0U);
    for (const std::string& source : {table, ale}) {
        EXPECT_EQ(run({"import", "-", "-o", "-"}, {}, source).out, run({"import", source, "-o", "-"}).out);
    }
    EXPECT_EQ(run({"import", "-", "--format", "csv", "-o", "-"}, {}, ale).exitCode, 0);
    const std::string why = "kesta: standard input cannot be changed; name the log's file\n";
    expectRefused({{{"set", "-", "1", "Name", "x"}, 64, why},
                   {{"param", "-", "a", "b"}, 64, why},
                   {{"columns", "-", "--reset"}, 64, why}});
    EXPECT_EQ(run({"export", "-", "--format", "csv", "-o", file, "--force"}, {}, file).exitCode, 2)
        << "the log itself";
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.ale", "a.csv", "a.log"}));
}

}  // namespace
