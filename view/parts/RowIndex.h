// RowIndex: the rows of a view. Each entry names a row of the view's source and carries a tag; its place is
// the view row.
//
// The entries lie in an array (RowArray). Where one after the other goes, that would cost rows times
// removals: after a few of them the index makes notes of what goes instead (RemovalNotes), until any other
// change brings the array up to date.
//
// Thread-safety: const operations may run at once while nobody changes the index. Memory: operations that
// need room throw Zr::Exception::BadAlloc and leave the index as it was.
#pragma once

#include <memory>
#include <vector>

#include "support/Export.h"
#include "view/parts/RowArray.h"

class RemovalNotes;

/// The operations are those of RowArray, where they are described.
class KESTA_API RowIndex {
 public:
    class Loss;

    RowIndex() noexcept;
    RowIndex(const RowIndex&) = delete;
    RowIndex& operator=(const RowIndex&) = delete;
    ~RowIndex();

    int size() const noexcept { return m_notes ? notedSize() : m_array.size(); }
    int capacity() const noexcept;

    /// Counts how often the index has been emptied.
    unsigned generation() const noexcept { return m_generation; }

    bool contains(int at) const noexcept { return at >= 0 && at < size(); }

    unsigned row(int at) const noexcept { return m_notes ? notedRow(at) : m_array.row(at); }
    bool tag(int at) const noexcept;
    void setTag(int at, bool on) noexcept;

    void clear() noexcept;
    void restart() noexcept;
    void append(unsigned row);
    void insert(int at, unsigned first, int count);
    void insert(int at, const std::vector<unsigned>& rows);
    void insertOneByOne(int at, std::vector<unsigned> rows);
    void addToRows(int from, unsigned number) noexcept;
    void erase(int first, int count) noexcept;
    void reorder(const std::vector<unsigned>& order);

 private:
    int notedSize() const noexcept;
    unsigned notedRow(int at) const noexcept;
    RowArray& edit() noexcept;
    void carryOutNotes() noexcept;
    bool canNote() const noexcept;
    bool isWorthNoting() noexcept;
    void makeNotes() noexcept;
    void beginLoss(unsigned lost) noexcept;

    RowArray m_array;
    std::unique_ptr<RemovalNotes> m_notes;  // null while the array is up to date

    int m_removals = 0;      // from the array, since the last other change
    int m_arrayWalks = 0;    // Losses that walk the array: it must stay up to date
    unsigned m_changes = 0;  // counts all changes, so that a Loss sees those that are not its own
    unsigned m_generation = 0;
};

/// The loss of one source row, applied to an index entry by entry.
///
/// Walks the entries from the first on. Those that name a row above the lost one are counted down as the walk
/// passes them; at one that names the lost row it stops, for it to be taken out. What is done at a stop is
/// free: the index may be read, which is as far as the walk has come, and even changed, in which case the
/// walk goes on from the place it has reached. Once the index has been emptied the walk is done: entries that
/// are put in then name rows as they are without the lost one.
class KESTA_API RowIndex::Loss {
 public:
    Loss(RowIndex& index, unsigned lost) noexcept;

    /// The place of the next entry that names the lost row, to be erased before the next call; -1 when the
    /// walk is done. A walk is to be carried to its end.
    int next() noexcept;

 private:
    void walkArray() noexcept;

    RowIndex& m_index;
    const unsigned m_lost;
    int m_at = 0;  // where the walk stands; -1 at its end
    bool m_noted;  // the walk is the notes' own
    const unsigned m_generation;
    unsigned m_expectedChanges;  // the index's count while nobody else has changed it
};
