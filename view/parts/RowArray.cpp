// RowArray: entries come and go, and the room with them.
#include "view/parts/RowArray.h"

#include <algorithm>
#include <limits>
#include <new>
#include <numeric>

#include "support/Exception.h"

namespace {

constexpr int leastCapacity = 20;

int targetFor(int wanted) noexcept {
    return std::max(wanted, leastCapacity);
}

template <class T>
typename std::vector<T>::iterator place(std::vector<T>& list, int at) noexcept {
    return list.begin() + at;
}

}  // namespace

void RowArray::clear() noexcept {
    std::vector<unsigned>().swap(m_rows);
    std::vector<unsigned char>().swap(m_tags);
    m_size = 0;
    m_capacity = 0;
}

void RowArray::append(unsigned row) {
    sizeForMore(1);
    m_rows[index(m_size)] = row;
    ++m_size;
}

void RowArray::insert(int at, unsigned first, int count) {
    const int begin = makeRoom(at, index(count));
    std::iota(place(m_rows, begin), place(m_rows, begin + count), first);
}

void RowArray::insert(int at, const std::vector<unsigned>& rows) {
    const int begin = makeRoom(at, rows.size());
    std::copy(rows.begin(), rows.end(), place(m_rows, begin));
}

// The rows go to the end first, one by one, as the room grows by steps; what the entries after their place
// would have gone through is then made up for. Each row finds the tag of the entry that it pushes on.
void RowArray::insertOneByOne(int at, std::vector<unsigned> rows) {
    const bool fromNegative = at < 0 && !rows.empty();
    if (fromNegative) {
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
    if (begin == end && !fromNegative) return;
    const unsigned char tag = m_tags[index(begin)];
    std::rotate(place(m_rows, begin), place(m_rows, end), place(m_rows, m_size));
    std::rotate(place(m_tags, begin), place(m_tags, end), place(m_tags, m_size));
    std::fill_n(place(m_tags, begin), rows.size(), tag);
}

void RowArray::addToRows(int from, unsigned number) noexcept {
    for (int at = std::max(from, 0); at < m_size; ++at) m_rows[index(at)] += number;
}

void RowArray::erase(int first, int count) noexcept {
    std::copy(place(m_rows, first + count), place(m_rows, m_size), place(m_rows, first));
    std::copy(place(m_tags, first + count), place(m_tags, m_size), place(m_tags, first));
    const int left = m_size - count;
    try {
        sizeFor(left);
    } catch (const std::bad_alloc&) {
        // A smaller array is a saving, not a need.
    }
    m_size = left;
}

void RowArray::reorder(const std::vector<unsigned>& order) {
    std::vector<unsigned> rows(order.size());
    std::vector<unsigned char> tags(order.size());
    for (std::size_t at = 0; at < order.size(); ++at) {
        rows[at] = m_rows[order[at]];
        tags[at] = m_tags[order[at]];
    }
    std::copy(rows.begin(), rows.end(), m_rows.begin());
    std::copy(tags.begin(), tags.end(), m_tags.begin());
}

std::ptrdiff_t RowArray::count(unsigned row) const noexcept {
    return std::count(m_rows.begin(), m_rows.begin() + m_size, row);
}

int RowArray::loseUpTo(int from, unsigned lost) noexcept {
    for (int at = from; at < m_size; ++at) {
        unsigned& row = m_rows[index(at)];
        if (row == lost) return at;
        if (row > lost) --row;
    }
    return -1;
}

void RowArray::move(std::size_t slot, int at, unsigned row) noexcept {
    m_rows[index(at)] = row;
    m_tags[index(at)] = m_tags[slot];
}

void RowArray::cut(int size, int capacity) noexcept {
    m_size = size;
    if (capacity == m_capacity) return;
    try {
        reallocate(capacity, capacity);
    } catch (const std::bad_alloc&) {
        // As in erase: only a saving.
    }
}

// --- The room ---

int RowArray::nextCapacity(int capacity, int wanted) noexcept {
    const int target = targetFor(wanted);
    if (target > capacity) {
        const long long doubled = std::min(2LL * capacity, 1LL * std::numeric_limits<int>::max());
        return std::max(static_cast<int>(doubled), target);
    }
    return capacity > 2LL * target ? capacity / 2 : capacity;
}

int RowArray::slotsKept(int capacity, int size, int wanted) noexcept {
    return capacity < size ? targetFor(wanted) : size;
}

void RowArray::sizeFor(int wanted) {
    if (wanted == 0) return clear();
    const int capacity = nextCapacity(m_capacity, wanted);
    if (capacity != m_capacity) reallocate(capacity, slotsKept(capacity, m_size, wanted));
}

void RowArray::sizeForMore(std::size_t count) {
    if (count > index(std::numeric_limits<int>::max() - m_size)) throw Zr::Exception::BadAlloc();
    sizeFor(m_size + static_cast<int>(count));
}

void RowArray::reallocate(int capacity, int kept) {
    std::vector<unsigned> rows(index(capacity));
    std::vector<unsigned char> tags(index(capacity));
    std::copy_n(m_rows.begin(), kept, rows.begin());
    std::copy_n(m_tags.begin(), kept, tags.begin());
    m_rows.swap(rows);
    m_tags.swap(tags);
    m_capacity = capacity;
}

// Moves the entries from `at` on up by `count`; slots keep their tags. Returns the clamped place.
int RowArray::makeRoom(int at, std::size_t count) {
    const int begin = std::clamp(at, 0, m_size);
    sizeForMore(count);
    const int newSize = m_size + static_cast<int>(count);
    std::copy_backward(place(m_rows, begin), place(m_rows, m_size), place(m_rows, newSize));
    std::copy_backward(place(m_tags, begin), place(m_tags, m_size), place(m_tags, newSize));
    m_size = newSize;
    return begin;
}
