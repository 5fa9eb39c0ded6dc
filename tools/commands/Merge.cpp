// kesta merge: the records of logs appended to another one.
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/files/Files.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/StandardStreams.h"

namespace {

struct Options {
    std::string into;
    std::vector<std::string> from;
    Saving saving;
};

void add(std::string& list, const std::string& name) {
    list += (list.empty() ? "" : ", ") + name;
}

std::string part(const char* what, const std::string& list) {
    return list.empty() ? "" : std::string("; ") + what + ": " + list;
}

// How a value changes between two columns, as the user sees it; empty when it stays.
std::string conversion(DBFieldTypes::eType from, DBFieldTypes::eType to) {
    if (from == DBFieldTypes::eTimecodeS && to == DBFieldTypes::eTimecode) return " (as 01:00:00:00)";
    if (from == DBFieldTypes::eTimecode && to == DBFieldTypes::eTimecodeS) return " (as 01000000)";
    return {};
}

// Which columns found their like by name, which did not, and what changed on the way.
std::string describeColumns(const kesta& into, const kesta& from) {
    std::string matched;
    std::string dropped;
    std::string converted;
    for (unsigned column = 0; column < from.get_num_fields(); ++column) {
        const std::string name = from.get_fieldname(column);
        const unsigned target = into.get_fieldnum(libraryText(name));
        const bool isMatched =
            target < into.get_num_fields() && from.get_fieldnum(libraryText(name)) == column;
        add(isMatched ? matched : dropped, name);
        if (!isMatched) continue;
        const std::string change = conversion(from.get_field_type(column), into.get_field_type(target));
        if (!change.empty()) add(converted, name + change);
    }
    return part("matched", matched) + part("dropped", dropped) + part("converted", converted);
}

// Why the log would not give the record back exactly.
std::string recordObjection(const kesta& log, unsigned row) {
    for (unsigned column = 0; column < log.get_num_fields(); ++column) {
        const std::string value(log.getField(row, column).view());
        const std::string objection = value.empty() ? value : valueObjection(log, column, value);
        if (!objection.empty()) {
            return std::string("the log does not keep the value for \"") + log.get_fieldname(column) +
                   "\": " + objection;
        }
    }
    return "the log does not give it back as it is";
}

// A value may be kept in the column that it comes from but not in the one that it goes to.
void requireKeptFrom(const kesta& log, unsigned firstRow, const std::string& source) {
    LineRoundTrip roundTrip;
    for (unsigned row = firstRow; row < log.get_num_records(); ++row) {
        const Zr::Ptr<dbrecord> record = log.get_record(row);
        if (roundTrip(*record).fields() == record->fields() && !readsAsHeader(*record)) continue;
        throw Failure(source + ": row " + std::to_string(row - firstRow + 1) + ": " +
                      recordObjection(log, row));
    }
}

/// Returns what there is to say about it.
std::string append(kesta& into, kesta& from, const std::string& source) {
    const std::string said = source + ": " + counted(from.get_num_records(), "record");
    if (into.add_kesta(&from) >= 0) return said + "; all columns matched";
    const unsigned before = into.get_num_records();
    if (into.merge_all_matching(&from) == 0) {
        throw Failure(source + ": has no column of the log it is to be merged into");
    }
    requireKeptFrom(into, before, source);
    return said + describeColumns(into, from);
}

int run(const Options& options) {
    for (const std::string& source : options.from) {
        if (isSameFile(options.into, source)) throw Failure(source + ": a log is not merged into itself");
    }
    LogForEditing into(options.into, options.saving.force);
    std::vector<Zr::Ptr<kesta>> sources;
    for (const std::string& source : options.from) {
        sources.push_back(openLogForCopying(source, options.saving.force));
    }
    std::vector<std::string> said;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        said.push_back(append(*into, *sources[i], shownName(options.from[i])));
    }
    into.save(options.saving, said);
    return exitDone;
}

void declare(CLI::App& app, Options& options) {
    app.add_option("INTO", options.into, "the log that grows")->required();
    app.add_option("FROM", options.from, "the logs whose records are appended")->required();
    Arguments::addSaving(app, options.saving, "save even when a file holds text that is lost by that");
}

}  // namespace

Command Commands::merge() {
    return makeCommand("merge", "Append the records of logs to a log",
                       "kesta merge show.log day1.log day2.log\n\n"
                       "Logs whose columns differ are merged by the columns' names; INTO keeps its columns.",
                       declare, run);
}
