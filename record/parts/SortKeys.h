// The keys of the running sort, and the order they give to a list of records.
//
// One set of keys serves the whole process: sortPrepare fills it, the exported comparators and sortedOrder
// read it. Thread-safety: none; only one sort may run at a time in a process.
#pragma once

#include <iterator>
#include <vector>

#include "record/parts/KeyRules.h"

class dbrecord;

/// What the last sortPrepare left.
class SortKeys {
 public:
    static constexpr unsigned maxKeys = 9;

    /// In order of priority, ended by a negative one; read through cmp_fields.
    int fields[maxKeys + 1] = {-1};

    constexpr SortKeys() noexcept { clear(false); }

    /// No keys.
    constexpr void clear(bool ignoreCase) noexcept {
        fields[0] = -1;
        m_ignoreCase = ignoreCase;
        for (int& field : m_ownFields) field = -1;
    }

    /// Tells of a key's type. Of several keys of a type that has a rule of its own the last one gets it.
    void setType(int field, DBFieldTypes::eType type) noexcept {
        for (std::size_t i = 0; i < std::size(m_ownFields); ++i) {
            if (KeyRules::ofTypes[i].type == type) m_ownFields[i] = field;
        }
    }

    /// The rule for a key in ascending order.
    KeyRule rule(int field) const noexcept {
        for (std::size_t i = 0; i < std::size(m_ownFields); ++i) {
            if (m_ownFields[i] == field) return KeyRules::ofTypes[i].rule;
        }
        return m_ignoreCase ? KeyRule::folded : KeyRule::dictionary;
    }

 private:
    bool m_ignoreCase = false;

    // For each type that has a rule of its own the key that it holds for, or -1.
    int m_ownFields[std::size(KeyRules::ofTypes)] = {};
};

extern SortKeys sortKeys;

/// The positions in `records` in sorted order: as dbr_cmp has it, or dbr_backcmp when `descending`. Reads the
/// keys that the last sortPrepare prepared. Records that compare equal keep their order; null entries come
/// last in both directions. Costs one fetch of each record's first key, and of the later ones where the
/// earlier ones are level.
std::vector<unsigned> sortedOrder(const std::vector<const dbrecord*>& records, bool descending);
