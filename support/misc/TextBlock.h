// TextBlock: room for characters, filled from its front.
//
// Thread-safety: one thread at a time.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

#include "support/OS.h"

class TextBlock {
 public:
    static constexpr std::size_t usualCapacity = std::size_t(1) << 16;

    TextBlock() noexcept = default;
    explicit TextBlock(std::size_t capacity)
        : m_text(static_cast<char*>(OS()->allocator()->allocate(capacity))), m_capacity(capacity) {}
    TextBlock(TextBlock&& other) noexcept
        : m_text(std::exchange(other.m_text, nullptr)),
          m_size(std::exchange(other.m_size, 0)),
          m_capacity(std::exchange(other.m_capacity, 0)) {}
    TextBlock& operator=(TextBlock&& other) noexcept {
        std::swap(m_text, other.m_text);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
        return *this;
    }
    ~TextBlock() {
        if (m_text) OS()->allocator()->release(m_text);
    }

    /// What the block holds; valid until it changes.
    std::string_view view() const noexcept { return {m_text, m_size}; }

    std::size_t capacity() const noexcept { return m_capacity; }
    std::size_t room() const noexcept { return m_capacity - m_size; }

    /// Where the room begins. Who has written there says up to where.
    char* end() const noexcept { return m_text + m_size; }
    void extendTo(const char* end) noexcept { m_size = static_cast<std::size_t>(end - m_text); }

    void clear() noexcept { m_size = 0; }

    void dropFront(std::size_t count) noexcept {
        if (count == 0) return;
        m_size -= count;
        std::memmove(m_text, m_text + count, m_size);
    }

    /// Keeps what the block holds, which fits.
    void reallocate(std::size_t capacity) {
        TextBlock larger(capacity);
        if (m_size != 0) std::memcpy(larger.m_text, m_text, m_size);
        larger.m_size = m_size;
        *this = std::move(larger);
    }

 private:
    char* m_text = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};
