// kesta's columns: names, types, widths.
#include <algorithm>
#include <limits>

#include "record/ColumnTypes.h"
#include "record/StandardColumns.h"
#include "record/kesta.h"
#include "support/Configuration.h"

namespace {

constexpr int leastWidthOfOthers = 4;

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
    if (m_fields.empty() || name.empty()) return Zr::notFound;
    const FieldNameIndex& numbers = getFieldNameIndexMap();
    const auto found = numbers.find(name);
    return found == numbers.end() ? Zr::notFound : found->second;
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
    if (known != Zr::notFound) return known;
    if (m_fields.size() >= dbrecord::mostFields)
        return Zr::notFound;  // a record has no more fields than that
    const auto added = static_cast<unsigned>(m_fields.size());
    m_fields.push_back(desc);
    m_fields.back().type = ColumnTypes::stored(desc.type);
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

DBFieldTypes::eType kesta::get_field_type(unsigned field) const {
    return field < m_fields.size() ? m_fields[field].type : DBFieldTypes::eNone;
}

DBFieldTypes::eType kesta::get_fieldtype(unsigned field) const {
    return get_field_type(field);
}

bool kesta::set_fieldtype(unsigned field, DBFieldTypes::eType type) {
    if (field >= m_fields.size()) return false;
    m_fields[field].type = ColumnTypes::stored(type);
    return true;
}

int kesta::getMinFieldSize(const char* name) {
    const StandardColumn* const standard = name ? StandardColumns::find(name) : nullptr;
    return standard ? standard->leastWidth : leastWidthOfOthers;
}

DBFieldTypes::eType kesta::fieldTypeFromString(const LightweightString<char>& token) {
    return ColumnTypes::fromWord(token);
}

bool kesta::isSpecialLabelField(unsigned long field) const {
    return field < m_fields.size() && StandardColumns::rangeOf(m_fields[field].name.view());
}

LightweightString<char> kesta::strip_char_from_string(char c, const char* s) {
    LightweightString<char> stripped(s);
    if (stripped.view().find(c) == std::string_view::npos) return stripped;
    char* const begin = stripped.writableText();
    stripped.resizeFor(static_cast<unsigned>(std::remove(begin, begin + stripped.length(), c) - begin));
    return stripped;
}
