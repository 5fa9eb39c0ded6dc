// The keys of the running sort, and the order they give to a list of records.
//
// One set of keys serves the whole process: sortPrepare fills it, the exported comparators and sortedOrder
// read it. Thread-safety: none; only one sort may run at a time in a process.
#pragma once

#include <vector>

class dbrecord;

/// How two texts compare. Descending order knows only ignoringCase.
enum class KeyRule {
    dictionary,    ///< strxcmp's order
    ignoringCase,  ///< by folded characters
    timecode       ///< by folded characters, the ninth of which is left out
};

/// What the last sortPrepare left.
struct SortKeys {
    static constexpr unsigned maxKeys = 9;

    int fields[maxKeys + 1] = {
        -1};  ///< in order of priority, ended by a negative one; read through cmp_fields
    bool ignoreCase = false;
    int timecodeField = -1;  ///< the one key that compares by the time-code rule; -1 when none

    /// The rule for a key in ascending order.
    KeyRule rule(int field) const noexcept {
        if (field == timecodeField) return KeyRule::timecode;
        return ignoreCase ? KeyRule::ignoringCase : KeyRule::dictionary;
    }
};

extern SortKeys sortKeys;

/// The positions in `records` in sorted order: as dbr_cmp has it, or dbr_backcmp when `descending`. Reads the
/// keys that the last sortPrepare prepared. Records that compare equal keep their order; null entries come
/// last in both directions. Costs one fetch of each record's first key, and of the later ones where the
/// earlier ones are level.
std::vector<unsigned> sortedOrder(const std::vector<const dbrecord*>& records, bool descending);
