// Commands whose file operations fail, or that are killed, one operation after the other: what they say is
// true, and no file is ever half written.
#include <cerrno>
#include <set>

#include "tests/program/ProgramTest.h"

namespace {

enum Kind { fails = 1, isKilled = 3 };  // as the library that is loaded into the program counts them

class SaveFaultsTest : public ProgramTest {
 protected:
    struct Command {
        std::string target;
        Arguments arguments;
    };

    std::vector<Command> commands() const {
        return {{"a.log", "set a.log 1 Notes changed"},
                {"a.log", "delete a.log 1"},
                {"a.log", "merge a.log b.log"},
                {"a.log", "import a.csv -o a.log --force"},
                {"new.log", "import a.csv -o new.log"},
                {"a.log", "find b.log Name=3 -o a.log --force"},
                {"a.log", "export b.log --format csv -o a.log --force"},
                {"box", "pack M0000000000000000000000000000000200 --name Box -o box --force"}};
    }

    void prepare() const {
        for (const std::string& name : folder.names()) std::filesystem::remove(folder / name);
        table("a.log", {"Name,Notes", "1,x", "2,y"});
        table("b.log", {"Name,Notes", "3,x", "4,y"});
        folder.with("a.csv", "Name,Notes\n5,z\n");
        table("box", {"Cookie", "M0000000000000000000000000000000100"},
              "\"Name:Box\"\n\"Permanent:false\"\n");
    }

    std::string contentOrNone(const std::string& name) const {
        return std::filesystem::exists(folder / name) ? content(name) : "";
    }

    std::vector<std::string> names(const std::string& target, bool isThere) const {
        std::set<std::string> names = {"a.csv", "a.log", "b.log", "box"};
        if (isThere) names.insert(target);
        return {names.begin(), names.end()};
    }

    /// Runs the command with its `at`-th operation hit. `isHit` tells whether it has that many.
    Outcome runWith(Kind kind, unsigned at, const Command& command, bool& isHit) {
        const std::string mark = path(".hit");
        const EnvironmentSetting fault("KESTA_FAULT", std::to_string(kind) + ' ' + std::to_string(EIO) + ' ' +
                                                          std::to_string(at) + ' ' + mark);
        Outcome outcome = runPreloaded(command.arguments);
        isHit = std::filesystem::remove(mark);
        return outcome;
    }

 private:
    Outcome runPreloaded(const Arguments& arguments) {
        const char* const options = std::getenv("ASAN_OPTIONS");
        const EnvironmentSetting sanitizer("ASAN_OPTIONS",
                                           std::string(options ? options : "") + ":verify_asan_link_order=0");
        const EnvironmentSetting preload("LD_PRELOAD", KESTA_PROGRAM_FAULTS);
        return run(arguments);
    }
};

TEST_F(SaveFaultsTest, ACommandSaysTruthfullyWhetherItHasSaved) {
    for (const Command& command : commands()) {
        prepare();
        const std::string before = contentOrNone(command.target);
        ASSERT_EQ(run(command.arguments).exitCode, 0);
        const std::string after = content(command.target);
        ASSERT_NE(after, before);
        bool isHit = true;
        for (unsigned at = 1; isHit; ++at) {
            SCOPED_TRACE(command.arguments[0] + ", operation " + std::to_string(at));
            prepare();
            const Outcome outcome = runWith(fails, at, command, isHit);
            if (outcome.exitCode == 0) {
                ASSERT_EQ(contentOrNone(command.target), after);
            } else {
                ASSERT_EQ(outcome.exitCode, 2);
                ASSERT_NE(outcome.err.find("Input/output error"), std::string::npos) << outcome.err;
                // Whether a container was saved is seen at its file only, which may not be seen at all.
                const bool mayBeSaved = command.target == "box";
                const std::string found = contentOrNone(command.target);
                ASSERT_TRUE(found == before || (mayBeSaved && found == after)) << found;
            }
            // A lock that could not be removed is left, and harmless.
            std::filesystem::remove(path('.' + command.target + ".lock"));
            ASSERT_EQ(folder.names(), names(command.target, outcome.exitCode == 0));
        }
    }
}

TEST_F(SaveFaultsTest, ACommandThatWasKilledLeavesTheOldOrTheNewFileAndIsInNobodysWay) {
    for (const Command& command : {commands().front(), commands().back()}) {
        prepare();
        const std::string before = content(command.target);
        run(command.arguments);
        const std::string after = content(command.target);
        bool isHit = true;
        for (unsigned at = 1; isHit; ++at) {
            SCOPED_TRACE(command.arguments[0] + ", operation " + std::to_string(at));
            prepare();
            runWith(isKilled, at, command, isHit);
            const std::string found = content(command.target);
            ASSERT_TRUE(found == before || found == after);
            ASSERT_EQ(run(command.arguments).exitCode, 0);
            ASSERT_EQ(content(command.target), after);
        }
    }
}

}  // namespace
