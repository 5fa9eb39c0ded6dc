// A table of characters.
#include <algorithm>

#include "tools/forms/Writers.h"
#include "tools/logs/LogForm.h"
#include "tools/logs/LogView.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Presentation.h"

namespace {

constexpr const char* numberTitle = "Row";
constexpr const char* gap = "  ";
constexpr const char* cutMark = "\xE2\x80\xA6";  // an ellipsis, one cell

// On a terminal no column takes more cells than this. Elsewhere values are never cut, but one of excessive
// length does not widen the column for all the others.
constexpr std::size_t widestOnTerminal = 40;
constexpr std::size_t widestElsewhere = 256;

std::string cutToCells(std::string text, std::size_t cells) {
    if (displayWidth(text) <= cells) return text;
    return std::string(fitting(text, cells - 1)) + cutMark;
}

class TablePrinter {
 public:
    TablePrinter(const kesta& log, const Selection& selection, LineSink& out)
        : m_log(log), m_selection(selection), m_terminal(out.terminal()), m_out(out) {}

    void print(const Heading& heading) {
        for (const std::string& line : heading.lines) m_out.line(line);
        measure();
        printHeader();
        // A screenful is the header and the rows below it, with a line to spare for the prompt.
        const unsigned height = m_terminal ? std::max(m_terminal->rows, 4U) - 2 : 0;
        unsigned printed = 0;
        forEachRow(m_selection.rows, [&](unsigned row, const dbrecord& record) {
            if (height > 0 && printed > 0 && printed % height == 0) printHeader();
            ++printed;
            printRow(row, record);
        });
    }

 private:
    void measure() {
        const std::size_t widest = m_terminal ? widestOnTerminal : widestElsewhere;
        for (const unsigned column : m_selection.columns) {
            m_widths.push_back(std::min(displayWidth(title(column)), widest));
        }
        unsigned highest = 0;
        forEachRow(m_selection.rows, [&](unsigned row, const dbrecord& record) {
            highest = std::max(highest, row + 1);
            for (std::size_t i = 0; i < m_widths.size(); ++i) {
                const std::size_t width = displayWidth(value(record, m_selection.columns[i]));
                m_widths[i] = std::max(m_widths[i], std::min(width, widest));
            }
        });
        m_numberWidth = std::max(std::to_string(highest).size(), std::string(numberTitle).size());
    }

    std::string title(unsigned column) const { return harmless(m_log.get_fieldname(column)); }
    static std::string value(const dbrecord& record, unsigned column) {
        return harmless(valueIn(record, column));
    }

    void printHeader() {
        std::string line = numberTitle;
        line.insert(0, m_numberWidth - line.size(), ' ');
        for (std::size_t i = 0; i < m_widths.size(); ++i) append(line, title(m_selection.columns[i]), i);
        m_out.line(colouredOutput(Colour::bold, fitted(line)));
    }

    void printRow(unsigned row, const dbrecord& record) {
        std::string line = std::to_string(row + 1);
        line.insert(0, m_numberWidth - line.size(), ' ');
        for (std::size_t i = 0; i < m_widths.size(); ++i)
            append(line, value(record, m_selection.columns[i]), i);
        m_out.line(isTagged(record) ? colouredOutput(Colour::cyan, fitted(line)) : fitted(line));
    }

    void append(std::string& line, std::string text, std::size_t i) const {
        if (m_terminal) text = cutToCells(std::move(text), m_widths[i]);
        const std::size_t width = displayWidth(text);
        line += gap;
        line += text;
        if (width < m_widths[i]) line.append(m_widths[i] - width, ' ');
    }

    std::string fitted(std::string& line) const {
        line.erase(line.find_last_not_of(' ') + 1);
        return m_terminal ? cutToCells(line, std::max(m_terminal->columns, 1U)) : line;
    }

    bool isTagged(const dbrecord& record) const {
        int tag = 0;
        return m_tagColumn < m_log.get_num_fields() && readTag(valueIn(record, m_tagColumn), tag) && tag != 0;
    }

    const kesta& m_log;
    const Selection& m_selection;
    const std::optional<TerminalSize> m_terminal;
    LineSink& m_out;
    const unsigned m_tagColumn = m_log.get_fieldnum("Tag");
    std::size_t m_numberWidth = 0;
    std::vector<std::size_t> m_widths;  // in cells, one for each selected column
};

}  // namespace

void writeTable(const kesta& log, const Selection& selection, const Heading& heading, LineSink& out) {
    TablePrinter(log, selection, out).print(heading);
}
