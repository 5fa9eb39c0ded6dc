// JSON.
#include <algorithm>
#include <cstdio>

#include "support/StringFunctions.h"
#include "tools/forms/Writers.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"
#include "tools/logs/LogView.h"
#include "tools/terminal/Messages.h"

namespace {

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

    void write(const Heading& heading) {
        m_out.line("{");
        for (const auto& [name, value] : heading.properties) {
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
    // Puts the separator after all items but the last.
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

}  // namespace

std::string jsonText(std::string_view bytes) {
    std::string text;
    JsonText().append(text, bytes);
    return text;
}

void writeJson(const kesta& log, const Selection& selection, const Heading& heading, LineSink& out) {
    JsonWriter(log, selection, out).write(heading);
}
