// Functions on strings: numbers, case, flags, comparison.
#include "support/StringFunctions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace {

/// The digits of an int or unsigned, on the stack.
class Decimal {
 public:
    template <class Number>
    explicit Decimal(Number number) noexcept {
        const char* const end = std::to_chars(m_digits, m_digits + sizeof m_digits, number).ptr;
        m_length = static_cast<std::size_t>(end - m_digits);
    }

    std::string_view view() const noexcept { return {m_digits, m_length}; }

 private:
    char m_digits[16];
    std::size_t m_length;
};

template <std::size_t Count>
bool isOneOf(std::string_view text, const std::array<std::string_view, Count>& words) noexcept {
    return std::any_of(words.begin(), words.end(),
                       [text](std::string_view word) { return Ascii::equalFolded(text, word); });
}

}  // namespace

LightweightString<char>& operator+=(LightweightString<char>& text, int number) {
    return text.append(Decimal(number).view());
}

LightweightString<char>& operator+=(LightweightString<char>& text, unsigned number) {
    return text.append(Decimal(number).view());
}

namespace Zr {

LightweightString<char> StringFromInteger(int number) {
    return LightweightString<char>(Decimal(number).view());
}

unsigned UIntFromString(const LightweightString<char>& text, unsigned fallback) noexcept {
    const std::string_view digits = Ascii::trimmed(text.view());
    const char* const end = digits.data() + digits.size();
    unsigned number = 0;
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end ? number : fallback;
}

LightweightString<char> StringFromDouble(double number) {
    // Room for the largest number: sign, 309 digits, point, decimals.
    char text[330];
    constexpr int decimals = 8;
    const auto [end, error] = std::to_chars(text, std::end(text), number, std::chars_format::fixed, decimals);
    (void)error;
    return LightweightString<char>(std::string_view(text, static_cast<std::size_t>(end - text)));
}

double DoubleFromString(const char* text) noexcept {
    static const locale_t plain = ::newlocale(LC_NUMERIC_MASK, "C", nullptr);
    if (!text) return 0;
    return plain ? ::strtod_l(text, nullptr, plain) : std::strtod(text, nullptr);
}

void toLower(LightweightString<char>& text) {
    const std::string_view now = text.view();
    const auto changes = [](char c) { return Ascii::fold(c) != c; };
    if (std::none_of(now.begin(), now.end(), changes)) return;  // a shared body stays shared
    char* const first = text.writableText();
    std::transform(first, first + text.length(), first, Ascii::fold<char>);
}

LightweightString<wchar_t> WStringFromAscii(const char* text) {
    return fromUTF8(LightweightString<char>(text));
}

}  // namespace Zr

LightweightString<wchar_t> stripPathAndExt(const LightweightString<wchar_t>& fileName) {
    constexpr auto none = std::wstring_view::npos;
    std::wstring_view name = fileName.view();
    if (const auto slash = name.rfind(L'/'); slash != none) name.remove_prefix(slash + 1);
    const auto dot = name.rfind(L'.');
    const bool hasExtension = dot != none && name.find_first_not_of(L'.') < dot;
    return LightweightString<wchar_t>(hasExtension ? name.substr(0, dot) : name);
}

bool isEssentiallyEmpty(const LightweightString<char>& text) noexcept {
    return Ascii::trimmed(text.view()).empty();
}

LightweightString<char> BoolAsString(bool flag) {
    return flag ? "true" : "false";
}

bool BoolFromString(const LightweightString<char>& text, bool& flag) noexcept {
    static constexpr std::array<std::string_view, 5> yes{"t", "true", "y", "yes", "1"};
    static constexpr std::array<std::string_view, 5> no{"f", "false", "n", "no", "0"};
    const std::string_view word = Ascii::trimmed(text.view());
    const bool set = isOneOf(word, yes);
    if (!set && !isOneOf(word, no)) return false;
    flag = set;
    return true;
}

int strxcmp(const char* a, const char* b) noexcept {
    const char* const x = a ? a : "";
    const char* const y = b ? b : "";
    const int order = Ascii::compareFolded(x, y);
    return order != 0 ? order : std::strcmp(x, y);
}
