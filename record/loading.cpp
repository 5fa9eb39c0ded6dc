// Loading of kesta: its text file, and the plain comma-separated form that it also takes.
//
// A file is lines in the record line syntax: parameter lines, the first of them the revision; a marker line;
// widths, types and names of the columns; then one line for each record.
#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "record/ColumnTypes.h"
#include "record/FileForm.h"
#include "record/LoadObserver.h"
#include "record/RecordLine.h"
#include "record/kesta.h"
#include "record/parts/FileRevision.h"
#include "record/parts/RecentTexts.h"
#include "support/Ascii.h"
#include "support/Log.h"
#include "support/Split.h"
#include "support/StringFunctions.h"
#include "support/TextFile.h"

namespace {

constexpr char lineSeparator = '\n';
constexpr const char* revisionPrefix = "KESTA:";
constexpr std::size_t revisionPrefixLength = 6;
constexpr unsigned short scratchFields = 24;

bool isMarker(const dbrecord& line) {
    return FileForm::isHeaderMarker(line.getField(0));
}

int revisionOf(const LightweightString<char>& value) {
    const char* digits = value.c_str();
    while (*digits && !Ascii::isDigit(*digits)) ++digits;
    return static_cast<int>(std::strtol(digits, nullptr, 10));
}

/// Columns that come without types: a name that speaks of a start or an end is a time code's.
DBFieldTypes::eType typeFromName(LightweightString<char> name) {
    Zr::toLower(name);
    const bool timecode = name.view().find("start") != std::string_view::npos ||
                          name.view().find("end") != std::string_view::npos;
    return timecode ? DBFieldTypes::eTimecode : DBFieldTypes::eText;
}

std::vector<LightweightString<char>> splitCSV(std::string_view line) {
    std::vector<LightweightString<char>> pieces;
    Zr::convertIndicesToSubStrings(
        line, Zr::findSeparators(line, Zr::IsMatchingChar<char>(','), Zr::Quotes::respected),
        Zr::SplitOutputBuilder<char>(pieces));
    return pieces;
}

}  // namespace

/// Reads from a file into a database.
class LogLoader {
 public:
    /// What becomes of the changed marks: the database and its records get theirs, or are left alone.
    enum class Marks { set, left };

    LogLoader(kesta& database, TextFile& file, Marks marks, LoadObserver* observer) noexcept
        : m_database(database), m_file(file), m_marks(marks), m_observer(observer) {}

    /// Replaces parameters and columns, and appends records.
    static void loadFile(kesta& database, int maxRecords, bool strict, LoadObserver* observer);

    /// Appends the file's records; its first line is dropped.
    static int loadRecords(kesta& database, int maxRecords);

    void readParams(dbrecord& line);
    int addRecords(int skipFirst, int maxRecords);

 private:
    template <class Work, class Undo>
    bool readWhole(Work work, Undo undo);
    void readLog(int maxRecords, bool strict);
    void readCSV();

    void takeParam(const dbrecord& line);
    void appendParam(std::string_view text, std::size_t colon);
    void takeRevision();
    void readColumns();
    void takeColumnNames(const dbrecord& names);

    int read(dbrecord& record, RecentTexts* recent, LoadObserver* observer);
    int readParamLine(dbrecord& line);
    void pass() { m_file.nextLine(); }
    unsigned lineNumber() const noexcept { return m_file.cursor() + 1; }
    std::string_view lineText() const noexcept { return m_file.lineView(m_file.cursor()); }

    void tell(const LoadEvent& event) {
        if (m_observer) m_observer->lost(event);
    }
    void tellUnreadable(int error);
    void tellEnd(LoadEvent event);
    void tellOfCSVLine(std::size_t pieces);

    kesta& m_database;
    TextFile& m_file;
    const Marks m_marks;
    LoadObserver* const m_observer;
    unsigned m_firstOtherLine = 0;  // the first that a parameter was looked for in, but none was
};

// --- Whole files ---

/// Does the work and sees whether all of the file could be read. Of a load that is not finished nothing
/// stays that could be taken for the whole log, and saved over it: its records go, and `undo` takes back the
/// rest.
template <class Work, class Undo>
bool LogLoader::readWhole(Work work, Undo undo) {
    GapVector<Zr::Ptr<dbrecord>>& records = m_database.m_records;
    const std::size_t before = records.size();
    const auto takeBack = [&] {
        if (records.size() > before) records.erase(before, records.size() - before);
        undo();
    };
    try {
        work();
        if (m_file.endLoad()) return true;
    } catch (...) {
        takeBack();
        throw;
    }
    const int error = errno;
    takeBack();
    tellUnreadable(error);
    return false;
}

void LogLoader::tellUnreadable(int error) {
    LoadEvent event{LoadEvent::eUnreadable};
    event.count = static_cast<std::size_t>(error);
    tell(event);
    errno = error;
}

void LogLoader::loadFile(kesta& database, int maxRecords, bool strict, LoadObserver* observer) {
    database.init();
    TextFile file;
    LogLoader loader(database, file, Marks::left, observer);
    if (!file.beginLoad(database.m_fileName, lineSeparator)) return loader.tellUnreadable(errno);
    const std::size_t before = database.m_records.size();
    const bool csv = FileForm::isCommaSeparated(database.m_fileName);
    const bool whole = loader.readWhole([&] { csv ? loader.readCSV() : loader.readLog(maxRecords, strict); },
                                        [&] { database.init(); });
    if (!whole || csv || !database.m_valid) return;
    // What was read is not marked; what was there before is not to be any more.
    for (std::size_t row = 0; row < before; ++row) {
        if (database.m_records[row]) database.m_records[row]->clear_changed();
    }
    database.m_changed = 0;
}

int LogLoader::loadRecords(kesta& database, int maxRecords) {
    TextFile file;
    if (!file.beginLoad(database.m_fileName, lineSeparator)) return 0;
    const int changedBefore = database.m_changed;
    int count = 0;
    LogLoader loader(database, file, Marks::set, nullptr);
    const bool whole = loader.readWhole([&] { count = loader.addRecords(1, maxRecords); },
                                        [&] { database.m_changed = changedBefore; });
    return whole ? count : 0;
}

void LogLoader::readLog(int maxRecords, bool strict) {
    dbrecord line(scratchFields);
    readParams(line);
    if (m_database.m_params->empty()) {
        LoadEvent event{LoadEvent::eNotALog};
        event.line = std::min(1U, m_file.size());
        return tell(event);
    }
    if (isMarker(line)) {
        readColumns();
    } else {
        LoadEvent event{LoadEvent::eMarkerMissing};
        event.line = m_firstOtherLine != 0 ? m_firstOtherLine : m_file.size();
        tell(event);
        if (!strict) takeColumnNames(line);
    }
    if (!m_database.m_valid) return;
    m_database.post_init();
    if (m_observer) m_observer->columnsRead(std::min(m_file.cursor(), m_file.size()), m_database.m_fields);
    addRecords(0, maxRecords);
}

/// Reads the line at the cursor, which stays there.
int LogLoader::read(dbrecord& record, RecentTexts* recent, LoadObserver* observer) {
    record.m_fields.clear();
    return RecordLine::read(lineText(), record.m_fields, recent, {observer, lineNumber()});
}

// --- Parameters ---

int LogLoader::readParamLine(dbrecord& line) {
    const int count = read(line, nullptr, m_observer);
    if (count != 0) line.markChanged();
    return count;
}

void LogLoader::readParams(dbrecord& line) {
    m_database.m_params->clear();
    readParamLine(line);
    const bool isLog =
        Ascii::compareFolded(line.getField(0).c_str(), revisionPrefix, revisionPrefixLength) == 0;
    if (isLog) {
        takeParam(line);
        takeRevision();
    }
    pass();
    while (isLog && m_file.cursor() < m_file.size()) {
        const bool isBlank = readParamLine(line) == 0;
        if (!isBlank && !isMarker(line)) takeParam(line);
        pass();
        if (isMarker(line)) return;
    }
}

void LogLoader::takeParam(const dbrecord& line) {
    const std::string_view text = Ascii::withoutLeadingSpace(line.getField(0).view());
    const std::size_t colon = text.find(':');
    LoadEvent event{LoadEvent::eParameterHasFields, lineNumber()};
    if (colon != std::string_view::npos && colon != 0) {
        appendParam(text, colon);
        event.count = line.fields().size() - 1;
        if (event.count != 0) tell(event);
        return;
    }
    if (m_firstOtherLine == 0 && colon != 0) m_firstOtherLine = lineNumber();
    event.kind = colon == 0 ? LoadEvent::eParameterWithoutKey : LoadEvent::eParameterWithoutColon;
    tell(event);
}

void LogLoader::appendParam(std::string_view text, std::size_t colon) {
    const std::string_view written = text.substr(colon + 1);
    const std::string_view value = Ascii::withoutLeadingSpace(written);
    if (value.size() != written.size()) tell({LoadEvent::eSpaceTrimmed, lineNumber(), 1});
    m_database.m_params->append(LightweightString<char>(text.substr(0, colon)),
                                LightweightString<char>(value));
    if (m_observer) m_observer->parameterRead(lineNumber(), m_database.params().back());
}

void LogLoader::takeRevision() {
    const LightweightString<char>& value = m_database.params().front().value();
    m_database.m_revision = revisionOf(value);
    if (m_database.m_revision == currentRevision) return;
    dorp_printf("kesta::read_text:  Warning: kesta is revision %d, current level is %d\n",
                m_database.m_revision, currentRevision);
    LoadEvent event{LoadEvent::eOtherRevision, lineNumber()};
    event.text = value.view();
    tell(event);
}

// --- Columns ---

void LogLoader::readColumns() {
    dbrecord types(scratchFields);
    dbrecord names(scratchFields);
    const unsigned widthsLine = lineNumber();
    pass();  // every save measures them again
    const unsigned typesLine = lineNumber();
    read(types, nullptr, nullptr);  // what of them is no type is told below
    pass();
    read(names, nullptr, m_observer);
    pass();
    if (types.fields().size() != names.fields().size()) {
        return tell({LoadEvent::eTypesDoNotFit, typesLine, 0, types.fields().size(), names.fields().size()});
    }
    for (std::size_t field = 0; field < names.fields().size(); ++field) {
        const LightweightString<char>& token = types.fields()[field];
        const DBFieldTypes::eType type = kesta::fieldTypeFromString(token);
        m_database.m_fields.emplace_back(names.fields()[field], ColumnTypes::stored(type));
        if (type != DBFieldTypes::eNone) continue;
        LoadEvent event{LoadEvent::eTypeUnknown, typesLine, static_cast<unsigned>(field + 1)};
        event.text = token.view();
        tell(event);
    }
    if (names.fields().empty()) {
        tell({LoadEvent::eColumnsMissing, std::min(widthsLine, m_file.size())});
    }
    m_database.m_valid = 1;
}

void LogLoader::takeColumnNames(const dbrecord& names) {
    for (const LightweightString<char>& name : names.fields()) {
        m_database.m_fields.emplace_back(name, typeFromName(name));
    }
    m_database.m_valid = 1;
}

// --- Records ---

int LogLoader::addRecords(int skipFirst, int maxRecords) {
    if (maxRecords < 1) {
        tellEnd({LoadEvent::eRecordLimit, m_file.cursor()});
        return 0;
    }
    RecentTexts recent;
    const auto readInto = [&](dbrecord& record) {
        const int count = read(record, &recent, m_observer);
        if (count != 0 && m_marks == Marks::set) record.markChanged();
        return count;
    };
    const std::size_t columns = m_database.m_fields.size();
    int count = 0;
    for (;;) {
        Zr::Ptr<dbrecord> record(new dbrecord(0));
        record->set_container(&m_database);
        if (readInto(*record) == 0) {
            pass();
            tellEnd({LoadEvent::eBlankLine, m_file.cursor()});
            return count;
        }
        if (record->get_num_fields() != columns) {
            pass();
            LogBoth("kesta::add_text: returning because not all fields filled\n");
            tellEnd({LoadEvent::eWrongFieldCount, m_file.cursor(), 0, record->fields().size(), columns});
            return count;
        }
        if (count == 0 && skipFirst) {
            pass();
            if (readInto(*record) == 0) break;  // deliberately not checked against the number of columns
        } else if (columns == 1 && isMarker(*record)) {
            // A repeated header, as only a one-column database can meet it: its names line becomes a record.
            tell({LoadEvent::eReadAsHeader, lineNumber(), 1});
            for (int line = 0; line < 3; ++line) pass();
            if (readInto(*record) == 0) break;
        }
        const dbrecord& added = *record;
        m_database.m_records.push_back(std::move(record));
        if (m_observer) m_observer->recordRead(lineNumber(), lineText(), added);
        pass();
        if (++count == maxRecords) {
            tellEnd({LoadEvent::eRecordLimit, m_file.cursor()});
            return count;
        }
    }
    pass();
    dorp_printf("kesta::add_text: returning because no more lines\n");
    tellEnd({LoadEvent::eBlankLine, m_file.cursor()});
    return count;
}

/// Tells an event at which reading ends, with what comes after it. Nothing is lost where nothing comes.
void LogLoader::tellEnd(LoadEvent event) {
    if (!m_observer) return;
    for (; m_file.cursor() < m_file.size(); pass()) {
        if (!Ascii::trimmed(lineText()).empty()) ++event.linesAfter;
    }
    const bool losesNothing = event.kind == LoadEvent::eBlankLine || event.kind == LoadEvent::eRecordLimit;
    if (event.linesAfter != 0 || !losesNothing) tell(event);
}

// --- Comma-separated files ---

void LogLoader::readCSV() {
    m_database.m_valid = 1;
    for (const LightweightString<char>& name : splitCSV(lineText())) {
        m_database.m_fields.emplace_back(name, DBFieldTypes::eTextS);
    }
    if (m_database.m_fields.empty()) return tellEnd({LoadEvent::eColumnsMissing, 1});
    const std::size_t columns = m_database.m_fields.size();
    tellOfCSVLine(columns);
    if (m_observer) m_observer->columnsRead(1, m_database.m_fields);
    for (pass(); m_file.cursor() < m_file.size(); pass()) {
        const std::vector<LightweightString<char>> pieces = splitCSV(lineText());
        tellOfCSVLine(pieces.size());
        if (pieces.empty()) continue;
        const unsigned row = m_database.add_records(1);
        for (unsigned field = 0; field < pieces.size() && field < columns; ++field) {
            m_database.setField(row, field, pieces[field]);
        }
        const Zr::Ptr<dbrecord> record = m_observer ? m_database.get_record(row) : Zr::Ptr<dbrecord>();
        if (record) m_observer->recordRead(lineNumber(), lineText(), *record);
    }
}

void LogLoader::tellOfCSVLine(std::size_t pieces) {
    if (!m_observer) return;
    const std::size_t columns = m_database.m_fields.size();
    if (pieces > columns) tell({LoadEvent::eValuesDropped, lineNumber(), 0, pieces - columns});
    const std::string_view text = lineText();
    if (std::count(text.begin(), text.end(), '"') % 2 != 0) {
        tell({LoadEvent::eQuoteUnmatched, lineNumber()});
    }
}

// --- What kesta offers ---

void kesta::set_filename(LightweightString<wchar_t> name) {
    m_fileName = std::move(name);
}

LightweightString<wchar_t> kesta::get_filename() const {
    return m_fileName;
}

void kesta::loadFromFile(int maxRecords, bool strict) {
    LogLoader::loadFile(*this, maxRecords, strict, nullptr);
}

void kesta::loadFromFile(const LightweightString<wchar_t>& fileName, int maxRecords, bool strict) {
    m_fileName = fileName;
    loadFromFile(maxRecords, strict);
}

void kesta::loadFromFile(int maxRecords, bool strict, LoadObserver& observer) {
    LogLoader::loadFile(*this, maxRecords, strict, &observer);
}

void kesta::read_params(TextFile& file, dbrecord* line) {
    dbrecord ownLine(scratchFields);
    LogLoader(*this, file, LogLoader::Marks::set, nullptr).readParams(line ? *line : ownLine);
}

int kesta::load_text(int maxRecords) {
    return LogLoader::loadRecords(*this, maxRecords);
}

int kesta::add_text(TextFile& file, int skipFirst, int maxRecords) {
    return LogLoader(*this, file, LogLoader::Marks::set, nullptr).addRecords(skipFirst, maxRecords);
}
