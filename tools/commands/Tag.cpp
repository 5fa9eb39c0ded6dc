// kesta tag: marks on records, kept in the log's column "Tag" for the commands that follow.
#include <unordered_set>

#include "support/Ascii.h"
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/forms/ShowView.h"
#include "tools/forms/Writers.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"
#include "tools/logs/LogView.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/Output.h"

namespace {

void requireOneAction(const TagOptions& options) {
    const int actions = int(!options.where.empty()) + int(options.duplicates.has_value()) +
                        int(options.distinct.has_value()) + int(options.rows.has_value()) +
                        int(options.invert) + int(options.clear) + int(options.list);
    if (actions == 1) return;
    throw Failure("tag needs one of --where, --rows, --duplicates, --distinct, --invert, --clear and --list",
                  exitUsage);
}

int list(const TagOptions& options) {
    const LogForReading opened = openLog(options.log);
    const Zr::Ptr<kesta>& log = opened.log;
    const KSTView view = viewOf(*log);
    view->removeNonTagged();
    const bool found = view->get_num_records() > 0;
    ShownViews shown(options.table, 1);
    shown.add(options.log, *log, view);
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
        std::string value(valueIn(record, column));
        if (value.empty()) return;
        for (char& c : value) c = Ascii::fold(c);
        const auto occurrence = seen.insert(std::move(value)).second ? Occurrence::first : Occurrence::later;
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
void changeTags(kesta& log, const KSTView& view, const TagOptions& options) {
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

int change(const TagOptions& options) {
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

}  // namespace

int Commands::tagRecords(const TagOptions& options) {
    requireOneAction(options);
    return options.list ? list(options) : change(options);
}
