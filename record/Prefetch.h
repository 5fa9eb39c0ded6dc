// Reading one field of many records, ahead of the processor's need.
//
// A record's text lies three reads away, each of which depends on the one before and may have to come from
// main memory: the record, its list of fields, the field's characters. A walk over many rows that asks for
// each of them some rows early does not wait for any.
#pragma once

#include <cstddef>

#include "record/dbrecord.h"

/// To be called at every step `i` of a walk that ends before `end`: starts fetching what the coming steps
/// need. `recordAt` answers the record of a step, null when it has none.
template <class RecordAt>
void prefetchField(std::size_t i, std::size_t end, unsigned short field, const RecordAt& recordAt) noexcept {
    constexpr std::size_t recordAhead = 24;
    constexpr std::size_t fieldAhead = 16;
    constexpr std::size_t textAhead = 8;
    if (i + recordAhead < end) __builtin_prefetch(recordAt(i + recordAhead));
    if (i + fieldAhead < end) {
        if (const dbrecord* const record = recordAt(i + fieldAhead)) __builtin_prefetch(&record->getField(field));
    }
    if (i + textAhead < end) {
        if (const dbrecord* const record = recordAt(i + textAhead)) {
            __builtin_prefetch(record->getField(field).c_str());
        }
    }
}
