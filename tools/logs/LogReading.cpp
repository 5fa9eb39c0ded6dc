// How a log's file is read, and the words for what the loader tells of it.
#include "tools/logs/LogReading.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "record/LoadObserver.h"
#include "support/StringFunctions.h"
#include "tools/Failure.h"
#include "tools/files/Files.h"
#include "tools/logs/LogForm.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/StandardStreams.h"

namespace {

std::string quoted(std::string_view text) {
    constexpr std::size_t longest = 40;
    std::string result("\"");
    result += cutTo(text, longest);
    return result += text.size() > longest ? "...\"" : "\"";
}

/// Hears the load of a log and says in words what is wrong.
class LogListener : public LoadObserver {
 public:
    LogListener(LogReading& reading, bool isCommaSeparated, RecordVisitor* visitor) noexcept
        : m_reading(reading), m_isCommaSeparated(isCommaSeparated), m_visitor(visitor) {}

    /// The errno with which reading failed, if it did.
    const std::optional<int>& error() const noexcept { return m_error; }

    /// To be called when the load is over.
    void finish() {
        std::vector<Finding>& findings = m_reading.findings;
        std::stable_sort(findings.begin(), findings.end(),
                         [](const Finding& a, const Finding& b) { return a.line < b.line; });
        for (Finding& finding : findings) nameColumn(finding);
        if (m_trimmed == 0 || m_reading.refusal) return;
        Finding& trimmed = m_reading.trimmed.emplace(m_firstTrimmed);
        nameColumn(trimmed);
        if (trimmed.columnName.empty()) trimmed.column = 0;
        trimmed.text = "the white space around the value";
        if (m_trimmed > 1) trimmed.text += ", and around " + counted(m_trimmed - 1, "further value") + ',';
        trimmed.text += " is not read; saving the log drops it";
    }

    void lost(const LoadEvent& event) override {
        switch (event.kind) {
            case LoadEvent::eSpaceTrimmed:
                if (m_trimmed++ == 0) m_firstTrimmed = {event.line, event.field, {}, {}, false};
                return;
            case LoadEvent::eUnreadable:
                m_error = static_cast<int>(event.count);
                return;
            case LoadEvent::eColumnsMissing:
                if (!m_isCommaSeparated || event.linesAfter > 0) report(event);
                return;
            case LoadEvent::eNotALog:
            case LoadEvent::eMarkerMissing:
                m_reading.findings.clear();  // lines were taken for parameters that are none
                m_trimmed = 0;
                [[fallthrough]];
            case LoadEvent::eTypesDoNotFit:
                m_reading.refusal = report(event);
                return;
            default:
                report(event);
        }
    }

    void parameterRead(unsigned line, const Zr::AttribValuePair&) override {
        m_parameterLines.push_back(line);
    }

    void columnsRead(unsigned line, const std::vector<DBFieldDesc>& columns) override {
        if (m_isCommaSeparated) return;
        m_namesLine = line;
        inspectParameters();
        for (const DBFieldDesc& column : columns) inspectName(column.name.view());
        if (m_visitor) m_visitor->begin(line, m_names, m_reading.findings);
    }

    void recordRead(unsigned line, std::string_view text, const dbrecord& record) override {
        if (m_isCommaSeparated) return;
        const bool mayChange =
            std::memchr(text.data(), '\\', text.size()) || std::memchr(text.data(), '\r', text.size());
        if (mayChange) inspectSaving(line, record);
        if (m_tagColumn != noColumn) inspectTag(line, record);
        if (m_visitor) m_visitor->record(line, record, m_reading.findings);
    }

 private:
    void report(unsigned line, unsigned column, std::string text) {
        m_reading.findings.push_back({line, column, {}, std::move(text), true});
    }

    const Finding& report(const LoadEvent& event) {
        const bool isWrongCount = event.kind == LoadEvent::eWrongFieldCount;
        const std::size_t column = isWrongCount ? std::min(event.count, event.expected) + 1 : event.field;
        report(std::max(1U, event.line), static_cast<unsigned>(column), textOf(event));
        if (event.kind == LoadEvent::eOtherRevision) m_reading.findings.back().losesText = false;
        return m_reading.findings.back();
    }

    std::string textOf(const LoadEvent& event) const {
        switch (event.kind) {
            case LoadEvent::eFieldCut:
                return "the field is longer than " + std::to_string(dbrecord::longestField) +
                       " bytes; it is cut there and the rest is read as further fields: shorten it";
            case LoadEvent::eQuoteDropped:
                return "a double quote inside the field is dropped; write it twice, inside a quoted field";
            case LoadEvent::eQuoteNotClosed:
                return "the quoted field never ends, as in a file that has been cut off; complete it and "
                       "close the quote";
            case LoadEvent::eParameterWithoutColon:
                return "a parameter without a colon is not read; write it as \"name:value\"";
            case LoadEvent::eParameterWithoutKey:
                return "a parameter without a name is not read; write it as \"name:value\"";
            case LoadEvent::eParameterHasFields:
                return counted(event.count, "field") +
                       " after the parameter; not read: put the whole parameter into one pair of quotes";
            case LoadEvent::eNotALog:
                return event.line == 0
                           ? "the file is empty; a log begins with a line \"KESTA:Rev 1\""
                           : "this is no log: it does not begin with a line \"KESTA:Rev 1\"; kesta import "
                             "reads .csv and .ale files";
            case LoadEvent::eOtherRevision:
                return "the log has revision " + std::to_string(m_reading.log->get_revision()) +
                       ", this program knows revision 1; it is read as that";
            case LoadEvent::eMarkerMissing:
                return "the line \"KESTA\" in front of the column header is missing; put it, the widths and "
                       "the types in front of the names";
            case LoadEvent::eTypesDoNotFit:
                return counted(event.count, "type") + " for the " + counted(event.expected, "name") +
                       " of the next line, so the log cannot be read; give each column one of both";
            case LoadEvent::eTypeUnknown:
                return "the type " + quoted(event.text) + " is unknown and read as \"text\"; write that";
            case LoadEvent::eColumnsMissing:
                return m_isCommaSeparated ? "the line names no columns; " +
                                                counted(event.linesAfter, "line") + " after it not read"
                                          : "the log has no columns";
            case LoadEvent::eReadAsHeader:
                return "the value is read as the beginning of a header: this line and the next two are "
                       "dropped, the third is taken for the record; write another value";
            case LoadEvent::eWrongFieldCount:
                return counted(event.count, "field") + " where the log has " +
                       counted(event.expected, "column") + "; reading stops here" +
                       (event.linesAfter > 0
                            ? " and " + counted(event.linesAfter, "line") + " after it not read"
                            : "") +
                       ": give the line one field for each column";
            case LoadEvent::eBlankLine:
                return "a blank line ends the log; " + counted(event.linesAfter, "line") +
                       " after it not read: remove the blank line";
            case LoadEvent::eValuesDropped:
                return counted(event.count, "value") +
                       " after the last column; not read: name their columns on line 1, or use kesta import";
            case LoadEvent::eQuoteUnmatched:
                return "a double quote has no partner on the line; use kesta import, which reads values of "
                       "several lines";
            case LoadEvent::eSpaceTrimmed:
            case LoadEvent::eRecordLimit:
            case LoadEvent::eUnreadable:
                break;
        }
        return {};
    }

    void inspectParameters() {
        const kesta::Params& params = m_reading.log->params();
        for (std::size_t i = 0; i < params.size(); ++i) {
            if (keepsParameter(params[i].name().view(), params[i].value().view())) continue;
            report(m_parameterLines[i], 0,
                   "the parameter " + quoted(params[i].name().view()) +
                       " would change when the log is saved; " + parameterRules());
        }
    }

    void inspectName(std::string_view name) {
        m_names.emplace_back(name);
        const auto column = static_cast<unsigned>(m_names.size());
        if (m_tagColumn == noColumn && sameName(name, "Tag")) m_tagColumn = column - 1;
        if (keepsColumnName(name)) return;
        report(m_namesLine, column,
               "the name would change when the log is saved; names take at most 251 bytes, no double quotes "
               "and no line ends");
    }

    void inspectSaving(unsigned line, const dbrecord& record) {
        const dbrecord& back = m_roundTrip(record);
        for (unsigned short i = 0; i < record.get_num_fields(); ++i) {
            if (back.getField(i) == record.getField(i)) continue;
            report(line, i + 1u,
                   "the value would change when the log is saved: " + whyNotKept(record.getField(i).view()));
        }
    }

    void inspectTag(unsigned line, const dbrecord& record) {
        const std::string_view tag = record.getField(static_cast<unsigned short>(m_tagColumn)).view();
        int number = 0;
        if (tag.empty() || readTag(tag, number)) return;
        report(
            line, m_tagColumn + 1,
            "the tag " + quoted(tag) + " is no number from 0 to 255; saving the log writes 0 in its place");
    }

    // Parameters come before the columns, whose types stand on the line before their names.
    void nameColumn(Finding& finding) const {
        if (finding.line + 1 < m_namesLine || finding.column == 0 || finding.column > m_names.size()) return;
        finding.columnName = m_names[finding.column - 1];
    }

    static constexpr unsigned noColumn = static_cast<unsigned>(-1);

    LogReading& m_reading;
    const bool m_isCommaSeparated;
    RecordVisitor* const m_visitor;
    std::vector<unsigned> m_parameterLines;
    unsigned m_namesLine = 0;
    std::vector<std::string> m_names;
    unsigned m_tagColumn = noColumn;
    LineRoundTrip m_roundTrip;
    Finding m_firstTrimmed;
    std::size_t m_trimmed = 0;
    std::optional<int> m_error;
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

bool LogReading::losesText() const noexcept {
    return std::any_of(findings.begin(), findings.end(), [](const Finding& f) { return f.losesText; });
}

LogReading readLog(const std::string& path, RecordVisitor* visitor) {
    constexpr int allRecords = std::numeric_limits<int>::max();
    const std::string readable = readablePath(path);
    requireReadable(readable);
    LogReading reading;
    reading.log = Zr::Ptr<kesta>(new kesta);
    reading.log->set_filename(Zr::WStringFromAscii(readable.c_str()));
    LogListener listener(reading, isCommaSeparated(path), visitor);
    {
        const LibraryMessagesOff listenerSaysMore;
        reading.log->loadFromFile(allRecords, true, listener);
    }
    if (listener.error()) throw fileFailure(shownName(path), *listener.error());
    listener.finish();
    return reading;
}
