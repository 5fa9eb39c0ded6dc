// Splitting text at every occurrence of one character.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "support/LightweightString.h"

namespace Zr {

/// Whether quoted stretches hide separators.
enum class Quotes { ignored, respected };

/// Matches one character.
template <class Char>
class IsMatchingChar {
 public:
    explicit IsMatchingChar(Char wanted) noexcept : m_wanted(wanted) {}
    bool operator()(Char c) const noexcept { return c == m_wanted; }

 private:
    Char m_wanted;
};

/// The positions of all separators, in order. With quotes respected, one between double quotes is not a
/// separator; a double quote after a backslash neither opens nor closes a quoted stretch.
template <class Char, class IsSeparator>
std::vector<std::size_t> findSeparators(std::basic_string_view<Char> text, IsSeparator isSeparator,
                                        Quotes quotes) {
    std::vector<std::size_t> positions;
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (quotes == Quotes::respected && text[i] == Char('"') && (i == 0 || text[i - 1] != Char('\\'))) {
            quoted = !quoted;
        } else if (!quoted && isSeparator(text[i])) {
            positions.push_back(i);
        }
    }
    return positions;
}

/// Appends each piece to a list of strings.
template <class Char>
class SplitOutputBuilder {
 public:
    explicit SplitOutputBuilder(std::vector<LightweightString<Char>>& pieces) noexcept : m_pieces(pieces) {}
    void operator()(std::basic_string_view<Char> piece) { m_pieces.emplace_back(piece); }

 private:
    std::vector<LightweightString<Char>>& m_pieces;
};

/// Hands `output` the pieces between the separators, white space and quotes included. Empty text has no
/// pieces; text without separators is its own only piece.
template <class Char, class Output>
void convertIndicesToSubStrings(std::basic_string_view<Char> text, const std::vector<std::size_t>& separators,
                                Output output) {
    if (text.empty()) return;
    std::size_t begin = 0;
    for (const std::size_t position : separators) {
        output(text.substr(begin, position - begin));
        begin = position + 1;
    }
    output(text.substr(begin));
}

}  // namespace Zr
