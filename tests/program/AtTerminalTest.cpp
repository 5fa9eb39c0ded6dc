// What a user at a terminal sees: lines that fit, colours, and what a lengthy command is at.
#include <fstream>
#include <poll.h>
#include <pty.h>
#include <stdlib.h>
#include <thread>
#include <unistd.h>

#include "tests/program/ProgramTest.h"

namespace {

/// A terminal of its own, seen from the side of the one who looks at it.
class Terminal {
 public:
    Terminal(unsigned short columns, unsigned short rows) {
        const winsize size{rows, columns, 0, 0};
        if (openpty(&m_controller, &m_held, nullptr, nullptr, &size) != 0) {
            throw std::runtime_error("no terminal to be had");
        }
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal() { close(m_controller); }

    std::string name() const { return ttyname(m_held); }

    /// What is shown until this text has come, or nothing for a long time.
    std::string shownUpTo(const std::string& text) const {
        pollfd ready{m_controller, POLLIN, 0};
        std::string shown;
        while (shown.find(text) == std::string::npos && poll(&ready, 1, 30000) == 1 && readSome(shown))
            continue;
        return shown;
    }

    /// The rest that is shown, without carriage returns. To be called once, when the program has ended.
    std::string rest() const {
        // Without a user the terminal delivers what is on its way and then ends.
        close(m_held);
        std::string shown;
        while (readSome(shown)) continue;
        shown.erase(std::remove(shown.begin(), shown.end(), '\r'), shown.end());
        return shown;
    }

 private:
    bool readSome(std::string& shown) const {
        char buffer[4096];
        const ssize_t count = read(m_controller, buffer, sizeof buffer);
        if (count > 0) shown.append(buffer, static_cast<std::size_t>(count));
        return count > 0;
    }

    int m_controller = -1;
    int m_held = -1;
};

class AtTerminalTest : public ProgramTest {
 protected:
    void SetUp() override {
        ProgramTest::SetUp();
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
    }

    /// What the program writes to a terminal of this size.
    std::string onTerminal(const Arguments& arguments, unsigned short columns, unsigned short rows) {
        Terminal terminal(columns, rows);
        run(arguments, terminal.name());
        return terminal.rest();
    }
};

TEST_F(AtTerminalTest, ATerminalGetsLinesThatFitAndTheHeaderWithEveryScreenful) {
    table("a.log", {"Name,Notes", "1,\xE6\x98\xA0\xE7\x94\xBB\xE6\x98\xA0\xE7\x94\xBB\xE6\x98\xA0", "2", "3",
                    "4", "5," + std::string(200, 'x')});
    EXPECT_EQ(onTerminal("show a.log --color never", 18, 5),
              "Row  Name  Notes\n"
              "  1  1     \xE6\x98\xA0\xE7\x94\xBB\xE6\x98\xA0\xE2\x80\xA6\n"
              "  2  2\n"
              "  3  3\n"
              "Row  Name  Notes\n"
              "  4  4\n"
              "  5  5     xxxxxx\xE2\x80\xA6\n");
    EXPECT_EQ(run("show a.log --rows 5").out, "Row  Name  Notes\n  5  5     " + std::string(200, 'x') + '\n')
        << "elsewhere everything is written in full";
}

TEST_F(AtTerminalTest, ColoursAreForTerminalsUnlessSaidOtherwise) {
    table("a.log", {"Name,Tag", "1,0", "2,7"});
    const std::string plain = "Row  Name  Tag\n  1  1     0\n  2  2     7\n";
    const std::string coloured = "\x1B[1mRow  Name  Tag\x1B[0m\n  1  1     0\n\x1B[36m  2  2     7\x1B[0m\n";
    EXPECT_EQ(onTerminal("show a.log", 80, 24), coloured);
    EXPECT_EQ(run("show a.log").out, plain);
    EXPECT_EQ(run("show a.log --color always").out, coloured);
    EXPECT_EQ(run("show a.log --color always --rows 9").err,
              "\x1B[1;31mkesta:\x1B[0m no row 9; the log's rows are 1 to 2\n");
    for (const auto& [variable, value] : {std::pair("NO_COLOR", "1"), std::pair("TERM", "dumb")}) {
        setenv(variable, value, 1);
        EXPECT_EQ(onTerminal("show a.log", 80, 24), plain) << variable;
        unsetenv(variable);
        setenv("TERM", "xterm", 1);
    }
}

TEST_F(AtTerminalTest, ALengthyCommandSaysWhatItIsAtAndTakesThatAway) {
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Terminal terminal(80, 24);
    const std::string command =
        "'" KESTA_PROGRAM "' check - <'" + pipe + "' >'" + path("out") + "' 2>'" + terminal.name() + "'";
    std::thread user([&] { EXPECT_EQ(std::system(command.c_str()), 1 << 8); });
    const std::string progress = "\r\x1B[Kchecking standard input [====        ] 1 s";
    {
        std::ofstream feed(pipe);
        EXPECT_EQ(terminal.shownUpTo(progress), progress);
        feed << "no log\n";
    }
    user.join();
    const std::string rest = terminal.rest();
    EXPECT_EQ(rest.rfind("\x1B[K") + 3, rest.size()) << "nothing is left of it";
    EXPECT_EQ(content("out").find("standard input:1: this is no log"), 0U) << content("out");
}

}  // namespace
