// KSTViewCursor: steps along the rows of a view.
#include "view/KSTViewCursor.h"

#include <algorithm>

KSTViewCursor::KSTViewCursor(const KSTView& view, int row, bool taggedOnly)
    : m_view(view), m_taggedOnly(taggedOnly) {
    set_index(row);
}

void KSTViewCursor::set_index(int row) noexcept {
    m_row = row >= 0 && row < rows() ? row : -1;
}

dbrecord* KSTViewCursor::operator*() const {
    return m_view ? (*m_view)[m_row] : nullptr;
}

KSTViewCursor& KSTViewCursor::operator++() {
    int row = m_row + 1;
    while (row < rows() && !stopsAt(row)) ++row;
    set_index(row);
    return *this;
}

KSTViewCursor& KSTViewCursor::operator--() {
    int row = (m_row < 0 ? rows() : std::min(m_row, rows())) - 1;
    while (row >= 0 && !stopsAt(row)) --row;
    set_index(row);
    return *this;
}

void KSTViewCursor::remove() {
    if (m_row < 0) return;
    m_view->remove(m_row, 1);
    set_index(m_row);
}

int KSTViewCursor::find(dbrecord* record) {
    m_row = m_view ? m_view->find(record) : -1;
    return m_row;
}

int KSTViewCursor::rows() const noexcept {
    return m_view ? static_cast<int>(m_view->get_num_records()) : 0;
}

bool KSTViewCursor::stopsAt(int row) const {
    return !m_taggedOnly || m_view->tag(row);
}
