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

/// Contains, by a hash that rolls over the text: slower on everyday texts, but linear whatever they are.
template <unsigned options>
bool containsLong(std::string_view text, std::string_view query) noexcept {
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

// Short queries are looked for at sixteen places at once: places where both the query's first and its last
// character stand are few, and only these are compared in full.

constexpr std::size_t blockSize = 16;

__m128i loadBlock(const char* text) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
}

template <class Word>
std::uint64_t loadWord(const char* text) noexcept {
    Word word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

/// A text shorter than a block, followed by zeros. Reads nothing beyond the text.
__m128i loadPart(std::string_view text) noexcept {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    if (text.size() > 8) {
        low = loadWord<std::uint64_t>(begin);
        high = loadWord<std::uint64_t>(end - 8) >> (8 * (blockSize - text.size()));
    } else if (text.size() >= 4) {
        low = loadWord<std::uint32_t>(begin) | loadWord<std::uint32_t>(end - 4) << (8 * (text.size() - 4));
    } else {
        for (std::size_t i = text.size(); i != 0; --i) low = low << 8 | loadWord<std::uint8_t>(begin + i - 1);
    }
    return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
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

/// Bit i says whether the block's character i is `c`.
template <unsigned options>
unsigned placesOf(char c, __m128i block) noexcept {
    const __m128i equal = _mm_cmpeq_epi8(canonicalBlock<options>(block), _mm_set1_epi8(c));
    return static_cast<unsigned>(_mm_movemask_epi8(equal));
}

/// Whether the query stands at one of the places, which bits number from `text` on.
template <unsigned options>
bool sameAtAny(const char* text, unsigned places, std::string_view query) noexcept {
    for (; places != 0; places &= places - 1) {
        if (sameAt<options>(text + __builtin_ctz(places), query)) return true;
    }
    return false;
}

/// As below, for texts with less than a block of places: one load sees all of the first characters, another
/// all of the last.
template <unsigned options>
bool containsInFewPlaces(std::string_view text, std::string_view query) noexcept {
    const std::size_t places = text.size() - query.size() + 1;
    const bool isPart = text.size() < blockSize;
    const __m128i head = isPart ? loadPart(text) : loadBlock(text.data());
    const __m128i tail = isPart ? head : loadBlock(text.data() + text.size() - blockSize);
    const std::size_t tailPlace = isPart ? query.size() - 1 : blockSize - places;
    const unsigned firsts = placesOf<options>(query.front(), head);
    const unsigned lasts = placesOf<options>(query.back(), tail) >> tailPlace;
    return sameAtAny<options>(text.data(), firsts & lasts & ((1U << places) - 1), query);
}

template <unsigned options>
bool containsShort(std::string_view text, std::string_view query) noexcept {
    const std::size_t places = text.size() - query.size() + 1;
    if (places < blockSize) return containsInFewPlaces<options>(text, query);
    for (std::size_t at = 0;; at = std::min(at + blockSize, places - blockSize)) {
        const char* const here = text.data() + at;
        const unsigned firsts = placesOf<options>(query.front(), loadBlock(here));
        const unsigned lasts = placesOf<options>(query.back(), loadBlock(here + query.size() - 1));
        if (sameAtAny<options>(here, firsts & lasts, query)) return true;
        if (at + blockSize == places) return false;
    }
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

template <unsigned options>
bool contains(std::string_view text, std::string_view query) noexcept {
    constexpr std::size_t longest = 64;  // what the time of one place may cost
    return query.size() <= longest ? containsShort<options>(text, query) : containsLong<options>(text, query);
}

/// `query` is canonical and not empty.
template <unsigned options>
bool matchesCanonical(std::string_view text, std::string_view query, eMatchMethod method) noexcept {
    if (text.size() < query.size()) return false;
    switch (method) {
        case eContains:
            return contains<options>(text, query);
        case eBeginsWith:
            return sameAt<options>(text.data(), query);
        case eEndsWith:
            return sameAt<options>(text.data() + (text.size() - query.size()), query);
        case eWhole:
            break;
    }
    return text.size() == query.size() && sameAt<options>(text.data(), query);
}

}  // namespace

Criterion::Criterion(const LightweightString<char>& text, eMatchMethod method)
    : m_canonical{canonicalText<0>(text), canonicalText<eMatchCase>(text),
                  canonicalText<eSeparatorsEqual>(text), canonicalText<allOptions>(text)},
      m_method(method) {}

bool Criterion::matches(std::string_view text, unsigned options) const noexcept {
    const std::string_view query = m_canonical[options & allOptions].view();
    if (query.empty()) return true;
    switch (options & allOptions) {
        case 0:
            return matchesCanonical<0>(text, query, m_method);
        case eMatchCase:
            return matchesCanonical<eMatchCase>(text, query, m_method);
        case eSeparatorsEqual:
            return matchesCanonical<eSeparatorsEqual>(text, query, m_method);
        default:
            return matchesCanonical<allOptions>(text, query, m_method);
    }
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

bool Criteria::matches(std::string_view text, unsigned options) const noexcept {
    return std::all_of(m_criteria.begin(), m_criteria.end(),
                       [&](const Criterion& criterion) { return criterion.matches(text, options); });
}

const Criterion& Criteria::getCriterion(unsigned short index) const noexcept {
    static const Criterion none(LightweightString<char>(), eWhole);
    return index < m_criteria.size() ? m_criteria[index] : none;
}

bool match(const LightweightString<char>& text, const Criteria& criteria, unsigned options) noexcept {
    return criteria.matches(text.view(), options);
}

}  // namespace TextSearch
