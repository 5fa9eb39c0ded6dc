// The one set of character rules: ASCII, whatever the locale. Bytes of 128 and above are neither space,
// letter, digit nor control.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
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

/// The capital form of an ASCII letter; every other character is its own.
template <class Char>
constexpr Char upper(Char c) noexcept {
    return c >= Char('a') && c <= Char('z') ? static_cast<Char>(c - ('a' - 'A')) : c;
}

template <class Char>
constexpr bool isLetter(Char c) noexcept {
    return fold(c) >= Char('a') && fold(c) <= Char('z');
}

/// The text from its first byte that is not white space on.
constexpr std::string_view withoutLeadingSpace(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    return text;
}

/// The same for a zero-terminated text.
constexpr const char* skipSpace(const char* text) noexcept {
    while (isSpace(*text)) ++text;
    return text;
}

/// The text without the white space around it.
constexpr std::string_view trimmed(std::string_view text) noexcept {
    text = withoutLeadingSpace(text);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
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

/// Whether two texts are equal but for the case of their letters.
inline bool equalFolded(std::string_view a, std::string_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return fold(x) == fold(y); });
}

/// The text with its letters folded.
inline std::string folded(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), fold<char>);
    return result;
}

}  // namespace Ascii
