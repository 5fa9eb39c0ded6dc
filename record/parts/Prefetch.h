// Asking memory for records ahead of time.
//
// A field's text lies three reads away, each of which depends on the one before and may have to come from
// main memory: the record, its list of fields, the characters. A walk over many records that asks for each of
// them some steps early waits for none; these are the steps.
#pragma once

#include <cstdint>

#include "record/dbrecord.h"

namespace Prefetch {

constexpr unsigned recordAhead = 24;
constexpr unsigned fieldAhead = 16;
constexpr unsigned textAhead = 8;

/// The record's list of fields and its count, which may lie in two lines of the cache. Null is ignored.
inline void record(const dbrecord* record) noexcept {
    if (!record) return;
    __builtin_prefetch(&record->fields());
    __builtin_prefetch(reinterpret_cast<const char*>(record) + sizeof(dbrecord) - 1);
}

/// The field's string.
inline void field(const LightweightString<char>& field) noexcept {
    __builtin_prefetch(&field);
}

/// The field's characters, from a string that has come.
inline void text(const LightweightString<char>& field) noexcept {
    // The text's length stands right before its characters, and both may lie across two lines of the cache.
    constexpr std::uintptr_t head = 8;
    constexpr std::uintptr_t shortText = 16;
    const auto characters = reinterpret_cast<std::uintptr_t>(field.c_str());
    __builtin_prefetch(reinterpret_cast<const void*>(characters - head));
    __builtin_prefetch(reinterpret_cast<const void*>(characters + shortText));
}

/// The characters from `offset` on, whether the text has so many or not.
inline void characters(const char* text, unsigned offset) noexcept {
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(text) + offset));
}

}  // namespace Prefetch
