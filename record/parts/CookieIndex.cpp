// The table of slots: probing, growing.
#include "record/parts/CookieIndex.h"

namespace {

constexpr std::size_t fewestSlots = 16;

}  // namespace

void CookieIndex::clear() noexcept {
    m_slots = {};
    m_size = 0;
}

std::size_t CookieIndex::probe(const std::vector<Slot>& slots, const Cookie& id) noexcept {
    const std::size_t mask = slots.size() - 1;
    std::size_t at = id.hash() & mask;
    while (slots[at].used && slots[at].id != id) at = (at + 1) & mask;
    return at;
}

unsigned CookieIndex::find(const Cookie& id) const noexcept {
    if (m_size == 0) return Zr::notFound;
    const Slot& slot = m_slots[probe(m_slots, id)];
    return slot.used ? slot.row : Zr::notFound;
}

void CookieIndex::reserve(std::size_t count) {
    std::size_t wanted = fewestSlots;
    while (wanted < 2 * count) wanted *= 2;
    if (wanted <= m_slots.size()) return;
    std::vector<Slot> roomier(wanted);
    for (const Slot& slot : m_slots) {
        if (slot.used) roomier[probe(roomier, slot.id)] = slot;
    }
    m_slots.swap(roomier);
}

CookieIndex::Slot& CookieIndex::slotFor(const Cookie& id) {
    reserve(m_size + 1);
    return m_slots[probe(m_slots, id)];
}

void CookieIndex::insert(const Cookie& id, unsigned row) {
    Slot& slot = slotFor(id);
    if (!slot.used) fill(slot, id, row);
}

void CookieIndex::assign(const Cookie& id, unsigned row) {
    Slot& slot = slotFor(id);
    if (!slot.used) fill(slot, id, row);
    slot.row = row;
}

void CookieIndex::fill(Slot& slot, const Cookie& id, unsigned row) noexcept {
    slot = {id, true, row};
    ++m_size;
}
