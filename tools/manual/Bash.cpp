// The part of bash's completion.
#include <sstream>

#include "tools/manual/Sections.h"

namespace {

/// The kind as kesta.bash.in tells it apart; "..." after it when more words may follow.
std::string kindOf(const ArgumentModel& argument) {
    const std::string more = argument.takesMore ? "..." : "";
    switch (argument.kind) {
        case ValueKind::none:
            return {};
        case ValueKind::text:
            return "text" + more;
        case ValueKind::file:
            return "file" + more;
        case ValueKind::column:
            return "column" + more;
        case ValueKind::columns:
            return "columns" + more;
        case ValueKind::columnText:
            return "column=" + more;
        case ValueKind::choice:
            break;
    }
    std::string choices = "choice:";
    for (const std::string& choice : argument.choices) choices += choice + ' ';
    choices.pop_back();
    return "'" + choices + "'" + more;
}

void writeCommand(std::ostream& script, const CommandModel& command) {
    std::string options;
    std::string kinds;
    for (const ArgumentModel& option : command.options) {
        for (const std::string& name : option.names) {
            options += (options.empty() ? "" : " ") + name;
            if (option.kind != ValueKind::none) kinds += " [" + name + "]=" + kindOf(option);
        }
    }
    script << "        " << command.name << ")\n            options='" << options << "'\n            kinds=("
           << (kinds.empty() ? "" : kinds.substr(1)) << ")\n            places=(";
    for (const ArgumentModel& place : command.places) {
        script << (&place == &command.places.front() ? "" : " ") << kindOf(place);
    }
    script << ")\n            ;;\n";
}

}  // namespace

std::string bashCommands(const ProgramModel& program) {
    std::ostringstream script;
    for (const CommandModel& command : program.commands) writeCommand(script, command);
    return script.str();
}

std::string bashNames(const ProgramModel& program) {
    std::string names;
    for (const CommandModel& command : program.commands) names += command.name + ' ';
    for (const ArgumentModel& option : program.options) {
        for (const std::string& name : option.names) names += name + ' ';
    }
    names.pop_back();
    return names;
}
