// KSTView: the counted handle through which a view is held.
//
// Thread-safety: none; a view and its handles belong to one thread at a time.
#pragma once

#include "support/Export.h"
#include "view/KSTViewRep.h"

/// Holds one use of a view. The view is destroyed when its last use ends.
class KESTA_API KSTView {
 public:
    KSTView() noexcept = default;
    explicit KSTView(KSTViewRep* view) noexcept;  ///< on a view; null makes an empty handle

    /// On the same view.
    KSTView(const KSTView& other) noexcept;
    KSTView& operator=(const KSTView& other) noexcept;
    ~KSTView();

    /// A handle on a copy of the view (KSTViewRep::copy); empty when there is nothing to copy.
    KSTView copy() const;

    /// The same with a copy of the database (KSTViewRep::copyWithNewBaseView).
    KSTView copyWithNewBaseView() const;

    /// The view; null when the handle is empty.
    KSTViewRep* rep() const noexcept { return m_view; }
    KSTViewRep* operator->() const noexcept { return m_view; }
    KSTViewRep& operator*() const noexcept { return *m_view; }
    explicit operator bool() const noexcept { return m_view != nullptr; }

 private:
    KSTViewRep* m_view = nullptr;
};
