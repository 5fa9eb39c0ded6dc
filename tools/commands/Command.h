// What a command is: its name, its words for the user, what it takes and its work.
//
// Thread-safety: plain values.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace CLI {
class App;
}  // namespace CLI

struct Command {
    std::string name;
    std::string what;   ///< one line, for the list of commands
    std::string notes;  ///< an example, and further lines when there is more to say

    /// Declares the command's arguments and returns its work, to be called once they have been parsed. The
    /// work returns the exit code and throws Failure when the command cannot do what it was asked for.
    std::function<std::function<int()>(CLI::App&)> declare;
};

/// A command whose arguments are kept in an `Options`.
template <class Options>
Command makeCommand(std::string name, std::string what, std::string notes,
                    void (*declare)(CLI::App&, Options&), int (*work)(const Options&)) {
    return {std::move(name), std::move(what), std::move(notes),
            [declare, work](CLI::App& app) -> std::function<int()> {
                const auto options = std::make_shared<Options>();
                declare(app, *options);
                return [work, options] { return work(*options); };
            }};
}
