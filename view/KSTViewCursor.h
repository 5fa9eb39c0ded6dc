// KSTViewCursor: walks the rows of a view.
//
// Thread-safety: none; a cursor belongs to the thread of its view.
#pragma once

#include "support/Export.h"
#include "view/KSTView.h"

/// Stands on a view row or on none, which is -1. Holds a use of the view. The view may change meanwhile: a
/// row that is no longer there has no record, and steps go on from the end.
class KESTA_API KSTViewCursor {
 public:
    /// With `taggedOnly`, steps pass over rows that are not tagged.
    explicit KSTViewCursor(const KSTView& view, int row = -1, bool taggedOnly = false);

    /// The view row it stands on, or -1.
    int index() const noexcept { return m_row; }

    /// Stands on `row`, tagged or not; on none when there is no such row.
    void set_index(int row) noexcept;

    /// The record of the row; null when there is none. No reference is kept.
    dbrecord* operator*() const;

    /// To the next row, or from none to the first. Past the last, on none.
    KSTViewCursor& operator++();

    /// To the row before, or from none to the last. Before the first, on none.
    KSTViewCursor& operator--();

    /// Takes the row out of the view and stands on the one that follows it, or on none.
    void remove();

    /// Stands on the first row with this very record and returns it; on none, and -1, when there is none.
    int find(dbrecord* record);

 private:
    int rows() const noexcept;
    bool stopsAt(int row) const;

    KSTView m_view;
    int m_row = -1;
    bool m_taggedOnly;
};
