#include "tools/logs/LogInspector.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "record/kesta.h"
#include "support/Ascii.h"
#include "support/Split.h"
#include "support/StringFunctions.h"
#include "support/TextFile.h"
#include "tools/Failure.h"
#include "tools/files/Files.h"
#include "tools/logs/LogForm.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/StandardStreams.h"

namespace {

constexpr std::size_t longestField = 4095;

bool isBlank(std::string_view line) noexcept {
    return Ascii::trimmed(line).empty();
}

std::string quoted(std::string_view text) {
    constexpr std::size_t longest = 40;
    std::string result("\"");
    result += cutTo(text, longest);
    return result += text.size() > longest ? "...\"" : "\"";
}

void readWholeFile(const std::string& path, TextFile& file) {
    const std::string readable = readablePath(path);
    requireReadable(readable);
    errno = 0;
    if (!file.load(Zr::WStringFromAscii(readable.c_str()), '\n', false)) throw fileFailure(path, errno);
}

/// Walks a record line with the reader's rules, to see which of its fields lose bytes there: what it stores
/// does not show that.
class FieldScan {
 public:
    enum class Kind { cut, quoteDropped, neverEnds };
    struct Loss {
        unsigned field;  // from 0
        Kind kind;
    };

    explicit FieldScan(std::string_view line) : m_line(line) {
        // Behind a cut, what is read has nothing to do with the fields that were meant.
        while (m_at < m_line.size() && (m_losses.empty() || m_losses.back().kind != Kind::cut)) {
            if (Ascii::isControl(m_line[m_at])) {
                ++m_at;
            } else {
                scanField();
                ++m_field;
            }
        }
    }

    const std::vector<Loss>& losses() const noexcept { return m_losses; }

 private:
    bool follows(char c) const noexcept { return m_at + 1 < m_line.size() && m_line[m_at + 1] == c; }

    void skipSpace() noexcept {
        while (m_at < m_line.size() && Ascii::isSpace(m_line[m_at])) ++m_at;
    }

    void scanField() {
        m_quoted = m_line[m_at] == '"';
        m_opened = m_quoted;
        m_dropsQuote = false;
        if (m_quoted) ++m_at;
        skipSpace();
        std::size_t stored = 0;
        while (m_at < m_line.size() && stored < longestField) {
            const char c = m_line[m_at];
            if (c == ',' && !m_quoted) break;
            if (c == '"' && !follows('"')) {
                passLoneQuote(stored);
                continue;
            }
            const bool backslashes = c == '\\' && follows('\\') && stored + 1 < longestField;
            const bool pair = c == '"' || backslashes || (c == '\\' && follows('n'));
            stored += backslashes ? 2 : 1;
            m_at += pair ? 2 : 1;
        }
        if (m_dropsQuote) m_losses.push_back({m_field, Kind::quoteDropped});
        const bool atComma = m_at < m_line.size() && m_line[m_at] == ',' && !m_quoted;
        const bool atLastQuote = m_at + 1 == m_line.size() && m_line[m_at] == '"';
        const bool atEnd = m_at == m_line.size();
        if (!atComma && !atLastQuote && !atEnd) m_losses.push_back({m_field, Kind::cut});
        if (atEnd && m_quoted) m_losses.push_back({m_field, Kind::neverEnds});
        if (m_at < m_line.size()) ++m_at;
    }

    // One that opens the field behind white space, and one that closes what was opened, with nothing but
    // white space behind it, are what they should be; any other one was meant as text.
    void passLoneQuote(std::size_t stored) {
        if (!m_opened && stored == 0) {
            m_opened = true;
        } else {
            const std::size_t behind = m_line.find_first_not_of(" \t", m_at + 1);
            const bool closes = behind == std::string_view::npos || m_line[behind] == ',';
            if (!m_opened || !closes) m_dropsQuote = true;
        }
        m_quoted = false;
        ++m_at;
    }

    std::string_view m_line;
    std::size_t m_at = 0;
    unsigned m_field = 0;
    bool m_quoted = false;
    bool m_opened = false;
    bool m_dropsQuote = false;
    std::vector<Loss> m_losses;
};

class Inspector {
 public:
    Inspector(TextFile& file, Inspection& result, RecordVisitor* visitor) noexcept
        : m_file(file), m_result(result), m_visitor(visitor) {}

    void inspectLog() {
        if (!readParameters() || !readHeader()) return;
        m_result.loads = true;
        if (m_visitor) m_visitor->begin(m_file.cursor(), m_names, m_result.findings);
        while (readRecord()) ++m_result.records;
    }

    void inspectCommaSeparated() {
        m_result.loads = true;
        const std::size_t columns = piecesOf(0);
        if (columns == 0) {
            const std::size_t rest = linesFrom(0);
            if (rest > 0) {
                report(0, 0, "the line names no columns; " + counted(rest, "line") + " behind it not read",
                       true);
            }
            return;
        }
        for (unsigned line = 0; line < m_file.size(); ++line) {
            const std::size_t pieces = piecesOf(line);
            if (line > 0 && pieces > 0) ++m_result.records;
            inspectCommaSeparatedLine(line, pieces, columns);
        }
    }

 private:
    void report(unsigned lineIndex, unsigned column, std::string text, bool losesText) {
        Finding finding;
        finding.line = lineIndex + 1;
        finding.column = column;
        if (column != 0 && column <= m_names.size()) finding.columnName = m_names[column - 1];
        finding.text = std::move(text);
        finding.losesText = losesText;
        m_result.findings.push_back(std::move(finding));
    }

    void inspectCommaSeparatedLine(unsigned line, std::size_t pieces, std::size_t columns) {
        if (pieces > columns) {
            report(line, 0,
                   counted(pieces - columns, "value") +
                       " behind the last column; not read: name their columns on "
                       "line 1, or use kesta import",
                   true);
        }
        const std::string_view text = m_file.lineView(line);
        if (std::count(text.begin(), text.end(), '"') % 2 != 0) {
            report(line, 0,
                   "a double quote has no partner on the line; use kesta import, which reads values of "
                   "several lines",
                   true);
        }
    }

    std::size_t piecesOf(unsigned line) const {
        const std::string_view text = m_file.lineView(line);
        if (text.empty()) return 0;
        return 1 + Zr::findSeparators(text, Zr::IsMatchingChar<char>(','), Zr::Quotes::respected).size();
    }

    bool readParameters() {
        kesta scratch;
        dbrecord line(0);
        m_file.setCursor(0);
        scratch.read_params(m_file, &line);
        if (scratch.params().empty()) {
            report(0, 0,
                   m_file.size() == 0
                       ? "the file is empty; a log begins with a line \"KESTA:Rev 1\""
                       : "this is no log: it does not begin with a line \"KESTA:Rev 1\"; kesta import reads "
                         ".csv and .ale files",
                   true);
            return false;
        }
        const bool hasMarker = line.get_num_fields() > 0 && isHeaderMarker(line.getField(0).view());
        const unsigned behind = m_file.cursor();
        if (!hasMarker) {
            reportMissingMarker();
            return false;
        }
        if (scratch.get_revision() != 1) {
            report(0, 0,
                   "the log has revision " + std::to_string(scratch.get_revision()) +
                       ", this program knows revision 1; it is read as that",
                   false);
        }
        inspectParameters(behind - 1, scratch.params());
        m_file.setCursor(behind);
        return true;
    }

    // The first line that is no parameter is where the marker should be.
    void reportMissingMarker() {
        unsigned place = 1;
        while (place < m_file.size() && (isBlank(m_file.lineView(place)) ||
                                         m_file.lineView(place).find(':') != std::string_view::npos)) {
            ++place;
        }
        report(
            std::min(place, m_file.size() - 1), 0,
            "the line \"KESTA\" in front of the column header is missing; put it, the widths and the types "
            "in front of the names",
            true);
    }

    void inspectParameters(unsigned end, const kesta::Params& params) {
        std::size_t pair = 0;
        dbrecord fields(0);
        m_file.setCursor(0);
        for (unsigned line = 0; line < end; ++line) {
            if (fields.read(m_file) == 0) continue;
            const std::string_view text = fields.getField(0).view();
            const std::size_t colon = text.find(':');
            if (colon == std::string_view::npos) {
                report(line, 0, "a parameter without a colon is not read; write it as \"name:value\"", true);
            } else if (colon == 0) {
                report(line, 0, "a parameter without a name is not read; write it as \"name:value\"", true);
            } else if (fields.get_num_fields() > 1) {
                report(line, 0,
                       counted(fields.get_num_fields() - 1u, "field") +
                           " behind the parameter; not read: put the whole parameter into one pair of quotes",
                       true);
                ++pair;
            } else {
                inspectFields(line, 1);
                inspectParameter(line, params[std::min(pair, params.size() - 1)]);
                ++pair;
            }
        }
    }

    void inspectParameter(unsigned line, const Zr::AttribValuePair& param) {
        if (keepsParameter(param.name().view(), param.value().view())) return;
        report(line, 0,
               "the parameter " + quoted(param.name().view()) + " would change when the log is saved; " +
                   parameterRules,
               true);
    }

    bool readHeader() {
        const unsigned first = m_file.cursor();
        dbrecord widths(0);
        dbrecord types(0);
        dbrecord names(0);
        widths.read(m_file);
        types.read(m_file);
        names.read(m_file);
        const unsigned columns = names.get_num_fields();
        if (types.get_num_fields() != columns) {
            report(first + 1, 0,
                   counted(types.get_num_fields(), "type") + " for the " + counted(columns, "name") +
                       " of the next line, so the log cannot be read; give each column one of both",
                   true);
            return false;
        }
        if (columns == 0) report(std::min(first, m_file.size() - 1), 0, "the log has no columns", true);
        for (unsigned short i = 0; i < columns; ++i) {
            m_names.emplace_back(names.getField(i).view());
            inspectColumn(first, i, types.getField(i));
        }
        inspectFields(first + 2, columns);
        return true;
    }

    void inspectColumn(unsigned first, unsigned short i, const LightweightString<char>& type) {
        if (kesta::fieldTypeFromString(type) == DBFieldTypes::eNone) {
            report(first + 1, i + 1u,
                   "the type " + quoted(type.view()) + " is unknown and read as \"text\"; write that", true);
        }
        if (!keepsColumnName(m_names[i])) {
            report(first + 2, i + 1u,
                   "the name would change when the log is saved; names take at most 251 bytes, no double "
                   "quotes and no line ends",
                   true);
        }
        if (m_tagColumn == noColumn && sameName(m_names[i], "Tag")) m_tagColumn = i;
    }

    // Steps as the loader does; false where it stops.
    bool readRecord() {
        const unsigned line = m_file.cursor();
        if (m_record.read(m_file) == 0) {
            reportRestBehindBlankLine(line);
            return false;
        }
        inspectFields(line, static_cast<unsigned>(m_names.size()));
        if (m_record.get_num_fields() != m_names.size()) {
            reportWrongNumber(line);
            return false;
        }
        if (readsAsHeader(m_record)) {
            report(
                line, 1,
                "the value is read as the beginning of a header: this line and the next two are dropped, the "
                "third is taken for the record; write another value",
                true);
            for (int i = 0; i < 2; ++i) m_record.read(m_file);
            if (m_record.read(m_file) == 0) return false;
        }
        inspectRecord(line);
        return true;
    }

    void inspectRecord(unsigned line) {
        const std::string_view raw = m_file.lineView(line);
        const bool mayChange =
            std::memchr(raw.data(), '\\', raw.size()) || std::memchr(raw.data(), '\r', raw.size());
        if (mayChange) inspectSaving(line);
        int tag = 0;
        if (m_tagColumn != noColumn && !m_record.getField(m_tagColumn).empty() &&
            !readTag(m_record.getField(m_tagColumn).view(), tag)) {
            report(line, m_tagColumn + 1u,
                   "the tag " + quoted(m_record.getField(m_tagColumn).view()) +
                       " is no number from 0 to 255; saving the log writes 0 in its place",
                   true);
        }
        if (m_visitor) m_visitor->record(line + 1, m_record, m_result.findings);
    }

    void inspectSaving(unsigned line) {
        const dbrecord& back = m_roundTrip(m_record);
        for (unsigned short i = 0; i < m_record.get_num_fields(); ++i) {
            if (back.getField(i) == m_record.getField(i)) continue;
            report(line, i + 1u,
                   "the value would change when the log is saved: " + whyNotKept(m_record.getField(i).view()),
                   true);
        }
    }

    // Every byte of a line without loss is in its fields; only lines with odd quotes or of great length need
    // a closer look.
    void inspectFields(unsigned line, std::size_t columns) {
        const std::string_view raw = m_file.lineView(line);
        const auto quotes = static_cast<std::size_t>(std::count(raw.begin(), raw.end(), '"'));
        const bool isQuotedThroughout =
            quotes == 2 * columns && quotes > 0 && raw.front() == '"' && raw.back() == '"';
        if (raw.size() <= longestField && (quotes == 0 || isQuotedThroughout)) return;
        const FieldScan scan(raw);
        for (const FieldScan::Loss& loss : scan.losses()) {
            report(line, loss.field + 1, describe(loss.kind), true);
        }
    }

    static const char* describe(FieldScan::Kind kind) noexcept {
        switch (kind) {
            case FieldScan::Kind::cut:
                return "the field is longer than 4095 bytes; it is cut there and the rest is read as further "
                       "fields: "
                       "shorten it";
            case FieldScan::Kind::quoteDropped:
                return "a double quote inside the field is dropped; write it twice, inside a quoted field";
            case FieldScan::Kind::neverEnds:
                break;
        }
        return "the quoted field never ends, as in a file that has been cut off; complete it and close the "
               "quote";
    }

    std::size_t linesFrom(unsigned line) const {
        std::size_t count = 0;
        for (; line < m_file.size(); ++line) count += isBlank(m_file.lineView(line)) ? 0 : 1;
        return count;
    }

    void reportRestBehindBlankLine(unsigned line) {
        const std::size_t rest = linesFrom(line + 1);
        if (rest == 0) return;
        report(line, 0,
               "a blank line ends the log; " + counted(rest, "line") +
                   " behind it not read: remove the blank line",
               true);
    }

    void reportWrongNumber(unsigned line) {
        const std::size_t fields = m_record.fields().size();
        const std::size_t rest = linesFrom(line + 1);
        std::string text = counted(fields, "field") + " where the log has " +
                           counted(m_names.size(), "column") + "; reading stops here";
        if (rest > 0) text += " and " + counted(rest, "line") + " behind it not read";
        report(line, static_cast<unsigned>(std::min(fields, m_names.size()) + 1),
               text + ": give the line one field for each column", true);
    }

    static constexpr unsigned short noColumn = 0xFFFF;

    TextFile& m_file;
    Inspection& m_result;
    RecordVisitor* m_visitor;
    std::vector<std::string> m_names;
    unsigned short m_tagColumn = noColumn;
    dbrecord m_record{0};
    LineRoundTrip m_roundTrip;
};

}  // namespace

std::string describe(const std::string& path, const Finding& finding) {
    std::string place = shownName(path) + ':' + std::to_string(finding.line) + ": ";
    if (finding.column != 0) {
        place += "column " + std::to_string(finding.column);
        if (!finding.columnName.empty()) place += " (" + finding.columnName + ')';
        place += ": ";
    }
    return place + finding.text;
}

bool Inspection::losesText() const noexcept {
    return std::any_of(findings.begin(), findings.end(), [](const Finding& f) { return f.losesText; });
}

Inspection inspectLog(const std::string& path, RecordVisitor* visitor) {
    TextFile file;
    readWholeFile(path, file);
    Inspection result;
    Inspector inspector(file, result, visitor);
    if (isCommaSeparated(path)) {
        inspector.inspectCommaSeparated();
    } else {
        inspector.inspectLog();
    }
    std::stable_sort(result.findings.begin(), result.findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    return result;
}

bool isCommaSeparated(const std::string& path) noexcept {
    constexpr std::string_view ending = ".csv";
    return path.size() >= ending.size() &&
           path.compare(path.size() - ending.size(), ending.size(), ending) == 0;
}
