// ViewChain: walks from a view down to its database.
#include "view/parts/ViewChain.h"

#include <algorithm>
#include <typeinfo>

#include "support/NotFound.h"

namespace {

// Calls pass from view to view along a chain, and for nested calls there is only so much room.
constexpr int longestChain = 200;

constexpr int noRow = -1;

}  // namespace

const KSTViewRep* ViewChain::below(const KSTViewRep& view) noexcept {
    return view.m_base.get();
}

bool ViewChain::canStandOn(const KSTViewRep& base) const noexcept {
    int length = m_top.m_base.above() + 1;
    for (const KSTViewRep* view = &base; view; view = below(*view)) {
        if (view == &m_top || ++length > longestChain) return false;
    }
    return true;
}

void ViewChain::tellThoseBelow() const noexcept {
    int above = m_top.m_base.above();
    for (KSTViewRep* view = m_top.m_base.get(); view; view = view->m_base.get())
        view->m_base.raiseAbove(++above);
}

std::uint64_t ViewChain::lastAttachment() const noexcept {
    std::uint64_t last = 0;
    for (const KSTViewRep* view = &m_top; view; view = below(*view))
        last = std::max({last, view->m_base.number(), view->m_database.number()});
    return last;
}

const KSTViewRep& ViewChain::bottomView() const noexcept {
    const KSTViewRep* view = &m_top;
    while (const KSTViewRep* const base = below(*view)) view = base;
    return *view;
}

const WatchedPtr<kesta>& ViewChain::database() const noexcept {
    return bottomView().m_database.watched();
}

bool ViewChain::hasPlainBases() const noexcept {
    for (const KSTViewRep* view = below(m_top); view; view = below(*view)) {
        if (typeid(*view) != typeid(KSTViewRep)) return false;
    }
    return true;
}

// The rows go through one view after the other, which is faster than to take each row through all of them.
std::vector<unsigned> ViewChain::databaseRows() const {
    std::vector<unsigned> rows(static_cast<std::size_t>(m_top.m_index.size()));
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = m_top.m_index.row(static_cast<int>(i));
    for (const KSTViewRep* view = &m_top; view->m_base.isSet();) {
        view = below(*view);
        if (!view) return std::vector<unsigned>(rows.size(), Zr::notFound);
        const RowIndex& index = view->m_index;
        for (unsigned& row : rows) {
            const int at = static_cast<int>(row);
            row = index.contains(at) ? index.row(at) : Zr::notFound;
        }
    }
    return rows;
}

// The row of the bottom view that a row of the top one stands for.
int ViewChain::bottomRow(int row) const noexcept {
    for (const KSTViewRep* view = &m_top; view && view->m_index.contains(row); view = below(*view)) {
        if (!view->m_base.isSet()) return row;
        row = static_cast<int>(view->m_index.row(row));
    }
    return noRow;
}

bool ViewChain::reachesBottomView(int row) const {
    return bottomRow(row) != noRow;
}

bool ViewChain::reachesDatabase(int row) const {
    const KSTViewRep& bottom = bottomView();
    const kesta* const source = bottom.m_database.get();
    const int found = bottomRow(row);
    return source && found != noRow && bottom.m_index.row(found) < source->get_num_records();
}
