// KSTViewRep: from view rows to records, source rows and database rows, and back.
#include "view/KSTViewRep.h"

Zr::Ptr<dbrecord> KSTViewRep::record(int row) const {
    const iKST* const source = db();
    return source && m_index.contains(row) ? source->get_record(m_index.row(row)) : Zr::Ptr<dbrecord>();
}

dbrecord* KSTViewRep::operator[](int row) const {
    return record(row).get();
}

int KSTViewRep::baseIndex(int row) {
    iKST* const source = db();
    return source && m_index.contains(row) ? source->baseIndex(static_cast<int>(m_index.row(row))) : 0;
}

unsigned KSTViewRep::findViewIndexForBaseRow(unsigned long sourceRow) const noexcept {
    for (int row = 0; row < m_index.size(); ++row) {
        if (m_index.row(row) == sourceRow) return static_cast<unsigned>(row);
    }
    return static_cast<unsigned>(-1);
}

int KSTViewRep::find(dbrecord* wanted) const {
    for (int row = 0; wanted && row < m_index.size(); ++row) {
        if ((*this)[row] == wanted) return row;
    }
    return -1;
}
