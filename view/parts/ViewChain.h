// ViewChain: a view and those it stands on, down to the database.
//
// Thread-safety: const operations may run at once while nobody changes the views.
#pragma once

#include <cstdint>
#include <vector>

#include "view/KSTViewRep.h"

/// Valid while its top view lives. Views below that are gone end the chain.
class ViewChain {
 public:
    explicit ViewChain(const KSTViewRep& top) noexcept : m_top(top) {}

    /// Whether the top view can be chained on `base`: the chain would be no circle and short enough.
    bool canStandOn(const KSTViewRep& base) const noexcept;

    /// Tells the views below the top one of the views that stand on them.
    void tellThoseBelow() const noexcept;

    /// The greatest number of an attachment in the chain: it changes with what any of its views stands on.
    std::uint64_t lastAttachment() const noexcept;

    /// The database at the end of the chain.
    const WatchedPtr<kesta>& database() const noexcept;

    /// Whether the row index of each view alone says what its rows are: none below the top one is of a
    /// derived class, which may answer with other records than its rows name.
    bool hasPlainBases() const noexcept;

    /// The database's row for each row of the top view; Zr::notFound where a view between does not have the
    /// row, and for all when one is gone.
    std::vector<unsigned> databaseRows() const;

    /// Whether a row of the top view can be followed down to the view that stands on no other, and on to a
    /// row of the database.
    bool reachesBottomView(int row) const;
    bool reachesDatabase(int row) const;

 private:
    static const KSTViewRep* below(const KSTViewRep& view) noexcept;
    const KSTViewRep& bottomView() const noexcept;
    int bottomRow(int row) const noexcept;

    const KSTViewRep& m_top;
};
