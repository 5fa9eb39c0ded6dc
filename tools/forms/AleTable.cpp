// The tab-separated log exchange form, read for import.
#include <algorithm>
#include <string_view>

#include "support/Ascii.h"
#include "tools/Failure.h"
#include "tools/forms/TableSource.h"
#include "tools/forms/TableText.h"
#include "tools/terminal/StandardStreams.h"

namespace {

void splitAtTabs(std::string_view line, TableSource::Values& values) {
    values.clear();
    for (std::size_t begin = 0; begin <= line.size();) {
        const std::size_t end = std::min(line.find('\t', begin), line.size());
        values.push_back(line.substr(begin, end - begin));
        begin = end + 1;
    }
}

class AleTable : public TableSource {
 public:
    explicit AleTable(const std::string& path) : m_path(shownName(path)), m_text(readTableText(path)) {
        splitLines();
        std::size_t at = nextLine(0, "Heading or Column");
        if (isSection(at, "Heading")) at = readHeading(at + 1);
        if (!isSection(at, "Column")) throw failureAt(at, "this is not where the section Column begins");
        const std::size_t names = nextLine(at + 1, "column names");
        Values values;
        splitAtTabs(m_lines[names], values);
        m_columns.assign(values.begin(), values.end());
        m_columnLine = static_cast<unsigned>(names + 1);
        const std::size_t data = nextLine(names + 1, "Data");
        if (!isSection(data, "Data")) throw failureAt(data, "this is not where the section Data begins");
        m_firstRow = data + 1;
    }

    const std::vector<Parameter>& parameters() const noexcept override { return m_parameters; }
    const std::vector<std::string>& columns() const noexcept override { return m_columns; }
    unsigned columnLine() const noexcept override { return m_columnLine; }

    void forEachRow(const RowHandler& handle) const override {
        Values values;
        for (std::size_t at = m_firstRow; at < m_lines.size(); ++at) {
            // Tabs alone are a row of empty values.
            if (Ascii::trimmed(m_lines[at]).empty() && m_lines[at].find('\t') == std::string_view::npos)
                continue;
            splitAtTabs(m_lines[at], values);
            handle(static_cast<unsigned>(at + 1), values);
        }
    }

 private:
    void splitLines() {
        const char end = endsLinesWithCR(m_text) ? '\r' : '\n';
        for (std::size_t begin = 0; begin < m_text.size();) {
            const std::size_t stop = std::min(m_text.find(end, begin), m_text.size());
            std::string_view line = std::string_view(m_text).substr(begin, stop - begin);
            if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
            m_lines.push_back(line);
            begin = stop + 1;
        }
    }

    Failure failureAt(std::size_t at, const std::string& what) const {
        return Failure(m_path + ':' + std::to_string(at + 1) + ": " + what);
    }

    bool isSection(std::size_t at, std::string_view name) const noexcept {
        return Ascii::equalFolded(Ascii::trimmed(m_lines[at]), name);
    }

    std::size_t nextLine(std::size_t at, const char* wanted) const {
        while (at < m_lines.size() && Ascii::trimmed(m_lines[at]).empty()) ++at;
        if (at == m_lines.size()) throw Failure(m_path + ": ends before " + wanted);
        return at;
    }

    std::size_t readHeading(std::size_t at) {
        Values values;
        for (at = nextLine(at, "Column"); !isSection(at, "Column"); at = nextLine(at + 1, "Column")) {
            splitAtTabs(m_lines[at], values);
            while (values.size() > 2 && values.back().empty()) values.pop_back();
            if (values.size() % 2 != 0) values.emplace_back();
            for (std::size_t i = 0; i < values.size(); i += 2) addParameter(at, values[i], values[i + 1]);
        }
        return at;
    }

    void addParameter(std::size_t at, std::string_view key, std::string_view value) {
        if (Ascii::equalFolded(key, "FIELD_DELIM") && !Ascii::equalFolded(Ascii::trimmed(value), "TABS")) {
            throw failureAt(at,
                            "the fields are separated by " + std::string(value) + "; only tabs can be read");
        }
        m_parameters.push_back({static_cast<unsigned>(at + 1), std::string(key), std::string(value)});
    }

    std::string m_path;
    std::string m_text;
    std::vector<std::string_view> m_lines;  // of m_text
    std::vector<Parameter> m_parameters;
    std::vector<std::string> m_columns;
    unsigned m_columnLine = 1;
    std::size_t m_firstRow = 0;
};

}  // namespace

std::unique_ptr<TableSource> readAleTable(const std::string& path) {
    return std::make_unique<AleTable>(path);
}
