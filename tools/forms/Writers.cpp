#include "tools/forms/Writers.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

#include "support/Ascii.h"
#include "support/StringFunctions.h"
#include "support/time_def.h"
#include "tools/logs/ColumnMap.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"
#include "tools/logs/LogView.h"
#include "tools/logs/StandardColumns.h"
#include "tools/terminal/Messages.h"

namespace {

std::string placeOf(const kesta& log, unsigned row, unsigned column) {
    return "row " + std::to_string(row + 1) + ", column " + std::to_string(column + 1) + " (" +
           log.get_fieldname(column) + ')';
}

void appendCsvField(std::string& line, std::string_view value) {
    const bool spaced = !value.empty() && (value.front() == ' ' || value.back() == ' ');
    if (!spaced && value.find_first_of(",\"\r\n") == std::string_view::npos) {
        line += value;
        return;
    }
    line += '"';
    for (const char c : value) {
        if (c == '"') line += '"';
        line += c;
    }
    line += '"';
}

/// Writes JSON texts and remembers whether they held what JSON cannot.
class JsonText {
 public:
    void append(std::string& out, std::string_view value) {
        m_replaced = false;
        const bool isAscii = std::all_of(value.begin(), value.end(), [](char c) { return c >= 0; });
        if (!isAscii) value = asUtf8(value);
        out += '"';
        for (const char c : value) appendCharacter(out, c);
        out += '"';
    }

    /// Whether the last text held bytes that are no UTF-8.
    bool replaced() const noexcept { return m_replaced; }

 private:
    std::string_view asUtf8(std::string_view value) {
        LightweightString<wchar_t> decoded = fromUTF8(libraryText(value));
        wchar_t* const characters = decoded.writableText();
        for (unsigned i = 0; i < decoded.length(); ++i) {
            if (!isStrayByte(characters[i])) continue;
            characters[i] = 0xFFFD;
            m_replaced = true;
        }
        if (!m_replaced) return value;
        m_text = toUTF8(decoded);
        return m_text.view();
    }

    static void appendCharacter(std::string& out, char c) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c >= 0 && c < ' ') {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            out += c == '\n' ? "\\n" : c == '\t' ? "\\t" : escape;
        } else {
            out += c;
        }
    }

    LightweightString<char> m_text;
    bool m_replaced = false;
};

class JsonWriter {
 public:
    JsonWriter(const kesta& log, const Selection& selection, LineSink& out)
        : m_log(log), m_selection(selection), m_out(out) {}

    void write(const JsonProperties& properties) {
        m_out.line("{");
        for (const auto& [name, value] : properties) {
            std::string line = "  \"";
            line.append(name).append("\": ").append(value) += ',';
            m_out.line(line);
        }
        writeParameters();
        writeColumns();
        writeRecords();
        m_out.line("}");
        m_warnings.summarise("the places are not listed");
    }

 private:
    // Puts the separator behind all items but the last.
    template <class Item>
    void writeList(const char* name, std::size_t count, const char* end, Item item) {
        m_out.line(std::string("  \"") + name + "\": [");
        std::string line;
        for (std::size_t i = 0; i < count; ++i) {
            line = "    ";
            item(i, line);
            if (i + 1 < count) line += ',';
            m_out.line(line);
        }
        m_out.line(std::string("  ]") + end);
    }

    void append(std::string& line, std::string_view value, const char* what) {
        m_text.append(line, value);
        if (m_text.replaced()) warnOfBytes(what);
    }

    void writeParameters() {
        const kesta::Params& params = m_log.params();
        writeList("parameters", params.size(), ",", [&](std::size_t i, std::string& line) {
            line += "{\"key\": ";
            append(line, params[i].name().view(), "a parameter");
            line += ", \"value\": ";
            append(line, params[i].value().view(), "a parameter");
            line += '}';
        });
    }

    void writeColumns() {
        const std::vector<std::string> types = columnTypes(m_log);
        writeList("columns", m_selection.columns.size(), ",", [&](std::size_t i, std::string& line) {
            const unsigned column = m_selection.columns[i];
            line += "{\"name\": ";
            append(line, m_log.get_fieldname(column), "a column's name");
            line += ", \"type\": ";
            append(line, types[column], "a column's type");
            line += '}';
        });
    }

    void writeRecords() {
        std::size_t left = m_selection.rows->get_num_records();
        m_out.line("  \"records\": [");
        std::string line;
        forEachRow(m_selection.rows, [&](unsigned row, const dbrecord& record) {
            line = "    [";
            for (const unsigned column : m_selection.columns) {
                if (line.back() != '[') line += ", ";
                m_text.append(line, valueIn(record, column));
                if (m_text.replaced()) warnOfBytes(placeOf(m_log, row, column));
            }
            line += --left > 0 ? "]," : "]";
            m_out.line(line);
        });
        m_out.line("  ]");
    }

    void warnOfBytes(const std::string& place) {
        m_warnings.add(place + ": bytes that are no UTF-8 become U+FFFD");
    }

    const kesta& m_log;
    const Selection& m_selection;
    LineSink& m_out;
    JsonText m_text;
    Warnings m_warnings;
};

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
            return sameName(param.name().view(), "FIELD_DELIM");
        });
        const bool isWhole = m_selection.columns == allColumns(m_log);
        if (!saysDelimiter) m_out.line("FIELD_DELIM\tTABS");
        for (const auto& param : params) {
            if (sameName(param.name().view(), "KESTA")) continue;
            // Its numbers are those of the log's columns.
            if (sameName(param.name().view(), columnMapKey) && !isWhole) continue;
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

std::vector<unsigned> allColumns(const kesta& log) {
    std::vector<unsigned> columns(log.get_num_fields());
    std::iota(columns.begin(), columns.end(), 0U);
    return columns;
}

Selection everythingOf(kesta& log) {
    return {viewOf(log), allColumns(log)};
}

void writeCsv(const kesta& log, const Selection& selection, LineSink& out) {
    std::string line;
    const auto writeFields = [&](auto fieldOf) {
        line.clear();
        bool first = true;
        for (const unsigned column : selection.columns) {
            if (!first) line += ',';
            first = false;
            appendCsvField(line, fieldOf(column));
        }
        // A line of one empty field would read as no line at all.
        out.line(line.empty() && selection.columns.size() == 1 ? "\"\"" : line);
    };
    writeFields([&](unsigned column) { return std::string_view(log.get_fieldname(column)); });
    forEachRow(selection.rows, [&](unsigned, const dbrecord& record) {
        writeFields([&](unsigned column) { return valueIn(record, column); });
    });
}

std::string jsonText(std::string_view bytes) {
    std::string text;
    JsonText().append(text, bytes);
    return text;
}

void writeJson(const kesta& log, const Selection& selection, LineSink& out,
               const JsonProperties& properties) {
    JsonWriter(log, selection, out).write(properties);
}

void writeAle(const kesta& log, const Selection& selection, LineSink& out) {
    AleWriter(log, selection, out).write();
}
