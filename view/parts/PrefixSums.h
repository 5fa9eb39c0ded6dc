// PrefixSums: a list of counts that knows the sum before each place (a binary indexed tree).
//
// Changing a count, summing and searching each take a number of steps logarithmic in the length.
// Thread-safety: const operations may run at once while nobody changes a count.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

class PrefixSums {
 public:
    /// Where a search ended: the place, and the sum before it.
    struct Found {
        std::size_t place;
        unsigned sumBefore;
    };

    explicit PrefixSums(const std::vector<unsigned>& counts) : m_sums(counts.size() + 1) {
        while (m_widest * 2 <= counts.size()) m_widest *= 2;
        for (std::size_t node = 1; node < m_sums.size(); ++node) {
            m_sums[node] += counts[node - 1];
            const std::size_t parent = node + width(node);
            if (parent < m_sums.size()) m_sums[parent] += m_sums[node];
        }
    }

    std::size_t size() const noexcept { return m_sums.size() - 1; }

    /// Adds to the count at `place`; adding the complement of a number takes it away.
    void add(std::size_t place, unsigned number) noexcept {
        for (std::size_t node = place + 1; node < m_sums.size(); node += width(node)) m_sums[node] += number;
    }

    unsigned sumBefore(std::size_t place) const noexcept {
        unsigned sum = 0;
        for (std::size_t node = place; node != 0; node -= width(node)) sum += m_sums[node];
        return sum;
    }

    /// The first place for which `precedes(place, sum up to and with that place)` is false. It must be true
    /// up to there and false from there on.
    template <class Precedes>
    Found firstNot(Precedes precedes) const noexcept {
        Found found{0, 0};
        for (std::size_t step = m_widest; step != 0; step /= 2) {
            const std::size_t node = found.place + step;
            if (node < m_sums.size() && precedes(node - 1, found.sumBefore + m_sums[node])) {
                found = {node, found.sumBefore + m_sums[node]};
            }
        }
        return found;
    }

 private:
    // How many places end with a node: its lowest bit.
    static std::size_t width(std::size_t node) noexcept { return node & (~node + 1); }

    std::vector<unsigned> m_sums;  // the node for place p stands at p + 1
    std::size_t m_widest = 1;
};
