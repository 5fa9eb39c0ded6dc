// RecordMemory: memory for the fields and texts of records that are made one after the other, as a load does.
//
// They lie one after the other in blocks of 64 KB, smaller ones first, which takes less time and memory than
// blocks of their own. A block counts what lives in it and goes with the last of it. So whatever is left of a
// log, be it one text that was copied elsewhere, keeps the blocks in which it lies.
//
// Thread-safety: one thread at a time; what has been made may live and end on any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "record/parts/FieldList.h"
#include "record/parts/Redzone.h"

class RecordMemory {
 public:
    RecordMemory() noexcept = default;
    RecordMemory(const RecordMemory&) = delete;
    RecordMemory& operator=(const RecordMemory&) = delete;
    ~RecordMemory() { closeBlock(); }

    /// A string of that text, which is not empty.
    LightweightString<char> makeText(std::string_view text) {
        void* const place = take(LightweightString<char>::sizeInBlock(text), alignof(std::uint32_t));
        return LightweightString<char>::makeInBlock(*m_block, place, text);
    }

    /// Makes room for `count` fields in an empty list.
    void reserve(FieldList& fields, std::size_t count);

 private:
    /// Memory in the block, and a share of it.
    void* take(std::size_t size, std::size_t alignment) {
        char* place = aligned(m_at, alignment);
        if (place > m_end || static_cast<std::size_t>(m_end - place) < size || m_unusedShares == 0) {
            nextBlock(size + alignment);
            place = aligned(m_at, alignment);
        }
        m_at = place + size + Redzone::size;
        --m_unusedShares;
        Redzone::open(place, size);
        return place;
    }

    static char* aligned(char* at, std::size_t alignment) noexcept {
        return reinterpret_cast<char*>((reinterpret_cast<std::uintptr_t>(at) + alignment - 1) / alignment *
                                       alignment);
    }

    void nextBlock(std::size_t least);
    void closeBlock() noexcept;

    // The block that is being filled. Its count includes shares that nobody has yet, so that handing one out
    // is no atomic step.
    Zr::SharedBlock* m_block = nullptr;
    char* m_at = nullptr;
    char* m_end = nullptr;
    std::int32_t m_unusedShares = 0;
    std::size_t m_lastSize = 0;
};
