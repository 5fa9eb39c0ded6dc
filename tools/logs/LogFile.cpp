#include "tools/logs/LogFile.h"

#include <algorithm>
#include <cerrno>

#include "record/ColumnTypes.h"
#include "record/FileForm.h"
#include "support/StringFunctions.h"
#include "support/TextFile.h"
#include "tools/Failure.h"
#include "tools/files/Files.h"
#include "tools/logs/LogForm.h"
#include "tools/logs/LogReading.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/Output.h"
#include "tools/terminal/Progress.h"
#include "tools/terminal/StandardStreams.h"
#include "tools/terminal/Suggestion.h"

namespace {

constexpr unsigned none = static_cast<unsigned>(-1);

const std::string& editable(const std::string& path) {
    if (isStandardStream(path))
        throw Failure("standard input cannot be changed; name the log's file", exitUsage);
    requireReadable(path);
    return path;
}

/// Throws Failure for what is no log, and warns of what a log has lost.
LogReading readWithWarnings(const std::string& path) {
    const Progress progress("reading", path);
    LogReading reading = readLog(path);
    if (reading.refusal) throw Failure(describe(path, *reading.refusal));
    Warnings warnings;
    for (const Finding& finding : reading.findings) warnings.add(describe(path, finding));
    warnings.summarise("kesta check lists them all");
    return reading;
}

// What the loader made of a damaged file may be such that a saved log could not be read back at all.
void makeReadable(kesta& log) {
    for (unsigned i = 0; i < log.get_num_fields(); ++i) {
        const std::string name = log.get_fieldname(i);
        if (!keepsColumnName(name)) log.set_fieldname(i, keepableColumnName(name).c_str());
    }
    int unused = 0;
    for (unsigned row = 0; row < log.get_num_records(); ++row) {
        const Zr::Ptr<dbrecord> record = log.get_record(row);
        record->resizeRecord(static_cast<int>(log.get_num_fields()), &unused, true);
        for (unsigned short i = 0; i < record->get_num_fields(); ++i) {
            const std::string_view value = record->getField(i).view();
            if (value.size() > longestSafeValue)
                record->setField(i, libraryText(cutTo(value, longestSafeValue)));
        }
    }
}

// Saving writes the records' tags into the column "Tag", but loading does not take them from there.
void takeTagsFromColumn(kesta& log) {
    const unsigned column = log.get_fieldnum("Tag");
    if (column == none) return;
    for (unsigned row = 0; row < log.get_num_records(); ++row) {
        int tag = 0;
        log.set_tag(row, readTag(log.getField(row, column).view(), tag) ? tag : 0);
    }
}

/// A log that loads without loss, or is wanted all the same. `refusal` goes before what would be lost.
Zr::Ptr<kesta> openWhole(const std::string& path, bool force, const std::string& refusal) {
    if (isCommaSeparated(path)) {
        throw Failure(path + ": is a comma-separated file; make a log of it first: kesta import");
    }
    const LogReading reading = readWithWarnings(path);
    if (!reading.losesText()) return reading.log;
    if (!force) {
        throw Failure(shownName(path) + ": " + refusal +
                      " what the warnings name; mend the file first, or use --force");
    }
    makeReadable(*reading.log);
    return reading.log;
}

/// The longest beginning of a list, as far as a comma or its end, that names a column; its first piece when
/// none does. No column's name has more than `longest` bytes.
std::string_view leadingName(const kesta& log, std::string_view list, std::size_t longest) {
    std::string_view best = list.substr(0, list.find(','));
    for (std::size_t end = best.size(); end <= longest;
         end = std::min(list.find(',', end + 1), list.size())) {
        const std::string_view name = list.substr(0, end);
        if (log.get_fieldnum(libraryText(name)) != none) best = name;
        if (end == list.size()) break;
    }
    return best;
}

void writeFile(kesta& log, const std::string& path, const FileClaim& claim) {
    errno = 0;
    const int written = log.save_text();
    const int error = errno;
    // Saving no records returns 0 as a failure does, but puts a new file in the place of the old one.
    const bool saved = log.get_num_records() > 0 ? written > 0 : claim.isChanged();
    if (!saved) throw fileFailure(path, error);
}

}  // namespace

LogForReading openLog(const std::string& path) {
    const LogReading reading = readWithWarnings(path);
    return {reading.log, reading.losesText() ? exitFindings : exitDone};
}

LogForEditing::LogForEditing(const std::string& path, bool force)
    : m_path(editable(path)),
      m_claim(path),
      m_log(openWhole(path, force, "not changed, because saving would lose")) {}

void LogForEditing::save(const Saving& how, const std::vector<std::string>& summary) {
    saveLog(*m_log, m_path, &m_claim, how, summary);
}

Zr::Ptr<kesta> openLogForCopying(const std::string& path, bool force) {
    return openWhole(path, force, "not copied, because its copy would lack");
}

void requireLogMayBeMade(const std::string& path, bool replace) {
    if (isCommaSeparated(path)) {
        throw Failure(path +
                      ": a log cannot have this name, because files ending in .csv are read as "
                      "comma-separated text");
    }
    if (!replace && !isStandardStream(path) && isThere(path))
        throw Failure(path + ": is there already; --force replaces it");
}

void saveLog(kesta& log, const std::string& path, FileClaim* claim, const Saving& how,
             const std::vector<std::string>& summary) {
    save(path, claim, how, counted(log.get_num_records(), "record"), summary, [&] {
        takeTagsFromColumn(log);
        if (claim) {
            writeFile(log, path, *claim);
        } else {
            writeRecords(log, log);
        }
    });
}

void writeRecords(const kesta& log, const iKST& rows) {
    TextFile file;
    log.save_params(file);
    log.save_column_header(file, false);
    for (unsigned row = 0; row < rows.get_num_records(); ++row) {
        const Zr::Ptr<dbrecord> record = rows.get_record(row);
        if (record) record->write(file);
    }
    const auto output = standardOutput();
    for (unsigned line = 0; line < file.size(); ++line) output->line(file.lineView(line));
    output->finish();
}

std::vector<std::string> columnNames(const kesta& log) {
    std::vector<std::string> names;
    for (unsigned i = 0; i < log.get_num_fields(); ++i) names.emplace_back(log.get_fieldname(i));
    return names;
}

unsigned columnNamed(const kesta& log, const std::string& name) {
    const unsigned column = log.get_fieldnum(libraryText(name));
    if (column == none)
        throw Failure("no column " +
                      suggestionFor(name, columnNames(log), "columns", "kesta info lists them"));
    return column;
}

std::vector<unsigned> columnsNamed(const kesta& log, const std::vector<std::string>& lists) {
    std::size_t longest = 0;
    for (const std::string& name : columnNames(log)) longest = std::max(longest, name.size());
    std::vector<unsigned> columns;
    for (const std::string& list : lists) {
        for (std::size_t begin = 0; begin <= list.size();) {
            const std::string_view name = leadingName(log, std::string_view(list).substr(begin), longest);
            columns.push_back(columnNamed(log, std::string(name)));
            begin += name.size() + 1;
        }
    }
    return columns;
}

std::vector<std::string> columnTypes(const kesta& log) {
    std::vector<std::string> result;
    for (unsigned i = 0; i < log.get_num_fields(); ++i) {
        result.emplace_back(ColumnTypes::toWord(log.get_field_type(i)).view());
    }
    return result;
}

std::string valueObjection(const kesta& log, unsigned column, const std::string& value) {
    int tag = 0;
    if (column == log.get_fieldnum("Tag")) {
        return readTag(value, tag) ? "" : "it is no tag: tags are numbers from 0 to 255";
    }
    if (log.get_num_fields() == 1 && FileForm::isHeaderMarker(libraryText(value)))
        return "it would be read as the beginning of a header";
    return LineRoundTrip().keeps(value) ? "" : whyNotKept(value);
}

void requireKeptValue(const kesta& log, unsigned column, const std::string& value) {
    const std::string objection = valueObjection(log, column, value);
    if (objection.empty()) return;
    throw Failure(std::string("a log does not keep the value for \"") + log.get_fieldname(column) +
                  "\": " + objection);
}
