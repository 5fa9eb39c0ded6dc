// KSTViewRep: sorting the rows of a view.
#include <vector>

#include "record/parts/RecordsAhead.h"
#include "record/parts/SortKeys.h"
#include "support/NotFound.h"
#include "view/KSTViewRep.h"
#include "view/parts/LifeSupport.h"
#include "view/parts/ViewChain.h"

namespace {

/// How many steps ahead of a walk its database is told of the rows.
constexpr std::size_t later = 24;
constexpr std::size_t sooner = 12;

// The records of all rows of a view; null for a row that has none.
std::vector<const dbrecord*> recordsOf(const KSTViewRep& view) {
    const ViewChain chain(view);
    const std::vector<unsigned> rows = chain.databaseRows();
    const bool plain = chain.hasPlainBases();
    // A copy, for to ask for a record may end the view that has it.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const WatchedPtr<kesta> database = chain.database();
    std::vector<const dbrecord*> found(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const kesta* const base = database.get();  // to ask for a record may end it
        if (base && i + later < rows.size()) RecordsAhead(*base).expect(rows[i + later], rows[i + sooner]);
        if (!plain) {
            found[i] = view[static_cast<int>(i)];
        } else if (base && rows[i] != Zr::notFound) {
            found[i] = base->get_record(rows[i]).get();  // the same, without the walk along the chain
        }
    }
    if (!database.get()) found.assign(rows.size(), nullptr);  // gone, and the records with it
    return found;
}

}  // namespace

void KSTViewRep::sort(int direction, int caseInsensitive) {
    const LifeSupport announced;
    iKST* const source = db();
    if (!source) return;
    source->sortPrepare(direction, caseInsensitive);
    const std::vector<const dbrecord*> found = recordsOf(*this);
    // A source that takes rows away while it is asked for them has had its way.
    if (found.size() == static_cast<std::size_t>(m_index.size())) {
        m_index.reorder(sortedOrder(found, direction < 0));
    }
}
