#include "record/CookieIndex.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr std::size_t fewestSlots = 16;

std::uint64_t hashOf(const Cookie& id) noexcept {
    std::uint64_t words[2];
    static_assert(sizeof words == sizeof(Zr::UUID));
    std::memcpy(words, id.uuid().bytes.data(), sizeof words);
    std::uint64_t mixed = (words[0] ^ static_cast<std::uint64_t>(id.type())) * 0x9E3779B97F4A7C15u;
    mixed = (mixed ^ (mixed >> 32) ^ words[1] ^ id.qualifier()) * 0xBF58476D1CE4E5B9u;
    return mixed ^ (mixed >> 31);
}

}  // namespace

void CookieIndex::clear() noexcept {
    m_slots = {};
    m_size = 0;
}

std::size_t CookieIndex::probe(const std::vector<Slot>& slots, const Cookie& id) noexcept {
    const std::size_t mask = slots.size() - 1;
    std::size_t at = hashOf(id) & mask;
    while (slots[at].used && slots[at].id != id) at = (at + 1) & mask;
    return at;
}

unsigned CookieIndex::find(const Cookie& id) const noexcept {
    if (m_size == 0) return notFound;
    const Slot& slot = m_slots[probe(m_slots, id)];
    return slot.used ? slot.row : notFound;
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
    if (find(id) == notFound) assign(id, row);
}

void CookieIndex::assign(const Cookie& id, unsigned row) {
    Slot& slot = slotFor(id);
    if (!slot.used) ++m_size;
    slot = {id, true, row};
}
