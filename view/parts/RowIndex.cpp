#include "view/parts/RowIndex.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <utility>

#include "support/Exception.h"
#include "view/parts/LiveSet.h"
#include "view/parts/PrefixSums.h"

namespace {

constexpr int leastCapacity = 20;

// From when on noting removals is cheaper than carrying them out.
constexpr int manyEntries = 256;
constexpr int manyRemovals = 16;

std::size_t index(int at) noexcept {
    return static_cast<std::size_t>(at);
}

template <class T>
typename std::vector<T>::iterator place(std::vector<T>& list, int at) noexcept {
    return list.begin() + at;
}

}  // namespace

// The entries that were in the array when it was made, by their places there ("slots"), and which of them are
// left.
//
// The entries are also kept in the order of the rows they name. A lost source row takes one away from all
// rows above it, and those are the entries from one place in that order to its end: noted as 1 at that place,
// so that an entry's row now is the row it named, less the sum of the notes up to its place.
class RowIndex::Shrinking {
 public:
    Shrinking(const std::vector<unsigned>& rows, int count)
        : Shrinking(sortedByRow(rows, index(count)), index(count)) {}

    std::size_t slots() const noexcept { return m_slotAt.size(); }

    std::size_t slotOf(int at) const noexcept { return m_liveSlots.at(index(at)); }
    int placeOf(std::size_t slot) const noexcept { return static_cast<int>(m_liveSlots.countBelow(slot)); }

    unsigned row(std::size_t slot) const noexcept {
        const unsigned row = rowInOrder(m_orderOf[slot]);
        return m_walking && slot < m_reached && row > m_lost ? row - 1 : row;
    }

    void erase(std::size_t slot) noexcept {
        m_liveSlots.remove(slot);
        m_liveInOrder.remove(m_orderOf[slot]);
    }

    // --- The walk for a lost source row ---

    bool isWalking() const noexcept { return m_walking; }

    void beginWalk(unsigned lost) noexcept {
        m_walking = true;
        m_lost = lost;
        m_reached = 0;
    }

    /// Moves on to the next slot that names the lost row and answers its place; at the end, -1.
    int walkOn() noexcept {
        const std::size_t next = m_liveInOrder.firstFrom(firstInOrder(m_lost));
        if (next < slots() && rowInOrder(next) == m_lost) {
            m_reached = m_slotAt[next];
            return placeOf(m_reached);
        }
        if (m_lost != std::numeric_limits<unsigned>::max()) {
            const std::size_t above = firstInOrder(m_lost + 1);
            if (above < slots()) m_lossesBefore.add(above, 1);
        }
        m_walking = false;
        return -1;
    }

    /// The tags that slots behind the last entry hold; filled from the end of the array on.
    std::vector<unsigned char> tagsLeft;

    /// From this slot on such tags are 0, as the array has been made anew.
    int cleanFrom = std::numeric_limits<int>::max();

 private:
    using RowAndSlot = std::uint64_t;  // the row in the upper half

    static std::vector<RowAndSlot> sortedByRow(const std::vector<unsigned>& rows, std::size_t count) {
        std::vector<RowAndSlot> order(count);
        for (std::size_t slot = 0; slot < count; ++slot) order[slot] = RowAndSlot(rows[slot]) << 32 | slot;
        std::sort(order.begin(), order.end());
        return order;
    }

    Shrinking(const std::vector<RowAndSlot>& order, std::size_t count)
        : tagsLeft(count),
          m_rowAt(count),
          m_slotAt(count),
          m_orderOf(count),
          m_lossesBefore(std::vector<unsigned>(count)),
          m_liveSlots(count),
          m_liveInOrder(count) {
        for (std::size_t i = 0; i < count; ++i) {
            m_rowAt[i] = static_cast<unsigned>(order[i] >> 32);
            m_slotAt[i] = static_cast<unsigned>(order[i]);
            m_orderOf[m_slotAt[i]] = static_cast<unsigned>(i);
        }
    }

    unsigned rowInOrder(std::size_t i) const noexcept { return m_rowAt[i] - m_lossesBefore.sumBefore(i + 1); }

    // The first in the order that names `row` or one above it. Entries that have gone count as well, they
    // stay in order.
    std::size_t firstInOrder(unsigned row) const noexcept {
        return m_lossesBefore
            .firstNot([&](std::size_t i, unsigned losses) { return m_rowAt[i] - losses < row; })
            .place;
    }

    // By place in the order of rows: the row first named, the slot. By slot: the place in that order.
    std::vector<unsigned> m_rowAt;
    std::vector<unsigned> m_slotAt;
    std::vector<unsigned> m_orderOf;
    PrefixSums m_lossesBefore;

    LiveSet m_liveSlots;
    LiveSet m_liveInOrder;

    // While a walk is under way: entries before m_reached have been counted down, the others not yet.
    bool m_walking = false;
    unsigned m_lost = 0;
    std::size_t m_reached = 0;
};

RowIndex::RowIndex() noexcept = default;
RowIndex::~RowIndex() = default;

unsigned RowIndex::row(int at) const noexcept {
    return m_shrinking ? m_shrinking->row(m_shrinking->slotOf(at)) : m_rows[index(at)];
}

bool RowIndex::tag(int at) const noexcept {
    return m_tags[m_shrinking ? m_shrinking->slotOf(at) : index(at)] != 0;
}

void RowIndex::setTag(int at, bool on) noexcept {
    m_tags[m_shrinking ? m_shrinking->slotOf(at) : index(at)] = on ? 1 : 0;
}

void RowIndex::clear() noexcept {
    ++m_changes;
    ++m_generation;
    m_shrinking.reset();
    std::vector<unsigned>().swap(m_rows);
    std::vector<unsigned char>().swap(m_tags);
    m_size = 0;
    m_capacity = 0;
    m_removals = 0;
}

void RowIndex::restart() noexcept {
    edit();
    ++m_generation;
    m_size = 0;
}

void RowIndex::append(unsigned row) {
    edit();
    sizeForMore(1);
    m_rows[index(m_size)] = row;
    ++m_size;
}

void RowIndex::insert(int at, unsigned first, int count) {
    const int begin = makeRoom(at, index(count));
    std::iota(place(m_rows, begin), place(m_rows, begin + count), first);
}

void RowIndex::insert(int at, const std::vector<unsigned>& rows) {
    const int begin = makeRoom(at, rows.size());
    std::copy(rows.begin(), rows.end(), place(m_rows, begin));
}

// The rows go to the end first, one by one, as the room grows by steps; what the entries behind their place
// would have gone through is then made up for. Each row finds the tag of the entry that it pushes on.
void RowIndex::insertOneByOne(int at, std::vector<unsigned> rows) {
    const bool inFront = at < 0 && !rows.empty();
    if (inFront) {
        const auto countedUp = std::min(rows.size(), static_cast<std::size_t>(-static_cast<long long>(at)));
        const auto middle = rows.begin() + static_cast<std::ptrdiff_t>(countedUp);
        std::reverse(rows.begin(), middle);
        std::rotate(rows.begin(), middle, rows.end());
    }

    const int end = m_size;
    const int begin = std::clamp(at, 0, end);
    try {
        for (const unsigned row : rows) append(row);
    } catch (...) {
        m_size = end;
        throw;
    }
    if (begin == end && !inFront) return;
    const unsigned char tag = m_tags[index(begin)];
    std::rotate(place(m_rows, begin), place(m_rows, end), place(m_rows, m_size));
    std::rotate(place(m_tags, begin), place(m_tags, end), place(m_tags, m_size));
    std::fill_n(place(m_tags, begin), rows.size(), tag);
}

void RowIndex::addToRows(int from, unsigned number) noexcept {
    edit();
    for (int at = std::max(from, 0); at < m_size; ++at) m_rows[index(at)] += number;
}

void RowIndex::erase(int first, int count) noexcept {
    ++m_changes;
    if (count == m_size) return clear();
    if (isWorthNoting()) noteRemovals();
    if (m_shrinking) return eraseNoted(first, count);

    std::copy(place(m_rows, first + count), place(m_rows, m_size), place(m_rows, first));
    std::copy(place(m_tags, first + count), place(m_tags, m_size), place(m_tags, first));
    try {
        sizeFor(m_size - count);
    } catch (const std::bad_alloc&) {
        // A smaller array is a saving, not a need.
    }
    m_size -= count;
}

void RowIndex::reorder(const std::vector<unsigned>& order) {
    edit();
    std::vector<unsigned> rows(order.size());
    std::vector<unsigned char> tags(order.size());
    for (std::size_t at = 0; at < order.size(); ++at) {
        rows[at] = m_rows[order[at]];
        tags[at] = m_tags[order[at]];
    }
    std::copy(rows.begin(), rows.end(), m_rows.begin());
    std::copy(tags.begin(), tags.end(), m_tags.begin());
}

// Every change but the removal of entries begins with this.
void RowIndex::edit() noexcept {
    ++m_changes;
    flatten();
    m_removals = 0;
}

// --- The room ---

namespace {

int targetFor(int wanted) noexcept {
    return std::max(wanted, leastCapacity);
}

// The capacity that follows `capacity` when there is to be room for `wanted` entries.
int nextCapacity(int capacity, int wanted) noexcept {
    const int target = targetFor(wanted);
    if (target > capacity) {
        const long long doubled = std::min(2LL * capacity, 1LL * std::numeric_limits<int>::max());
        return std::max(static_cast<int>(doubled), target);
    }
    return capacity > 2LL * target ? capacity / 2 : capacity;
}

// How many slots survive the change to another capacity; the others come out empty.
int slotsKept(int capacity, int size, int wanted) noexcept {
    return capacity < size ? targetFor(wanted) : size;
}

}  // namespace

void RowIndex::sizeFor(int wanted) {
    if (wanted == 0) return clear();
    const int capacity = nextCapacity(m_capacity, wanted);
    if (capacity != m_capacity) reallocate(capacity, slotsKept(capacity, m_size, wanted));
}

void RowIndex::sizeForMore(std::size_t count) {
    if (count > index(std::numeric_limits<int>::max() - m_size)) throw Zr::Exception::BadAlloc();
    sizeFor(m_size + static_cast<int>(count));
}

void RowIndex::reallocate(int capacity, int kept) {
    std::vector<unsigned> rows(index(capacity));
    std::vector<unsigned char> tags(index(capacity));
    std::copy_n(m_rows.begin(), kept, rows.begin());
    std::copy_n(m_tags.begin(), kept, tags.begin());
    m_rows.swap(rows);
    m_tags.swap(tags);
    m_capacity = capacity;
}

// Moves the entries from `at` on up by `count`; slots keep their tags. Answers the clamped place.
int RowIndex::makeRoom(int at, std::size_t count) {
    edit();
    const int begin = std::clamp(at, 0, m_size);
    sizeForMore(count);
    const int newSize = m_size + static_cast<int>(count);
    std::copy_backward(place(m_rows, begin), place(m_rows, m_size), place(m_rows, newSize));
    std::copy_backward(place(m_tags, begin), place(m_tags, m_size), place(m_tags, newSize));
    m_size = newSize;
    return begin;
}

// --- Notes of what has gone ---

bool RowIndex::canNote() const noexcept {
    return !m_shrinking && m_arrayWalks == 0 && m_size >= manyEntries;
}

bool RowIndex::isWorthNoting() noexcept {
    return canNote() && ++m_removals > manyRemovals;
}

void RowIndex::noteRemovals() noexcept {
    try {
        m_shrinking = std::make_unique<Shrinking>(m_rows, m_size);
    } catch (const std::bad_alloc&) {
        // It goes without, only slower.
    }
}

void RowIndex::eraseNoted(int first, int count) noexcept {
    // As the entries behind move down, the last slots keep what they hold.
    for (int at = m_size - count; at < m_size; ++at) m_shrinking->tagsLeft[index(at)] = tag(at);
    for (int i = 0; i < count; ++i) m_shrinking->erase(m_shrinking->slotOf(first));

    const int capacity = nextCapacity(m_capacity, m_size - count);
    if (capacity != m_capacity) m_shrinking->cleanFrom = slotsKept(capacity, m_size, m_size - count);
    m_capacity = capacity;
    m_size -= count;
}

// Brings the array up to date.
void RowIndex::flatten() noexcept {
    if (!m_shrinking) return;
    const std::unique_ptr<Shrinking> notes = std::move(m_shrinking);
    for (int at = 0; at < m_size; ++at) {
        const std::size_t slot = notes->slotOf(at);
        m_rows[index(at)] = notes->row(slot);
        m_tags[index(at)] = m_tags[slot];
    }
    std::copy(place(notes->tagsLeft, m_size), notes->tagsLeft.end(), place(m_tags, m_size));
    const std::size_t clean = std::min(index(notes->cleanFrom), m_tags.size());
    std::fill(m_tags.begin() + static_cast<std::ptrdiff_t>(clean), m_tags.end(),
              static_cast<unsigned char>(0));

    const int capacity = std::exchange(m_capacity, static_cast<int>(m_rows.size()));
    ++m_changes;
    m_removals = 0;
    if (capacity == m_capacity) return;
    try {
        reallocate(capacity, capacity);
    } catch (const std::bad_alloc&) {
        // As above: only a saving.
    }
}

// --- Lost source rows ---

void RowIndex::beginLoss(unsigned deleted) noexcept {
    ++m_changes;
    // A walk that another one interrupts, and notes mostly of what has gone, are not worth going on with.
    if (m_shrinking && (m_shrinking->isWalking() || index(m_size) < m_shrinking->slots() / 4)) flatten();
    // A walk over the array keeps it up to date to its end: many entries for one row are counted beforehand.
    const auto lost = [&] { return std::count(m_rows.begin(), place(m_rows, m_size), deleted); };
    if (isWorthNoting() || (canNote() && lost() > manyRemovals)) noteRemovals();
}

int RowIndex::findInArray(int from, unsigned deleted) noexcept {
    for (int at = from; at < m_size; ++at) {
        unsigned& row = m_rows[index(at)];
        if (row == deleted) return at;
        if (row > deleted) --row;
    }
    return -1;
}

RowIndex::Loss::Loss(RowIndex& index, unsigned deleted) noexcept
    : m_index(index), m_deleted(deleted), m_generation(index.m_generation) {
    index.beginLoss(deleted);
    m_noted = index.m_shrinking != nullptr;
    m_expectedChanges = index.m_changes;
    if (m_noted) {
        index.m_shrinking->beginWalk(deleted);
    } else {
        walkArray();
    }
}

int RowIndex::Loss::next() noexcept {
    if (m_at < 0) return -1;
    if (m_index.m_generation != m_generation) {
        if (!m_noted) --m_index.m_arrayWalks;
        return m_at = -1;
    }
    if (m_noted && m_index.m_shrinking && m_index.m_changes == m_expectedChanges) {
        ++m_expectedChanges;  // by the caller's erase
        return m_at = m_index.m_shrinking->walkOn();
    }
    if (m_noted) walkArray();
    m_at = m_index.findInArray(m_at, m_deleted);
    if (m_at < 0) --m_index.m_arrayWalks;
    return m_at;
}

void RowIndex::Loss::walkArray() noexcept {
    m_noted = false;
    m_index.flatten();
    ++m_index.m_arrayWalks;
}
