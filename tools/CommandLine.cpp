#include "tools/CommandLine.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>

#include "record/kesta.h"
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/Messages.h"
#include "tools/Output.h"

namespace {

constexpr const char* description =
    "Works on the logs of a film and video editing application: shows, checks, edits, imports and exports "
    "them.";

constexpr const char* generalNotes =
    "Exit codes: 0 done; 1 something was found wrong, text was lost, or nothing was found; 2 a file could\n"
    "not be read or written, or the command could not be carried out; 64 the command line was not\n"
    "understood.\n"
    "A log that another program is editing is waited for, 5 seconds unless KESTA_LOCK_WAIT says how many.\n"
    "Rows and columns are counted from 1. A value that begins with a dash goes behind \"--\".\n"
    "kesta COMMAND --help shows a command's options and an example.";

class CommandList {
 public:
    CommandList() : m_app(description, "kesta") {
        m_app.set_version_flag("--version", kestaDllVersionStr());
        m_app.require_subcommand(1);
        m_app.footer(generalNotes);
    }

    template <class Options, class Declare>
    void add(const char* name, const char* what, const std::string& example, int (*work)(const Options&),
             Declare declare) {
        CLI::App* const app = m_app.add_subcommand(name, what);
        app->footer("Example:\n  " + example);
        const auto options = std::make_shared<Options>();
        declare(*app, *options);
        m_commands.push_back({app, [work, options] { return work(*options); }});
    }

    const CLI::App& app() const noexcept { return m_app; }

    int run(int argc, char** argv) {
        try {
            m_app.parse(argc, argv);
        } catch (const CLI::ParseError& end) {
            return answer(end);
        }
        for (const Command& command : m_commands) {
            if (command.app->parsed()) return command.run();
        }
        return exitUsage;
    }

 private:
    struct Command {
        CLI::App* app;
        std::function<int()> run;
    };

    // Help and version come as exceptions too.
    int answer(const CLI::ParseError& end) {
        if (end.get_exit_code() != 0) {
            complain(end.what());
            complain("see kesta --help");
            return exitUsage;
        }
        std::ostringstream text;
        m_app.exit(end, text, text);
        const auto output = standardOutput();
        std::string lines = text.str();
        while (!lines.empty() && lines.back() == '\n') lines.pop_back();
        output->line(lines);
        output->finish();
        return exitDone;
    }

    CLI::App m_app;
    std::vector<Command> m_commands;
};

void addLog(CLI::App& app, std::string& log) {
    app.add_option("LOG", log, "the log's file")->required();
}

void addForce(CLI::App& app, bool& force) {
    app.add_flag("--force", force, "save even when the file holds text that is lost by that");
}

void addFormat(CLI::App& app, std::string& format) {
    app.add_option("--format", format, "table, csv or json")
        ->check(CLI::IsMember({"table", "csv", "json"}))
        ->capture_default_str();
}

CLI::Option* addColumnList(CLI::App& app, const char* option, std::vector<std::string>& lists,
                           const char* what) {
    return app.add_option(option, lists, what)->expected(1)->take_all()->type_name("COLUMNS");
}

CLI::Option* addAllColumns(CLI::App& app, bool& allColumns) {
    return app.add_flag("--all-columns", allColumns,
                        "all columns in the log's own order, not those that kesta columns lists as shown");
}

void addTable(CLI::App& app, TableOptions& options) {
    CLI::Option* const columns = addColumnList(app, "--columns", options.columns,
                                               "the columns to show, with commas between; may be repeated");
    addAllColumns(app, options.allColumns)->excludes(columns);
    addColumnList(app, "--sort", options.sort, "show them in the order of these columns, at most nine");
    addFormat(app, options.format);
}

constexpr const char* searchRules =
    "\n\nA text for a start or end code finds the records whose range it lies in: \"Start time=01:00:1\"\n"
    "each one that covers a time beginning with 01:00:1, given in the form in which the log holds it.";

void addReadingCommands(CommandList& commands) {
    commands.add<InfoOptions>("info", "Show a log's parameters, columns and size", "kesta info day1.log",
                              Commands::showInfo,
                              [](CLI::App& app, InfoOptions& options) { addLog(app, options.log); });
    commands.add<ShowOptions>(
        "show", "Show records", "kesta show day1.log --columns Reel,\"Start time\" --rows 10-20",
        Commands::showRecords, [](CLI::App& app, ShowOptions& options) {
            addLog(app, options.log);
            app.add_option("--rows", options.rows, "the rows to show, as in 3,10-20 or 100-")
                ->type_name("ROWS");
            app.add_flag("--tagged", options.tagged, "show tagged records only");
            addTable(app, options.table);
        });
    commands.add<FindOptions>(
        "find", "Show the records that hold given texts, or save them as a log of their own",
        std::string("kesta find day1.log Notes=circle \"Start time=01:00:1\" -o selects.log") + searchRules,
        Commands::findRecords, [](CLI::App& app, FindOptions& options) {
            addLog(app, options.log);
            app.add_option("COLUMN=TEXT", options.texts,
                           "what the records' columns must hold, each of them, in either case")
                ->required();
            addTable(app, options.table);
            app.add_option("-o,--output", options.output, "the log to write, instead of showing the records")
                ->type_name("FILE")
                ->excludes("--columns")
                ->excludes("--all-columns")
                ->excludes("--format");
            app.add_flag("--force", options.force,
                         "replace a log that is there already; save even what could not be read whole");
        });
    commands.add<CheckOptions>("check", "Say what is wrong with logs, and where",
                               "kesta check day1.log day2.log", Commands::checkLogs,
                               [](CLI::App& app, CheckOptions& options) {
                                   app.add_option("LOG", options.logs, "the logs' files")->required();
                               });
}

void addExchangeCommands(CommandList& commands) {
    commands.add<ImportOptions>(
        "import", "Make a log of a .csv or .ale file", "kesta import dailies.ale -o dailies.log",
        Commands::importFile, [](CLI::App& app, ImportOptions& options) {
            app.add_option("FILE", options.file, "a file whose name ends in .csv or .ale")->required();
            app.add_option("-o,--output", options.log, "the log to write")->type_name("FILE")->required();
            app.add_flag("--force", options.force, "replace a log that is there already");
            app.add_flag("--all-warnings", options.allWarnings,
                         "list every value that a log cannot hold exactly");
        });
    commands.add<ExportOptions>(
        "export", "Write a log in another form", "kesta export dailies.log --format csv -o dailies.csv",
        Commands::exportLog, [](CLI::App& app, ExportOptions& options) {
            addLog(app, options.log);
            app.add_option("--format", options.format, "csv, ale or json")
                ->required()
                ->check(CLI::IsMember({"csv", "ale", "json"}));
            app.add_option("-o,--output", options.output, "the file to write, instead of standard output")
                ->type_name("FILE");
            app.add_flag("--force", options.force, "replace a file that is there already");
            addAllColumns(app, options.allColumns);
        });
}

void addTimelineCommand(CommandList& commands) {
    commands.add<TimelineOptions>(
        "timeline", "Draw the records along their time codes",
        "kesta timeline day1.log -o day1.svg\n  kesta timeline day1.log --text\n\n"
        "Each reel is a lane that begins with its first time code; all have the same scale. Tagged records\n"
        "are marked, overlaps and gaps are shown. Long gaps are drawn shorter. Codes count frames at the\n"
        "log's parameter FPS or \"Frame rate\"; without one at 24, or at 29.97 when they are drop frame.\n"
        "Records without sensible time codes are named, and the exit code is 1 then.",
        Commands::timeline, [](CLI::App& app, TimelineOptions& options) {
            addLog(app, options.log);
            CLI::Option* const output =
                app.add_option("-o,--output", options.output, "the picture to write, - for standard output")
                    ->type_name("FILE");
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
            app.add_flag("--force", options.force, "replace a file that is there already");
        });
}

void addEditingCommands(CommandList& commands) {
    commands.add<SetOptions>("set", "Change one value", "kesta set day1.log 12 Notes \"good sound\"",
                             Commands::setValue, [](CLI::App& app, SetOptions& options) {
                                 addLog(app, options.log);
                                 app.add_option("ROW", options.row, "the row's number")->required();
                                 app.add_option("COLUMN", options.column, "the column's name")->required();
                                 app.add_option("VALUE", options.value, "the new value")->required();
                                 addForce(app, options.force);
                             });
    commands.add<AddOptions>("add", "Append a record", "kesta add day1.log Name=\"Shot 9\" Reel=A004",
                             Commands::addRecord, [](CLI::App& app, AddOptions& options) {
                                 addLog(app, options.log);
                                 app.add_option("COLUMN=VALUE", options.values,
                                                "the record's values; other columns stay empty")
                                     ->required();
                                 addForce(app, options.force);
                             });
    commands.add<DeleteOptions>("delete", "Delete records", "kesta delete day1.log 3,5-9",
                                Commands::deleteRecords, [](CLI::App& app, DeleteOptions& options) {
                                    addLog(app, options.log);
                                    app.add_option("ROWS", options.rows, "the rows' numbers");
                                    app.add_flag("--tagged", options.tagged,
                                                 "delete the tagged records instead");
                                    addForce(app, options.force);
                                });
    commands.add<ParamOptions>("param", "List, show or set parameters", "kesta param day1.log FPS 23.976",
                               Commands::parameters, [](CLI::App& app, ParamOptions& options) {
                                   addLog(app, options.log);
                                   app.add_option("KEY", options.key, "the parameter; all when left out");
                                   app.add_option("VALUE", options.value, "its new value");
                                   addForce(app, options.force);
                               });
    commands.add<ColumnsOptions>(
        "columns", "List the columns that a log shows, or choose and order them",
        "kesta columns day1.log --hide Notes --order Reel,Name", Commands::columns,
        [](CLI::App& app, ColumnsOptions& options) {
            addLog(app, options.log);
            addColumnList(app, "--show", options.show, "columns to show, with commas between");
            addColumnList(app, "--hide", options.hide, "columns to hide");
            addColumnList(app, "--order", options.order, "the columns to come first, in this order");
            app.add_flag("--reset", options.reset, "first go back to all columns in the log's own order");
            app.add_flag("--names", options.names,
                         "list nothing but the names of all columns, in the log's own order")
                ->excludes("--show")
                ->excludes("--hide")
                ->excludes("--order")
                ->excludes("--reset");
            addForce(app, options.force);
        });
}

void addContainerCommands(CommandList& commands) {
    commands.add<ItemsOptions>(
        "items", "Show what a container file holds", "kesta items reels.sg", Commands::showItems,
        [](CLI::App& app, ItemsOptions& options) {
            app.add_option("CONTAINER", options.container, "the container's file")->required();
            addFormat(app, options.format);
        });
    commands.add<PackOptions>(
        "pack", "Make a container file of media identifiers",
        "kesta pack -o reels.sg --name \"Day 1\" M0123456789abcdef0123456789abcdef00", Commands::packItems,
        [](CLI::App& app, PackOptions& options) {
            app.add_option("IDENTIFIER", options.identifiers, "the items' identifiers")->required();
            app.add_option("-o,--output", options.container, "the container to write")
                ->type_name("FILE")
                ->required();
            app.add_option("--name", options.name, "the container's name")->required();
            app.add_flag("--permanent", options.permanent, "mark the container as permanent");
            app.add_flag("--force", options.force, "replace a file that is there already");
        });
}

void addBulkCommands(CommandList& commands) {
    commands.add<SortOptions>(
        "sort", "Sort the records",
        "kesta sort day1.log --by \"Scene,Start time\"\n\n"
        "Records without a value in one of the columns come behind the others; further columns do not\n"
        "order them.",
        Commands::sortRecords, [](CLI::App& app, SortOptions& options) {
            addLog(app, options.log);
            addColumnList(app, "--by", options.columns,
                          "the columns to sort by, at most nine, with commas between, the first one first")
                ->required();
            app.add_flag("--desc", options.descending,
                         "from last to first, values as plain text in either case");
            app.add_flag("--ignore-case", options.ignoreCase,
                         "let values that differ in case only be equal, so that the next column decides");
            addForce(app, options.force);
        });
    commands.add<TagOptions>(
        "tag", "Tag records for the commands that follow",
        std::string(
            "kesta tag day1.log --where Notes=MOS --keep\n  kesta delete day1.log --tagged\n\n"
            "Tags are kept in the column \"Tag\", which is added to a log that has none. Empty values\n"
            "neither repeat nor differ.") +
            searchRules,
        Commands::tagRecords, [](CLI::App& app, TagOptions& options) {
            addLog(app, options.log);
            app.add_option("--where", options.where,
                           "tag records whose columns hold these texts, each of them, in either case")
                ->type_name("COLUMN=TEXT");
            app.add_option("--rows", options.rows, "tag these rows, as in 3,5-9")->type_name("ROWS");
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
            addForce(app, options.force);
        });
    commands.add<MergeOptions>(
        "merge", "Append the records of logs to a log",
        "kesta merge show.log day1.log day2.log\n\n"
        "Logs whose columns differ are merged by the columns' names; INTO keeps its columns.",
        Commands::mergeLogs, [](CLI::App& app, MergeOptions& options) {
            app.add_option("INTO", options.into, "the log that grows")->required();
            app.add_option("FROM", options.from, "the logs whose records are appended")->required();
            addForce(app, options.force);
        });
}

void addAllCommands(CommandList& commands) {
    addReadingCommands(commands);
    addExchangeCommands(commands);
    addTimelineCommand(commands);
    addEditingCommands(commands);
    addBulkCommands(commands);
    addContainerCommands(commands);
}

}  // namespace

int runCommandLine(int argc, char** argv) {
    CommandList commands;
    addAllCommands(commands);
    return commands.run(argc, argv);
}

void withCommandLine(const std::function<void(const CLI::App&)>& use) {
    CommandList commands;
    addAllCommands(commands);
    use(commands.app());
}
