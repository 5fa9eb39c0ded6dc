// The command line: which commands there are and what they take.
#pragma once

#include <functional>

namespace CLI {
class App;
}

/// Runs the command that the arguments name and answers the program's exit code. Throws Failure when the
/// command fails.
int runCommandLine(int argc, char** argv);

/// Shows the definition of all commands, without running any, to what documents them.
void withCommandLine(const std::function<void(const CLI::App&)>& use);
