// kesta's list of records: reading and storing by row and column, inserting, appending, deleting.
#include <cstdlib>
#include <cstring>

#include "record/RecordsDeleted.h"
#include "record/kesta.h"
#include "record/parts/Prefetch.h"
#include "support/Ascii.h"
#include "support/StringFunctions.h"

unsigned kesta::get_num_records() const {
    return static_cast<unsigned>(m_showTagsOnly ? m_taggedIndex.size() : m_records.size());
}

Zr::Ptr<dbrecord> kesta::get_record(unsigned row) const {
    if (!m_showTagsOnly) return m_records.valueAt(row);
    return row < m_taggedIndex.size() ? m_taggedIndex[row] : Zr::Ptr<dbrecord>();
}

const LightweightString<char>& kesta::getField(unsigned row, unsigned field) const {
    static const LightweightString<char> none;
    const Zr::Ptr<dbrecord> record = field < dbrecord::mostFields ? get_record(row) : Zr::Ptr<dbrecord>();
    return record ? record->getField(static_cast<unsigned short>(field)) : none;
}

Zr::Ptr<dbrecord> kesta::newRecord() {
    Zr::Ptr<dbrecord> record = kesta::make_dummy_record();
    record->set_container(this);
    return record;
}

Zr::Ptr<dbrecord> kesta::make_dummy_record() {
    return Zr::Ptr<dbrecord>(new dbrecord(static_cast<unsigned short>(m_fields.size())));
}

void kesta::insert_records(unsigned at, unsigned count) {
    if (m_showTagsOnly || at > m_records.size()) return;
    if (count != 0) {
        // Deliberately one record for the whole room: the entries after it hold none.
        Zr::Ptr<dbrecord> record = newRecord();
        m_records.insert(at, count);
        m_records[at] = std::move(record);
    }
    m_identifiers.clear();
}

unsigned kesta::add_records(int count) {
    if (m_showTagsOnly) return Zr::notFound;
    const auto before = static_cast<unsigned>(m_records.size());
    m_identifiers.clear();
    try {
        for (int i = 0; i < count; ++i) m_records.push_back(newRecord());
    } catch (...) {
        m_records.erase(before, m_records.size() - before);
        throw;
    }
    return before;
}

void kesta::delete_records(unsigned first, unsigned count) {
    if (first >= m_records.size() || m_showTagsOnly) return;
    m_identifiers.clear();
    if (count == 0) return;
    count = std::min(count, static_cast<unsigned>(m_records.size()) - first);

    const RecordsDeleted announcement(*this, first, count);
    m_records.erase(first, count);
    const LifeWatch self = watch();  // a listener may end this database
    try {
        announcement.issue();  // listeners see the shortened list, not yet the changed flag
    } catch (...) {
        if (self) m_changed = 1;
        throw;
    }
    if (self) m_changed = 1;
}

bool kesta::setField(unsigned row, unsigned field, const LightweightString<char>& value) {
    const Zr::Ptr<dbrecord> record = get_record(row);
    return record && field < dbrecord::mostFields &&
           record->setField(static_cast<unsigned short>(field), value);
}

int kesta::set_field(unsigned row, unsigned field, const char* value) {
    const Zr::Ptr<dbrecord> record = get_record(row);
    return record && record->set_field(static_cast<int>(field), value, true) ? 1 : 0;
}

bool kesta::set_field(unsigned row, unsigned field, int value) {
    const Zr::Ptr<dbrecord> record = get_record(row);
    return record && record->set_field(static_cast<int>(field), value);
}

bool kesta::set_field(unsigned row, unsigned field, double value) {
    const Zr::Ptr<dbrecord> record = get_record(row);
    return record && record->set_field(static_cast<int>(field), value);
}

bool kesta::set_field(unsigned row, unsigned field, bool value) {
    const Zr::Ptr<dbrecord> record = get_record(row);
    return record && record->set_field(static_cast<int>(field), value);
}

// Unlike a record's own in_field, these return false for an empty field.

bool kesta::in_field(unsigned row, unsigned field, char* dst, int len) const {
    const LightweightString<char>& text = getField(row, field);
    if (text.empty() || !dst || len < 0) return false;
    dst[text.view().copy(dst, static_cast<std::size_t>(len))] = 0;
    dst[len] = 0;
    return true;
}

bool kesta::in_field(unsigned row, unsigned field, int& value) const {
    const LightweightString<char>& text = getField(row, field);
    if (text.empty()) return false;
    value = static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
    return true;
}

bool kesta::in_field(unsigned row, unsigned field, double& value) const {
    const LightweightString<char>& text = getField(row, field);
    if (text.empty()) return false;
    value = Zr::DoubleFromString(text.c_str());
    return true;
}

bool kesta::in_field(unsigned row, unsigned field, bool& value) const {
    const LightweightString<char>& text = getField(row, field);
    if (text.empty()) return false;
    value = text.c_str()[0] == 't';
    return true;
}

int kesta::findFirst(const char* field, const char* value, int length) {
    field = field ? field : "";
    value = value ? value : "";
    if (Ascii::compareFolded(field, "cookie") == 0) {
        const unsigned row = getRowIndexByID(Cookie(value, false));
        if (row != Zr::notFound) return static_cast<int>(row);
    }
    const unsigned column = get_fieldnum(field);
    if (column == Zr::notFound) return -1;
    for (unsigned row = 0; row < get_num_records(); ++row) {
        // Deliberately of all records, whatever is shown.
        const dbrecord* const record = row < m_records.size() ? m_records[row].get() : nullptr;
        const char* const text = record ? record->getField(static_cast<unsigned short>(column)).c_str() : "";
        const int difference =
            length ? std::strncmp(text, value, static_cast<std::size_t>(length)) : std::strcmp(text, value);
        if (difference == 0) return static_cast<int>(row);
    }
    return -1;
}

void kesta::clear_changed() {
    for (std::size_t row = 0; row < m_records.size(); ++row) {
        if (row + Prefetch::recordAhead < m_records.size()) {
            Prefetch::record(m_records[row + Prefetch::recordAhead].get());
        }
        if (m_records[row]) m_records[row]->clear_changed();
    }
    m_changed = 0;
}

int kesta::baseIndex(int row) {
    return row;
}
