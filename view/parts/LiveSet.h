// LiveSet: the numbers below a bound, from which some go for good.
//
// Tells which is the n-th that is left, and how many are left below a number, in logarithmic time.
// Thread-safety: const operations may run at once while nobody removes a number.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "view/parts/PrefixSums.h"

class LiveSet {
 public:
    /// All numbers below `bound`.
    explicit LiveSet(std::size_t bound)
        : m_bound(bound), m_words(fullWords(bound)), m_counts(sizes(m_words)) {}

    /// The number before which `n` are left. At least one more must be left.
    std::size_t at(std::size_t n) const noexcept {
        const auto [word, before] = m_counts.firstNot([n](std::size_t, unsigned sum) { return sum <= n; });
        Word bits = m_words[word];
        for (std::size_t skipped = before; skipped < n; ++skipped) bits &= bits - 1;
        return word * wordSize + count((bits & (~bits + 1)) - 1);
    }

    /// How many numbers below `number` are left.
    std::size_t countBelow(std::size_t number) const noexcept {
        const std::size_t word = number / wordSize;
        const unsigned inWord = number % wordSize;
        const unsigned before = m_counts.sumBefore(word);
        return inWord == 0 ? before : before + count(m_words[word] & ((Word(1) << inWord) - 1));
    }

    /// The first number that is left and not below `number`; the bound when there is none.
    std::size_t firstFrom(std::size_t number) const noexcept {
        const std::size_t below = countBelow(number);
        return below < m_counts.sumBefore(m_counts.size()) ? at(below) : m_bound;
    }

    /// Takes out a number, which must be left.
    void remove(std::size_t number) noexcept {
        m_words[number / wordSize] &= ~(Word(1) << number % wordSize);
        m_counts.add(number / wordSize, static_cast<unsigned>(-1));
    }

 private:
    using Word = std::uint64_t;
    static constexpr std::size_t wordSize = 64;

    static unsigned count(Word bits) noexcept {
        return static_cast<unsigned>(std::bitset<wordSize>(bits).count());
    }

    static std::vector<Word> fullWords(std::size_t bound) {
        std::vector<Word> words((bound + wordSize - 1) / wordSize, ~Word(0));
        if (bound % wordSize != 0) words.back() = (Word(1) << bound % wordSize) - 1;
        return words;
    }

    static std::vector<unsigned> sizes(const std::vector<Word>& words) {
        std::vector<unsigned> counts(words.size());
        for (std::size_t i = 0; i < words.size(); ++i) counts[i] = count(words[i]);
        return counts;
    }

    std::size_t m_bound;
    std::vector<Word> m_words;  // one bit for each number
    PrefixSums m_counts;        // the bits set in each word
};
