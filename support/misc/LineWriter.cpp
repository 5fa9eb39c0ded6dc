// LineWriter: puts lines in the place of a file's content.
#include "support/misc/LineWriter.h"

#include <algorithm>

LineWriter::LineWriter(const LightweightString<wchar_t>& name, std::string_view lineEnd)
    : m_name(name), m_lineEnd(lineEnd), m_file(name) {}

bool LineWriter::isFor(const LightweightString<wchar_t>& name, std::string_view lineEnd) const noexcept {
    return m_name == name && m_lineEnd == lineEnd;
}

void LineWriter::append(const LineBlocks& lines) {
    writePending();
    m_size += static_cast<unsigned>(lines.lines().size());
    if (m_lineEnd == "\n") {
        for (const TextBlock& block : lines.blocks()) m_file.write(block.view());
        return;
    }
    for (const std::string_view line : lines.lines()) {
        m_file.write(line);
        m_file.write(m_lineEnd);
    }
}

char* LineWriter::beginLine(std::size_t longest) {
    const std::size_t room = longest + m_lineEnd.size();
    if (m_pending.room() < room) writePending();
    if (m_pending.room() < room) m_pending = TextBlock(std::max(room, TextBlock::usualCapacity));
    return m_pending.end();
}

void LineWriter::endLine(char* end) noexcept {
    m_pending.extendTo(std::copy(m_lineEnd.begin(), m_lineEnd.end(), end));
    ++m_size;
}

void LineWriter::writePending() noexcept {
    m_file.write(m_pending.view());
    m_pending.clear();
}

bool LineWriter::commit() {
    writePending();
    return m_file.commit();
}
