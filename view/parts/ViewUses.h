// ViewUses, HeldView: the counting of a view's uses.
//
// Thread-safety: none; the count is a plain number that belongs to the view's own thread.
#pragma once

#include "view/KSTViewRep.h"

class ViewUses {
 public:
    static void add(KSTViewRep& view) noexcept { ++view.m_useCount; }

    /// Ends a use without destroying the view.
    static void drop(KSTViewRep& view) noexcept { --view.m_useCount; }

    /// Ends a use. A view that loses its last one, or has none, is destroyed. Null does nothing.
    static void release(KSTViewRep* view) noexcept {
        if (!view) return;
        if (view->m_useCount > 1) {
            drop(*view);
        } else {
            view->m_useCount = 0;
            delete view;
        }
    }
};

/// Keeps a view alive, even one without a use, while others that are chained on it come and go.
class HeldView {
 public:
    explicit HeldView(KSTViewRep& view) noexcept : m_view(view), m_inUse(view.useCount() != 0) {
        ViewUses::add(m_view);
    }
    HeldView(const HeldView&) = delete;
    HeldView& operator=(const HeldView&) = delete;
    ~HeldView() {
        if (m_inUse) {
            ViewUses::release(&m_view);
        } else {
            ViewUses::drop(m_view);
        }
    }

 private:
    KSTViewRep& m_view;
    const bool m_inUse;
};
