// LineBlocks: lines in memory. They lie one after the other in large blocks, so that they cost little more
// than their bytes and can be written a block at a time.
//
// Thread-safety: one thread at a time; reading lines from several threads while nobody appends is safe.
#pragma once

#include <string_view>
#include <vector>

#include "support/misc/TextBlock.h"

class LineBlocks {
 public:
    const std::vector<std::string_view>& lines() const noexcept { return m_lines; }

    /// What holds the lines: each of them with a line feed after it.
    const std::vector<TextBlock>& blocks() const noexcept { return m_blocks; }

    void append(std::string_view line);

    /// The two halves of appending a line: room for at most `longest` bytes; then the line, from there to
    /// `end`.
    char* beginLine(std::size_t longest);
    void endLine(char* end);

    void clear() noexcept;

 private:
    std::vector<TextBlock> m_blocks;
    std::vector<std::string_view> m_lines;  // in the blocks
};
