#include "tools/timeline/SvgWriter.h"

#include <algorithm>
#include <charconv>

#include "support/StringFunctions.h"

namespace {

constexpr wchar_t replacement = 0xFFFD;

/// Surrogates are among these: decoding gives a byte that is no UTF-8 as one.
bool isForbidden(wchar_t c) noexcept {
    if (c < ' ') return c != '\n' && c != '\t';
    return (c >= 0x7F && c <= 0x9F) || (c >= 0xD800 && c <= 0xDFFF) || (c & 0xFFFE) == 0xFFFE;
}

}  // namespace

std::string xmlCharacters(std::string_view bytes) {
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; })) {
        return std::string(bytes);
    }
    LightweightString<wchar_t> characters = fromUTF8(LightweightString<char>(bytes));
    wchar_t* const begin = characters.writableText();
    std::replace_if(begin, begin + characters.length(), isForbidden, replacement);
    return std::string(toUTF8(characters).view());
}

SvgWriter::Value::Value(double number) {
    char text[64];
    const char* const end = std::to_chars(text, text + sizeof text, number, std::chars_format::fixed, 2).ptr;
    m_text.assign(text, static_cast<std::size_t>(end - text));
    m_text.erase(m_text.find_last_not_of('0') + 1);
    if (m_text.back() == '.') m_text.pop_back();
}

void SvgWriter::open(std::string_view name, Attributes attributes) {
    begin(name, attributes);
    m_line += '>';
    endLine();
    m_open.emplace_back(name);
}

void SvgWriter::close() {
    const std::string name = std::move(m_open.back());
    m_open.pop_back();
    m_line.append("</").append(name) += '>';
    endLine();
}

void SvgWriter::shape(std::string_view name, Attributes attributes, std::string_view tooltip) {
    begin(name, attributes);
    if (tooltip.empty()) {
        m_line += "/>";
    } else {
        m_line += '>';
        appendTooltip(tooltip);
        m_line.append("</").append(name) += '>';
    }
    endLine();
}

void SvgWriter::text(std::string_view name, Attributes attributes, std::string_view content,
                     std::string_view tooltip) {
    begin(name, attributes);
    m_line += '>';
    appendTooltip(tooltip);
    appendEscaped(content);
    m_line.append("</").append(name) += '>';
    endLine();
}

void SvgWriter::begin(std::string_view name, const Attributes& attributes) {
    m_line.append(m_open.size(), ' ');
    (m_line += '<') += name;
    for (const auto& [key, value] : attributes) {
        (m_line += ' ').append(key) += "=\"";
        appendEscaped(value.text());
        m_line += '"';
    }
}

void SvgWriter::appendEscaped(std::string_view text) {
    for (const char c : xmlCharacters(text)) {
        switch (c) {
            case '&':
                m_line += "&amp;";
                break;
            case '<':
                m_line += "&lt;";
                break;
            case '>':
                m_line += "&gt;";
                break;
            case '"':
                m_line += "&quot;";
                break;
            case '\'':
                m_line += "&#39;";
                break;
            case '\n':
                m_line += "&#10;";
                break;
            default:
                m_line += c;
        }
    }
}

void SvgWriter::appendTooltip(std::string_view tooltip) {
    if (tooltip.empty()) return;
    m_line += "<title>";
    appendEscaped(tooltip);
    m_line += "</title>";
}

void SvgWriter::endLine() {
    m_out.line(m_line);
    m_line.clear();
}
