// Strings that share what they hold, in step with plain ones that share nothing. Any bytes steer them.
//
// Thread-safety: none.
#pragma once

#include <algorithm>
#include <array>
#include <string>

#include "fuzz/Fuzz.h"
#include "support/LightweightString.h"
#include "support/SharedBlock.h"

class StringsModel {
 public:
    explicit StringsModel(Fuzz::Input& input) : m_input(input) {}

    void step() {
        const std::size_t i = place();
        const std::size_t j = place();
        Fuzz::Text& string = m_strings[i];
        std::string& plain = m_plain[i];
        switch (m_input.below(8)) {
            case 0:
                plain = m_input.take(m_input.byte());
                string = Fuzz::Text(plain);
                break;
            case 1:
                plain = m_plain[j];
                string = m_strings[j];
                break;
            case 2:
                plain += m_plain[j];
                string += m_strings[j];
                break;
            case 3:
                if (char* const text = string.writableText()) plain[0] = text[0] = '#';
                break;
            case 4: {
                const unsigned length = m_input.byte();
                string.resizeFor(length);
                plain = plain.substr(0, length);
                break;
            }
            case 5:  // its own end, which lies in the memory that it grows out of
                string.append(string.view().substr(plain.size() / 2));
                plain += plain.substr(plain.size() / 2);
                break;
            case 6:
                plain = (m_plain[j] + m_input.text()).substr(0, m_plain[j].size() + 1);
                string = Fuzz::Text(plain);
                break;
            default:
                makeInOneBlock(i, j);
        }
        if (plain.size() > mostBytes) string = {}, plain.clear();
    }

    bool holds() const {
        for (std::size_t i = 0; i < m_strings.size(); ++i) {
            if (m_strings[i].view() != m_plain[i] || m_strings[i].c_str()[m_plain[i].size()] != '\0' ||
                (m_strings[i] == m_strings[0]) != (m_plain[i] == m_plain[0])) {
                return false;
            }
        }
        return true;
    }

 private:
    std::size_t place() { return m_input.below(static_cast<unsigned>(m_strings.size())); }

    void makeInOneBlock(std::size_t i, std::size_t j) {
        m_plain[i] = m_input.text() + '.';
        const std::string second = m_input.text() + '.';
        const std::size_t firstSize = Fuzz::Text::sizeInBlock(m_plain[i]);
        Zr::SharedBlock* const block = Zr::SharedBlock::make(firstSize + Fuzz::Text::sizeInBlock(second), 5);
        m_strings[i] = Fuzz::Text::makeInBlock(*block, block->room(), m_plain[i]);
        m_strings[j] = Fuzz::Text::makeInBlock(*block, block->room() + firstSize, second);
        block->release(3);
        m_plain[j] = second;
    }

    static constexpr std::size_t mostBytes = 1000;

    Fuzz::Input& m_input;
    std::array<Fuzz::Text, 6> m_strings;
    std::array<std::string, 6> m_plain;
};
