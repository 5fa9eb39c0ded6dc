// Comma-separated text, read for import.
#include <algorithm>
#include <deque>

#include "tools/Failure.h"
#include "tools/forms/TableSource.h"
#include "tools/forms/TableText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/StandardStreams.h"

namespace {

/// Takes comma-separated text apart, row by row.
class CsvReader {
 public:
    CsvReader(const std::string& path, std::string_view text)
        : m_path(path),
          m_at(text.data()),
          m_end(text.data() + text.size()),
          m_endsWithCR(endsLinesWithCR(text)) {}

    /// Reads the next row that is not blank; false when there is none. The values are valid until the next
    /// call.
    bool next(TableSource::Values& values) {
        while (m_at != m_end && lineEnd() > 0) passLineEnd();
        if (m_at == m_end) return false;
        m_rowLine = m_line;
        m_joinedCount = 0;
        values.clear();
        do {
            values.push_back(readValue());
        } while (passComma());
        if (m_at != m_end) passLineEnd();
        return true;
    }

    unsigned rowLine() const noexcept { return m_rowLine; }

 private:
    // The length of the line end at the current place; 0 when there is none.
    std::size_t lineEnd() const noexcept {
        if (*m_at == '\n') return 1;
        if (*m_at != '\r') return 0;
        if (m_endsWithCR) return 1;
        return m_end - m_at > 1 && m_at[1] == '\n' ? 2 : 0;
    }

    void passLineEnd() noexcept {
        m_at += lineEnd();
        ++m_line;
    }

    bool passComma() noexcept {
        if (m_at == m_end || *m_at != ',') return false;
        ++m_at;
        return true;
    }

    std::string_view readValue() {
        if (m_at == m_end || *m_at != '"') return readPlain();
        const std::string_view quoted = readQuoted();
        const std::string_view rest = readPlain();
        return rest.empty() ? quoted : joined(quoted, rest);
    }

    // Most bytes of text are beyond all three, which one look tells.
    static bool mayEndValue(char c) noexcept { return c <= ',' && (c == ',' || c == '\n' || c == '\r'); }

    // Up to the next comma or line end.
    std::string_view readPlain() noexcept {
        const char* const begin = m_at;
        while (true) {
            while (m_at != m_end && !mayEndValue(*m_at)) ++m_at;
            if (m_at == m_end || *m_at == ',' || lineEnd() > 0) break;
            ++m_at;
        }
        return {begin, static_cast<std::size_t>(m_at - begin)};
    }

    // As in the file, but for doubled quotes, which stand for one.
    std::string_view readQuoted() {
        const unsigned openedOn = m_line;
        std::string_view value;
        const char* begin = ++m_at;
        while (true) {
            const char* const quote = std::find(m_at, m_end, '"');
            if (quote == m_end) {
                throw Failure(m_path + ':' + std::to_string(openedOn) +
                              ": the quoted value that begins here never ends");
            }
            m_line += static_cast<unsigned>(std::count(m_at, quote, m_endsWithCR ? '\r' : '\n'));
            m_at = quote + 1;
            const bool isDoubled = m_at != m_end && *m_at == '"';
            const char* const end = isDoubled ? m_at : quote;
            value = joined(value, {begin, static_cast<std::size_t>(end - begin)});
            if (!isDoubled) return value;
            begin = ++m_at;
        }
    }

    // Both texts in one. What has been joined already grows in its place.
    std::string_view joined(std::string_view first, std::string_view second) {
        if (first.empty()) return second;
        const bool grows = m_joinedCount > 0 && m_joined[m_joinedCount - 1].data() == first.data();
        if (!grows && m_joinedCount++ == m_joined.size()) m_joined.emplace_back();
        std::string& text = m_joined[m_joinedCount - 1];
        if (!grows) text = first;
        return text += second;
    }

    const std::string& m_path;
    const char* m_at;
    const char* const m_end;
    const bool m_endsWithCR;
    std::deque<std::string> m_joined;  // the row's values that do not stand in the file as they are
    std::size_t m_joinedCount = 0;
    unsigned m_line = 1;
    unsigned m_rowLine = 1;
};

class CsvTable : public TableSource {
 public:
    explicit CsvTable(const std::string& path) : m_path(shownName(path)), m_text(readTableText(path)) {
        CsvReader reader(m_path, m_text);
        Values names;
        if (!reader.next(names)) throw Failure(m_path + ": has no line of column names");
        m_columns.assign(names.begin(), names.end());
        m_columnLine = reader.rowLine();
        warnOfSemicolons();
    }

    const std::vector<Parameter>& parameters() const noexcept override { return m_parameters; }
    const std::vector<std::string>& columns() const noexcept override { return m_columns; }
    unsigned columnLine() const noexcept override { return m_columnLine; }

    void forEachRow(const RowHandler& handle) const override {
        CsvReader reader(m_path, m_text);
        Values values;
        reader.next(values);
        while (reader.next(values)) handle(reader.rowLine(), values);
    }

 private:
    void warnOfSemicolons() const {
        if (m_columns.size() > 1 || m_columns.front().find(';') == std::string::npos) return;
        warn(m_path + ':' + std::to_string(m_columnLine) +
             ": the values seem to be separated by semicolons; only commas separate them, so all of a line "
             "is one value");
    }

    std::string m_path;
    std::string m_text;
    std::vector<Parameter> m_parameters;
    std::vector<std::string> m_columns;
    unsigned m_columnLine = 1;
};

}  // namespace

std::unique_ptr<TableSource> readCsvTable(const std::string& path) {
    return std::make_unique<CsvTable>(path);
}
