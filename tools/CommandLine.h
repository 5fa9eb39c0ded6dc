// The command line: chooses the command that it names and runs it.
//
// Thread-safety: one thread at a time.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
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

    /// Runs the command that the arguments name and returns the program's exit code. Throws Failure when the
    /// command fails.
    int run(int argc, char** argv);

 private:
    int explain(const CLI::ParseError& end, const std::vector<std::string>& arguments) const;
    void requireKnownCommand(const std::vector<std::string>& arguments) const;

    std::unique_ptr<CLI::App> m_app;
    std::vector<std::pair<const CLI::App*, std::function<int()>>> m_works;  // of the commands
    Presentation m_presentation;
};
