// RowIndex: the rows of a view. Each entry names a row of the view's source and carries a tag; its place is
// the view row.
//
// Entries lie in an array with room to spare. Slots past the last entry keep the tags that they last held,
// and an entry that is put in takes the tag of the slot it comes into: callers can see this, so what becomes
// of those tags is fixed, down to when the array grows and shrinks.
//
// Taking out an entry moves all behind it, and a deleted source row changes the row number of every entry
// above it. Done so a few times that is fine; for many rows that go one after the other it would cost rows
// times deletions. So after a few of them the index leaves the array as it is and only notes what has gone,
// which takes logarithmic time for each (see RowIndex.cpp). Any other change first brings the array up to
// date.
//
// Thread-safety: const operations may run at once while nobody changes the index. Memory: operations that
// need room throw Zr::Exception::BadAlloc and leave the index as it was.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "support/Export.h"

class KESTA_API RowIndex {
 public:
    class Loss;

    RowIndex() noexcept;
    RowIndex(const RowIndex&) = delete;
    RowIndex& operator=(const RowIndex&) = delete;
    ~RowIndex();

    int size() const noexcept { return m_size; }

    /// How many entries there is room for.
    int capacity() const noexcept { return m_capacity; }

    /// Counts how often the index has been emptied.
    unsigned generation() const noexcept { return m_generation; }

    bool contains(int at) const noexcept { return at >= 0 && at < m_size; }

    /// The source row and the tag of an entry, which must exist.
    unsigned row(int at) const noexcept;
    bool tag(int at) const noexcept;
    void setTag(int at, bool on) noexcept;

    /// Takes out all entries and gives the room back.
    void clear() noexcept;

    /// Takes out all entries and keeps the room, their tags in it.
    void restart() noexcept;

    /// Puts an entry at the end.
    void append(unsigned row);

    /// Puts entries for `count` source rows from `first` on, or for `rows`, before the entry at `at`, which
    /// is clamped to the index.
    void insert(int at, unsigned first, int count);
    void insert(int at, const std::vector<unsigned>& rows);

    /// The same as inserting each row for itself, the first at `at`, each later one a place further on. As
    /// every place is clamped, rows from a negative one on come in front of each other until it is 0.
    void insertOneByOne(int at, std::vector<unsigned> rows);

    /// Adds to the row numbers of all entries from `from` on.
    void addToRows(int from, unsigned number) noexcept;

    /// Takes out `count` entries from `first` on, all of which exist.
    void erase(int first, int count) noexcept;

    /// Puts the entry that stands at `order[i]` at place i. `order` names each entry once.
    void reorder(const std::vector<unsigned>& order);

 private:
    class Shrinking;

    void edit() noexcept;
    void flatten() noexcept;
    void sizeFor(int wanted);
    void sizeForMore(std::size_t count);
    void reallocate(int capacity, int kept);
    int makeRoom(int at, std::size_t count);
    bool canNote() const noexcept;
    bool isWorthNoting() noexcept;
    void noteRemovals() noexcept;
    void eraseNoted(int first, int count) noexcept;
    void beginLoss(unsigned deleted) noexcept;
    int findInArray(int from, unsigned deleted) noexcept;

    int m_size = 0;
    int m_capacity = 0;

    // As long as the capacity; while m_shrinking is set, as they were when it was made.
    std::vector<unsigned> m_rows;
    std::vector<unsigned char> m_tags;

    // What has gone since the array was last up to date; null when it is.
    std::unique_ptr<Shrinking> m_shrinking;

    int m_removals = 0;    // in the array, since the last other change
    int m_arrayWalks = 0;  // Losses that walk the array: it must stay up to date
    unsigned m_generation = 0;
    unsigned m_changes = 0;  // counts all changes, so that a Loss sees those that are not its own
};

/// The loss of one source row, applied to an index entry by entry.
///
/// Walks the entries from the first on. Those that name a row above the lost one are counted down as the walk
/// passes them; at one that names the lost row it stops, for the caller to take it out. What the caller then
/// does is its own affair: others may read the index, which is as far as the walk has come, and even change
/// it, in which case the walk goes on from the place it has reached. Once the index has been emptied the walk
/// is done: entries that are put in then name rows as they are without the lost one.
class KESTA_API RowIndex::Loss {
 public:
    Loss(RowIndex& index, unsigned deleted) noexcept;

    /// The place of the next entry that names the lost row, to be erased before the next call; -1 when the
    /// walk is done. A walk is to be carried to its end.
    int next() noexcept;

 private:
    void walkArray() noexcept;

    RowIndex& m_index;
    const unsigned m_deleted;
    int m_at = 0;  // where the walk stands; -1 at its end
    bool m_noted;  // the walk is the notes' own
    const unsigned m_generation;
    unsigned m_expectedChanges;  // the index's count while nobody else has changed it
};
