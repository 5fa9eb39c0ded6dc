// RemovalNotes: stand in for an array of rows while entries and source rows go, one after the other.
//
// To take an entry out of an array moves all those after it, and a deleted source row changes the row of
// every entry above it. The notes leave the array as it is and only note what has gone, which takes
// logarithmic time for each; so long as they are there, the array is read and changed through them alone.
//
// Thread-safety: const operations may run at once while nobody changes the notes or the array. Memory: making
// the notes throws Zr::Exception::BadAlloc; nothing else needs any.
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "view/parts/LiveSet.h"
#include "view/parts/PrefixSums.h"
#include "view/parts/RowArray.h"

/// Entries are known by the places that they had in the array when the notes were made ("slots").
///
/// They are also kept in the order of the rows they named then. A lost source row takes one away from all
/// rows above it, and those are the entries from one place in that order to its end: noted as 1 at that
/// place, so that an entry's row now is the row it named, less the sum of the notes up to its place.
class RemovalNotes {
 public:
    explicit RemovalNotes(RowArray& array);

    // --- What the array would be by now ---

    int size() const noexcept { return m_size; }
    int capacity() const noexcept { return m_capacity; }
    unsigned row(int at) const noexcept { return rowOf(slotOf(at)); }
    bool tag(int at) const noexcept { return m_array.tag(static_cast<int>(slotOf(at))); }
    void setTag(int at, bool on) noexcept { m_array.setTag(static_cast<int>(slotOf(at)), on); }

    /// Takes out entries, not all of them.
    void erase(int first, int count) noexcept;

    /// Makes the array what it would be by now. The notes are of no use after that.
    void carryOut() noexcept;

    /// Whether so little is left that new notes would be better.
    bool areMostlyOfTheGone() const noexcept {
        return static_cast<std::size_t>(m_size) < m_slotAt.size() / 4;
    }

    // --- The walk for a lost source row ---

    bool isWalking() const noexcept { return m_walking; }

    /// Begins a walk over the entries from the first on: those before the place that it has reached have been
    /// counted down for the lost row.
    void beginWalk(unsigned lost) noexcept;

    /// Walks on to the next entry that names the lost row, which is to be erased before the next call, and
    /// returns its place; -1 at the end.
    int walkOn() noexcept;

 private:
    std::size_t slotOf(int at) const noexcept { return m_liveSlots.at(static_cast<std::size_t>(at)); }
    unsigned rowOf(std::size_t slot) const noexcept;
    unsigned rowInOrder(std::size_t i) const noexcept;
    std::size_t firstInOrder(unsigned row) const noexcept;

    RowArray& m_array;
    int m_size;
    int m_capacity;

    // By place in the order of rows: the row first named, the slot. By slot: the place in that order.
    std::vector<unsigned> m_rowAt;
    std::vector<unsigned> m_slotAt;
    std::vector<unsigned> m_orderOf;
    PrefixSums m_lossesBefore;

    LiveSet m_liveSlots;
    LiveSet m_liveInOrder;

    // The tags that slots after the last entry hold: noted from the end of the array on; from one slot on
    // they are 0, as the array would have been made again.
    std::vector<unsigned char> m_tagsLeft;
    int m_cleanFrom = std::numeric_limits<int>::max();

    // While a walk is under way: entries before m_reached have been counted down, the others not yet.
    bool m_walking = false;
    unsigned m_lost = 0;
    std::size_t m_reached = 0;
};
