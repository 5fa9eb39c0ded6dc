// RemovalNotes: what has gone, in logarithmic time.
#include "view/parts/RemovalNotes.h"

#include <algorithm>
#include <cstdint>

RemovalNotes::RemovalNotes(RowArray& array)
    : m_array(array),
      m_size(array.size()),
      m_capacity(array.capacity()),
      m_rowAt(static_cast<std::size_t>(m_size)),
      m_slotAt(m_rowAt.size()),
      m_orderOf(m_rowAt.size()),
      m_lossesBefore(std::vector<unsigned>(m_rowAt.size())),
      m_liveSlots(m_rowAt.size()),
      m_liveInOrder(m_rowAt.size()),
      m_tagsLeft(m_rowAt.size()) {
    using RowAndSlot = std::uint64_t;  // the row in the upper half
    std::vector<RowAndSlot> order(m_rowAt.size());
    for (std::size_t slot = 0; slot < order.size(); ++slot)
        order[slot] = RowAndSlot(array.row(static_cast<int>(slot))) << 32 | slot;
    std::sort(order.begin(), order.end());
    for (std::size_t i = 0; i < order.size(); ++i) {
        m_rowAt[i] = static_cast<unsigned>(order[i] >> 32);
        m_slotAt[i] = static_cast<unsigned>(order[i]);
        m_orderOf[m_slotAt[i]] = static_cast<unsigned>(i);
    }
}

unsigned RemovalNotes::rowOf(std::size_t slot) const noexcept {
    const unsigned row = rowInOrder(m_orderOf[slot]);
    return m_walking && slot < m_reached && row > m_lost ? row - 1 : row;
}

unsigned RemovalNotes::rowInOrder(std::size_t i) const noexcept {
    return m_rowAt[i] - m_lossesBefore.sumBefore(i + 1);
}

// The first in the order that names `row` or one above it. Entries that have gone count as well, they stay in
// order.
std::size_t RemovalNotes::firstInOrder(unsigned row) const noexcept {
    return m_lossesBefore.firstNot([&](std::size_t i, unsigned losses) { return m_rowAt[i] - losses < row; })
        .place;
}

void RemovalNotes::erase(int first, int count) noexcept {
    // As the entries after them move down, the last slots keep what they hold.
    const int left = m_size - count;
    for (int at = left; at < m_size; ++at) m_tagsLeft[static_cast<std::size_t>(at)] = tag(at);
    for (int i = 0; i < count; ++i) {
        const std::size_t slot = slotOf(first);
        m_liveSlots.remove(slot);
        m_liveInOrder.remove(m_orderOf[slot]);
    }
    const int capacity = RowArray::nextCapacity(m_capacity, left);
    if (capacity != m_capacity) m_cleanFrom = RowArray::slotsKept(capacity, m_size, left);
    m_capacity = capacity;
    m_size = left;
}

void RemovalNotes::carryOut() noexcept {
    for (int at = 0; at < m_size; ++at) {
        const std::size_t slot = slotOf(at);
        m_array.move(slot, at, rowOf(slot));
    }
    for (std::size_t at = static_cast<std::size_t>(m_size); at < m_tagsLeft.size(); ++at)
        m_array.setTag(static_cast<int>(at), m_tagsLeft[at] != 0);
    for (int at = m_cleanFrom; at < m_array.capacity(); ++at) m_array.setTag(at, false);
    m_array.cut(m_size, m_capacity);
}

void RemovalNotes::beginWalk(unsigned lost) noexcept {
    m_walking = true;
    m_lost = lost;
    m_reached = 0;
}

int RemovalNotes::walkOn() noexcept {
    const std::size_t next = m_liveInOrder.firstFrom(firstInOrder(m_lost));
    if (next < m_slotAt.size() && rowInOrder(next) == m_lost) {
        m_reached = m_slotAt[next];
        return static_cast<int>(m_liveSlots.countBelow(m_reached));
    }
    if (m_lost != std::numeric_limits<unsigned>::max()) {
        const std::size_t above = firstInOrder(m_lost + 1);
        if (above < m_slotAt.size()) m_lossesBefore.add(above, 1);
    }
    m_walking = false;
    return -1;
}
