// KSTViewRep: sorting the rows of a view.
#include <vector>

#include "record/SortKeys.h"
#include "view/KSTViewRep.h"
#include "view/LifeSupport.h"

namespace {

/// How many steps ahead of a walk its database is told of the rows.
constexpr std::size_t later = 24;
constexpr std::size_t sooner = 12;

constexpr unsigned noRow = static_cast<unsigned>(-1);

}  // namespace

void KSTViewRep::sort(int direction, int caseInsensitive) {
    const LifeSupport announced;
    iKST* const source = db();
    if (!source) return;
    source->sortPrepare(direction, caseInsensitive);
    const std::vector<unsigned> order = sortedOrder(records(), direction < 0);
    // A source that takes rows away while it is asked for them has had its way.
    if (order.size() == static_cast<std::size_t>(m_index.size())) m_index.reorder(order);
}

// The records of all rows; null for a row that has none.
std::vector<const dbrecord*> KSTViewRep::records() const {
    const std::vector<unsigned> rows = bottomSourceRows();
    const kesta* const source = bottomView().database();
    std::vector<const dbrecord*> records(rows.size());
    for (std::size_t i = 0; source && i < rows.size(); ++i) {
        if (i + later < rows.size()) source->expectRecords(rows[i + later], rows[i + sooner]);
        records[i] = source->get_record(rows[i]).get();
    }
    return records;
}

// The rows that the view at the bottom of the chain has for all rows; noRow where a view between has not the
// row, and for all when one is gone. One view after the other, which is faster than row by row.
std::vector<unsigned> KSTViewRep::bottomSourceRows() const {
    std::vector<unsigned> rows(static_cast<std::size_t>(m_index.size()));
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = m_index.row(static_cast<int>(i));
    for (const KSTViewRep* view = this; view && view->m_base.isSet();) {
        view = view->m_base.get();
        for (unsigned& row : rows) {
            const int at = static_cast<int>(row);
            row = view && view->m_index.contains(at) ? view->m_index.row(at) : noRow;
        }
    }
    return rows;
}
