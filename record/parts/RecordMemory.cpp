// The blocks: how large they are, and when one is full.
#include "record/parts/RecordMemory.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::size_t firstBlock = std::size_t(1) << 12;
constexpr std::size_t largestBlock = std::size_t(1) << 16;
constexpr std::size_t smallestPiece = 12 + Redzone::size;  // a text of one character

}  // namespace

void RecordMemory::reserve(FieldList& fields, std::size_t count) {
    if (count == 0 || count > std::numeric_limits<std::uint32_t>::max()) return;
    void* const place = take(count * sizeof(FieldList::Field), alignof(FieldList::Field));
    fields.moveTo(m_block, place, static_cast<std::uint32_t>(count));
}

void RecordMemory::nextBlock(std::size_t least) {
    const std::size_t wanted = std::clamp(2 * m_lastSize, firstBlock, largestBlock);
    const std::size_t size = std::max(wanted, sizeof(Zr::SharedBlock) + least);
    const std::size_t room = size - sizeof(Zr::SharedBlock);
    // A larger block is for one piece that is larger.
    const auto shares = static_cast<std::int32_t>(std::min(size, largestBlock) / smallestPiece);
    Zr::SharedBlock* const block = Zr::SharedBlock::make(room, shares);
    closeBlock();
    m_unusedShares = shares;
    m_block = block;
    m_at = block->room();
    m_end = m_at + room;
    Redzone::close(m_at, room);
    m_lastSize = size;
}

void RecordMemory::closeBlock() noexcept {
    // Without a share of its own the block may be gone.
    if (m_unusedShares != 0) m_block->release(m_unusedShares);
    m_block = nullptr;
    m_at = m_end = nullptr;
    m_unusedShares = 0;
}
