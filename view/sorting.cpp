// KSTViewRep: sorting the rows of a view.
#include <vector>

#include "record/SortKeys.h"
#include "view/KSTViewRep.h"
#include "view/LifeSupport.h"

namespace {

/// How many steps ahead of a walk its database is told of the rows.
constexpr int later = 24;
constexpr int sooner = 12;

}  // namespace

void KSTViewRep::sort(int direction, int caseInsensitive) {
    const LifeSupport announced;
    iKST* const source = db();
    if (!source) return;
    source->sortPrepare(direction, caseInsensitive);
    std::vector<const dbrecord*> records;
    records.reserve(static_cast<std::size_t>(m_index.size()));
    for (int row = 0; row < m_index.size(); ++row) {
        const kesta* const base = database();
        if (base && later < m_index.size() - row) {
            base->expectRecords(static_cast<unsigned>(baseIndex(row + later)),
                                static_cast<unsigned>(baseIndex(row + sooner)));
        }
        records.push_back((*this)[row]);
    }
    m_index.reorder(sortedOrder(records, direction < 0));
}
