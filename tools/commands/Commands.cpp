// The list of commands.
#include "tools/commands/Commands.h"

std::vector<Command> Commands::all() {
    return {info(),  show(),    find(), check(), importFile(), exportLog(), set(),   add(), deleteRecords(),
            param(), columns(), sort(), tag(),   merge(),      timeline(),  items(), pack()};
}
