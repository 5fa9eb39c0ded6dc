// TextSearch: matching texts against criteria.
#include "support/TextSearch.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "support/Ascii.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextSearch {

namespace {

constexpr unsigned allOptions = eMatchCase | eSeparatorsEqual;

/// The character that stands for all those which `options` take for the same as `c`.
template <unsigned options>
constexpr char canonical(char c) noexcept {
    if constexpr ((options & eSeparatorsEqual) != 0) {
        if (c == ';' || c == '.' || c == ',') return ':';
    }
    if constexpr ((options & eMatchCase) == 0) return Ascii::fold(c);
    return c;
}

template <unsigned options>
LightweightString<char> canonicalText(const LightweightString<char>& text) {
    const auto isCanonical = [](char c) { return canonical<options>(c) == c; };
    const std::string_view view = text.view();
    if (std::all_of(view.begin(), view.end(), isCanonical)) return text;
    LightweightString<char> result = text;
    char* const characters = result.writableText();
    std::transform(view.begin(), view.end(), characters, canonical<options>);
    return result;
}

/// Whether as many characters as `query`, which is canonical, has are the same at `text`.
template <unsigned options>
bool sameAt(const char* text, std::string_view query) noexcept {
    return std::equal(query.begin(), query.end(), text,
                      [](char wanted, char c) { return wanted == canonical<options>(c); });
}

/// Contains, by a hash that rolls over the text: slower on everyday texts, but linear whatever they are. Not
/// inlined, as the registers it takes would slow the others down.
template <unsigned options>
[[gnu::noinline]] bool containsLong(std::string_view text, std::string_view query) noexcept {
    constexpr std::uint64_t base = 0x9E3779B97F4A7C15;
    const auto value = [](char c) {
        return std::uint64_t(static_cast<unsigned char>(canonical<options>(c)));
    };
    std::uint64_t wanted = 0;
    std::uint64_t hash = 0;
    std::uint64_t leaving = 1;
    for (std::size_t i = 0; i != query.size(); ++i) {
        wanted = wanted * base + value(query[i]);
        hash = hash * base + value(text[i]);
        leaving *= base;
    }
    for (std::size_t at = 0;; ++at) {
        if (hash == wanted && sameAt<options>(text.data() + at, query)) return true;
        if (at + query.size() == text.size()) return false;
        hash = hash * base + value(text[at + query.size()]) - leaving * value(text[at]);
    }
}

#if defined(__SSE2__)

// Short queries are looked for at sixteen places at once. In all but the shortest texts, places where both
// the query's first and its last character stand are few, and only these are compared in full.

constexpr std::size_t blockSize = 16;

__m128i loadBlock(const char* text) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
}

/// A text of less than a block, not empty, and then anything. Reads nothing beyond the text, and hardly
/// branches, as lengths vary from text to text.
inline __m128i loadPart(std::string_view text) noexcept {
    const std::size_t size = text.size();
    if (size < 4) {
        // One character to three: the places of the middle and the last one may be the same.
        const auto character = [text](std::size_t at) {
            return static_cast<int>(static_cast<unsigned char>(text[at])) << (8 * at);
        };
        return _mm_cvtsi32_si128(character(0) | character(size / 2) | character(size - 1));
    }
    // Four words of four characters; those that would end beyond the text are taken from its end.
    const auto word = [text, size](std::size_t place) {
        const std::size_t at = std::min(place, size - 4);
        std::uint32_t characters;
        std::memcpy(&characters, text.data() + at, 4);
        return static_cast<int>(characters >> (8 * (place - at) % 32));
    };
    return _mm_set_epi32(word(12), word(8), word(4), word(0));
}

template <unsigned options>
__m128i canonicalBlock(__m128i block) noexcept {
    if constexpr ((options & eSeparatorsEqual) != 0) {
        const __m128i colon = _mm_set1_epi8(':');
        const __m128i semicolons = _mm_cmpeq_epi8(block, _mm_set1_epi8(';'));
        const __m128i stops = _mm_cmpeq_epi8(block, _mm_set1_epi8('.'));
        const __m128i commas = _mm_cmpeq_epi8(block, _mm_set1_epi8(','));
        const __m128i separators = _mm_or_si128(semicolons, _mm_or_si128(stops, commas));
        block = _mm_or_si128(_mm_and_si128(separators, colon), _mm_andnot_si128(separators, block));
    }
    if constexpr ((options & eMatchCase) == 0) {
        const __m128i fromA = _mm_cmpgt_epi8(block, _mm_set1_epi8('A' - 1));
        const __m128i toZ = _mm_cmplt_epi8(block, _mm_set1_epi8('Z' + 1));
        const __m128i capitals = _mm_and_si128(fromA, toZ);
        block = _mm_or_si128(block, _mm_and_si128(capitals, _mm_set1_epi8('a' - 'A')));
    }
    return block;
}

/// Bit i says whether character i of the block, which is canonical, is `c`.
unsigned placesOf(char c, __m128i block) noexcept {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, _mm_set1_epi8(c))));
}

/// Contains, for texts shorter than a block. Compares all of the query at all places at once: texts are too
/// different for branches to be foreseen.
template <unsigned options>
bool containsInPart(std::string_view text, std::string_view query) noexcept {
    const __m128i block = canonicalBlock<options>(loadPart(text));
    unsigned places = (2U << (text.size() - query.size())) - 1;
    for (unsigned i = 0; i != query.size(); ++i) places &= placesOf(query[i], block) >> i;
    return places != 0;
}

/// Whether the query stands at one of the places, which bits number from `text` on.
template <unsigned options>
bool sameAtAny(const char* text, unsigned places, std::string_view query) noexcept {
    for (; places != 0; places &= places - 1) {
        if (sameAt<options>(text + __builtin_ctz(places), query)) return true;
    }
    return false;
}

/// As placesOf, for a block that is still to be loaded.
template <unsigned options>
unsigned placesOf(char c, const char* text) noexcept {
    return placesOf(c, canonicalBlock<options>(loadBlock(text)));
}

/// Contains, for texts of a block or more. Not inlined, as the registers it takes would slow short texts
/// down.
template <unsigned options>
[[gnu::noinline]] bool containsInBlocks(std::string_view text, std::string_view query) noexcept {
    const char* const begin = text.data();
    const std::size_t toLast = query.size() - 1;
    const std::size_t places = text.size() - toLast;
    const std::size_t lastPlaces = places < blockSize ? 0 : places - blockSize;
    for (std::size_t at = 0; at < lastPlaces; at += blockSize) {
        const char* const here = begin + at;
        const unsigned firsts = placesOf<options>(query.front(), here);
        const unsigned lasts = placesOf<options>(query.back(), here + toLast);
        if (sameAtAny<options>(here, firsts & lasts, query)) return true;
    }
    // The last block of places, or all when they are fewer: then the text's last block begins before the
    // first place's last character.
    const std::size_t before = places < blockSize ? blockSize - places : 0;
    const unsigned firsts = placesOf<options>(query.front(), begin + lastPlaces);
    const unsigned lasts = placesOf<options>(query.back(), begin + text.size() - blockSize) >> before;
    return sameAtAny<options>(begin + lastPlaces, firsts & lasts, query);
}

template <unsigned options>
bool containsShort(std::string_view text, std::string_view query) noexcept {
    return text.size() < blockSize ? containsInPart<options>(text, query)
                                   : containsInBlocks<options>(text, query);
}

#else

template <unsigned options>
bool containsShort(std::string_view text, std::string_view query) noexcept {
    const char* const end = text.data() + (text.size() - query.size()) + 1;
    for (const char* at = text.data(); at != end; ++at) {
        if (sameAt<options>(at, query)) return true;
    }
    return false;
}

#endif

// How a query, which is canonical and no longer than the text, matches by each method.

template <unsigned options>
bool isWhole(std::string_view text, std::string_view query) noexcept {
    return text.size() == query.size() && sameAt<options>(text.data(), query);
}

template <unsigned options>
bool contains(std::string_view text, std::string_view query) noexcept {
    constexpr std::size_t longest = 64;  // what the time of one place may cost
    return query.size() <= longest ? containsShort<options>(text, query) : containsLong<options>(text, query);
}

template <unsigned options>
bool beginsWith(std::string_view text, std::string_view query) noexcept {
    return sameAt<options>(text.data(), query);
}

template <unsigned options>
bool endsWith(std::string_view text, std::string_view query) noexcept {
    return sameAt<options>(text.data() + (text.size() - query.size()), query);
}

using Matcher = bool (*)(std::string_view text, std::string_view query) noexcept;

template <unsigned options>
constexpr std::array<Matcher, 4> matchersFor = {isWhole<options>, contains<options>, beginsWith<options>,
                                                endsWith<options>};

/// By options, then by method.
constexpr std::array<std::array<Matcher, 4>, 4> matchers = {
    matchersFor<0>, matchersFor<eMatchCase>, matchersFor<eSeparatorsEqual>, matchersFor<allOptions>};

}  // namespace

Criterion::Criterion(const LightweightString<char>& text, eMatchMethod method)
    : m_canonical{canonicalText<0>(text), canonicalText<eMatchCase>(text),
                  canonicalText<eSeparatorsEqual>(text), canonicalText<allOptions>(text)},
      m_method(method >= eWhole && method <= eEndsWith ? method : eWhole) {}

bool Criterion::matches(std::string_view text, unsigned options) const noexcept {
    const std::string_view query = m_canonical[options & allOptions].view();
    if (query.empty()) return true;
    return query.size() <= text.size() &&
           matchers[options & allOptions][static_cast<unsigned>(m_method)](text, query);
}

Criteria::Criteria() = default;

Criteria::Criteria(const Criterion& criterion) : m_criteria{criterion} {}

void Criteria::add(const Criterion& criterion) {
    m_criteria.push_back(criterion);
}

bool Criteria::empty() const noexcept {
    return std::all_of(m_criteria.begin(), m_criteria.end(),
                       [](const Criterion& criterion) { return criterion.text().empty(); });
}

const Criterion& Criteria::getCriterion(unsigned short index) const noexcept {
    static const Criterion none(LightweightString<char>(), eWhole);
    return index < m_criteria.size() ? m_criteria[index] : none;
}

bool match(const LightweightString<char>& text, const Criteria& criteria, unsigned options) noexcept {
    return criteria.matches(text.view(), options);
}

}  // namespace TextSearch
