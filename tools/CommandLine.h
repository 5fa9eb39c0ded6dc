// The command line: which commands there are and what they take.
//
// Thread-safety: one thread at a time.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tools/terminal/Presentation.h"

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

class CommandLine {
 public:
    CommandLine();
    ~CommandLine();

    /// All commands and their options, each with its description, for whoever describes the program. Those
    /// that every command takes stand in a group of their own, "Common options".
    const CLI::App& app() const noexcept { return *m_app; }

    /// Runs the command that the arguments name and answers the program's exit code. Throws Failure when the
    /// command fails.
    int run(int argc, char** argv);

 private:
    struct Command {
        CLI::App* app;
        std::function<int()> run;
    };

    template <class Options, class Declare>
    void add(const char* name, const char* what, const std::string& example, int (*work)(const Options&),
             Declare declare);
    void addReadingCommands();
    void addExchangeCommands();
    void addEditingCommands();
    void addBulkCommands();
    void addTimelineCommand();
    void addContainerCommands();

    int answer(const CLI::ParseError& end, const std::vector<std::string>& arguments) const;
    void requireKnownCommand(const std::vector<std::string>& arguments) const;

    std::unique_ptr<CLI::App> m_app;
    std::vector<Command> m_commands;
    Presentation m_presentation;
};
