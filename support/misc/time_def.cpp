// time_def: reading and writing time codes.
#include "support/time_def.h"

#include <cstring>
#include <string_view>

#include "support/Ascii.h"

namespace {

constexpr std::size_t digitCount = 8;
constexpr std::size_t separatorCount = 3;

constexpr bool isSeparator(char c) noexcept {
    return c == ':' || c == ';' || c == '.' || c == ',';
}

/// Reads digits from `text`, two for each separator-free group, and returns whether that is what it holds.
bool readGroups(std::string_view text, std::size_t separatorLength, char* digits) noexcept {
    for (std::size_t i = 0; i < digitCount; i += 2) {
        const std::size_t at = i + i / 2 * separatorLength;
        if (!Ascii::isDigit(text[at]) || !Ascii::isDigit(text[at + 1])) return false;
        if (i > 0 && separatorLength > 0 && !isSeparator(text[at - 1])) return false;
        digits[i] = text[at];
        digits[i + 1] = text[at + 1];
    }
    return true;
}

}  // namespace

time_def::time_def(const char* text, label_t kind) {
    const std::string_view code = text ? text : "";
    if (kind == eTimecodeLabel) {
        if (code.size() == digitCount + separatorCount) {
            m_valid = readGroups(code, 1, m_digits);
            m_dropFrame = code[8] == ';' || code[8] == ',';
        } else if (code.size() == digitCount || (code.size() == digitCount + 1 && code.back() == ';')) {
            m_valid = readGroups(code, 0, m_digits);
            m_dropFrame = code.size() > digitCount;
        }
    }
    m_dropFrame = m_dropFrame && m_valid;
    if (!m_valid) m_text = LightweightString<char>(code);
}

LightweightString<char> time_def::get_database_str() const {
    if (!m_valid) return m_text;
    LightweightString<char> result(m_digits, digitCount);
    if (m_dropFrame) result += ';';
    return result;
}

LightweightString<char> time_def::get_punctuated_str() const {
    if (!m_valid) return m_text;
    const char* const d = m_digits;
    const char shown[] = {d[0], d[1], ':', d[2], d[3], ':', d[4], d[5], m_dropFrame ? ';' : ':', d[6], d[7]};
    return {shown, sizeof shown};
}
