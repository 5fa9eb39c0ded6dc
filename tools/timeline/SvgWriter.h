// Writes a picture as SVG text, line by line. The only place that knows how XML is spelt.
//
// Thread-safety: one thread at a time.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/terminal/Output.h"

/// The text as XML can hold it: bytes that are no UTF-8 and characters that XML does not have, or only under
/// protest, become U+FFFD.
std::string xmlCharacters(std::string_view bytes);

class SvgWriter {
 public:
    /// An attribute's value: a text, or a number to two decimals.
    class Value {
     public:
        Value(const char* text) : m_text(text) {}             // NOLINT: written as it is in lists
        Value(std::string text) : m_text(std::move(text)) {}  // NOLINT
        Value(double number);                                 // NOLINT
        const std::string& text() const noexcept { return m_text; }

     private:
        std::string m_text;
    };
    using Attributes = std::initializer_list<std::pair<std::string_view, Value>>;

    explicit SvgWriter(LineSink& out) : m_out(out) {}

    /// Begins an element that holds others, until close.
    void open(std::string_view name, Attributes attributes);
    void close();

    /// A shape, with a tooltip unless that is empty.
    void shape(std::string_view name, Attributes attributes, std::string_view tooltip = {});

    /// An element that holds text, and a tooltip unless that is empty.
    void text(std::string_view name, Attributes attributes, std::string_view content,
              std::string_view tooltip = {});

 private:
    void begin(std::string_view name, const Attributes& attributes);
    void appendEscaped(std::string_view text);
    void appendTooltip(std::string_view tooltip);
    void endLine();

    LineSink& m_out;
    std::string m_line;
    std::vector<std::string> m_open;
};
