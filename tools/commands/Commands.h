// The commands of the program. Each is defined in its own file beside this one: its arguments, and what it
// does with them.
#pragma once

#include <vector>

#include "tools/commands/Command.h"

namespace Commands {

Command info();
Command show();
Command find();
Command check();
Command importFile();
Command exportLog();
Command set();
Command add();
Command deleteRecords();
Command param();
Command columns();
Command sort();
Command tag();
Command merge();
Command timeline();
Command items();
Command pack();

/// All of them, in the order in which the help lists them.
std::vector<Command> all();

}  // namespace Commands
