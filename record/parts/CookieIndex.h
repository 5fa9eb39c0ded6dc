// CookieIndex: rows by identifier.
//
// One row for each identifier, found in constant time: a table of slots, each tried in turn from the one the
// identifier's bits name (open addressing), at most half of them in use.
#pragma once

#include <cstddef>
#include <vector>

#include "support/Cookie.h"
#include "support/NotFound.h"

class CookieIndex {
 public:
    bool empty() const noexcept { return m_size == 0; }
    void clear() noexcept;

    /// The row filed under `id`, or Zr::notFound.
    unsigned find(const Cookie& id) const noexcept;

    /// Files `row` under `id` unless a row is there already.
    void insert(const Cookie& id, unsigned row);

    /// Files `row` under `id`, replacing the row that is there.
    void assign(const Cookie& id, unsigned row);

    /// Room for `count` identifiers altogether.
    void reserve(std::size_t count);

 private:
    struct Slot {
        Cookie id;
        bool used = false;
        unsigned row = 0;
    };

    Slot& slotFor(const Cookie& id);
    void fill(Slot& slot, const Cookie& id, unsigned row) noexcept;
    static std::size_t probe(const std::vector<Slot>& slots, const Cookie& id) noexcept;

    std::vector<Slot> m_slots;  // a power of two of them, or none
    std::size_t m_size = 0;
};
