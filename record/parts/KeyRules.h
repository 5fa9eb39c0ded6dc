// The rules that columns sort by. Each stands here twice, side by side: as the comparison of two texts, and
// as the words that a sort of many texts compares in its place.
//
// The words of a text are 64-bit numbers, eight characters in each, and for some an extra one of 32 bits. A
// sort fetches the first words of its texts, and for texts whose words are equal the next ones, until they
// differ or end. A rule says:
//
//   compare       how two texts compare: negative, zero or positive. They end with a zero and begin with no
//                 white space, as do those that words are fetched from.
//   fetch         the word at a place of a text, and the extra one
//   extraCounts   whether at that place texts whose words are equal are in order by their extra words
//   next          where texts go on whose words (and extra words, where they count) are equal; nothing where
//                 such texts are equal
//
// A rule for another type of column is a struct here, a KeyRule, a case of withRule and a line of ofTypes.
//
// Thread-safety: nothing is kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

#include "record/DBFieldTypes.h"
#include "support/Ascii.h"
#include "support/StringFunctions.h"

namespace KeyRules {

using Word = std::uint64_t;
constexpr unsigned wordSize = sizeof(Word);

struct Words {
    Word word;
    std::uint32_t extra;
};

/// Where in a text words are fetched.
struct Place {
    unsigned offset = 0;       ///< of the word's first character
    bool exact = false;        ///< in a second round, which minds case
    bool casesDiffer = false;  ///< in a first round: texts that are level so far may differ in case

    bool isBeginning() const noexcept { return offset == 0 && !exact; }
};

// --- What rules are made of ---

template <class Number>
Word bigEndian(const char* bytes) noexcept {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    if constexpr (sizeof number == 8) return __builtin_bswap64(number);
    if constexpr (sizeof number == 4) return __builtin_bswap32(number);
#endif
    return number;
}

/// The characters from `offset` on as a number that compares as they do; zeros fill what the text lacks.
inline Word wordAt(std::string_view text, unsigned offset) noexcept {
    if (offset >= text.size()) return 0;
    const char* const from = text.data() + offset;
    const std::size_t length = text.size() - offset;
    if (length >= wordSize) return bigEndian<std::uint64_t>(from);
    if (length >= 4) {  // two halves that overlap
        return bigEndian<std::uint32_t>(from) << 32 | bigEndian<std::uint32_t>(from + length - 4)
                                                          << 8 * (wordSize - length);
    }
    Word word = 0;
    for (unsigned i = 0; i < length; ++i) {
        word |= Word(static_cast<unsigned char>(from[i])) << (56 - 8 * i);
    }
    return word;
}

/// Ascii::fold of all eight characters at once. Adding to the low seven bits of a byte carries into its top
/// bit exactly when the byte reaches the bound.
inline Word folded(Word word) noexcept {
    constexpr Word ones = 0x0101010101010101;
    const Word low = word & ones * 0x7F;
    const Word fromA = low + ones * (0x80 - 'A');
    const Word pastZ = low + ones * (0x7F - 'Z');
    const Word topBits = (fromA ^ pastZ) & ~word & ones * 0x80;  // of capitals
    return word | topBits >> 2;
}

/// For each of eight characters a bit, set when folding has changed it.
inline std::uint32_t capitals(Word word, Word foldedWord) noexcept {
    constexpr Word gather = 0x0102040810204080;
    return static_cast<std::uint32_t>((((word ^ foldedWord) >> 5) * gather) >> 56);
}

/// Whether the text of the word ends in it.
constexpr bool ends(Word word) noexcept {
    return (word & 0xFF) == 0;
}

// --- The rules ---

/// By folded characters.
struct Folded {
    static int compare(const char* a, const char* b) noexcept { return Ascii::compareFolded(a, b); }

    static Words fetch(std::string_view text, const Place& place) noexcept {
        return {folded(wordAt(text, place.offset)), 0};
    }
    static constexpr bool extraCounts(const Place&) noexcept { return false; }
    static std::optional<Place> next(const Place& place, const Words& words, bool) noexcept {
        if (ends(words.word)) return {};
        return Place{place.offset + wordSize};
    }
};

/// strxcmp's order: by folded characters, then by the characters as they are. In the first round the extra
/// words say which characters are capitals, so that there is a second one only where these differ.
struct Dictionary {
    static int compare(const char* a, const char* b) noexcept { return strxcmp(a, b); }

    static Words fetch(std::string_view text, const Place& place) noexcept {
        const Word raw = wordAt(text, place.offset);
        if (place.exact) return {raw, 0};
        const Word word = folded(raw);
        return {word, capitals(raw, word)};
    }
    static constexpr bool extraCounts(const Place&) noexcept { return false; }
    static std::optional<Place> next(const Place& place, const Words& words, bool extrasDiffer) noexcept {
        const bool casesDiffer = place.casesDiffer || extrasDiffer;
        if (!ends(words.word)) return Place{place.offset + wordSize, place.exact, casesDiffer};
        if (place.exact || !casesDiffer) return {};
        return Place{0, true, false};
    }
};

/// By folded characters but for the ninth, the separator before the frames, which is never compared: drop
/// frame or not is one. The first word is hours to seconds, and the extra one the frames.
struct Timecode {
    static constexpr unsigned upToSeconds = 8;
    static constexpr unsigned framesAt = upToSeconds + 1;

    static int compare(const char* a, const char* b) noexcept {
        if (const int result = Ascii::compareFolded(a, b, upToSeconds)) return result;
        const auto frames = [](const char* text) {
            return strnlen(text, framesAt) == framesAt ? text + framesAt : "";
        };
        return Ascii::compareFolded(frames(a), frames(b));
    }

    static Words fetch(std::string_view text, const Place& place) noexcept {
        const Word word = folded(wordAt(text, place.offset));
        if (!extraCounts(place)) return {word, 0};
        return {word, static_cast<std::uint32_t>(folded(wordAt(text, framesAt)) >> 32)};
    }
    static constexpr bool extraCounts(const Place& place) noexcept { return place.offset == 0; }
    static std::optional<Place> next(const Place& place, const Words& words, bool) noexcept {
        if (!extraCounts(place)) return Folded::next(place, words, false);
        if (ends(words.extra)) return {};
        return Place{framesAt + static_cast<unsigned>(sizeof words.extra)};
    }
};

}  // namespace KeyRules

/// The name of a rule. Descending order knows only `folded`.
enum class KeyRule { dictionary, folded, timecode };

namespace KeyRules {

/// Calls `act` with the rule.
template <class Act>
decltype(auto) withRule(KeyRule rule, Act act) {
    switch (rule) {
        case KeyRule::timecode:
            return act(Timecode());
        case KeyRule::folded:
            return act(Folded());
        case KeyRule::dictionary:
            break;
    }
    return act(Dictionary());
}

/// The types of column that have a rule of their own in ascending order.
struct OfType {
    DBFieldTypes::eType type;
    KeyRule rule;
};
constexpr OfType ofTypes[] = {{DBFieldTypes::eTimecode, KeyRule::timecode}};

}  // namespace KeyRules
