#include "view/KSTView.h"

KSTView::KSTView(KSTViewRep* view) noexcept : m_view(view) {
    if (m_view) m_view->addUse();
}

KSTView::KSTView(const KSTView& other) noexcept : KSTView(other.m_view) {}

KSTView& KSTView::operator=(const KSTView& other) noexcept {
    KSTViewRep* const view = other.m_view;  // the other handle may belong to what is let go
    if (view) view->addUse();
    KSTViewRep* const old = m_view;
    m_view = view;
    KSTViewRep::release(old);
    return *this;
}

KSTView::~KSTView() {
    KSTViewRep::release(m_view);
}

KSTView KSTView::copy() const {
    return KSTView(m_view ? m_view->copy() : nullptr);
}

KSTView KSTView::copyWithNewBaseView() const {
    return KSTView(m_view ? m_view->copyWithNewBaseView() : nullptr);
}
