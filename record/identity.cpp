// kesta's records by identifier: the text of their "cookie" column, and the index over it.
#include "record/kesta.h"

namespace {

constexpr const char* identifierColumn = "cookie";

void fileIdentifiers(const kesta& database, CookieIndex& rows) {
    const unsigned column = database.get_fieldnum(identifierColumn);
    if (column == Zr::notFound) return;
    rows.reserve(database.get_num_records());
    for (unsigned row = 0; row < database.get_num_records(); ++row) {
        rows.insert(Cookie(database.getField(row, column).c_str(), false), row);
    }
}

}  // namespace

bool kesta::set_field(unsigned row, const Cookie& id) {
    const Zr::Ptr<dbrecord> record = get_record(row);
    const unsigned column = get_fieldnum(identifierColumn);
    if (!record || column == Zr::notFound) return false;
    const bool stored = record->setField(static_cast<unsigned short>(column), id.asString(false));
    // Filed even into an index that was never built, which then holds just this row and counts as built; an
    // entry for the record's previous identifier stays. Both deliberate.
    m_identifiers.change([&](CookieIndex& rows) { rows.assign(id, row); });
    return stored;
}

Zr::Ptr<dbrecord> kesta::addRecord(const Cookie& id) {
    Zr::Ptr<dbrecord> record = newRecord();
    m_records.push_back(record);
    const unsigned column = get_fieldnum(identifierColumn);
    if (column == Zr::notFound) return record;
    record->setField(static_cast<unsigned short>(column), id.asString(false));
    if (m_identifiers.filled()) {
        const auto row = static_cast<unsigned>(m_records.size() - 1);
        m_identifiers.change([&](CookieIndex& rows) { rows.insert(id, row); });
    }
    return record;
}

unsigned kesta::getRowIndexByID(const Cookie& id) const {
    return m_identifiers.get([this](CookieIndex& rows) { fileIdentifiers(*this, rows); }).find(id);
}

Zr::Ptr<dbrecord> kesta::get_record(const Cookie& id) const {
    const unsigned row = getRowIndexByID(id);
    return static_cast<int>(row) < 0 ? Zr::Ptr<dbrecord>() : m_records.valueAt(row);
}
