// The one set of character rules: ASCII, whatever the locale. Bytes of 128 and above are neither space,
// letter, digit nor control.
#pragma once

#include <cstddef>
#include <string_view>

namespace Ascii {

/// Space, tab, line feed, vertical tab, form feed or carriage return.
template <class Char>
constexpr bool isSpace(Char c) noexcept {
    return c == Char(' ') || (c >= Char('\t') && c <= Char('\r'));
}

constexpr bool isControl(char c) noexcept {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

template <class Char>
constexpr bool isDigit(Char c) noexcept {
    return c >= Char('0') && c <= Char('9');
}

/// The lower-case form of an ASCII letter; every other character is its own.
template <class Char>
constexpr Char fold(Char c) noexcept {
    return c >= Char('A') && c <= Char('Z') ? static_cast<Char>(c + ('a' - 'A')) : c;
}

/// Whether the text is empty or holds nothing but white space.
inline bool isBlank(std::string_view text) noexcept {
    for (const char c : text) {
        if (!isSpace(c)) return false;
    }
    return true;
}

/// Compares two zero-terminated texts by their folded bytes, at most `limit` of them: negative, zero or
/// positive.
inline int compareFolded(const char* a, const char* b,
                         std::size_t limit = static_cast<std::size_t>(-1)) noexcept {
    for (; limit != 0; ++a, ++b, --limit) {
        const auto x = static_cast<unsigned char>(fold(*a));
        const auto y = static_cast<unsigned char>(fold(*b));
        if (x != y || x == 0) return x - y;
    }
    return 0;
}

}  // namespace Ascii
