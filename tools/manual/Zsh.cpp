// The part of zsh's completion.
#include <sstream>

#include "tools/manual/Sections.h"

namespace {

/// Text inside a specification between single quotes, where a backslash stands before each of the
/// shell's own characters.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\'') {
            result += "'\\''";
            continue;
        }
        if (c == '[' || c == ']' || c == ':' || c == '\\') result += '\\';
        result += c;
    }
    return result;
}

std::string actionOf(const ArgumentModel& argument) {
    switch (argument.kind) {
        case ValueKind::none:
            return {};
        case ValueKind::text:
            return " ";
        case ValueKind::file:
            return "_files";
        case ValueKind::column:
            return "_kesta_column";
        case ValueKind::columns:
            return "_kesta_columns";
        case ValueKind::columnText:
            return "_kesta_column_text";
        case ValueKind::choice:
            break;
    }
    std::string choices = "(";
    for (const std::string& choice : argument.choices) choices += choice + ' ';
    choices.back() = ')';
    return choices;
}

std::string valueOf(const ArgumentModel& argument) {
    return ':' + escaped(argument.value) + ':' + actionOf(argument);
}

/// An option may not be given with those that it excludes, nor with itself.
std::string excludedBy(const ArgumentModel& option) {
    std::string names;
    for (const std::string& name : option.excludes) names += name + ' ';
    if (!option.repeatable) {
        for (const std::string& name : option.names) names += name + ' ';
    }
    if (names.empty()) return "*";
    names.back() = ')';
    return '(' + names + (option.repeatable ? "*" : "");
}

void writeOption(std::ostream& script, const ArgumentModel& option) {
    for (const std::string& name : option.names) {
        script << "        '" << excludedBy(option) << name;
        const bool isLong = name.rfind("--", 0) == 0;
        if (option.kind != ValueKind::none && !option.takesMore) script << (isLong ? "=" : "+");
        script << '[' << escaped(option.what) << ']';
        if (option.kind != ValueKind::none) {
            // Up to the next option.
            script << (option.takesMore ? ":*-*" : "") << valueOf(option);
        }
        script << "'\n";
    }
}

void writeCommand(std::ostream& script, const CommandModel& command) {
    script << "_kesta_command_" << command.name << "() {\n    local -a specifications=(\n";
    for (const ArgumentModel& option : command.options) writeOption(script, option);
    int number = 1;
    for (const ArgumentModel& place : command.places) {
        const std::string where = place.takesMore ? "*" : std::to_string(number++);
        script << "        '" << where << (place.required || place.takesMore ? "" : ":") << valueOf(place)
               << "'\n";
        // The first of several is a place of its own, where the log is found.
        if (place.takesMore && &place == &command.places.front()) {
            script << "        '1" << valueOf(place) << "'\n";
        }
    }
    script << "    )\n    _arguments -s $specifications\n}\n\n";
}

}  // namespace

std::string zshCommands(const ProgramModel& program) {
    std::ostringstream script;
    for (const CommandModel& command : program.commands) writeCommand(script, command);
    return script.str();
}

std::string zshNames(const ProgramModel& program) {
    std::ostringstream script;
    for (const CommandModel& command : program.commands) {
        script << "        '" << command.name << ':' << escaped(command.what) << "'\n";
    }
    return script.str();
}

std::string zshOptions(const ProgramModel& program) {
    std::ostringstream script;
    for (const ArgumentModel& option : program.options) writeOption(script, option);
    return script.str();
}
