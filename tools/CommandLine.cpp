#include "tools/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "record/kesta.h"
#include "tools/Failure.h"
#include "tools/commands/Commands.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/Output.h"
#include "tools/terminal/Suggestion.h"

namespace {

constexpr const char* description =
    "Works on the logs of a film and video editing application: shows, checks, edits, imports and exports "
    "them.";

constexpr const char* generalNotes =
    "Exit codes: 0 done; 1 something was found wrong, text was lost, or nothing was found; 2 a file could\n"
    "not be read or written, or the command could not be carried out; 64 the command line was not\n"
    "understood.\n"
    "A log that another program is editing is waited for, 5 seconds unless KESTA_LOCK_WAIT says how many.\n"
    "Rows and columns are counted from 1. A value that begins with a dash goes after \"--\". A file named\n"
    "\"-\" is standard input where one is read, standard output where one is written.\n"
    "kesta COMMAND --help shows a command's options and an example.";

void addPresentation(CLI::App& app, Presentation& presentation) {
    app.add_flag("-q,--quiet", presentation.quiet,
                 "say nothing of what was done; results, warnings and errors stay")
        ->group("Common options");
    app.add_option("--color", presentation.colour, "colours: auto for terminals only, always or never")
        ->type_name("WHEN")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->capture_default_str()
        ->group("Common options");
}

// --- What the arguments say ---

bool isEmptyValue(const CLI::Option& option) {
    const auto& values = option.results();
    return option.nonpositional() && std::find(values.begin(), values.end(), "") != values.end();
}

// No option takes an empty value; one that comes from an empty variable of a script would be as if it had not
// been given.
void requireValues(const CLI::App& command) {
    for (const CLI::Option* const option : command.get_options()) {
        if (isEmptyValue(*option)) throw Failure(option->get_name() + " needs a value", exitUsage);
    }
}

}  // namespace

CommandLine::CommandLine() : m_app(std::make_unique<CLI::App>(description, "kesta")) {
    m_app->set_version_flag("--version", kestaDllVersionStr());
    m_app->require_subcommand(1);
    m_app->footer(generalNotes);
    for (const Command& command : Commands::all()) {
        CLI::App* const app = m_app->add_subcommand(command.name, command.what);
        app->footer("Example:\n  " + command.notes);
        m_works.emplace_back(app, command.declare(*app));
        addPresentation(*app, m_presentation);
    }
}

CommandLine::~CommandLine() = default;

int CommandLine::run(int argc, char** argv) {
    try {
        m_app->parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        present(m_presentation);
        return explain(end, {argv + 1, argv + argc});
    }
    present(m_presentation);
    for (const auto& [command, work] : m_works) {
        if (!command->parsed()) continue;
        requireValues(*command);
        return work();
    }
    return exitUsage;
}

// Help and version come as exceptions too.
int CommandLine::explain(const CLI::ParseError& end, const std::vector<std::string>& arguments) const {
    if (end.get_exit_code() != 0) {
        requireKnownCommand(arguments);
        complain(end.what());
        complain("see kesta --help");
        return exitUsage;
    }
    std::ostringstream text;
    m_app->exit(end, text, text);
    const auto output = standardOutput();
    std::string lines = text.str();
    while (!lines.empty() && lines.back() == '\n') lines.pop_back();
    output->line(lines);
    output->finish();
    return exitDone;
}

void CommandLine::requireKnownCommand(const std::vector<std::string>& arguments) const {
    const auto first = std::find_if(arguments.begin(), arguments.end(),
                                    [](const std::string& text) { return text.rfind('-', 0) != 0; });
    std::vector<std::string> names;
    for (const auto& [command, work] : m_works) names.push_back(command->get_name());
    const bool isKnown =
        first == arguments.end() || std::find(names.begin(), names.end(), *first) != names.end();
    if (isKnown) return;
    throw Failure("no command " + suggestionFor(*first, names, "commands", "kesta --help lists them"),
                  exitUsage);
}
