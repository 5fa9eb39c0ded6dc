// The tab-separated log exchange form.
#include <algorithm>

#include "support/Ascii.h"
#include "support/time_def.h"
#include "tools/forms/Writers.h"
#include "tools/logs/ColumnMap.h"
#include "tools/logs/LogView.h"
#include "tools/logs/OtherColumnNames.h"
#include "tools/terminal/Messages.h"

namespace {

class AleWriter {
 public:
    AleWriter(const kesta& log, const Selection& selection, LineSink& out)
        : m_log(log), m_selection(selection), m_out(out) {}

    void write() {
        writeHeading();
        writeColumns();
        m_out.line("Data");
        forEachRow(m_selection.rows,
                   [this](unsigned row, const dbrecord& record) { writeRecord(row, record); });
        m_warnings.summarise("the places are not listed");
    }

 private:
    void writeHeading() {
        m_out.line("Heading");
        const kesta::Params& params = m_log.params();
        const bool saysDelimiter = std::any_of(params.begin(), params.end(), [](const auto& param) {
            return Ascii::equalFolded(param.name().view(), "FIELD_DELIM");
        });
        const bool isWhole = m_selection.columns == allColumns(m_log);
        if (!saysDelimiter) m_out.line("FIELD_DELIM\tTABS");
        for (const auto& param : params) {
            if (Ascii::equalFolded(param.name().view(), "KESTA")) continue;
            // Its numbers are those of the log's columns.
            if (Ascii::equalFolded(param.name().view(), FieldMap::parameter) && !isWhole) continue;
            std::string line;
            append(line, param.name().view(), "a parameter");
            line += '\t';
            append(line, param.value().view(), "a parameter");
            m_out.line(line);
        }
        m_out.line("");
    }

    void writeColumns() {
        m_out.line("Column");
        std::string line;
        std::vector<std::string> names;
        for (const unsigned column : m_selection.columns) names.emplace_back(m_log.get_fieldname(column));
        for (const std::string& name : exchangeNames(names)) {
            append(line, name, "a column's name");
            line += '\t';
        }
        if (!line.empty()) line.pop_back();
        m_out.line(line);
        m_out.line("");
    }

    void writeRecord(unsigned row, const dbrecord& record) {
        m_line.clear();
        bool first = true;
        for (const unsigned column : m_selection.columns) {
            if (!first) m_line += '\t';
            first = false;
            if (!append(m_line, exchangeForm(record, column).view()))
                warnOfSpace(placeOf(m_log, row, column));
        }
        if (m_selection.columns.size() == 1 && Ascii::trimmed(m_line).empty()) {
            m_warnings.add("row " + std::to_string(row + 1) +
                           ": an empty value as the only one of its line is a blank line, which is skipped "
                           "when the file is read");
        }
        m_out.line(m_line);
    }

    // A time code that is stored as bare digits gets its punctuation, which readers of the form expect.
    LightweightString<char> exchangeForm(const dbrecord& record, unsigned column) const {
        const LightweightString<char>& value = record.getField(static_cast<unsigned short>(column));
        const DBFieldTypes::eType type = m_log.get_field_type(column);
        if (type != DBFieldTypes::eTimecode && type != DBFieldTypes::eTimecodeS) return value;
        const time_def code(value.c_str(), eTimecodeLabel);
        return code.valid() && code.get_database_str() == value ? code.get_punctuated_str() : value;
    }

    void append(std::string& line, std::string_view value, const char* what) {
        if (!append(line, value)) warnOfSpace(what);
    }

    // Whether the value could be written as it is.
    static bool append(std::string& line, std::string_view value) {
        if (value.find_first_of("\t\r\n") == std::string_view::npos) {
            line += value;
            return true;
        }
        for (const char c : value) line += c == '\t' || c == '\r' || c == '\n' ? ' ' : c;
        return false;
    }

    void warnOfSpace(const std::string& place) {
        m_warnings.add(place + ": tabs and line ends become spaces");
    }

    const kesta& m_log;
    const Selection& m_selection;
    LineSink& m_out;
    std::string m_line;
    Warnings m_warnings;
};

}  // namespace

void writeAle(const kesta& log, const Selection& selection, const Heading&, LineSink& out) {
    AleWriter(log, selection, out).write();
}
