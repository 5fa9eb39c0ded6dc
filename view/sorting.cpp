// KSTViewRep: sorting the rows of a view.
#include <typeinfo>
#include <vector>

#include "record/parts/SortKeys.h"
#include "view/KSTViewRep.h"
#include "view/parts/LifeSupport.h"

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
    const std::vector<const dbrecord*> found = records();
    // A source that takes rows away while it is asked for them has had its way.
    if (found.size() == static_cast<std::size_t>(m_index.size())) {
        m_index.reorder(sortedOrder(found, direction < 0));
    }
}

// The records of all rows; null for a row that has none.
std::vector<const dbrecord*> KSTViewRep::records() const {
    const std::vector<unsigned> rows = databaseRows();
    const bool straight = hasPlainBases();
    const WatchedPtr<kesta> watched = bottomView().m_database;
    std::vector<const dbrecord*> found(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const kesta* const base = watched.get();  // to ask for a record may end it
        if (base && i + later < rows.size()) base->expectRecords(rows[i + later], rows[i + sooner]);
        if (!straight) {
            found[i] = (*this)[static_cast<int>(i)];
        } else if (base && rows[i] != noRow) {
            found[i] = base->get_record(rows[i]).get();
        }
    }
    if (!watched.get()) found.assign(rows.size(), nullptr);  // gone, and the records with it
    return found;
}

// Whether no base view is an heir's, which may answer other records than its rows name: then the database can
// be asked straight away, which is faster.
bool KSTViewRep::hasPlainBases() const noexcept {
    for (const KSTViewRep* view = m_base.get(); view; view = view->m_base.get()) {
        if (typeid(*view) != typeid(KSTViewRep)) return false;
    }
    return true;
}

// The database's row for each row; noRow where a view between has not the row, and for all when one is gone.
// The rows go through one view after the other, which is faster than to take each row through all of them.
std::vector<unsigned> KSTViewRep::databaseRows() const {
    std::vector<unsigned> rows(static_cast<std::size_t>(m_index.size()));
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = m_index.row(static_cast<int>(i));
    for (const KSTViewRep* view = this; view->m_base.isSet();) {
        view = view->m_base.get();
        if (!view) return std::vector<unsigned>(rows.size(), noRow);
        for (unsigned& row : rows) {
            const int at = static_cast<int>(row);
            row = view->m_index.contains(at) ? view->m_index.row(at) : noRow;
        }
    }
    return rows;
}
