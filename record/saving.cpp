// Saving of kesta: parameters, the header with its widths, and the records.
#include <algorithm>
#include <charconv>

#include "record/ColumnTypes.h"
#include "record/kesta.h"
#include "support/NotFound.h"
#include "support/TextFile.h"

namespace {

constexpr std::size_t longestHeaderField = 254;

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

/// The widths of all columns of a database, measured in one pass over the records. While it lives, this
/// thread finds them.
class MeasuredWidths {
 public:
    MeasuredWidths(const kesta& database, const GapVector<Zr::Ptr<dbrecord>>& records, std::size_t columns)
        : m_database(database), m_widths(columns), m_outer(innermost) {
        for (std::size_t row = 0; row < records.size(); ++row) {
            if (records[row]) add(records[row]->fields());
        }
        innermost = this;
    }
    MeasuredWidths(const MeasuredWidths&) = delete;
    MeasuredWidths& operator=(const MeasuredWidths&) = delete;
    ~MeasuredWidths() { innermost = m_outer; }

    /// One for each column; null when nobody has measured the database.
    static const std::vector<unsigned>* of(const kesta& database) noexcept {
        return innermost && &innermost->m_database == &database ? &innermost->m_widths : nullptr;
    }

 private:
    void add(const FieldList& fields) noexcept {
        const std::size_t count = std::min(fields.size(), m_widths.size());
        for (std::size_t field = 0; field < count; ++field) {
            m_widths[field] = std::max(m_widths[field], fields[field].length());
        }
    }

    static thread_local const MeasuredWidths* innermost;

    const kesta& m_database;
    std::vector<unsigned> m_widths;
    const MeasuredWidths* m_outer;
};

thread_local const MeasuredWidths* MeasuredWidths::innermost = nullptr;

}  // namespace

unsigned kesta::get_fieldsize(unsigned field) const {
    if (field >= m_fields.size()) return 0;
    const std::vector<unsigned>* const measured = MeasuredWidths::of(*this);
    if (measured && field < measured->size()) return (*measured)[field];
    unsigned widest = 0;
    for (std::size_t row = 0; row < m_records.size(); ++row) {
        if (!m_records[row]) continue;
        const FieldList& fields = m_records[row]->fields();
        if (field < fields.size()) widest = std::max(widest, fields[field].length());
    }
    return widest;
}

/// Writes a database to its file.
class LogSaver {
 public:
    static int save(kesta& database, bool namesOnly);

 private:
    static int writeRecords(kesta& database, TextFile& file);
};

int LogSaver::save(kesta& database, bool namesOnly) {
    TextFile file;
    database.save_params(file);
    database.save_column_header(file, namesOnly);
    file.beginSave(database.m_fileName, TextFile::eLF);

    // Storing tags is part of saving, not a change to be saved.
    const int changed = database.m_changed;
    const int written = writeRecords(database, file);
    database.m_changed = changed;
    return file.save(database.m_fileName, TextFile::eLF) ? written : 0;
}

int LogSaver::writeRecords(kesta& database, TextFile& file) {
    const unsigned tagColumn = database.get_fieldnum("Tag");
    int written = 0;
    for (std::size_t row = 0; row < database.m_records.size(); ++row) {
        const Zr::Ptr<dbrecord> record = database.m_records[row];
        if (!record) continue;
        if (tagColumn != Zr::notFound) {
            char tag[4] = {};
            std::to_chars(tag, std::end(tag), record->get_tag());
            database.set_field(static_cast<unsigned>(row), tagColumn, tag);
        }
        if (!record->write(file)) break;
        ++written;
    }
    return written;
}

int kesta::save_text() {
    return LogSaver::save(*this, false);
}

int kesta::save_text_without_header() {
    return LogSaver::save(*this, true);
}

void kesta::save_params(TextFile& file) const {
    writeParams(file);
}

void kesta::save_column_header(TextFile& file, bool namesOnly) const {
    if (!namesOnly) {
        file.appendLine("\"KESTA\"");
        // get_fieldsize is asked for each column, as a derived class may have its own; kesta's finds these.
        const MeasuredWidths measured(*this, m_records, m_fields.size());
        HeaderLine widths;
        for (unsigned field = 0; field < m_fields.size(); ++field) {
            const auto least = static_cast<unsigned>(getMinFieldSize(get_fieldname(field)));
            widths.add(std::to_string(std::max(least, get_fieldsize(field))));
        }
        widths.appendTo(file);
        HeaderLine types;
        for (const DBFieldDesc& field : m_fields) types.add(typeInQuotes(field.type).view());
        types.appendTo(file);
    }
    HeaderLine names;
    for (const DBFieldDesc& field : m_fields) names.add(field.name.view());
    names.appendTo(file);
}
