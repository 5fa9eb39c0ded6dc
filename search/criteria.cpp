// kesta: queries as lists of criteria, one entry for each column by position.
#include <vector>

#include "record/kesta.h"
#include "search/Matching.h"

void kesta::setQuery(const std::vector<TextSearch::Criteria>& criteria) {
    if (criteria.size() >= get_num_fields()) m_query = Query(criteria);
}

bool kesta::matchField(const dbrecord* record, unsigned short field,
                       const TextSearch::Criteria& criteria) const {
    if (!record) return false;
    const auto type = field < m_fields.size() ? m_fields[field].type : DBFieldTypes::eText;
    const unsigned options = m_matchOptions != 0 ? TextSearch::eMatchCase : 0U;
    return Matching::fieldMatches(record->getField(field), type, criteria, options);
}
