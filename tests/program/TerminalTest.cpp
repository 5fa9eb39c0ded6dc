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
    table(hostile + ".log", {hostile + ",Tag", hostile + ",0"}, "\"" + hostile + ":" + hostile + "\"\n");
    table(hostile + ".bad", {hostile + ",Tag", hostile + ',' + hostile, '"' + hostile + '"'});
    folder.with(hostile + ".csv", hostile + ",\n" + hostile + ",\" x\"\n");
    for (const char* const command :
         {"info @.log", "show @.log", "find @.log @=@", "find @.log @=@ -o @.made", "check @.log @.bad none@",
          "import @.csv -o @.made --force", "export @.bad --format csv -o @.made --force", "param @.log",
          "param @.log @", "columns @.log", "tag @.log --rows 1", "tag @.log --list",
          "merge @.log @.bad --force", "pack @ @ --names --name @ -o @.sg", "items @.sg", "@",
          "show @.log --@"}) {
        Arguments arguments(command);
        for (std::string& word : arguments) {
            for (std::size_t at; (at = word.find('@')) != std::string::npos;) word.replace(at, 1, hostile);
        }
        const Outcome shown = run(arguments);
        EXPECT_FALSE(shown.out.empty() && shown.err.empty()) << command;
        EXPECT_TRUE(isHarmless(shown.out)) << command << ": " << testing::PrintToString(shown.out);
        EXPECT_TRUE(isHarmless(shown.err)) << command << ": " << testing::PrintToString(shown.err);
    }
}

}  // namespace
