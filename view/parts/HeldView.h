// KSTViewRep::Held: what an operation holds its own view with while it makes and ends views that are chained
// on it.
//
// Thread-safety: none; it is made, used and ended by the view's own thread.
#pragma once

#include "view/KSTViewRep.h"

/// Keeps a view alive, even one without a use, while others that are chained on it come and go.
class KSTViewRep::Held {
 public:
    explicit Held(KSTViewRep& view) noexcept : m_view(view), m_inUse(view.m_useCount != 0) {
        m_view.addUse();
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() {
        if (m_inUse) {
            release(&m_view);
        } else {
            --m_view.m_useCount;
        }
    }

 private:
    KSTViewRep& m_view;
    const bool m_inUse;
};
