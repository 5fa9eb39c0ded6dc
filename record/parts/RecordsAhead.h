// RecordsAhead: asks memory for the records of a walk that jumps about in a large database.
//
// Thread-safety: as for reading the database.
#pragma once

#include "record/kesta.h"
#include "record/parts/Prefetch.h"

class RecordsAhead {
 public:
    explicit RecordsAhead(const kesta& database) noexcept : m_records(database.m_records) {}

    /// A hint that get_record will be asked for `later` in some twenty steps, and for `sooner`, a `later` of
    /// before, in some ten. Rows out of range are ignored.
    void expect(unsigned later, unsigned sooner) const noexcept {
        if (later < m_records.size()) __builtin_prefetch(&m_records[later]);
        if (sooner < m_records.size()) Prefetch::record(m_records[sooner].get());
    }

 private:
    const GapVector<Zr::Ptr<dbrecord>>& m_records;
};
