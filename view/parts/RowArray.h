// RowArray: entries in an array with room to spare, by their places.
//
// Slots past the last entry keep the tags that they last held, and an entry that is put in takes the tag of
// the slot it comes into. Views show this to their users, so what becomes of those tags is fixed, down to
// when the array grows and shrinks: twice the room when there is too little, half of it when more than half
// is spare, never less than 20 slots unless there are no entries at all.
//
// Thread-safety: const operations may run at once while nobody changes the array. Memory: operations that
// need room throw Zr::Exception::BadAlloc and leave the array as it was.
#pragma once

#include <cstddef>
#include <vector>

/// Places and counts are those of entries that exist, unless an operation says otherwise.
class RowArray {
 public:
    int size() const noexcept { return m_size; }
    int capacity() const noexcept { return m_capacity; }

    unsigned row(int at) const noexcept { return m_rows[index(at)]; }
    bool tag(int at) const noexcept { return m_tags[index(at)] != 0; }

    /// Sets the tag of an entry or of a slot after the last one.
    void setTag(int at, bool on) noexcept { m_tags[index(at)] = on ? 1 : 0; }

    /// Takes out all entries and gives the room back.
    void clear() noexcept;

    /// Takes out all entries and keeps the room, their tags in it.
    void restart() noexcept { m_size = 0; }

    /// Puts an entry at the end.
    void append(unsigned row);

    /// Puts entries for `count` rows from `first` on, or for `rows`, before the entry at `at`, which is
    /// clamped to the array.
    void insert(int at, unsigned first, int count);
    void insert(int at, const std::vector<unsigned>& rows);

    /// The same as inserting each row for itself, the first at `at`, each later one a place further on. As
    /// every place is clamped, rows from a negative one on come before each other until it is 0.
    void insertOneByOne(int at, std::vector<unsigned> rows);

    /// Adds to the rows of all entries from `from` on, which may be negative.
    void addToRows(int from, unsigned number) noexcept;

    void erase(int first, int count) noexcept;

    /// Puts the entry that stands at `order[i]` at place i. `order` names each entry once.
    void reorder(const std::vector<unsigned>& order);

    /// How many entries name `row`.
    std::ptrdiff_t count(unsigned row) const noexcept;

    /// Counts down the entries from `from` on that name a row above `lost`, up to the next one that names
    /// `lost` itself. Returns its place; -1 at the end.
    int loseUpTo(int from, unsigned lost) noexcept;

    // --- For notes that stand in for the array while it is left as it is ---

    /// The capacity that follows `capacity` when there is to be room for `wanted` entries, at least one; and
    /// how many of the slots survive that change: the others come out empty.
    static int nextCapacity(int capacity, int wanted) noexcept;
    static int slotsKept(int capacity, int size, int wanted) noexcept;

    /// Moves the entry of a slot to the place `at`, which is not after it, and gives it another row.
    void move(std::size_t slot, int at, unsigned row) noexcept;

    /// Makes the first `size` slots the entries and `capacity`, which is not above the present one, the room;
    /// the room stays where there is no memory for a smaller array.
    void cut(int size, int capacity) noexcept;

 private:
    static std::size_t index(int at) noexcept { return static_cast<std::size_t>(at); }

    void sizeFor(int wanted);
    void sizeForMore(std::size_t count);
    void reallocate(int capacity, int kept);
    int makeRoom(int at, std::size_t count);

    int m_size = 0;
    int m_capacity = 0;
    std::vector<unsigned> m_rows;  // both as long as the capacity
    std::vector<unsigned char> m_tags;
};
