#include "tools/commands/Arguments.h"

const std::string Arguments::searchRules =
    "\n\nA text for a start or end code finds the records whose range it lies in: \"Start time=01:00:1\"\n"
    "each one that covers a time beginning with 01:00:1, given in the form in which the log holds it.";

void Arguments::addLog(CLI::App& app, std::string& log) {
    app.add_option("LOG", log, "the log's file")->required();
}

void Arguments::addSource(CLI::App& app, std::string& log) {
    app.add_option("LOG", log, "the log's file, - for standard input")->required();
}

void Arguments::addSources(CLI::App& app, std::vector<std::string>& logs) {
    app.add_option("LOG", logs, "the logs' files, - for standard input")->required();
}

CLI::Option* Arguments::addRows(CLI::App& app, const char* option, std::optional<std::string>& rows,
                                const char* what) {
    return app.add_option(option, rows, std::string(what) + ", as in 3,10-20 or 100-");
}

CLI::Option* Arguments::addFormat(CLI::App& app, std::string& format,
                                  const std::vector<std::string>& formats) {
    std::string names;
    for (const std::string& name : formats) {
        names += names.empty() ? "" : name == formats.back() ? " or " : ", ";
        names += name;
    }
    return app.add_option("--format", format, names)->check(CLI::IsMember(formats))->capture_default_str();
}

CLI::Option* Arguments::addOutput(CLI::App& app, std::string& output, const char* what) {
    return app.add_option("-o,--output", output, what)->type_name("FILE");
}

CLI::Option* Arguments::addColumnList(CLI::App& app, const char* option, std::vector<std::string>& lists,
                                      const char* what) {
    return app.add_option(option, lists, std::string(what) + ", with commas between; may be repeated")
        ->expected(1)
        ->take_all()
        ->type_name("COLUMNS");
}

CLI::Option* Arguments::addAllColumns(CLI::App& app, bool& allColumns) {
    return app.add_flag("--all-columns", allColumns,
                        "all columns in the log's own order, not those that kesta columns lists as shown");
}

void Arguments::addSaving(CLI::App& app, Saving& saving, const char* force) {
    app.add_flag("--force", saving.force, force);
    app.add_flag("-n,--dry-run", saving.dryRun, "write nothing, but say what would be saved");
    app.add_flag("--backup", saving.backup, "keep the old file under its name followed by \"~\"");
}

void Arguments::requireOutputForSaving(CLI::App& app) {
    for (const char* const option : {"--dry-run", "--backup"}) app.get_option(option)->needs("--output");
}

void Arguments::addEdit(CLI::App& app, std::string& log, Saving& saving) {
    addLog(app, log);
    addSaving(app, saving, "save even when the file holds text that is lost by that");
}
