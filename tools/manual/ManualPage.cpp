// The manual page's part.
#include <sstream>

#include "tools/manual/Sections.h"

namespace {

/// Text as it is to be read: hyphens that may be typed, no macros by accident.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\\') {
            result += "\\e";
        } else if (c == '-') {
            result += "\\-";
        } else {
            result += c;
        }
    }
    return !result.empty() && (result[0] == '.' || result[0] == '\'') ? "\\&" + result : result;
}

/// Prose in lines of its own, as tools that read manual pages like them: none longer than a terminal's, each
/// sentence beginning one.
std::string filled(const std::string& prose) {
    constexpr std::size_t widest = 78;
    std::istringstream words(prose);
    std::string lines;
    std::string line;
    for (std::string word; words >> word;) {
        const bool endsSentence = !line.empty() && line.back() == '.';
        if (!line.empty() && (endsSentence || line.size() + 1 + word.size() > widest)) {
            lines += escaped(line) + '\n';
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
    }
    return lines + escaped(line) + '\n';
}

std::string sentence(std::string text) {
    if (text.empty()) return text;
    if (text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
    if (text.back() != '.') text += '.';
    return filled(text);
}

std::string bold(const std::string& text) {
    return "\\fB" + escaped(text) + "\\fR";
}
std::string italic(const std::string& text) {
    return "\\fI" + escaped(text) + "\\fR";
}

std::string valueOf(const ArgumentModel& argument) {
    return italic(argument.value) + (argument.takesMore ? " ..." : "");
}

std::string placeOf(const ArgumentModel& place) {
    return place.required ? valueOf(place) : "[" + valueOf(place) + "]";
}

void writeEntry(std::ostream& page, const std::string& term, const ArgumentModel& argument) {
    page << ".TP\n" << term << '\n' << sentence(argument.what);
    if (!argument.otherwise.empty()) page << "Default: " << bold(argument.otherwise) << ".\n";
}

void writeOption(std::ostream& page, const ArgumentModel& option) {
    std::string term;
    for (const std::string& name : option.names) term += (term.empty() ? "" : ", ") + bold(name);
    if (!option.value.empty()) term += " " + valueOf(option);
    writeEntry(page, term, option);
}

/// Indented lines are examples to type, others prose.
void writeNotes(std::ostream& page, const std::string& notes) {
    std::istringstream lines(notes);
    std::string prose;
    std::string example;
    const auto flush = [&] {
        if (!prose.empty()) page << ".PP\n" << filled(prose);
        if (!example.empty()) page << ".PP\n.EX\n" << example << ".EE\n";
        prose.clear();
        example.clear();
    };
    for (std::string line; std::getline(lines, line);) {
        const bool isExample = line.rfind("  ", 0) == 0;
        if (line.empty() || isExample == example.empty()) flush();
        (isExample ? example : prose) += isExample ? escaped(line) + '\n' : line + ' ';
    }
    flush();
}

bool isHelp(const ArgumentModel& option) {
    return option.names.back() == "--help";
}

void writeCommand(std::ostream& page, const CommandModel& command) {
    page << ".SS " << command.name << "\n.B kesta " << command.name << '\n';
    for (const ArgumentModel& place : command.places) page << placeOf(place) << '\n';
    for (const ArgumentModel& option : command.options) {
        if (option.required) page << bold(option.names.back()) << ' ' << valueOf(option) << '\n';
    }
    page << "[" << italic("option") << " ...]\n.PP\n" << sentence(command.what);
    for (const ArgumentModel& place : command.places) writeEntry(page, valueOf(place), place);
    for (const ArgumentModel& option : command.options) {
        if (!isHelp(option) && !option.common) writeOption(page, option);
    }
    writeNotes(page, command.notes);
}

}  // namespace

std::string manualCommands(const ProgramModel& program) {
    std::ostringstream page;
    for (const CommandModel& command : program.commands) writeCommand(page, command);
    return page.str();
}

std::string manualCommonOptions(const ProgramModel& program) {
    std::ostringstream page;
    for (const ArgumentModel& option : program.commands.front().options) {
        if (option.common) writeOption(page, option);
    }
    return page.str();
}
