// LightweightString: text that is shared until somebody writes to it.
//
// A string is a handle of two words on a counted body. The body is one block: count, length, capacity and the
// characters, always followed by a zero character. Copying a string shares its body; a writer first makes its
// own. Empty text needs no body, and a string without one reads exactly like one whose body has length 0.
// Texts that come together, as those of a log do, may lie in one block and share its count (makeInBlock).
//
// Thread-safety: as a std::string's, and different strings that share a body may be used on different
// threads. Memory: every body comes from OS()->allocator(). Operations that need room throw
// Zr::Exception::BadAlloc and leave the string as it was.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <string_view>

#include "support/Ascii.h"
#include "support/Exception.h"
#include "support/SharedBlock.h"

template <class Char>
class LightweightString {
 public:
    using View = std::basic_string_view<Char>;

    LightweightString() noexcept = default;

    /// The text up to its zero character; null is the empty text.
    LightweightString(const Char* text) : LightweightString(text ? View(text) : View()) {}

    /// The first `length` characters of `text`, zero characters among them; null is the empty text.
    LightweightString(const Char* text, unsigned length)
        : LightweightString(text ? View(text, length) : View()) {}

    explicit LightweightString(View text) {
        if (!text.empty()) m_body = Body::make(text, text.size());
    }

    /// The bytes that the string of a text takes in a block of memory with other things (makeInBlock).
    static std::size_t sizeInBlock(View text) { return Body::sizeFor(text.size()); }

    /// Makes the string of a text that is not empty at `place` in the block, which has sizeInBlock bytes
    /// there. The string takes over a share of the block.
    static LightweightString makeInBlock(Zr::SharedBlock& block, void* place, View text) noexcept {
        LightweightString string;
        string.m_body = block.adopt(Body::put(place, text, 0));  // no room: never written in place
        return string;
    }

    /// The characters, followed by a zero character. Never null; valid until the string changes or dies.
    const Char* c_str() const noexcept { return m_body ? m_body->characters() : emptyText(); }

    /// In characters, without the closing zero.
    unsigned length() const noexcept { return m_body ? m_body->length : 0; }

    bool empty() const noexcept { return length() == 0; }

    View view() const noexcept { return m_body ? View(m_body->characters(), m_body->length) : View(); }

    /// Makes the body this string's own, with room for `length` characters. Text beyond `length` is cut.
    void resizeFor(unsigned length) {
        const View kept = view().substr(0, length);
        if (m_body && m_body.useCount() == 1 && m_body->capacity >= length) {
            setLength(kept.size());
        } else {
            m_body = Body::make(kept, length);
        }
    }

    /// The characters, for writing: the body becomes this string's own. Null when the text is empty. Valid
    /// until the string is copied, changed otherwise or dies.
    Char* writableText() {
        if (empty()) return nullptr;
        resizeFor(length());
        return m_body->characters();
    }

    /// Compares with zero-terminated text ignoring ASCII case: negative, zero or positive. Null is the empty
    /// text.
    int icompare(const Char* text) const noexcept {
        const Char* a = c_str();
        const Char* b = text ? text : emptyText();
        while (*a && Ascii::fold(*a) == Ascii::fold(*b)) ++a, ++b;
        const Char x = Ascii::fold(*a);
        const Char y = Ascii::fold(*b);
        return Unsigned(x) < Unsigned(y) ? -1 : Unsigned(x) > Unsigned(y) ? 1 : 0;
    }

    /// Appends in place while the body is this string's own and has room; otherwise makes a roomier one.
    LightweightString& append(View text) {
        if (text.empty()) return *this;
        const std::size_t wanted = std::size_t(length()) + text.size();
        if (!m_body || m_body.useCount() != 1 || m_body->capacity < wanted) {
            // A body made for a longer text; `text` may lie in the old one, which stays alive until the copy
            // is done.
            const std::size_t doubled = std::min(2 * std::size_t(length()), Body::largest);
            BodyPtr roomier = Body::make(view(), std::max(wanted, doubled));
            std::memcpy(roomier->characters() + length(), text.data(), text.size() * sizeof(Char));
            m_body.swap(roomier);
        } else {
            std::memcpy(m_body->characters() + length(), text.data(), text.size() * sizeof(Char));
        }
        setLength(wanted);
        return *this;
    }

    LightweightString& operator+=(const LightweightString& text) { return append(text.view()); }
    LightweightString& operator+=(const Char* text) { return text ? append(View(text)) : *this; }
    LightweightString& operator+=(Char character) { return append(View(&character, 1)); }

    friend LightweightString operator+(LightweightString a, const LightweightString& b) { return a += b; }
    friend LightweightString operator+(LightweightString a, const Char* b) { return a += b; }
    friend LightweightString operator+(const Char* a, const LightweightString& b) {
        return LightweightString(a) += b;
    }

    friend bool operator==(const LightweightString& a, const LightweightString& b) noexcept {
        return a.m_body == b.m_body || a.view() == b.view();
    }
    friend bool operator!=(const LightweightString& a, const LightweightString& b) noexcept {
        return !(a == b);
    }
    friend bool operator==(const LightweightString& a, const Char* b) noexcept {
        return a.view() == viewOf(b);
    }
    friend bool operator!=(const LightweightString& a, const Char* b) noexcept { return !(a == b); }

    /// Order of the characters' values: narrow ones unsigned, wide ones as they are.
    friend bool operator<(const LightweightString& a, const LightweightString& b) noexcept {
        return a.view() < b.view();
    }

 private:
    struct Body;
    using BodyPtr = Zr::SharedBlock::PtrInside<Body>;

    struct Body {
        std::uint32_t length;
        std::uint32_t capacity;  // 0 in a block with other things

        static constexpr std::size_t largest = std::numeric_limits<std::uint32_t>::max() / sizeof(Char) - 64;

        Char* characters() noexcept { return reinterpret_cast<Char*>(this + 1); }

        /// The bytes of a body with room for `capacity` characters, in whole words of the count's size.
        static std::size_t sizeFor(std::size_t capacity) {
            if (capacity > largest) throw Zr::Exception::BadAlloc();
            const std::size_t size = sizeof(Body) + (capacity + 1) * sizeof(Char);
            return (size + alignof(Body) - 1) / alignof(Body) * alignof(Body);
        }

        static Body* put(void* at, View text, std::size_t capacity) noexcept {
            Body* const body = new (at) Body{static_cast<std::uint32_t>(text.size()),  //
                                             static_cast<std::uint32_t>(capacity)};
            if (!text.empty()) std::memcpy(body->characters(), text.data(), text.size() * sizeof(Char));
            body->characters()[text.size()] = Char();
            return body;
        }

        /// A body that holds `text` and has room for at least `capacity` characters, this call's share
        /// counted.
        static BodyPtr make(View text, std::size_t capacity) {
            // Blocks of the C library's heap hold 16 k + 8 bytes: the room up to there costs nothing.
            const std::size_t needed = sizeof(Zr::SharedBlock) + sizeFor(capacity);
            const std::size_t size =
                (needed <= 24 ? 24 : (needed - 8 + 15) / 16 * 16 + 8) - sizeof(Zr::SharedBlock);
            const std::size_t room = (size - sizeof(Body)) / sizeof(Char) - 1;
            Zr::SharedBlock* const block = Zr::SharedBlock::make(size, 1);
            return block->adopt(put(block->room(), text, room));
        }
    };

    using UnsignedChar = std::conditional_t<sizeof(Char) == 1, unsigned char, std::uint32_t>;
    static constexpr UnsignedChar Unsigned(Char c) noexcept { return static_cast<UnsignedChar>(c); }

    static const Char* emptyText() noexcept {
        static constexpr Char none = Char();
        return &none;
    }
    static View viewOf(const Char* text) noexcept { return text ? View(text) : View(); }

    void setLength(std::size_t length) noexcept {
        m_body->length = static_cast<std::uint32_t>(length);
        m_body->characters()[length] = Char();
    }

    BodyPtr m_body;
};

/// An order of texts that ignores ASCII case, for maps and sets.
struct IgnoringCase {
    /// Whether `a` comes before `b`.
    bool operator()(const LightweightString<char>& a, const LightweightString<char>& b) const noexcept {
        return a.icompare(b.c_str()) < 0;
    }
};

/// Append the number in decimal, with a minus sign when negative.
KESTA_API LightweightString<char>& operator+=(LightweightString<char>& text, int number);
KESTA_API LightweightString<char>& operator+=(LightweightString<char>& text, unsigned number);
