#include "tools/terminal/DisplayText.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cwchar>

#include "support/LightweightString.h"
#include "support/StringFunctions.h"

namespace {

bool isPlain(char c) noexcept {
    return c >= ' ' && c <= '~';
}

bool isPlain(std::string_view text) noexcept {
    return std::all_of(text.begin(), text.end(), [](char c) { return isPlain(c); });
}

LightweightString<wchar_t> decoded(std::string_view text) {
    return fromUTF8(LightweightString<char>(text));
}

/// Line and paragraph separators, and what turns the direction of the text: a terminal that obeys them shows
/// another text than the log holds.
bool isInvisibleControl(wchar_t c) noexcept {
    return (c >= 0x80 && c <= 0x9F) || c == 0x61C || c == 0x200E || c == 0x200F ||
           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

template <class Number>
std::string formatted(const char* format, Number number) {
    char buffer[16];
    return std::string(buffer,
                       static_cast<std::size_t>(std::snprintf(buffer, sizeof buffer, format, number)));
}

std::string shownForm(wchar_t c) {
    if (c == '\n') return "\\n";
    if (c == '\t') return "\\t";
    if (c == '\r') return "\\r";
    if (c < ' ' || c == 0x7F) return formatted("\\x%02x", static_cast<unsigned>(c));
    if (isStrayByte(c)) return formatted("\\x%02x", static_cast<unsigned>(c - firstStrayByte + 0x80));
    if (isInvisibleControl(c)) return formatted("\\u%04x", static_cast<unsigned>(c));
    const std::wstring_view one(&c, 1);
    return std::string(toUTF8(LightweightString<wchar_t>(one)).view());
}

std::size_t cellsOf(wchar_t c) noexcept {
    const int cells = wcwidth(c);
    return cells < 0 ? 1 : static_cast<std::size_t>(cells);
}

std::size_t encodedLength(wchar_t c) noexcept {
    return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
}

}  // namespace

void useUnicodeWidths() noexcept {
    std::setlocale(LC_CTYPE, "C.UTF-8");
}

std::string harmless(std::string_view text) {
    if (isPlain(text)) return std::string(text);
    std::string shown;
    const LightweightString<wchar_t> characters = decoded(text);
    for (const wchar_t c : characters.view()) shown += shownForm(c);
    return shown;
}

std::string counted(std::size_t count, const char* what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

std::size_t displayWidth(std::string_view harmlessText) {
    if (isPlain(harmlessText)) return harmlessText.size();
    std::size_t cells = 0;
    const LightweightString<wchar_t> characters = decoded(harmlessText);
    for (const wchar_t c : characters.view()) cells += cellsOf(c);
    return cells;
}

std::string_view fitting(std::string_view harmlessText, std::size_t cells) {
    if (isPlain(harmlessText)) return harmlessText.substr(0, cells);
    std::size_t bytes = 0;
    const LightweightString<wchar_t> characters = decoded(harmlessText);
    for (const wchar_t c : characters.view()) {
        if (cellsOf(c) > cells) break;
        cells -= cellsOf(c);
        bytes += encodedLength(c);
    }
    return harmlessText.substr(0, bytes);
}

std::string_view cutTo(std::string_view text, std::size_t bytes) noexcept {
    if (text.size() <= bytes) return text;
    const auto continues = [&](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
    };
    std::size_t end = bytes;
    while (end > 0 && bytes - end < 3 && continues(end)) --end;
    return text.substr(0, continues(end) ? bytes : end);
}
