// kesta's text file: loading, the plain comma-separated input form, saving.
//
// A file is lines in the record line syntax: parameter lines, the first of them the revision; a marker line;
// widths, types and names of the columns; then one line for each record.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>

#include "record/ColumnTypes.h"
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
constexpr const char* marker = "KESTA";
constexpr const char* revisionPrefix = "KESTA:";
constexpr std::size_t revisionPrefixLength = 6;
constexpr unsigned short scratchFields = 24;
constexpr std::size_t longestHeaderField = 254;

bool isMarker(const dbrecord& line) {
    return line.getField(0).icompare(marker) == 0;
}

bool endsWithCSV(const LightweightString<wchar_t>& fileName) {
    constexpr std::wstring_view ending = L".csv";
    const std::wstring_view name = fileName.view();
    return name.size() >= ending.size() && name.substr(name.size() - ending.size()) == ending;
}

std::string_view withoutLeadingSpace(std::string_view text) {
    while (!text.empty() && Ascii::isSpace(text.front())) text.remove_prefix(1);
    return text;
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

// A quote is a type like any other character, and stands twice inside quotes.
LightweightString<char> typeInQuotes(DBFieldTypes::eType type) {
    const LightweightString<char> word = ColumnTypes::toWord(type);
    return word == "\"" ? "\"\"" : word;
}

/// A header line, built field by field.
class HeaderLine {
 public:
    /// Quotes the text, unescaped. A field of more than 254 bytes, quotes included, is cut there, which can
    /// lose the closing quote; deliberately so.
    void add(std::string_view text) {
        if (!m_line.empty()) m_line += ',';
        LightweightString<char> field("\"");
        field.append(text);
        field += '"';
        m_line.append(field.view().substr(0, longestHeaderField));
    }

    void appendTo(TextFile& file) const { file.appendLine(m_line); }

 private:
    LightweightString<char> m_line;
};

}  // namespace

void kesta::set_filename(LightweightString<wchar_t> name) {
    m_fileName = std::move(name);
}

LightweightString<wchar_t> kesta::get_filename() const {
    return m_fileName;
}

// --- Loading ---

void kesta::loadFromFile(const LightweightString<wchar_t>& fileName, int maxRecords, bool strict) {
    m_fileName = fileName;
    loadFromFile(maxRecords, strict);
}

void kesta::loadFromFile(int maxRecords, bool strict) {
    init();
    TextFile file;
    if (!file.beginLoad(m_fileName, lineSeparator)) return;
    const std::size_t recordsBefore = m_records.size();
    // A load that cannot be finished leaves nothing that could be taken for the whole log, and saved over it.
    const auto undo = [&] {
        takeBackRecords(recordsBefore);
        init();
    };
    const bool csv = endsWithCSV(m_fileName);
    bool whole;
    try {
        if (csv) {
            loadCSV(file);
        } else {
            loadLog(file, maxRecords, strict);
        }
        whole = file.endLoad();
    } catch (...) {
        undo();
        throw;
    }
    if (!whole) {
        const int error = errno;
        undo();
        errno = error;
    } else if (!csv && m_valid) {
        clear_changed();
    }
}

void kesta::takeBackRecords(std::size_t before) noexcept {
    if (m_records.size() > before) m_records.erase(before, m_records.size() - before);
}

void kesta::loadLog(TextFile& file, int maxRecords, bool strict) {
    dbrecord line(scratchFields);
    read_params(file, &line);
    if (m_params->empty()) return;
    if (isMarker(line)) {
        readColumns(file);
    } else if (!strict) {
        takeColumnNames(line);
    }
    if (!m_valid) return;
    post_init();
    add_text(file, 0, maxRecords);
}

void kesta::read_params(TextFile& file, dbrecord* line) {
    m_params->clear();
    dbrecord ownLine(scratchFields);
    if (!line) line = &ownLine;
    if (line->read(file) == 0) return;
    if (Ascii::compareFolded(line->getField(0).c_str(), revisionPrefix, revisionPrefixLength) != 0) return;

    appendParam(line->getField(0));
    m_revision = revisionOf(params().front().value());
    if (m_revision != currentRevision) {
        dorp_printf("kesta::read_text:  Warning: kesta is revision %d, current level is %d\n", m_revision,
                    currentRevision);
    }
    while (file.cursor() < file.size()) {
        line->read(file);
        if (isMarker(*line)) return;
        appendParam(line->getField(0));
    }
}

void kesta::appendParam(const LightweightString<char>& line) {
    const std::string_view text = withoutLeadingSpace(line.view());
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0) return;
    m_params->append(LightweightString<char>(text.substr(0, colon)),
                     LightweightString<char>(withoutLeadingSpace(text.substr(colon + 1))));
}

void kesta::readColumns(TextFile& file) {
    dbrecord widths(scratchFields);
    dbrecord types(scratchFields);
    dbrecord names(scratchFields);
    widths.read(file);  // computed anew by every save
    types.read(file);
    names.read(file);
    if (types.fields().size() != names.fields().size()) return;
    for (std::size_t field = 0; field < names.fields().size(); ++field) {
        m_fields.emplace_back(names.fields()[field],
                              ColumnTypes::stored(fieldTypeFromString(types.fields()[field])));
    }
    m_valid = 1;
}

void kesta::takeColumnNames(const dbrecord& names) {
    for (const LightweightString<char>& name : names.fields())
        m_fields.emplace_back(name, typeFromName(name));
    m_valid = 1;
}

int kesta::load_text(int maxRecords) {
    TextFile file;
    if (!file.beginLoad(m_fileName, lineSeparator)) return 0;
    const std::size_t recordsBefore = m_records.size();
    const int changedBefore = m_changed;
    const auto undo = [&] {
        takeBackRecords(recordsBefore);
        m_changed = changedBefore;
    };
    try {
        const int count = add_text(file, 1, maxRecords);
        if (file.endLoad()) return count;
    } catch (...) {
        undo();
        throw;
    }
    const int error = errno;
    undo();
    errno = error;
    return 0;
}

int kesta::add_text(TextFile& file, int skipFirst, int maxRecords) {
    if (maxRecords < 1) return 0;
    RecentTexts recent;
    int count = 0;
    for (;;) {
        Zr::Ptr<dbrecord> record(new dbrecord(0));
        record->set_container(this);
        if (record->read(file, recent) == 0) return count;
        if (record->get_num_fields() != m_fields.size()) {
            LogBoth("kesta::add_text: returning because not all fields filled\n");
            return count;
        }
        if (count != 0 || !skipFirst) {
            // A repeated header, as only a one-column database can meet it: its names line becomes a record.
            if (m_fields.size() == 1 && isMarker(*record)) {
                record->read(file, recent);
                record->read(file, recent);
                if (record->read(file, recent) == 0) break;
            }
        } else if (record->read(file, recent) ==
                   0) {  // deliberately not checked against the number of columns
            break;
        }
        m_records.push_back(std::move(record));
        if (++count == maxRecords) return count;
    }
    dorp_printf("kesta::add_text: returning because no more lines\n");
    return count;
}

void kesta::loadCSV(TextFile& file) {
    m_valid = 1;
    for (const LightweightString<char>& name : splitCSV(file.lineView(0))) {
        m_fields.emplace_back(name, DBFieldTypes::eTextS);
    }
    if (m_fields.empty()) return;
    for (file.nextLine(); file.cursor() < file.size(); file.nextLine()) {
        const std::vector<LightweightString<char>> pieces = splitCSV(file.lineView(file.cursor()));
        if (pieces.empty()) continue;
        const unsigned row = add_records(1);
        for (unsigned field = 0; field < pieces.size() && field < m_fields.size(); ++field) {
            setField(row, field, pieces[field]);
        }
    }
}

// --- Saving ---

int kesta::save_text() {
    return saveWithHeader(false);
}

int kesta::save_text_without_header() {
    return saveWithHeader(true);
}

int kesta::saveWithHeader(bool namesOnly) {
    TextFile file;
    save_params(file);
    save_column_header(file, namesOnly);
    file.beginSave(m_fileName, TextFile::eLF);

    // Storing tags is part of saving, not a change to be saved.
    const int changed = m_changed;
    const unsigned tagColumn = get_fieldnum("Tag");
    int saved = 0;
    for (std::size_t row = 0; row < m_records.size(); ++row) {
        const Zr::Ptr<dbrecord> record = m_records[row];
        if (!record) continue;
        if (tagColumn != Zr::notFound) {
            char tag[4] = {};
            std::to_chars(tag, std::end(tag), record->get_tag());
            set_field(static_cast<unsigned>(row), tagColumn, tag);
        }
        if (!record->write(file)) break;
        ++saved;
    }
    m_changed = changed;
    return file.save(m_fileName, TextFile::eLF) ? saved : 0;
}

void kesta::save_params(TextFile& file) const {
    writeParams(file);
}

void kesta::save_column_header(TextFile& file, bool namesOnly) const {
    if (!namesOnly) {
        file.appendLine("\"KESTA\"");
        saveWidths(file);
        HeaderLine types;
        for (const DBFieldDesc& field : m_fields) types.add(typeInQuotes(field.type).view());
        types.appendTo(file);
    }
    HeaderLine names;
    for (const DBFieldDesc& field : m_fields) names.add(field.name.view());
    names.appendTo(file);
}

void kesta::saveWidths(TextFile& file) const {
    // get_fieldsize is asked for each column, as a derived class may answer it; its own answer comes from
    // here.
    const MeasuredWidths measuredOnce(*this);
    HeaderLine widths;
    for (unsigned field = 0; field < m_fields.size(); ++field) {
        const auto least = static_cast<unsigned>(getMinFieldSize(get_fieldname(field)));
        LightweightString<char> width;
        width += static_cast<int>(std::max(least, get_fieldsize(field)));
        widths.add(width.view());
    }
    widths.appendTo(file);
}
