// The UTF-8 codec. It lives beside the file operations because file names need it.
#include <cstddef>
#include <string_view>

#include "support/StringFunctions.h"

namespace {

constexpr wchar_t replacement = 0xFFFD;

constexpr bool isUnicode(wchar_t c) noexcept {
    return c >= 0 && c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

struct Decoded {
    wchar_t character;
    std::size_t length;
};

/// The number of bytes in the sequence that `first` leads; 0 when it leads none.
constexpr std::size_t sequenceLength(unsigned char first) noexcept {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return 2;
    if (first >= 0xE0 && first <= 0xEF) return 3;
    if (first >= 0xF0 && first <= 0xF4) return 4;
    return 0;
}

Decoded decodeFirst(std::string_view text) noexcept {
    const auto first = static_cast<unsigned char>(text[0]);
    const Decoded stray{firstStrayByte + (first & 0x7F), 1};
    const std::size_t length = sequenceLength(first);
    if (length == 1) return {first, 1};
    if (length == 0 || length > text.size()) return stray;

    wchar_t character = first & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80) return stray;
        character = character << 6 | (next & 0x3F);
    }
    const bool overlong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    return overlong || !isUnicode(character) ? stray : Decoded{character, length};
}

void appendEncoded(LightweightString<char>& text, wchar_t c) {
    const auto continuation = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c >= firstStrayByte && c <= lastStrayByte) {
        text += static_cast<char>(0x80 | (c & 0x7F));
    } else if (!isUnicode(c)) {
        appendEncoded(text, replacement);
    } else if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        const char bytes[] = {static_cast<char>(0xC0 | c >> 6), continuation(0)};
        text.append({bytes, sizeof bytes});
    } else if (c < 0x10000) {
        const char bytes[] = {static_cast<char>(0xE0 | c >> 12), continuation(6), continuation(0)};
        text.append({bytes, sizeof bytes});
    } else {
        const char bytes[] = {static_cast<char>(0xF0 | c >> 18), continuation(12), continuation(6),
                              continuation(0)};
        text.append({bytes, sizeof bytes});
    }
}

}  // namespace

LightweightString<wchar_t> fromUTF8(const LightweightString<char>& text) {
    LightweightString<wchar_t> result;
    if (text.empty()) return result;
    result.resizeFor(text.length());
    for (std::string_view rest = text.view(); !rest.empty();) {
        const Decoded next = decodeFirst(rest);
        result += next.character;
        rest.remove_prefix(next.length);
    }
    return result;
}

LightweightString<char> toUTF8(const LightweightString<wchar_t>& text) {
    LightweightString<char> result;
    if (text.empty()) return result;
    result.resizeFor(text.length());
    for (const wchar_t c : text.view()) appendEncoded(result, c);
    return result;
}
