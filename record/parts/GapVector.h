// GapVector: a list with a movable gap, for rows that come and go.
//
// Elements stand in one block with a hole somewhere between them. Erasing widens the hole, inserting fills
// it, and either first moves it to where it is needed. So a walk that erases scattered elements from front to
// back costs one pass over the list altogether, however many there are, and the list is whole after each
// step.
//
// Invariant: elements below m_gapBegin stand at their own index, all others m_gapSize further on.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "support/Exception.h"

template <class T>
class GapVector {
    static_assert(std::is_nothrow_move_constructible_v<T> && std::is_nothrow_default_constructible_v<T>);

 public:
    GapVector() noexcept = default;
    GapVector(const GapVector&) = delete;
    GapVector& operator=(const GapVector&) = delete;
    ~GapVector() {
        clear();
        ::operator delete(m_data);
    }

    std::size_t size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }

    T& operator[](std::size_t i) noexcept { return m_data[slot(i)]; }
    const T& operator[](std::size_t i) const noexcept { return m_data[slot(i)]; }

    /// A copy of the element; past the end a default-made one.
    T valueAt(std::size_t i) const { return i < m_size ? (*this)[i] : T(); }

    void push_back(T value) {
        moveGap(m_size);
        if (m_gapSize == 0) grow(1);
        new (m_data + m_size) T(std::move(value));
        ++m_size, ++m_gapBegin, --m_gapSize;
    }

    /// Default-made elements before `at`, which is at most the size.
    void insert(std::size_t at, std::size_t count) {
        if (m_gapSize < count) {
            moveGap(m_size);
            grow(count);
        }
        moveGap(at);
        std::uninitialized_value_construct_n(m_data + at, count);
        m_size += count, m_gapBegin += count, m_gapSize -= count;
    }

    /// Removes `count` elements from `first` on, all of which exist.
    void erase(std::size_t first, std::size_t count) noexcept {
        if (count == 0) return;
        // The nearer way: the hole comes to the front of the range or to its end.
        if (m_gapBegin > first && m_gapBegin < first + count) {
            moveGap(first);
        } else {
            moveGap(m_gapBegin <= first ? first : first + count);
        }
        T* const dead = m_gapBegin == first ? m_data + first + m_gapSize : m_data + first;
        m_gapBegin = first;
        m_gapSize += count;
        m_size -= count;
        std::destroy_n(dead, count);
    }

    void clear() noexcept { erase(0, m_size); }

    /// Room for `count` elements altogether.
    void reserve(std::size_t count) {
        if (count <= m_size + m_gapSize) return;
        moveGap(m_size);
        grow(count - m_size);
    }

    /// All elements side by side, for sorting; valid until the list changes.
    T* contiguous() noexcept {
        moveGap(m_size);
        return m_data;
    }

 private:
    std::size_t slot(std::size_t i) const noexcept { return i < m_gapBegin ? i : i + m_gapSize; }

    void moveGap(std::size_t to) noexcept {
        if (to < m_gapBegin) {
            relocate(m_data + to, m_gapBegin - to, m_data + to + m_gapSize);
        } else if (to > m_gapBegin) {
            relocate(m_data + m_gapBegin + m_gapSize, to - m_gapBegin, m_data + m_gapBegin);
        }
        m_gapBegin = to;
    }

    // Moves `count` elements to raw memory that may overlap them.
    void relocate(T* from, std::size_t count, T* to) noexcept {
        if (m_gapSize == 0) return;
        const auto one = [](T* source, T* target) {
            new (target) T(std::move(*source));
            source->~T();
        };
        if (to < from) {
            for (std::size_t i = 0; i < count; ++i) one(from + i, to + i);
        } else {
            for (std::size_t i = count; i-- > 0;) one(from + i, to + i);
        }
    }

    // Called with the gap at the end; room for at least `extra` more elements.
    void grow(std::size_t extra) {
        const std::size_t capacity = std::max(m_size + extra, m_size + m_size / 2 + 8);
        if (capacity > static_cast<std::size_t>(-1) / sizeof(T)) throw Zr::Exception::BadAlloc();
        T* const data = static_cast<T*>(::operator new(capacity * sizeof(T)));
        std::uninitialized_move_n(m_data, m_size, data);
        std::destroy_n(m_data, m_size);
        ::operator delete(m_data);
        m_data = data;
        m_gapSize = capacity - m_size;
    }

    T* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_gapBegin = 0;
    std::size_t m_gapSize = 0;
};
