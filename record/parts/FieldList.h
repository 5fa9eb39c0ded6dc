// FieldList: the fields of a record, side by side in memory.
//
// A list has a block of memory of its own, or, where many records are made one after the other, a place in a
// block with other lists and texts (RecordMemory).
//
// Thread-safety: as a std::vector's.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "support/Export.h"
#include "support/LightweightString.h"

/// What has no comment is as a std::vector's.
class KESTA_API FieldList {
 public:
    using Field = LightweightString<char>;

    FieldList() noexcept = default;
    explicit FieldList(std::size_t count) { resize(count); }
    FieldList(const FieldList& other);
    FieldList(FieldList&& other) noexcept { swap(other); }
    FieldList& operator=(FieldList other) noexcept {
        swap(other);
        return *this;
    }
    ~FieldList();

    void swap(FieldList& other) noexcept;

    std::size_t size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }

    Field& operator[](std::size_t i) noexcept { return m_fields[i]; }
    const Field& operator[](std::size_t i) const noexcept { return m_fields[i]; }
    Field* begin() noexcept { return m_fields; }
    Field* end() noexcept { return m_fields + m_size; }
    const Field* begin() const noexcept { return m_fields; }
    const Field* end() const noexcept { return m_fields + m_size; }
    const Field* data() const noexcept { return m_fields; }

    void push_back(Field field) {
        if (m_size == m_capacity) grow(m_size + std::size_t(1));
        new (m_fields + m_size++) Field(std::move(field));
    }

    /// Drops the fields from `count` on, or appends empty ones.
    void resize(std::size_t count);

    void erase(std::size_t i) noexcept;

    /// Drops all fields and keeps their place.
    void clear() noexcept { truncate(0); }

    /// Moves to `place` in the block, which has room for `capacity` fields there, no fewer than there are.
    /// The list takes over a share of the block.
    void moveTo(Zr::SharedBlock* block, void* place, std::uint32_t capacity) noexcept;

    friend bool operator==(const FieldList& a, const FieldList& b) noexcept {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    friend bool operator!=(const FieldList& a, const FieldList& b) noexcept { return !(a == b); }

 private:
    void grow(std::size_t least);
    void truncate(std::size_t count) noexcept;
    void giveBackPlace() noexcept;

    Field* m_fields = nullptr;
    std::uint32_t m_size = 0;
    std::uint32_t m_capacity = 0;
    Zr::SharedBlock* m_block = nullptr;  // null when the fields have a block of their own
};
