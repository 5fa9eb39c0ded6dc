// KSTViewRep: copies of a view.
#include <memory>
#include <vector>

#include "view/KSTViewRep.h"
#include "view/parts/CopiedDatabase.h"

namespace {

void copyTags(const RowIndex& from, KSTViewRep& to) {
    for (int row = 0; row < from.size(); ++row) to.set_tag(static_cast<unsigned>(row), from.tag(row) ? 1 : 0);
}

}  // namespace

KSTViewRep* KSTViewRep::copy() {
    kesta* const source = m_database.get();
    if (!source) return nullptr;
    auto result = std::make_unique<KSTViewRep>(source, m_fieldSpec.get());
    if (KSTViewRep* const base = m_base.get()) {
        result->baseView(base);
        result->displayAllRecords();
    } else {
        result->displayAllFromAt(this, 0);
        result->addParamsFrom(source);
    }
    copyTags(m_index, *result);
    return result.release();
}

KSTViewRep* KSTViewRep::copyWithNewBaseView() {
    const kesta* const source = m_database.get();
    if (!source) return nullptr;
    const Zr::Ptr<kesta> copied(new CopiedDatabase(*source));
    auto result = std::make_unique<KSTViewRep>(copied.get());
    std::vector<unsigned> rows;
    for (int row = 0; row < m_index.size(); ++row) {
        if ((*this)[row]) rows.push_back(static_cast<unsigned>(baseIndex(row)));
    }
    result->m_index.insertOneByOne(0, std::move(rows));
    result->addParamsFrom(this);
    copyTags(m_index, *result);
    return result.release();
}
