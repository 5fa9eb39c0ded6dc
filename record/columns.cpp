// kesta's columns: names, types, widths, and what the standard columns of a log are.
#include <algorithm>
#include <limits>

#include "record/kesta.h"
#include "support/Ascii.h"
#include "support/Configuration.h"

namespace {

struct StandardColumn {
    const char* name;
    int minWidth;
};
constexpr StandardColumn standardColumns[] = {
    {"Cookie", 12},
    {"Type", 6},
    {"Flags", 8},
    {"Name", 32},
    {"Date", 12},
    {"Size", 8},
    {"pic qual", 4},
    {"aud qual", 32},
    {"chans", 64},
    {"Start time", 12},
    {"End time", 12},
    {"Duration", 16},
    {"Reel", 10},
    {"Reel Type", 30},
    {"Scene", 24},
    {"Shot", 24},
    {"Who", 24},
    {"Description", 64},
    {"Notes", 100},
    {"snd start", 12},
    {"snd end", 12},
    {"snd reel", 10},
    {"start 24P code", 12},
    {"end 24P code", 12},
    {"24P reel", 10},
    {"film_origin", 3},
    {"pulldown", 3},
    {"sequence", 2},
    {"start keycode", 17},
    {"end keycode", 17},
    {"film duration", 9},
    {"start camcode", 12},
    {"end camcode", 12},
    {"cam reel", 10},
    {"comp reel", 10},
    {"cam_date", 6},
    {"start inkcode", 15},
    {"end inkcode", 15},
    {"lab reel", 10},
    {"Mdrive", 4},
    {"Tag", 1},
};
constexpr int minWidthOfOthers = 4;

struct TypeToken {
    const char* text;
    DBFieldTypes::eType type;
};
constexpr TypeToken typeTokens[] = {
    {"timecode", DBFieldTypes::eTimecode},
    {"timecode_s", DBFieldTypes::eTimecodeS},
    {"text", DBFieldTypes::eText},
    {"text_s", DBFieldTypes::eTextS},
    {"time_of_day", DBFieldTypes::eTimeOfDay},
    {"date", DBFieldTypes::eDate},
    {"dos_date", DBFieldTypes::eDosDate},
    {"char", DBFieldTypes::eChar},
    {"numeric", DBFieldTypes::eNumeric},
    {"long", DBFieldTypes::eLong},
    {"double", DBFieldTypes::eDouble},
};

constexpr const char* specialLabels[] = {
    "Start time",    "End time",    "snd start",     "snd end",     "start 24P code", "end 24P code",
    "start keycode", "end keycode", "start camcode", "end camcode", "start inkcode",  "end inkcode",
};

bool removesAmpersands() {
    static const int setting = config_int("remove_fieldname_ampersands", 1, std::numeric_limits<int>::min(),
                                          std::numeric_limits<int>::max());
    return setting != 0;
}

}  // namespace

unsigned kesta::get_num_fields() const {
    return static_cast<unsigned>(m_fields.size());
}

const char* kesta::get_fieldname(unsigned field) const {
    return field < m_fields.size() ? m_fields[field].name.c_str() : "";
}

unsigned kesta::get_fieldnum(const LightweightString<char>& name) const {
    if (m_fields.empty() || name.empty()) return notFound;
    const FieldNameIndex& numbers = getFieldNameIndexMap();
    const auto found = numbers.find(name);
    return found == numbers.end() ? notFound : found->second;
}

const kesta::FieldNameIndex& kesta::getFieldNameIndexMap() const {
    return m_fieldNames.get([this](FieldNameIndex& numbers) {
        for (std::size_t field = 0; field < m_fields.size(); ++field) {
            numbers.emplace(m_fields[field].name, static_cast<unsigned short>(field));
        }
    });
}

unsigned kesta::addField(const DBFieldDesc& desc) {
    const unsigned known = get_fieldnum(desc.name);
    if (known != notFound) return known;
    if (m_fields.size() >= mostFieldNumber) return notFound;  // a record has no more fields than that
    const auto added = static_cast<unsigned>(m_fields.size());
    m_fields.push_back(desc);
    m_fields.back().type = storedType(desc.type);
    try {
        m_specialLabels.resize(added);
        m_specialLabels.push_back(isSpecialLabelField(added));
        int fill = 1;
        for (std::size_t row = 0; row < m_records.size(); ++row) {
            if (m_records[row]) m_records[row]->resizeRecord(static_cast<int>(m_fields.size()), &fill, true);
        }
        if (m_fieldNames.filled()) {
            m_fieldNames.change([&](FieldNameIndex& numbers) {
                numbers.emplace(desc.name, static_cast<unsigned short>(added));
            });
        }
    } catch (...) {
        // Records that have the field already lose nothing by it.
        m_fields.pop_back();
        m_specialLabels.resize(std::min<std::size_t>(m_specialLabels.size(), added));
        throw;
    }
    return added;
}

bool kesta::set_fieldname(unsigned field, const char* name) {
    const bool removes = removesAmpersands();
    if (field >= m_fields.size()) return false;
    m_fields[field].name = removes ? strip_char_from_string('&', name) : LightweightString<char>(name);
    if (field < m_specialLabels.size()) m_specialLabels[field] = isSpecialLabelField(field);
    m_fieldNames.clear();
    return true;
}

void kesta::removeField(const LightweightString<char>& name) {
    const unsigned field = get_fieldnum(name);
    if (field >= m_fields.size()) return;
    m_fields.erase(m_fields.begin() + field);
    if (field < m_specialLabels.size()) m_specialLabels.erase(m_specialLabels.begin() + field);
    m_fieldNames.clear();
    for (std::size_t row = 0; row < m_records.size(); ++row) {
        if (m_records[row]) m_records[row]->removeField(static_cast<unsigned short>(field));
    }
}

DBFieldTypes::eType kesta::storedType(DBFieldTypes::eType type) noexcept {
    return type == DBFieldTypes::eNone ? DBFieldTypes::eText : type;
}

DBFieldTypes::eType kesta::get_field_type(unsigned field) const {
    return field < m_fields.size() ? m_fields[field].type : DBFieldTypes::eNone;
}

DBFieldTypes::eType kesta::get_fieldtype(unsigned field) const {
    return get_field_type(field);
}

bool kesta::set_fieldtype(unsigned field, DBFieldTypes::eType type) {
    if (field >= m_fields.size()) return false;
    m_fields[field].type = storedType(type);
    return true;
}

unsigned kesta::get_fieldsize(unsigned field) const {
    if (field >= m_fields.size()) return 0;
    if (measured && measured->database() == this && field < measured->widths().size()) {
        return measured->widths()[field];
    }
    unsigned widest = 0;
    for (std::size_t row = 0; row < m_records.size(); ++row) {
        if (!m_records[row]) continue;
        const FieldList& fields = m_records[row]->fields();
        if (field < fields.size()) widest = std::max(widest, fields[field].length());
    }
    return widest;
}

thread_local const kesta::MeasuredWidths* kesta::measured = nullptr;

kesta::MeasuredWidths::MeasuredWidths(const kesta& database)
    : m_database(database), m_widths(database.m_fields.size()), m_outer(measured) {
    for (std::size_t row = 0; row < database.m_records.size(); ++row) {
        if (!database.m_records[row]) continue;
        const FieldList& fields = database.m_records[row]->fields();
        const std::size_t count = std::min(fields.size(), m_widths.size());
        for (std::size_t field = 0; field < count; ++field) {
            m_widths[field] = std::max(m_widths[field], fields[field].length());
        }
    }
    measured = this;
}

kesta::MeasuredWidths::~MeasuredWidths() {
    measured = m_outer;
}

int kesta::getMinFieldSize(const char* name) {
    for (const StandardColumn& column : standardColumns) {
        if (Ascii::compareFolded(name ? name : "", column.name) == 0) return column.minWidth;
    }
    return minWidthOfOthers;
}

DBFieldTypes::eType kesta::fieldTypeFromString(const LightweightString<char>& token) {
    for (const TypeToken& known : typeTokens) {
        if (token.icompare(known.text) == 0) return known.type;
    }
    // Any single byte is a type; bytes above 127 are negative codes.
    return token.length() == 1 ? static_cast<DBFieldTypes::eType>(static_cast<signed char>(token.c_str()[0]))
                               : DBFieldTypes::eNone;
}

LightweightString<char> kesta::fieldTypeToString(DBFieldTypes::eType type) {
    for (const TypeToken& known : typeTokens) {
        // "char" is read but, unlike the others, never written: its own letter stands for it.
        if (known.type == type && type != DBFieldTypes::eChar) return known.text;
    }
    const char code = static_cast<char>(type);
    // What the line syntax would not give back stands as text: no character, and white space, which is
    // trimmed.
    if (code == 0 || Ascii::isSpace(code)) return "text";
    return code == '"' ? LightweightString<char>("\"\"") : LightweightString<char>(&code, 1);
}

bool kesta::isSpecialLabelField(unsigned long field) const {
    if (field >= m_fields.size()) return false;
    for (const char* const label : specialLabels) {
        if (m_fields[field].name == label) return true;
    }
    return false;
}

LightweightString<char> kesta::strip_char_from_string(char c, const char* s) {
    LightweightString<char> stripped(s);
    if (stripped.view().find(c) == std::string_view::npos) return stripped;
    char* const begin = stripped.writableText();
    stripped.resizeFor(static_cast<unsigned>(std::remove(begin, begin + stripped.length(), c) - begin));
    return stripped;
}
