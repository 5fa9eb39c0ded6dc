// LineBlocks: lines in memory.
#include "support/misc/LineBlocks.h"

#include <algorithm>

void LineBlocks::append(std::string_view line) {
    char* const begin = beginLine(line.size());
    endLine(std::copy(line.begin(), line.end(), begin));
}

char* LineBlocks::beginLine(std::size_t longest) {
    const std::size_t room = longest + 1;
    if (m_blocks.empty() || m_blocks.back().room() < room) {
        // Blocks begin small, for short files, and double.
        constexpr std::size_t firstCapacity = TextBlock::usualCapacity / 4;
        const std::size_t usual = m_blocks.empty()
                                      ? firstCapacity
                                      : std::min(2 * m_blocks.back().capacity(), TextBlock::usualCapacity);
        m_blocks.emplace_back(std::max(room, usual));
    }
    return m_blocks.back().end();
}

void LineBlocks::endLine(char* end) {
    TextBlock& block = m_blocks.back();
    m_lines.emplace_back(block.end(), static_cast<std::size_t>(end - block.end()));
    *end = '\n';
    block.extendTo(end + 1);
}

void LineBlocks::clear() noexcept {
    m_lines.clear();
    m_blocks.clear();
}
