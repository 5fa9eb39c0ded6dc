// KSTViewRep: sorting the rows of a view.
#include <vector>

#include "record/SortKeys.h"
#include "view/KSTViewRep.h"
#include "view/LifeSupport.h"

namespace {

/// How many steps ahead of a walk its database is told of the rows.
constexpr std::size_t later = 24;
constexpr std::size_t sooner = 12;

}  // namespace

void KSTViewRep::sort(int direction, int caseInsensitive) {
    const LifeSupport announced;
    iKST* const source = db();
    if (!source) return;
    source->sortPrepare(direction, caseInsensitive);
    std::vector<unsigned> baseRows;
    baseRows.reserve(static_cast<std::size_t>(m_index.size()));
    for (int row = 0; row < m_index.size(); ++row) baseRows.push_back(static_cast<unsigned>(baseIndex(row)));

    std::vector<const dbrecord*> records;
    records.reserve(baseRows.size());
    for (int row = 0; row < m_index.size(); ++row) {
        const kesta* const base = database();
        const auto at = static_cast<std::size_t>(row);
        if (base && at + later < baseRows.size()) {
            base->expectRecords(baseRows[at + later], baseRows[at + sooner]);
        }
        records.push_back((*this)[row]);
    }
    const std::vector<unsigned> order = sortedOrder(records, direction < 0);
    // A source that takes rows away while it is asked for them has had its way.
    if (order.size() == static_cast<std::size_t>(m_index.size())) m_index.reorder(order);
}
