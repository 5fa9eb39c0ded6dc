// The parts of the manual page and of the shells' completions that follow from the commands. The rest of each
// stands in the templates beside this file.
//
// Thread-safety: pure functions.
#pragma once

#include <string>

#include "tools/manual/CommandModel.h"

/// A subsection for each command, in the macros of man(7).
std::string manualCommands(const ProgramModel& program);

/// The options that every command takes.
std::string manualCommonOptions(const ProgramModel& program);

/// A branch of a case statement for each command, that sets its options, the kinds of their values and the
/// kinds of its places.
std::string bashCommands(const ProgramModel& program);

/// The commands' names and those of the options without a command.
std::string bashNames(const ProgramModel& program);

/// A function for each command, the argument list of `_arguments` that it passes.
std::string zshCommands(const ProgramModel& program);

/// The commands, and what each does, as `_describe` takes them.
std::string zshNames(const ProgramModel& program);

/// The arguments of `_arguments` for the options without a command.
std::string zshOptions(const ProgramModel& program);

/// The `complete` lines of all commands.
std::string fishCommands(const ProgramModel& program);

/// A branch of a switch statement for each command that has options with values: those options.
std::string fishValues(const ProgramModel& program);
