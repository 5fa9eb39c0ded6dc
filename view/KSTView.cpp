// KSTView: a handle counts as one use of its view.
#include "view/KSTView.h"

#include "view/parts/ViewUses.h"

KSTView::KSTView(KSTViewRep* view) noexcept : m_view(view) {
    if (m_view) ViewUses::add(*m_view);
}

KSTView::KSTView(const KSTView& other) noexcept : KSTView(other.m_view) {}

KSTView& KSTView::operator=(const KSTView& other) noexcept {
    KSTViewRep* const view = other.m_view;  // the other handle may belong to what is let go
    if (view) ViewUses::add(*view);
    KSTViewRep* const old = m_view;
    m_view = view;
    ViewUses::release(old);
    return *this;
}

KSTView::~KSTView() {
    ViewUses::release(m_view);
}

KSTView KSTView::copy() const {
    return KSTView(m_view ? m_view->copy() : nullptr);
}

KSTView KSTView::copyWithNewBaseView() const {
    return KSTView(m_view ? m_view->copyWithNewBaseView() : nullptr);
}
