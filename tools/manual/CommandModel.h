// The command line as the manual page and the shells' completions see it, read from the program's own
// definition of its commands.
//
// Thread-safety: plain values.
#pragma once

#include <string>
#include <vector>

/// What a shell can offer for a value.
enum class ValueKind { none, text, file, column, columns, columnText, choice };

/// An option, or one of the places of a command.
struct ArgumentModel {
    std::vector<std::string> names;    ///< "-o", "--output"; a place has none
    std::string value;                 ///< the value as help calls it: "LOG"; empty for a flag
    ValueKind kind = ValueKind::none;  ///< none for a flag
    std::vector<std::string> choices;  ///< of ValueKind::choice
    std::string what;
    std::string otherwise;  ///< the value that it has when it is left out; empty for none
    bool required = false;
    bool takesMore = false;             ///< takes the words that follow, up to the next option
    bool repeatable = false;            ///< may be given again
    bool common = false;                ///< every command takes it
    std::vector<std::string> excludes;  ///< names of options that cannot be given with it
};

struct CommandModel {
    std::string name;
    std::string what;
    std::string notes;
    std::vector<ArgumentModel> places;
    std::vector<ArgumentModel> options;
};

struct ProgramModel {
    std::vector<ArgumentModel> options;  ///< those without a command
    std::vector<CommandModel> commands;
};

ProgramModel readCommandLine();
