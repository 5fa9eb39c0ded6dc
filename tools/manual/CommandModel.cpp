#include "tools/manual/CommandModel.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/CommandLine.h"

namespace {

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
}

std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    return names;
}

bool isOneOf(const std::string& text, std::initializer_list<const char*> texts) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// A place under a name that is new is taken for a file's, as shells do on their own.
ValueKind kindOf(const std::string& value, bool isPlace) {
    if (value == "COLUMN") return ValueKind::column;
    if (value == "COLUMNS") return ValueKind::columns;
    if (value.find("COLUMN=") != std::string::npos) return ValueKind::columnText;
    if (isOneOf(value, {"ROW", "ROWS", "KEY", "VALUE", "IDENTIFIER", "TEXT"})) return ValueKind::text;
    return isPlace || isOneOf(value, {"LOG", "FILE", "CONTAINER"}) ? ValueKind::file : ValueKind::text;
}

/// The type's name is "TEXT" or a name of our own, alone or with choices after it: "TEXT:{table,csv,json}".
void readValue(const CLI::Option& option, ArgumentModel& argument) {
    const std::string type = option.get_type_name();
    const std::size_t brace = type.find(":{");
    if (brace != std::string::npos) {
        argument.kind = ValueKind::choice;
        argument.choices = split(type.substr(brace + 2, type.find('}') - brace - 2), ',');
        const std::string name = type.substr(0, brace);
        argument.value = name == "TEXT" ? "FORM" : name;
    } else {
        argument.value = option.get_positional() ? option.get_name(true) : type;
        argument.kind = kindOf(argument.value, option.get_positional());
    }
    if (option.get_positional()) argument.value = option.get_name(true);
    argument.otherwise = option.get_default_str();
}

ArgumentModel readArgument(const CLI::Option& option) {
    ArgumentModel argument;
    argument.what = option.get_description();
    if (!option.get_positional()) argument.names = namesOf(option);
    if (option.get_expected_min() > 0) readValue(option, argument);
    argument.required = option.get_required();
    argument.common = option.get_group() == "Common options";
    argument.takesMore = option.get_expected_max() > 1;
    argument.repeatable =
        argument.takesMore || option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    for (const CLI::Option* const other : option.get_excludes()) {
        for (const std::string& name : namesOf(*other)) argument.excludes.push_back(name);
    }
    return argument;
}

void readArguments(const CLI::App& app, std::vector<ArgumentModel>* places,
                   std::vector<ArgumentModel>& options) {
    for (const CLI::Option* const option : app.get_options()) {
        if (!option->get_positional()) {
            options.push_back(readArgument(*option));
        } else if (places) {
            places->push_back(readArgument(*option));
        }
    }
}

}  // namespace

ProgramModel readCommandLine() {
    const CommandLine commandLine;
    const CLI::App& app = commandLine.app();
    ProgramModel program;
    readArguments(app, nullptr, program.options);
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
        CommandModel model;
        model.name = command->get_name();
        model.what = command->get_description();
        model.notes = command->get_footer();
        readArguments(*command, &model.places, model.options);
        program.commands.push_back(model);
    }
    return program;
}
