// Text of files, file names and arguments, wherever they are shown to people, never steer the terminal.
#include "tests/program/ProgramTest.h"

namespace {

// Clears the screen, in both encodings of its beginning; turns the text's direction.
const std::string hostile =
    "x\x1b[2J\xc2\x9b"
    "2J\x9b\xe2\x80\xae"
    "\x07";

bool isHarmless(const std::string& text) {
    for (const char* const steering : {"\x1b", "\xc2\x9b", "\x9b", "\xe2\x80\xae", "\x07"}) {
        if (text.find(steering) != std::string::npos) return false;
    }
    return true;
}

class TerminalTest : public ProgramTest {};

TEST_F(TerminalTest, NothingThatIsShownSteersIt) {
    const std::string name = '"' + hostile + '"';
    const std::string file =
        log(hostile + ".log", name + ",\"Tag\"", name + ",\"0\"\n", "\"" + hostile + ":" + hostile + "\"\n");
    const std::string damaged =
        log(hostile + ".bad", name + ",\"Tag\"", name + "," + name + "\n" + name + "\n");
    const std::string table = folder.with(hostile + ".csv", hostile + ",\n" + hostile + ",\" x\"\n").string();
    const std::string made = path(hostile + ".made");
    const std::string box = path(hostile + ".sg");
    const std::vector<Arguments> commands = {
        {"info", file},
        {"show", file},
        {"find", file, hostile + "=" + hostile},
        {"find", file, hostile + "=" + hostile, "-o", made},
        {"check", file, damaged, path("none" + hostile)},
        {"import", table, "-o", made, "--force"},
        {"export", damaged, "--format", "csv", "-o", made, "--force"},
        {"param", file},
        {"param", file, hostile},
        {"columns", file},
        {"tag", file, "--rows", "1"},
        {"tag", file, "--list"},
        {"merge", file, damaged, "--force"},
        {"pack", hostile, hostile, "--name", hostile, "-o", box},
        {"items", box},
        {hostile},
        {"show", file, "--" + hostile},
    };
    for (const Arguments& command : commands) {
        const Outcome shown = run(command);
        EXPECT_FALSE(shown.out.empty() && shown.err.empty()) << command[0];
        EXPECT_TRUE(isHarmless(shown.out)) << command[0] << ": " << testing::PrintToString(shown.out);
        EXPECT_TRUE(isHarmless(shown.err)) << command[0] << ": " << testing::PrintToString(shown.err);
    }
}

}  // namespace
