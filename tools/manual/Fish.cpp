// The part of fish's completion.
#include <sstream>

#include "tools/manual/Sections.h"

namespace {

/// A word between single quotes.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') result += '\\';
        result += c;
    }
    return result + '\'';
}

std::string valueOf(const ArgumentModel& argument) {
    switch (argument.kind) {
        case ValueKind::none:
            return {};
        case ValueKind::text:
            return " -x";
        case ValueKind::file:
            return " -rF";
        case ValueKind::column:
            return " -x -a '(__kesta_names)'";
        case ValueKind::columns:
            return " -x -a '(__kesta_lists)'";
        case ValueKind::columnText:
            return " -x -a '(__kesta_names)='";
        case ValueKind::choice:
            break;
    }
    std::string choices;
    for (const std::string& choice : argument.choices) choices += choice + ' ';
    choices.pop_back();
    return " -x -a " + quoted(choices);
}

std::string line(const std::string& condition) {
    return "complete -c kesta -n " + quoted(condition);
}

void writeOption(std::ostream& script, const std::string& condition, const ArgumentModel& option) {
    script << line(condition);
    for (const std::string& name : option.names) {
        const bool isLong = name.rfind("--", 0) == 0;
        script << (isLong ? " -l " : " -s ") << name.substr(isLong ? 2 : 1);
    }
    script << valueOf(option) << " -d " << quoted(option.what) << '\n';
}

void writeCommand(std::ostream& script, const CommandModel& command) {
    for (const ArgumentModel& option : command.options) {
        writeOption(script, "__kesta_is " + command.name, option);
        if (option.takesMore) {
            script << line("__kesta_is_after " + command.name + ' ' + option.names.back()) << valueOf(option)
                   << '\n';
        }
    }
    int number = 1;
    for (const ArgumentModel& place : command.places) {
        if (place.kind == ValueKind::text) {
            ++number;
            continue;
        }
        const std::string test = place.takesMore ? "__kesta_is_from " : "__kesta_is_at ";
        script << line(test + command.name + ' ' + std::to_string(number++)) << valueOf(place) << '\n';
    }
}

}  // namespace

std::string fishCommands(const ProgramModel& program) {
    std::ostringstream script;
    for (const ArgumentModel& option : program.options) writeOption(script, "__kesta_is ''", option);
    for (const CommandModel& command : program.commands) {
        script << line("__kesta_is ''") << " -a " << command.name << " -d " << quoted(command.what) << '\n';
    }
    for (const CommandModel& command : program.commands) writeCommand(script, command);
    return script.str();
}

std::string fishValues(const ProgramModel& program) {
    std::ostringstream script;
    for (const CommandModel& command : program.commands) {
        std::string one;
        std::string more;
        for (const ArgumentModel& option : command.options) {
            if (option.kind == ValueKind::none) continue;
            for (const std::string& name : option.names) (option.takesMore ? more : one) += ' ' + name;
        }
        if (one.empty() && more.empty()) continue;
        script << "        case " << command.name << '\n';
        script << "            set one" << one << "\n            set more" << more << '\n';
    }
    return script.str();
}
