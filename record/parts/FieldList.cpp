// The memory of a list: growing, shrinking, moving.
#include "record/parts/FieldList.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "support/Exception.h"

FieldList::FieldList(const FieldList& other) {
    if (other.empty()) return;
    grow(other.size());
    std::uninitialized_copy(other.begin(), other.end(), m_fields);
    m_size = other.m_size;
}

FieldList::~FieldList() {
    clear();
    giveBackPlace();
}

void FieldList::swap(FieldList& other) noexcept {
    std::swap(m_fields, other.m_fields);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
    std::swap(m_block, other.m_block);
}

void FieldList::resize(std::size_t count) {
    if (count <= m_size) return truncate(count);
    if (count > m_capacity) grow(count);
    std::uninitialized_default_construct(end(), m_fields + count);
    m_size = static_cast<std::uint32_t>(count);
}

void FieldList::erase(std::size_t i) noexcept {
    std::move(begin() + i + 1, end(), begin() + i);
    truncate(m_size - std::size_t(1));
}

void FieldList::truncate(std::size_t count) noexcept {
    std::destroy(m_fields + count, end());
    m_size = static_cast<std::uint32_t>(count);
}

void FieldList::grow(std::size_t least) {
    constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max();
    if (least > most) throw Zr::Exception::BadAlloc();
    const std::size_t capacity = std::min(most, std::max(least, 2 * std::size_t(m_size)));
    void* const place = OS()->allocator()->allocate(capacity * sizeof(Field));
    moveTo(nullptr, place, static_cast<std::uint32_t>(capacity));
}

void FieldList::moveTo(Zr::SharedBlock* block, void* place, std::uint32_t capacity) noexcept {
    Field* const fields = static_cast<Field*>(place);
    std::uninitialized_move(begin(), end(), fields);
    std::destroy(begin(), end());
    giveBackPlace();
    m_fields = fields;
    m_capacity = capacity;
    m_block = block;
}

void FieldList::giveBackPlace() noexcept {
    if (m_block) {
        m_block->release();
    } else {
        OS()->allocator()->release(m_fields);
    }
}
