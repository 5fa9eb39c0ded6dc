// Texts in memory. Strings that share what they hold do what plain ones do; a text file is saved the same
// whether its lines go to the disk as they come or at the end, and loads again. The first byte says which.
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "fuzz/Fuzz.h"
#include "support/TextFile.h"

namespace {

/// Strings and what they hold.
class Strings {
 public:
    explicit Strings(Fuzz::Input& input) : m_input(input) {}

    void run() {
        while (!m_input.empty()) {
            step();
            check();
        }
    }

 private:
    std::size_t place() { return m_input.below(static_cast<unsigned>(m_strings.size())); }

    void step() {
        const std::size_t i = place();
        const std::size_t j = place();
        switch (m_input.below(8)) {
            case 0:
                m_plain[i] = m_input.take(m_input.byte());
                m_strings[i] = Fuzz::Text(m_plain[i]);
                break;
            case 1:
                m_plain[i] = m_plain[j];
                m_strings[i] = m_strings[j];
                break;
            case 2:
                if (m_plain[i].size() + m_plain[j].size() > mostBytes) break;
                m_plain[i] += m_plain[j];
                m_strings[i] += m_strings[j];
                break;
            case 3:
                if (char* const text = m_strings[i].writableText()) m_plain[i][0] = text[0] = '#';
                break;
            case 4: {
                const unsigned length = m_input.byte();
                m_strings[i].resizeFor(length);
                m_plain[i] = m_plain[i].substr(0, length);
                break;
            }
            case 5:
                // A text's end, which lies in its own memory.
                m_strings[i].append(m_strings[i].view().substr(m_plain[i].size() / 2));
                m_plain[i] += m_plain[i].substr(m_plain[i].size() / 2);
                if (m_plain[i].size() > mostBytes) m_strings[i] = {}, m_plain[i].clear();
                break;
            case 6:
                m_plain[i] = (m_plain[j] + m_input.text()).substr(0, m_plain[j].size() + 1);
                m_strings[i] = Fuzz::Text(m_plain[i]);
                break;
            default:
                makeInOneBlock(i, j);
        }
    }

    void makeInOneBlock(std::size_t i, std::size_t j) {
        const std::string first = m_input.text() + '.';
        const std::string second = m_input.text() + '.';
        const std::size_t sizes[] = {Fuzz::Text::sizeInBlock(first), Fuzz::Text::sizeInBlock(second)};
        Zr::SharedBlock* const block = Zr::SharedBlock::make(sizes[0] + sizes[1], 2);
        m_strings[i] = Fuzz::Text::makeInBlock(*block, block->room(), first);
        m_strings[j] = Fuzz::Text::makeInBlock(*block, block->room() + sizes[0], second);
        m_plain[i] = first;
        m_plain[j] = second;
    }

    void check() const {
        for (std::size_t i = 0; i < m_strings.size(); ++i) {
            Fuzz::promise(m_strings[i].view() == m_plain[i]);
            Fuzz::promise(m_strings[i].c_str()[m_plain[i].size()] == '\0');
            Fuzz::promise((m_strings[i] == m_strings[0]) == (m_plain[i] == m_plain[0]));
        }
    }

    static constexpr std::size_t mostBytes = 1000;

    Fuzz::Input& m_input;
    std::array<Fuzz::Text, 6> m_strings;
    std::array<std::string, 6> m_plain;
};

void strings(Fuzz::Input& input) {
    Strings(input).run();
}

// --- Files ---

/// Of one line, without the mark that begins some files.
std::string lineText(Fuzz::Input& input) {
    // Blocks have up to 64 kilobytes: some lines are longer, a few fill one.
    constexpr unsigned times[] = {1, 1, 1, 100, 2000, 5000};
    const unsigned repeated = times[input.below(std::size(times))];
    std::string word = input.text();
    for (char& c : word) {
        if (c == '\r' || c == '\n' || c == '\xEF') c = '?';
    }
    std::string line;
    for (unsigned i = 0; i < repeated; ++i) line += word;
    return line;
}

void append(TextFile& file, const std::string& line, bool inHalves) {
    if (!inHalves) return file.appendLine(Fuzz::Text(line));
    file.beginLine(line.size() + 100);  // given up
    char* const begin = file.beginLine(line.size() + 7);
    file.endLine(begin + line.copy(begin, line.size()));
}

void files(Fuzz::Input& input) {
    const auto style = input.below(2) == 0 ? TextFile::eLF : TextFile::eCRLF;
    const unsigned beginsBefore = input.below(16);
    const auto whole = Fuzz::folder().wide("whole");
    const auto early = Fuzz::folder().wide("early");
    TextFile file;
    TextFile begun;
    std::vector<std::string> lines;
    std::string expected;
    while (!input.empty() && expected.size() < 500000) {
        if (lines.size() == beginsBefore) begun.beginSave(early, style);
        const std::string line = lineText(input);
        const bool inHalves = input.below(2) == 0;
        append(file, line, inHalves);
        append(begun, line, !inHalves);
        lines.push_back(line);
        expected += line + (style == TextFile::eLF ? "\n" : "\r\n");
        Fuzz::promise(begun.size() == lines.size() && file.lineView(file.size() - 1) == line);
    }
    Fuzz::promise(file.save(whole, style) && Fuzz::readFile(Fuzz::folder() / "whole") == expected);
    Fuzz::promise(begun.save(early, style) && Fuzz::readFile(Fuzz::folder() / "early") == expected);

    TextFile again;
    Fuzz::promise(again.load(early, '\n', false) && again.size() == lines.size());
    for (unsigned i = 0; i < lines.size(); ++i) Fuzz::promise(again.lineView(i) == lines[i]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr void (*parts[])(Fuzz::Input&) = {strings, files};
    Fuzz::Input input(data, size);
    parts[input.below(std::size(parts))](input);
    return 0;
}
