// Query: what a database looks for, one entry for each column by position.
//
// Thread-safety: as a std::vector's.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "support/TextSearch.h"

class Query {
 public:
    Query() = default;
    explicit Query(std::vector<TextSearch::Criteria> criteria) : m_criteria(std::move(criteria)) {
        for (unsigned i = 0; i < m_criteria.size(); ++i) {
            if (!m_criteria[i].empty()) m_conditions.push_back(i);
        }
    }

    /// Whether no query is set. One that is set may be without conditions, and finds every record.
    bool empty() const noexcept { return m_criteria.empty(); }
    void clear() noexcept {
        m_criteria.clear();
        m_conditions.clear();
    }

    /// The criteria for a column; null when there are none.
    const TextSearch::Criteria* criteriaFor(std::size_t column) const noexcept {
        return column < m_criteria.size() && !m_criteria[column].empty() ? &m_criteria[column] : nullptr;
    }

    /// The columns that have criteria, in order.
    const std::vector<unsigned>& conditions() const noexcept { return m_conditions; }

 private:
    std::vector<TextSearch::Criteria> m_criteria;
    std::vector<unsigned> m_conditions;
};
