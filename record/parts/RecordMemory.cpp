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
    fields.moveTo(m_count, place, static_cast<std::uint32_t>(count));
}

void RecordMemory::nextBlock(std::size_t least) {
    const std::size_t wanted = std::clamp(2 * m_lastSize, firstBlock, largestBlock);
    const std::size_t size = std::max(wanted, sizeof(Zr::RefCounter) + least);
    char* const block = static_cast<char*>(OS()->allocator()->allocate(size));
    closeBlock();
    // A larger block is for one piece that is larger.
    m_unusedShares = static_cast<std::int32_t>(std::min(size, largestBlock) / smallestPiece);
    m_count = new (block) Zr::RefCounter(m_unusedShares);
    m_at = block + sizeof(Zr::RefCounter);
    m_end = block + size;
    Redzone::close(m_at, size - sizeof(Zr::RefCounter));
    m_lastSize = size;
}

void RecordMemory::closeBlock() noexcept {
    // Without a share of its own the block may be gone.
    if (m_unusedShares != 0 &&
        m_count->fetch_sub(m_unusedShares, std::memory_order_acq_rel) == m_unusedShares) {
        OS()->allocator()->release(m_count);
    }
    m_count = nullptr;
    m_at = m_end = nullptr;
    m_unusedShares = 0;
}
