// KSTViewRep: tags.
#include <memory>

#include "view/parts/ViewUses.h"

namespace {

// A view on the same database, chained on `base`; null when the chain is as long as it may be. Destroying it
// ends a use of `base`: hold that meanwhile.
std::unique_ptr<KSTViewRep> newSubview(KSTViewRep& base, kesta* database, const char* fieldSpecification) {
    auto view = std::make_unique<KSTViewRep>(database, fieldSpecification);
    view->baseView(&base);
    if (view->db() != &base) view.reset();
    return view;
}

}  // namespace

bool KSTViewRep::tag(int row) {
    return m_index.contains(row) && m_index.tag(row);
}

bool KSTViewRep::notTagged(int row) {
    return !tag(row);
}

void KSTViewRep::tagAll(bool on) {
    for (int row = 0; db() && row < m_index.size(); ++row) set_tag(static_cast<unsigned>(row), on);
}

void KSTViewRep::invertAllTags() {
    for (int row = 0; db() && row < m_index.size(); ++row) invert_tag(static_cast<unsigned>(row));
}

int KSTViewRep::countTags() const {
    int count = 0;
    for (int row = 0; db() && row < m_index.size(); ++row) {
        if (m_index.tag(row)) ++count;
    }
    return count;
}

int KSTViewRep::tagMatches(int keep) {
    const iKST* const source = db();
    int matches = 0;
    for (int row = 0; source && row < m_index.size(); ++row) {
        // 1 is a match; -1, for no record and no query, is none.
        const bool matched = source->match_record(static_cast<int>(m_index.row(row))) > 0;
        if (matched) ++matches;
        if (matched || keep == 0) set_tag(static_cast<unsigned>(row), matched);
    }
    return matches;
}

int KSTViewRep::tagDuplicatesOrdered(int field) {
    if (!db()) return 0;
    const auto column = static_cast<unsigned>(static_cast<unsigned short>(field));
    int count = 0;
    unsigned first = 0;
    for (unsigned row = 1; row < get_num_records(); ++row) {
        if (getField(first, column).icompare(getField(row, column).c_str()) == 0) {
            set_tag(row, 1);
            ++count;
        } else {
            first = row;
        }
    }
    return count;
}

int KSTViewRep::tagDuplicates(int field) {
    const HeldView held(*this);
    const std::unique_ptr<KSTViewRep> sorted = newSubview(*this, m_database.get(), m_fieldSpec.get());
    if (!sorted) return 0;
    sorted->displayAllRecords();
    sorted->set_sortfield(field);
    sorted->sort(1, 0);
    const int count = sorted->tagDuplicatesOrdered(field);
    sorted->tagBaseFromTags();
    return count;
}

void KSTViewRep::tagBaseFromTags() {
    iKST* const source = db();
    for (int row = 0; source && row < m_index.size(); ++row) {
        source->set_tag(m_index.row(row), m_index.tag(row) ? 1 : 0);
    }
}

KSTViewRep* KSTViewRep::newTagSubview() {
    kesta* const database = m_database.get();
    if (!database) return nullptr;
    const HeldView held(*this);
    std::unique_ptr<KSTViewRep> tagged = newSubview(*this, database, m_fieldSpec.get());
    if (tagged) tagged->displayTaggedRecordsAt(0);
    return tagged.release();
}
