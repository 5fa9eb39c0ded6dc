// KSTViewRep: from view rows to records, source rows and database rows, and back.
#include "support/NotFound.h"
#include "view/KSTViewRep.h"

dbrecord* KSTViewRep::operator[](int row) const {
    const iKST* const source = db();
    return source && m_index.contains(row) ? source->get_record(m_index.row(row)).get() : nullptr;
}

int KSTViewRep::baseIndex(int row) {
    iKST* const source = db();
    return source && m_index.contains(row) ? source->baseIndex(static_cast<int>(m_index.row(row))) : 0;
}

unsigned KSTViewRep::findViewIndexForBaseRow(unsigned long sourceRow) const noexcept {
    for (int row = 0; row < m_index.size(); ++row) {
        if (m_index.row(row) == sourceRow) return static_cast<unsigned>(row);
    }
    return Zr::notFound;
}

int KSTViewRep::find(dbrecord* wanted) const {
    for (int row = 0; wanted && row < m_index.size(); ++row) {
        if ((*this)[row] == wanted) return row;
    }
    return -1;
}
