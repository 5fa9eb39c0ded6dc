#include "tools/forms/TableLog.h"

#include <algorithm>

#include "support/Ascii.h"
#include "tools/Failure.h"
#include "tools/logs/OtherColumnNames.h"
#include "tools/terminal/DisplayText.h"

namespace {

constexpr std::size_t mostColumns = 65535;

std::string becoming(const std::string& before, std::string_view after) {
    std::string text = '"' + before;
    text += "\" becomes \"";
    text += after;
    return text += '"';
}

std::string keepableParameterText(std::string_view text, std::string_view forbidden) {
    std::string kept(cutTo(text, longestSafeValue / 2));
    for (std::size_t at = 0; (at = kept.find("\\n", at)) != std::string::npos;) kept[at] = '/';
    std::replace_if(
        kept.begin(), kept.end(),
        [&](char c) { return forbidden.find(c) != std::string_view::npos || c == '\r' || c == '\n'; }, '\'');
    const std::size_t first = kept.find_first_not_of(" \t\v\f");
    if (first == std::string::npos) return {};
    return kept.substr(first, kept.find_last_not_of(" \t\v\f") + 1 - first);
}

}  // namespace

TableLog::TableLog(const TableSource& source, std::string name, Warnings& warnings)
    : m_source(source), m_name(std::move(name)), m_warnings(warnings) {
    survey();
    makeColumns();
    storeParameters();
    m_source.forEachRow([this](unsigned line, const Values& values) { store(line, values); });
}

void TableLog::writeTo(TextFile& file) const {
    m_header.save_params(file);
    m_header.save_column_header(file, false);
    for (unsigned i = 0; i < m_lines.size(); ++i) {
        const std::string_view line = m_lines.lineView(i);
        file.endLine(std::copy(line.begin(), line.end(), file.beginLine(line.size())));
    }
}

std::string TableLog::atLine(unsigned line) const {
    return m_name + ':' + std::to_string(line) + ": ";
}

// Finds what must be known before the first record is made.
void TableLog::survey() {
    const auto& names = m_source.columns();
    const auto isTag = [](const std::string& name) { return Ascii::equalFolded(name, "Tag"); };
    const auto tagColumn =
        static_cast<std::size_t>(std::find_if(names.begin(), names.end(), isTag) - names.begin());
    m_source.forEachRow([&](unsigned, const Values& values) {
        std::size_t reach = values.size();
        while (reach > m_reach && values[reach - 1].empty()) --reach;
        m_reach = std::max(m_reach, reach);
        int tag = 0;
        if (!readTag(tagColumn < values.size() ? values[tagColumn] : std::string_view(), tag))
            m_keepsTags = false;
    });
}

void TableLog::makeColumns() {
    std::vector<std::string> names = m_source.columns();
    while (names.size() > m_reach && names.back().empty()) names.pop_back();
    m_namedColumns = names.size();
    names.resize(std::max(m_namedColumns, m_reach));
    if (names.empty()) throw Failure(atLine(m_source.columnLine()) + "there are no column names");
    if (names.size() > mostColumns) throw Failure(m_name + ": has more columns than a log takes");
    const auto columns =
        planColumns(names, m_keepsTags ? std::vector<std::string>() : std::vector<std::string>{"Tag"});
    m_header.setFields(columns);
    m_header.widths.resize(columns.size());
    int unused = 0;
    m_record.resizeRecord(static_cast<int>(columns.size()), &unused, true);
    for (std::size_t i = 0; i < m_namedColumns; ++i) warnOfRenaming(i, names[i], columns[i].name.view());
}

void TableLog::warnOfRenaming(std::size_t column, const std::string& name, std::string_view stored) {
    const StandardColumn* const standard = standardColumnFor(name);
    if (Ascii::equalFolded(name, stored) || (standard && Ascii::equalFolded(standard->name, stored))) return;
    m_warnings.add(atLine(m_source.columnLine()) + "column " + std::to_string(column + 1) + ": the name " +
                   becoming(name, stored));
}

void TableLog::storeParameters() {
    // A log begins with its revision, which the first parameter brings along.
    m_header.add_param("KESTA", "Rev 1");
    for (const TableSource::Parameter& parameter : m_source.parameters()) {
        const std::string place = atLine(parameter.line);
        const std::string key = freeKey(parameter.key);
        if (key != parameter.key) {
            m_warnings.add(place + "the parameter " + becoming(parameter.key, key));
        }
        if (keepsParameter(key, parameter.value)) {
            m_header.add_param(libraryText(key), libraryText(parameter.value));
        } else {
            storeChangedParameter(place, key, parameter.value);
        }
    }
}

// Counts on from the last number that the key was given, for files that repeat one often.
std::string TableLog::freeKey(const std::string& key) {
    std::string candidate = key;
    unsigned& number = m_lastKeyNumber.emplace(Ascii::folded(key), 1).first->second;
    while (m_header.findParamIndex(libraryText(candidate)) >= 0) {
        candidate = key + ' ' + std::to_string(++number);
    }
    return candidate;
}

void TableLog::storeChangedParameter(const std::string& place, const std::string& key,
                                     const std::string& value) {
    std::string keptKey = freeKey(keepableParameterText(key, ":\""));
    if (keptKey.empty()) keptKey = freeKey("Parameter");
    const std::string keptValue(cutTo(keepableParameterText(value, "\""), longestSafeValue / 2));
    m_header.add_param(libraryText(keptKey), libraryText(keptValue));
    ++m_changed;
    ++m_lost;
    m_warnings.add(place + "the parameter \"" + key + "\" is stored changed, as \"" + keptKey + ": " +
                   std::string(cutTo(keptValue, 40)) + "\": " + parameterRules());
}

void TableLog::store(unsigned line, const Values& values) {
    const bool isSurelyKept = fill(values);
    warnOfLongRow(line, values);
    if (!isSurelyKept) storeAsKept(line, values);
    if (readsAsHeader(m_record)) {
        throw Failure(atLine(line) + "column 1: a log of one column takes the value \"" +
                      std::string(values[0]) +
                      "\" for the beginning of a header; give the file a second column");
    }
    widen();
    m_record.write(m_lines);
}

// Puts the values into the record, most of which are those of the record before it. Returns whether a log
// surely gives all of them back.
bool TableLog::fill(const Values& values) {
    bool needsCare = false;
    for (unsigned short i = 0; i < m_record.get_num_fields(); ++i) {
        const std::string_view value = i < values.size() ? values[i] : std::string_view();
        const bool isRepeated = m_record.fields()[i].view() == value;
        if (!isRepeated) m_record.setField(i, libraryText(value));
        if (!isRepeated || m_neededCare) needsCare = needsCare || !needsNoCare(value);
    }
    m_neededCare = needsCare;
    return !needsCare;
}

void TableLog::warnOfLongRow(unsigned line, const Values& values) {
    std::size_t beyond = 0;
    for (std::size_t i = m_namedColumns; i < values.size(); ++i) beyond += values[i].empty() ? 0 : 1;
    if (beyond == 0) return;
    m_warnings.add(atLine(line) + std::to_string(beyond) + (beyond == 1 ? " value" : " values") +
                   " after the last named column, kept from column \"" +
                   m_header.get_fieldname(static_cast<unsigned>(m_namedColumns)) + "\" on");
}

// Replaces the record's values with those that the log will give back.
void TableLog::storeAsKept(unsigned line, const Values& values) {
    if (m_roundTrip(m_record).fields() == m_record.fields()) return;
    const auto count =
        static_cast<unsigned short>(std::min<std::size_t>(m_record.get_num_fields(), values.size()));
    // A long value reads as several, which may swallow others: what it does to them is no concern.
    for (unsigned short i = 0; i < count; ++i)
        m_record.setField(i, libraryText(cutTo(values[i], longestSafeValue)));
    const dbrecord& kept = m_roundTrip(m_record);
    for (unsigned short i = 0; i < count; ++i) {
        if (kept.getField(i).view() == values[i]) continue;
        ++m_changed;
        if (kept.getField(i).view() != Ascii::trimmed(values[i])) ++m_lost;
        m_warnings.add(atLine(line) + "column " + std::to_string(i + 1) + " (" + m_header.get_fieldname(i) +
                       "): the value is not kept exactly: " + whyNotKept(values[i]));
        m_record.setField(i, kept.getField(i));
    }
}

void TableLog::widen() {
    for (unsigned short i = 0; i < m_record.get_num_fields(); ++i)
        m_header.widths[i] = std::max(m_header.widths[i], m_record.fields()[i].length());
}
