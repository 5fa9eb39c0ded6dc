// NameHash: the identifier that a name stands for.
#include "support/misc/NameHash.h"

#include <cstring>

namespace {

using Word = std::uint64_t;

constexpr Word c1 = 0x87C37B91114253D5;
constexpr Word c2 = 0x4CF5AD432745937F;

constexpr Word rotated(Word word, int bits) noexcept {
    return word << bits | word >> (64 - bits);
}

/// Up to eight bytes, the first lowest.
Word wordOf(std::string_view bytes) noexcept {
    Word word = 0;
    std::memcpy(&word, bytes.data(), bytes.size());
    return word;
}

struct State {
    Word h1 = 0;
    Word h2 = 0;

    void mixFirst(Word word) noexcept { h1 ^= rotated(word * c1, 31) * c2; }
    void mixSecond(Word word) noexcept { h2 ^= rotated(word * c2, 33) * c1; }

    void mixBlock(std::string_view block) noexcept {
        mixFirst(wordOf(block.substr(0, 8)));
        h1 = (rotated(h1, 27) + h2) * 5 + 0x52DCE729;
        mixSecond(wordOf(block.substr(8)));
        h2 = (rotated(h2, 31) + h1) * 5 + 0x38495AB5;
    }

    void mixTail(std::string_view tail) noexcept {
        if (tail.size() > 8) mixSecond(wordOf(tail.substr(8)));
        mixFirst(wordOf(tail.substr(0, 8)));
    }

    void finish(std::size_t length) noexcept {
        h1 ^= length;
        h2 ^= length;
        h1 += h2;
        h2 += h1;
        h1 = spread(h1);
        h2 = spread(h2);
        h1 += h2;
        h2 += h1;
    }
};

void write(Word word, std::uint8_t* to) noexcept {
    for (int shift = 56; shift >= 0; shift -= 8) *to++ = static_cast<std::uint8_t>(word >> shift);
}

}  // namespace

Zr::UUID hashOfName(std::string_view name) noexcept {
    constexpr std::size_t blockSize = 16;
    State state;
    std::string_view rest = name;
    for (; rest.size() >= blockSize; rest.remove_prefix(blockSize)) state.mixBlock(rest.substr(0, blockSize));
    state.mixTail(rest);
    state.finish(name.size());

    Zr::UUID hash;
    write(state.h1, hash.bytes.data());
    write(state.h2, hash.bytes.data() + 8);
    return hash;
}
