// kesta import: a log from the file of another program.
#include <algorithm>
#include <map>
#include <optional>

#include "record/kesta.h"
#include "support/Ascii.h"
#include "support/StringFunctions.h"
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/files/FileClaim.h"
#include "tools/forms/TableSource.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"
#include "tools/logs/OtherColumnNames.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/Progress.h"
#include "tools/terminal/StandardStreams.h"

namespace {

struct Options {
    std::string file;
    std::string format;  // empty for what the file is
    std::string log;
    bool allWarnings = false;
    Saving saving;
};

constexpr std::size_t mostColumns = 65535;

std::string becoming(const std::string& before, std::string_view after) {
    std::string text = '"' + before;
    text += "\" becomes \"";
    text += after;
    return text += '"';
}

/// Makes a log of a table. What a log cannot hold exactly is stored as the log would give it back, and warned
/// of.
class Importer {
 public:
    Importer(const Options& options, const TableSource& source, FileClaim* claim)
        : m_options(options), m_source(source), m_claim(claim), m_warnings(options.allWarnings) {}

    /// Answers the exit code.
    int run() {
        fill();
        m_log.set_filename(Zr::WStringFromAscii(m_options.log.c_str()));
        m_warnings.summarise("--all-warnings lists them all");
        saveLog(m_log, m_options.log, m_claim, m_options.saving, {summary()});
        return m_lost > 0 ? exitFindings : exitDone;
    }

 private:
    void fill() {
        const Progress progress("importing", m_options.file);
        survey();
        makeColumns();
        storeParameters();
        m_source.forEachRow(
            [this](unsigned line, const std::vector<std::string>& values) { store(line, values); });
    }

    std::string atLine(unsigned line) const {
        return shownName(m_options.file) + ':' + std::to_string(line) + ": ";
    }

    // Finds what must be known before the first record is made: how far the rows reach, and whether a column
    // "Tag" holds what a log keeps there.
    void survey() {
        const auto& names = m_source.columns();
        const auto isTag = [](const std::string& name) { return Ascii::equalFolded(name, "Tag"); };
        const auto tagColumn =
            static_cast<std::size_t>(std::find_if(names.begin(), names.end(), isTag) - names.begin());
        m_source.forEachRow([&](unsigned, const std::vector<std::string>& values) {
            std::size_t reach = values.size();
            while (reach > m_reach && values[reach - 1].empty()) --reach;
            m_reach = std::max(m_reach, reach);
            int tag = 0;
            if (!readTag(tagColumn < values.size() ? values[tagColumn] : std::string(), tag))
                m_keepsTags = false;
        });
    }

    void makeColumns() {
        std::vector<std::string> names = m_source.columns();
        while (names.size() > m_reach && names.back().empty()) names.pop_back();
        const std::size_t named = names.size();
        names.resize(std::max(named, m_reach));
        if (names.empty()) throw Failure(atLine(m_source.columnLine()) + "there are no column names");
        if (names.size() > mostColumns)
            throw Failure(shownName(m_options.file) + ": has more columns than a log takes");
        const auto columns =
            planColumns(names, m_keepsTags ? std::vector<std::string>() : std::vector<std::string>{"Tag"});
        m_log.setFields(columns);
        m_namedColumns = named;
        for (std::size_t i = 0; i < named; ++i) warnOfRenaming(i, names[i], columns[i].name.view());
    }

    void warnOfRenaming(std::size_t column, const std::string& name, std::string_view stored) {
        const StandardColumn* const standard = standardColumnFor(name);
        if (Ascii::equalFolded(name, stored) || (standard && Ascii::equalFolded(standard->name, stored)))
            return;
        m_warnings.add(atLine(m_source.columnLine()) + "column " + std::to_string(column + 1) +
                       ": the name " + becoming(name, stored));
    }

    void storeParameters() {
        // A log begins with its revision, which the first parameter brings along.
        m_log.add_param("KESTA", "Rev 1");
        for (const TableSource::Parameter& parameter : m_source.parameters()) {
            const std::string place = atLine(parameter.line);
            const std::string key = freeKey(parameter.key);
            if (key != parameter.key) {
                m_warnings.add(place + "the parameter " + becoming(parameter.key, key));
            }
            if (keepsParameter(key, parameter.value)) {
                m_log.add_param(libraryText(key), libraryText(parameter.value));
            } else {
                storeChangedParameter(place, key, parameter.value);
            }
        }
    }

    // Counts on from the last number that the key was given, for files that repeat one often.
    std::string freeKey(const std::string& key) {
        std::string candidate = key;
        unsigned& number = m_lastKeyNumber.emplace(Ascii::folded(key), 1).first->second;
        while (m_log.findParamIndex(libraryText(candidate)) >= 0) {
            candidate = key + ' ' + std::to_string(++number);
        }
        return candidate;
    }

    void storeChangedParameter(const std::string& place, const std::string& key, const std::string& value) {
        std::string keptKey = freeKey(keepableParameterText(key, ":\""));
        if (keptKey.empty()) keptKey = freeKey("Parameter");
        const std::string keptValue(cutTo(keepableParameterText(value, "\""), longestSafeValue / 2));
        m_log.add_param(libraryText(keptKey), libraryText(keptValue));
        ++m_changed;
        ++m_lost;
        m_warnings.add(place + "the parameter \"" + key + "\" is stored changed, as \"" + keptKey + ": " +
                       std::string(cutTo(keptValue, 40)) + "\": " + parameterRules);
    }

    static std::string keepableParameterText(std::string_view text, std::string_view forbidden) {
        std::string kept(cutTo(text, longestSafeValue / 2));
        for (std::size_t at = 0; (at = kept.find("\\n", at)) != std::string::npos;) kept[at] = '/';
        std::replace_if(
            kept.begin(), kept.end(),
            [&](char c) { return forbidden.find(c) != std::string_view::npos || c == '\r' || c == '\n'; },
            '\'');
        const std::size_t first = kept.find_first_not_of(" \t\v\f");
        if (first == std::string::npos) return {};
        return kept.substr(first, kept.find_last_not_of(" \t\v\f") + 1 - first);
    }

    void store(unsigned line, const std::vector<std::string>& values) {
        const unsigned row = m_log.add_records(1);
        const Zr::Ptr<dbrecord> record = m_log.get_record(row);
        for (unsigned short i = 0; i < std::min(values.size(), m_reach); ++i) {
            record->setField(i, libraryText(values[i]));
        }
        warnOfLongRow(line, values);
        storeAsKept(line, *record, values);
        if (readsAsHeader(*record)) {
            throw Failure(atLine(line) + "column 1: a log of one column takes the value \"" + values[0] +
                          "\" for the beginning of a header; give the file a second column");
        }
    }

    void warnOfLongRow(unsigned line, const std::vector<std::string>& values) {
        std::size_t beyond = 0;
        for (std::size_t i = m_namedColumns; i < values.size(); ++i) beyond += values[i].empty() ? 0 : 1;
        if (beyond == 0) return;
        m_warnings.add(atLine(line) + std::to_string(beyond) + (beyond == 1 ? " value" : " values") +
                       " behind the last named column, kept from column \"" +
                       m_log.get_fieldname(static_cast<unsigned>(m_namedColumns)) + "\" on");
    }

    // Replaces the record's values with those that the log will give back.
    void storeAsKept(unsigned line, dbrecord& record, const std::vector<std::string>& values) {
        if (m_roundTrip(record).fields() == record.fields()) return;
        // A long value reads as several, which may swallow others: what it does to them is no concern.
        cutLongValues(record, values);
        const dbrecord& kept = m_roundTrip(record);
        for (unsigned short i = 0; i < record.get_num_fields() && i < values.size(); ++i) {
            if (kept.getField(i).view() == values[i]) continue;
            ++m_changed;
            if (kept.getField(i).view() != Ascii::trimmed(values[i])) ++m_lost;
            m_warnings.add(atLine(line) + "column " + std::to_string(i + 1) + " (" + m_log.get_fieldname(i) +
                           "): the value is not kept exactly: " + whyNotKept(values[i]));
            record.setField(i, kept.getField(i));
        }
    }

    static void cutLongValues(dbrecord& record, const std::vector<std::string>& values) {
        for (unsigned short i = 0; i < record.get_num_fields() && i < values.size(); ++i) {
            record.setField(i, libraryText(cutTo(values[i], longestSafeValue)));
        }
    }

    std::string summary() const {
        std::string text = m_options.log + ": " + counted(m_log.get_num_records(), "record") + ", " +
                           counted(m_log.get_num_fields(), "column");
        if (m_changed > 0) text += ", " + counted(m_changed, "value") + " not kept exactly";
        return text;
    }

    const Options& m_options;
    const TableSource& m_source;
    FileClaim* m_claim;  // null for standard output
    Warnings m_warnings;
    kesta m_log;
    LineRoundTrip m_roundTrip;
    std::size_t m_reach = 0;  // the columns up to the last value of any row
    std::size_t m_namedColumns = 0;
    std::size_t m_changed = 0;
    std::size_t m_lost = 0;  // of these, more than white space around them
    std::map<std::string, unsigned> m_lastKeyNumber;
    bool m_keepsTags = true;
};

int run(const Options& options) {
    std::optional<FileClaim> claim;
    if (!isStandardStream(options.log)) claim.emplace(options.log);
    requireLogMayBeMade(options.log, options.saving.force);
    const auto source = readTable(options.file, options.format);
    return Importer(options, *source, claim ? &*claim : nullptr).run();
}

void declare(CLI::App& app, Options& options) {
    app.add_option("FILE", options.file, "the file to read, - for standard input")->required();
    Arguments::addFormat(app, options.format, {"csv", "ale"})
        ->description("csv or ale; else as the file's name ends, and standard input as it begins");
    Arguments::addOutput(app, options.log, "the log to write, - for standard output")->required();
    app.add_flag("--all-warnings", options.allWarnings, "list every value that a log cannot hold exactly");
    Arguments::addSaving(app, options.saving, Arguments::replacing);
}

}  // namespace

Command Commands::importFile() {
    return makeCommand("import", "Make a log of a .csv or .ale file",
                       "kesta import dailies.ale -o dailies.log", declare, run);
}
