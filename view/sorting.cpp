// KSTViewRep: sorting the rows of a view.
#include <vector>

#include "record/SortKeys.h"
#include "view/KSTViewRep.h"
#include "view/LifeSupport.h"

void KSTViewRep::sort(int direction, int caseInsensitive) {
    const LifeSupport announced;
    iKST* const source = db();
    if (!source) return;
    source->sortPrepare(direction, caseInsensitive);
    std::vector<const dbrecord*> records;
    records.reserve(static_cast<std::size_t>(m_index.size()));
    for (int row = 0; row < m_index.size(); ++row) records.push_back((*this)[row]);
    m_index.reorder(sortedOrder(records, direction < 0));
}
