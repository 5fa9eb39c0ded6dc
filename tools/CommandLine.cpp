#include "tools/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "record/kesta.h"
#include "tools/Commands.h"
#include "tools/Failure.h"
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
    "Rows and columns are counted from 1. A value that begins with a dash goes behind \"--\". A file named\n"
    "\"-\" is standard input where one is read, standard output where one is written.\n"
    "kesta COMMAND --help shows a command's options and an example.";

constexpr const char* searchRules =
    "\n\nA text for a start or end code finds the records whose range it lies in: \"Start time=01:00:1\"\n"
    "each one that covers a time beginning with 01:00:1, given in the form in which the log holds it.";

// --- Options that several commands have ---

void addLog(CLI::App& app, std::string& log) {
    app.add_option("LOG", log, "the log's file")->required();
}

void addSource(CLI::App& app, std::string& log) {
    app.add_option("LOG", log, "the log's file, - for standard input")->required();
}

void addSources(CLI::App& app, std::vector<std::string>& logs) {
    app.add_option("LOG", logs, "the logs' files, - for standard input")->required();
}

CLI::Option* addRows(CLI::App& app, const char* option, std::optional<std::string>& rows, const char* what) {
    return app.add_option(option, rows, std::string(what) + ", as in 3,10-20 or 100-");
}

CLI::Option* addFormat(CLI::App& app, std::string& format, const std::vector<std::string>& formats) {
    std::string names;
    for (const std::string& name : formats) {
        names += names.empty() ? "" : name == formats.back() ? " or " : ", ";
        names += name;
    }
    return app.add_option("--format", format, names)->check(CLI::IsMember(formats))->capture_default_str();
}

CLI::Option* addOutput(CLI::App& app, std::string& output, const char* what) {
    return app.add_option("-o,--output", output, what)->type_name("FILE");
}

CLI::Option* addColumnList(CLI::App& app, const char* option, std::vector<std::string>& lists,
                           const char* what) {
    return app.add_option(option, lists, std::string(what) + ", with commas between; may be repeated")
        ->expected(1)
        ->take_all()
        ->type_name("COLUMNS");
}

CLI::Option* addAllColumns(CLI::App& app, bool& allColumns) {
    return app.add_flag("--all-columns", allColumns,
                        "all columns in the log's own order, not those that kesta columns lists as shown");
}

void addTable(CLI::App& app, TableOptions& options) {
    CLI::Option* const columns = addColumnList(app, "--columns", options.columns, "the columns to show");
    addAllColumns(app, options.allColumns)->excludes(columns);
    addColumnList(app, "--sort", options.sort, "show them in the order of these columns, at most nine");
    addFormat(app, options.format, {"table", "csv", "json"});
}

/// `force` says what the command does only when it is forced to.
void addSaving(CLI::App& app, Saving& saving, const char* force) {
    app.add_flag("--force", saving.force, force);
    app.add_flag("-n,--dry-run", saving.dryRun, "write nothing, but say what would be saved");
    app.add_flag("--backup", saving.backup, "keep the old file under its name followed by \"~\"");
}

/// For a command that saves only with --output.
void requireOutputForSaving(CLI::App& app) {
    for (const char* const option : {"--dry-run", "--backup"}) app.get_option(option)->needs("--output");
}

constexpr const char* replacing = "replace a file that is there already";

/// For a command that changes a log.
void addEdit(CLI::App& app, std::string& log, Saving& saving) {
    addLog(app, log);
    addSaving(app, saving, "save even when the file holds text that is lost by that");
}

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
    addReadingCommands();
    addExchangeCommands();
    addEditingCommands();
    addBulkCommands();
    addTimelineCommand();
    addContainerCommands();
}

CommandLine::~CommandLine() = default;

int CommandLine::run(int argc, char** argv) {
    try {
        m_app->parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        present(m_presentation);
        return answer(end, {argv + 1, argv + argc});
    }
    present(m_presentation);
    for (const Command& command : m_commands) {
        if (!command.app->parsed()) continue;
        requireValues(*command.app);
        return command.run();
    }
    return exitUsage;
}

// Help and version come as exceptions too.
int CommandLine::answer(const CLI::ParseError& end, const std::vector<std::string>& arguments) const {
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
    for (const Command& command : m_commands) names.push_back(command.app->get_name());
    const bool isKnown =
        first == arguments.end() || std::find(names.begin(), names.end(), *first) != names.end();
    if (isKnown) return;
    throw Failure("no command " + suggestionFor(*first, names, "commands", "kesta --help lists them"),
                  exitUsage);
}

template <class Options, class Declare>
void CommandLine::add(const char* name, const char* what, const std::string& example,
                      int (*work)(const Options&), Declare declare) {
    CLI::App* const app = m_app->add_subcommand(name, what);
    app->footer("Example:\n  " + example);
    const auto options = std::make_shared<Options>();
    declare(*app, *options);
    addPresentation(*app, m_presentation);
    m_commands.push_back({app, [work, options] { return work(*options); }});
}

void CommandLine::addReadingCommands() {
    add<InfoOptions>("info", "Show the parameters, columns and size of logs", "kesta info day1.log",
                     Commands::showInfo,
                     [](CLI::App& app, InfoOptions& options) { addSources(app, options.logs); });
    add<ShowOptions>(
        "show", "Show the records of logs",
        "kesta show day1.log --columns Reel,\"Start time\" --rows 10-20\n\n"
        "Several logs are shown below their names, in JSON as a list of objects with the name as \"log\".",
        Commands::showRecords, [](CLI::App& app, ShowOptions& options) {
            addSources(app, options.logs);
            addRows(app, "--rows", options.rows, "the rows to show")->type_name("ROWS");
            app.add_flag("--tagged", options.tagged,
                         "show tagged records only; with --rows, the tagged ones among those rows");
            addTable(app, options.table);
        });
    add<FindOptions>(
        "find", "Show the records that hold given texts, or save them as a log of their own",
        std::string("kesta find day1.log Notes=circle \"Start time=01:00:1\" -o selects.log\n"
                    "  kesta find day1.log day2.log Scene=12A\n\n"
                    "Further arguments are logs up to the first one with \"=\".") +
            searchRules,
        Commands::findRecords, [](CLI::App& app, FindOptions& options) {
            addSource(app, options.log);
            app.add_option(
                   "COLUMN=TEXT", options.arguments,
                   "what the records' columns must hold, each of them, in either case; further logs go "
                   "before it")
                ->required();
            addTable(app, options.table);
            CLI::Option* const output =
                addOutput(app, options.output,
                          "the log to write, - for standard output, instead of showing the records");
            for (const char* const shown : {"--columns", "--all-columns", "--format"})
                output->excludes(shown);
            addSaving(app, options.saving,
                      "replace a file that is there already; save even what could not be read whole");
            requireOutputForSaving(app);
        });
    add<CheckOptions>("check", "Say what is wrong with logs, and where", "kesta check day1.log day2.log",
                      Commands::checkLogs,
                      [](CLI::App& app, CheckOptions& options) { addSources(app, options.logs); });
}

void CommandLine::addExchangeCommands() {
    add<ImportOptions>(
        "import", "Make a log of a .csv or .ale file", "kesta import dailies.ale -o dailies.log",
        Commands::importFile, [](CLI::App& app, ImportOptions& options) {
            app.add_option("FILE", options.file, "the file to read, - for standard input")->required();
            addFormat(app, options.format, {"csv", "ale"})
                ->description("csv or ale; else as the file's name ends, and standard input as it begins");
            addOutput(app, options.log, "the log to write, - for standard output")->required();
            app.add_flag("--all-warnings", options.allWarnings,
                         "list every value that a log cannot hold exactly");
            addSaving(app, options.saving, replacing);
        });
    add<ExportOptions>("export", "Write a log in another form",
                       "kesta export dailies.log --format csv -o dailies.csv", Commands::exportLog,
                       [](CLI::App& app, ExportOptions& options) {
                           addSource(app, options.log);
                           addFormat(app, options.format, {"csv", "ale", "json"})->required();
                           addAllColumns(app, options.allColumns);
                           addOutput(app, options.output, "the file to write, instead of standard output");
                           addSaving(app, options.saving, replacing);
                           requireOutputForSaving(app);
                       });
}

void CommandLine::addEditingCommands() {
    add<SetOptions>("set", "Change one value", "kesta set day1.log 12 Notes \"good sound\"",
                    Commands::setValue, [](CLI::App& app, SetOptions& options) {
                        addEdit(app, options.log, options.saving);
                        app.add_option("ROW", options.row, "the row's number")->required();
                        app.add_option("COLUMN", options.column, "the column's name")->required();
                        app.add_option("VALUE", options.value, "the new value")->required();
                    });
    add<AddOptions>("add", "Append a record", "kesta add day1.log Name=\"Shot 9\" Reel=A004",
                    Commands::addRecord, [](CLI::App& app, AddOptions& options) {
                        addEdit(app, options.log, options.saving);
                        app.add_option("COLUMN=VALUE", options.values,
                                       "the record's values; other columns stay empty")
                            ->required();
                    });
    add<DeleteOptions>("delete", "Delete records", "kesta delete day1.log 3,5-9", Commands::deleteRecords,
                       [](CLI::App& app, DeleteOptions& options) {
                           addEdit(app, options.log, options.saving);
                           addRows(app, "ROWS", options.rows, "the rows to delete");
                           app.add_flag("--tagged", options.tagged,
                                        "delete the tagged records; not to be given with ROWS");
                       });
    add<ParamOptions>("param", "List, show or set parameters", "kesta param day1.log FPS 23.976",
                      Commands::parameters, [](CLI::App& app, ParamOptions& options) {
                          addEdit(app, options.log, options.saving);
                          app.add_option("KEY", options.key, "the parameter; all when left out");
                          app.add_option("VALUE", options.value, "its new value");
                      });
    add<ColumnsOptions>(
        "columns", "List the columns that a log shows, or choose and order them",
        "kesta columns day1.log --hide Notes --order Reel,Name", Commands::columns,
        [](CLI::App& app, ColumnsOptions& options) {
            addEdit(app, options.log, options.saving);
            addColumnList(app, "--show", options.show, "columns to show");
            addColumnList(app, "--hide", options.hide, "columns to hide");
            addColumnList(app, "--order", options.order,
                          "the columns to come first, in this order; hidden ones stay hidden");
            app.add_flag("--reset", options.reset, "first go back to all columns in the log's own order");
            app.add_flag("--names", options.names,
                         "list nothing but the names of all columns, in the log's own order")
                ->excludes("--show")
                ->excludes("--hide")
                ->excludes("--order")
                ->excludes("--reset");
        });
}

void CommandLine::addBulkCommands() {
    add<SortOptions>(
        "sort", "Sort the records",
        "kesta sort day1.log --by \"Scene,Start time\"\n\n"
        "Values are compared as text, so that 10 comes before 9; time codes as well, which is their order\n"
        "in time. Records without a value in one of the columns come behind the others; further columns do\n"
        "not order them.",
        Commands::sortRecords, [](CLI::App& app, SortOptions& options) {
            addEdit(app, options.log, options.saving);
            addColumnList(app, "--by", options.columns,
                          "the columns to sort by, at most nine, the first one first")
                ->required();
            app.add_flag("--desc", options.descending,
                         "from last to first, values as plain text in either case");
            app.add_flag("--ignore-case", options.ignoreCase,
                         "let values that differ in case only be equal, so that the next column decides");
        });
    add<TagOptions>(
        "tag", "Tag records for the commands that follow",
        std::string(
            "kesta tag day1.log --where Notes=MOS --keep\n  kesta delete day1.log --tagged\n\n"
            "Tags are kept in the column \"Tag\", which is added to a log that has none. Empty values\n"
            "neither repeat nor differ.") +
            searchRules,
        Commands::tagRecords, [](CLI::App& app, TagOptions& options) {
            addEdit(app, options.log, options.saving);
            app.add_option("--where", options.where,
                           "tag records whose columns hold these texts, each of them, in either case")
                ->type_name("COLUMN=TEXT");
            addRows(app, "--rows", options.rows, "tag these rows")->type_name("ROWS");
            app.add_option("--duplicates", options.duplicates,
                           "tag each record that repeats an earlier one's value in this column")
                ->type_name("COLUMN");
            app.add_option("--distinct", options.distinct,
                           "tag the first record of each value in this column")
                ->type_name("COLUMN");
            app.add_flag("--invert", options.invert, "tag what is not tagged, and the other way round");
            app.add_flag("--clear", options.clear, "take all tags away");
            app.add_flag("--list", options.list, "show the tagged records");
            app.add_flag("--keep", options.keep, "add to the tags that are there, instead of replacing them")
                ->excludes("--invert")
                ->excludes("--clear")
                ->excludes("--list");
            addTable(app, options.table);
            for (const char* const option : {"--columns", "--all-columns", "--sort", "--format"}) {
                app.get_option(option)->needs("--list");
            }
        });
    add<MergeOptions>(
        "merge", "Append the records of logs to a log",
        "kesta merge show.log day1.log day2.log\n\n"
        "Logs whose columns differ are merged by the columns' names; INTO keeps its columns.",
        Commands::mergeLogs, [](CLI::App& app, MergeOptions& options) {
            app.add_option("INTO", options.into, "the log that grows")->required();
            app.add_option("FROM", options.from, "the logs whose records are appended")->required();
            addSaving(app, options.saving, "save even when a file holds text that is lost by that");
        });
}

void CommandLine::addTimelineCommand() {
    add<TimelineOptions>(
        "timeline", "Draw the records along their time codes",
        "kesta timeline day1.log -o day1.svg\n  kesta timeline day1.log --text\n\n"
        "Each reel is a lane that begins with its first time code; all have the same scale. Tagged records\n"
        "are marked, overlaps and gaps are shown. Long gaps are drawn shorter. Codes count frames at the\n"
        "log's parameter FPS or \"Frame rate\"; without one at 24, or at 29.97 when they are drop frame.\n"
        "Records without sensible time codes are named, and the exit code is 1 then.",
        Commands::timeline, [](CLI::App& app, TimelineOptions& options) {
            addSource(app, options.log);
            CLI::Option* const output =
                addOutput(app, options.output, "the picture to write, - for standard output");
            CLI::Option* const text =
                app.add_flag("--text", options.text, "show it as text instead")->excludes(output);
            app.add_option("--width", options.width, "the characters of a line, instead of the terminal's")
                ->check(CLI::Range(40, 1000))
                ->needs(text);
            app.add_option("--lanes", options.lanes, "the column whose values are the lanes")
                ->type_name("COLUMN")
                ->capture_default_str();
            app.add_option("--start", options.start, "the column where records start")
                ->type_name("COLUMN")
                ->capture_default_str();
            app.add_option("--end", options.end, "the column where they end")
                ->type_name("COLUMN")
                ->capture_default_str();
            app.add_option("--fps", options.rate, "the frames a second, as in 25 or 29.97");
            app.add_flag("--common", options.common, "one axis for all lanes");
            app.add_flag("--all-warnings", options.allWarnings, "list every record that cannot be shown");
            addSaving(app, options.saving, replacing);
            requireOutputForSaving(app);
        });
}

void CommandLine::addContainerCommands() {
    add<ItemsOptions>("items", "Show what a container file holds", "kesta items reels.sg",
                      Commands::showItems, [](CLI::App& app, ItemsOptions& options) {
                          app.add_option("CONTAINER", options.container, "the container's file")->required();
                          addFormat(app, options.format, {"table", "csv", "json"});
                      });
    add<PackOptions>(
        "pack", "Make a container file of media identifiers",
        "kesta pack -o reels.sg --name \"Day 1\" M0123456789abcdef0123456789abcdef00", Commands::packItems,
        [](CLI::App& app, PackOptions& options) {
            app.add_option(
                   "IDENTIFIER", options.identifiers,
                   "the items' identifiers: a letter for the kind, 32 hexadecimal digits, plain or in "
                   "groups, and two more")
                ->required();
            addOutput(app, options.container, "the container to write")->required();
            app.add_option("--name", options.name, "the container's name")->required();
            app.add_flag("--names", options.names,
                         "take a text that is no identifier for the name of an item, and make one of it");
            app.add_flag("--permanent", options.permanent, "mark the container as permanent");
            addSaving(app, options.saving, replacing);
        });
}
