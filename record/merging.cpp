// kesta: bringing the records of one database into another. The source is read through its interface only.
#include <cstring>
#include <vector>

#include "record/kesta.h"
#include "support/time_def.h"

namespace {

constexpr int refused = -1;

// How a text changes between two columns of the same name.
using Conversion = LightweightString<char> (*)(const char* text);

LightweightString<char> punctuated(const char* text) {
    return time_def(text, eTimecodeLabel).get_punctuated_str();
}

LightweightString<char> unpunctuated(const char* text) {
    return time_def(text, eTimecodeLabel).get_database_str();
}

// Null when the text is kept as it is.
Conversion conversion(DBFieldTypes::eType from, DBFieldTypes::eType to) noexcept {
    if (from == DBFieldTypes::eTimecodeS && to == DBFieldTypes::eTimecode) return punctuated;
    if (from == DBFieldTypes::eTimecode && to == DBFieldTypes::eTimecodeS) return unpunctuated;
    return nullptr;
}

struct MatchingColumns {
    unsigned to;
    unsigned from;
    Conversion convert;
};

std::vector<MatchingColumns> matchColumns(const kesta& target, const kesta& source) {
    std::vector<MatchingColumns> columns;
    for (unsigned to = 0; to < target.get_num_fields(); ++to) {
        const unsigned from = source.get_fieldnum(target.get_fieldname(to));
        if (static_cast<int>(from) < 0) continue;
        const bool known = from < source.get_num_fields();
        columns.push_back(
            {to, from, known ? conversion(source.get_field_type(from), target.get_field_type(to)) : nullptr});
    }
    return columns;
}

bool sameName(const char* a, const char* b) noexcept {
    return std::strcmp(a ? a : "", b ? b : "") == 0;
}

// Names mind case here, unlike in look-ups.
bool sameColumns(const kesta& a, const kesta& b) {
    const unsigned count = a.get_num_fields();
    if (count != b.get_num_fields()) return false;
    for (unsigned i = 0; i < count; ++i) {
        if (a.get_field_type(i) != b.get_field_type(i)) return false;
        if (!sameName(a.get_fieldname(i), b.get_fieldname(i))) return false;
    }
    return true;
}

}  // namespace

int kesta::add_kesta(kesta* other) {
    if (m_showTagsOnly || !other) return refused;
    if (get_revision() != other->get_revision() || !sameColumns(*this, *other)) return refused;

    // All copies are made before the first is listed: a database appended to itself is read once, and one
    // that does not fit into memory is not taken in part.
    std::vector<Zr::Ptr<dbrecord>> copies;
    unsigned rows = other->get_num_records();
    for (unsigned row = 0; row < rows; ++row, rows = other->get_num_records()) {
        const Zr::Ptr<dbrecord> record = other->get_record(row);
        copies.push_back(record ? Zr::Ptr<dbrecord>(new dbrecord(*record)) : newRecord());
    }
    m_records.reserve(m_records.size() + copies.size());
    for (Zr::Ptr<dbrecord>& copy : copies) {
        copy->set_container(this);
        m_records.push_back(std::move(copy));
    }
    return static_cast<int>(rows);
}

int kesta::merge_all_matching(kesta* other) {
    if (!other) return 0;
    const std::vector<MatchingColumns> columns = matchColumns(*this, *other);
    if (columns.empty()) return 0;

    const unsigned rows = other->get_num_records();
    for (unsigned row = 0; row < rows; ++row) {
        const unsigned added = add_records(1);
        if (static_cast<int>(added) < 0) break;
        for (const MatchingColumns& column : columns) {
            const char* const text = other->getField(row, column.from).c_str();
            set_field(added, column.to, column.convert ? column.convert(text).c_str() : text);
        }
    }
    return 1;
}
