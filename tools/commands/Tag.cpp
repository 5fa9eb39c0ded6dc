// kesta tag: marks on records, kept in the log's column "Tag" for the commands that follow.
#include <unordered_set>

#include "support/Ascii.h"
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/commands/TableOptions.h"
#include "tools/forms/ShownLogs.h"
#include "tools/logs/ColumnArguments.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"
#include "tools/logs/LogView.h"
#include "tools/logs/RowRanges.h"
#include "tools/terminal/Messages.h"

namespace {

struct Options {
    std::string log;
    // One of the ways to choose records, or `list`.
    std::vector<std::string> where;  // COLUMN=TEXT
    std::optional<std::string> rows;
    std::optional<std::string> duplicates;  // the column to compare
    std::optional<std::string> distinct;    // the column to compare
    bool invert = false;
    bool clear = false;
    bool list = false;
    bool keep = false;   // add to the tags that are there
    TableOptions table;  // for the list
    Saving saving;
};

void requireOneAction(const Options& options) {
    const int actions = int(!options.where.empty()) + int(options.duplicates.has_value()) +
                        int(options.distinct.has_value()) + int(options.rows.has_value()) +
                        int(options.invert) + int(options.clear) + int(options.list);
    if (actions == 1) return;
    throw Failure("tag needs one of --where, --rows, --duplicates, --distinct, --invert, --clear and --list",
                  exitUsage);
}

int list(const Options& options) {
    const LogForReading opened = openLog(options.log);
    const Zr::Ptr<kesta>& log = opened.log;
    const KSTView view = viewOf(*log);
    view->removeNonTagged();
    const bool found = view->get_num_records() > 0;
    ShownLogs shown(formNamed(options.table.format), 1);
    shown.add(options.log, *log, options.table.select(*log, view));
    shown.finish();
    if (!found) complain("no record is tagged");
    return found ? opened.exitCode : exitFindings;
}

/// Which row of a group with the same value is wanted.
enum class Occurrence { first, later };

// Ignoring case; records without a value belong to no group. The view's own search for duplicates goes by
// sorted order, where a later record of the log may come first in its group.
void tagOccurrences(const KSTView& view, unsigned column, Occurrence wanted) {
    std::unordered_set<std::string> seen;
    forEachRow(view, [&](unsigned row, const dbrecord& record) {
        const std::string_view value = valueIn(record, column);
        if (value.empty()) return;
        const auto occurrence =
            seen.insert(Ascii::folded(value)).second ? Occurrence::first : Occurrence::later;
        if (occurrence == wanted) view->set_tag(row, 1);
    });
}

void tagMatches(kesta& log, KSTViewRep& view, const std::vector<std::string>& where) {
    const KSTView found = viewOf(log);
    keepMatches(*found, parseSearch(log, where));
    forEachRow(found, [&](unsigned row, const dbrecord&) { view.set_tag(row, 1); });
}

void tagRows(const kesta& log, KSTViewRep& view, const std::string& rows) {
    for (const RowRange range : parseRowRanges(rows, log.get_num_records())) {
        for (unsigned row = range.first; row <= range.last; ++row) view.set_tag(row, 1);
    }
}

// The view shows all records of the log in its order, so its rows are the log's.
void changeTags(kesta& log, const KSTView& view, const Options& options) {
    if (options.invert) view->invertAllTags();
    if (!options.invert && !options.keep) view->tagAll(false);
    if (!options.where.empty()) tagMatches(log, *view, options.where);
    if (options.rows) tagRows(log, *view, *options.rows);
    if (options.duplicates) tagOccurrences(view, columnNamed(log, *options.duplicates), Occurrence::later);
    if (options.distinct) tagOccurrences(view, columnNamed(log, *options.distinct), Occurrence::first);
}

// A tag may be any number up to 255: one that stays set keeps its number.
void storeTags(const KSTView& view, unsigned column) {
    forEachRow(view, [&](unsigned row, const dbrecord& record) {
        int number = 0;
        const bool wasTagged = readTag(valueIn(record, column), number) && number != 0;
        const bool isTagged = view->tag(static_cast<int>(row));
        if (isTagged != wasTagged) view->set_field(row, column, isTagged ? "1" : "0");
    });
}

int change(const Options& options) {
    LogForEditing log(options.log, options.saving.force);
    const unsigned columns = log->get_num_fields();
    const unsigned tagColumn = log->addField(DBFieldDesc("Tag", DBFieldTypes::eNumeric));
    if (tagColumn >= log->get_num_fields()) {
        throw Failure(options.log +
                      ": the log has as many columns as a log can have, so none can be added for tags");
    }
    const KSTView view = viewOf(*log);
    changeTags(*log, view, options);
    storeTags(view, tagColumn);
    std::vector<std::string> summary;
    if (log->get_num_fields() > columns) summary.emplace_back("column \"Tag\" added");
    summary.push_back(std::to_string(view->countTags()) + " of " + std::to_string(view->get_num_records()) +
                      " records tagged");
    log.save(options.saving, summary);
    return exitDone;
}

int run(const Options& options) {
    requireOneAction(options);
    return options.list ? list(options) : change(options);
}

void declare(CLI::App& app, Options& options) {
    Arguments::addEdit(app, options.log, options.saving);
    app.add_option("--where", options.where,
                   "tag records whose columns hold these texts, each of them, in either case")
        ->type_name("COLUMN=TEXT");
    Arguments::addRows(app, "--rows", options.rows, "tag these rows")->type_name("ROWS");
    app.add_option("--duplicates", options.duplicates,
                   "tag each record that repeats an earlier one's value in this column")
        ->type_name("COLUMN");
    app.add_option("--distinct", options.distinct, "tag the first record of each value in this column")
        ->type_name("COLUMN");
    app.add_flag("--invert", options.invert, "tag what is not tagged, and the other way round");
    app.add_flag("--clear", options.clear, "take all tags away");
    app.add_flag("--list", options.list, "show the tagged records");
    app.add_flag("--keep", options.keep, "add to the tags that are there, instead of replacing them")
        ->excludes("--invert")
        ->excludes("--clear")
        ->excludes("--list");
    options.table.declare(app);
    for (const char* const option : {"--columns", "--all-columns", "--sort", "--format"}) {
        app.get_option(option)->needs("--list");
    }
}

}  // namespace

Command Commands::tag() {
    return makeCommand(
        "tag", "Tag records for the commands that follow",
        "kesta tag day1.log --where Notes=MOS --keep\n  kesta delete day1.log --tagged\n\n"
        "Tags are kept in the column \"Tag\", which is added to a log that has none. Empty values\n"
        "neither repeat nor differ." +
            Arguments::searchRules,
        declare, run);
}
