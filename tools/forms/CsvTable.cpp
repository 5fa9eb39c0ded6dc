#include <algorithm>

#include "tools/Failure.h"
#include "tools/forms/TableSource.h"
#include "tools/forms/TableText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/StandardStreams.h"

namespace {

/// Takes comma-separated text apart, row by row.
class CsvReader {
 public:
    CsvReader(const std::string& path, const std::string& text)
        : m_path(path), m_text(text), m_endsWithCR(endsLinesWithCR(text)) {}

    /// Reads the next row that is not blank; false when there is none.
    bool next(std::vector<std::string>& values) {
        while (m_at < m_text.size() && lineEnd() > 0) passLineEnd();
        if (m_at == m_text.size()) return false;
        m_rowLine = m_line;
        std::size_t count = 0;
        do {
            if (count == values.size()) values.emplace_back();
            values[count].clear();
            readValue(values[count++]);
        } while (passComma());
        values.resize(count);
        if (m_at < m_text.size()) passLineEnd();
        return true;
    }

    unsigned rowLine() const noexcept { return m_rowLine; }

 private:
    // The length of the line end at the current place; 0 when there is none.
    std::size_t lineEnd() const noexcept {
        if (m_text[m_at] == '\n') return 1;
        if (m_text[m_at] != '\r') return 0;
        if (m_endsWithCR) return 1;
        return m_at + 1 < m_text.size() && m_text[m_at + 1] == '\n' ? 2 : 0;
    }

    void passLineEnd() noexcept {
        m_at += lineEnd();
        ++m_line;
    }

    bool passComma() noexcept {
        if (m_at == m_text.size() || m_text[m_at] != ',') return false;
        ++m_at;
        return true;
    }

    void readValue(std::string& value) {
        if (m_at < m_text.size() && m_text[m_at] == '"') readQuoted(value);
        while (m_at < m_text.size() && m_text[m_at] != ',' && lineEnd() == 0) value += m_text[m_at++];
    }

    void readQuoted(std::string& value) {
        const unsigned openedOn = m_line;
        ++m_at;
        while (true) {
            const std::size_t quote = m_text.find('"', m_at);
            if (quote == std::string::npos) {
                throw Failure(m_path + ':' + std::to_string(openedOn) +
                              ": the quoted value that begins here never ends");
            }
            const char lineFeed = m_endsWithCR ? '\r' : '\n';
            m_line += static_cast<unsigned>(std::count(&m_text[m_at], &m_text[quote], lineFeed));
            value.append(m_text, m_at, quote - m_at);
            m_at = quote + 1;
            if (m_at == m_text.size() || m_text[m_at] != '"') return;
            value += '"';
            ++m_at;
        }
    }

    const std::string& m_path;
    const std::string& m_text;
    const bool m_endsWithCR;
    std::size_t m_at = 0;
    unsigned m_line = 1;
    unsigned m_rowLine = 1;
};

class CsvTable : public TableSource {
 public:
    explicit CsvTable(const std::string& path) : m_path(shownName(path)), m_text(readTableText(path)) {
        CsvReader reader(m_path, m_text);
        if (!reader.next(m_columns)) throw Failure(m_path + ": has no line of column names");
        m_columnLine = reader.rowLine();
        warnOfSemicolons();
    }

    const std::vector<Parameter>& parameters() const noexcept override { return m_parameters; }
    const std::vector<std::string>& columns() const noexcept override { return m_columns; }
    unsigned columnLine() const noexcept override { return m_columnLine; }

    void forEachRow(const RowHandler& handle) const override {
        CsvReader reader(m_path, m_text);
        std::vector<std::string> values;
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
