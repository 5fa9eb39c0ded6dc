// KSTViewRep: copies of a view.
#include <vector>

#include "view/KSTViewRep.h"
#include "view/parts/CopiedDatabase.h"

KSTViewRep* KSTViewRep::copy() {
    kesta* const source = database();
    if (!source) return nullptr;
    auto result = std::make_unique<KSTViewRep>(source, fieldSpecText());
    if (KSTViewRep* const base = m_base.get()) {
        result->baseView(base);
        result->displayAllRecords();
    } else {
        result->displayAllFromAt(this, 0);
        result->addParamsFrom(source);
    }
    copyTagsTo(*result);
    return result.release();
}

KSTViewRep* KSTViewRep::copyWithNewBaseView() {
    const kesta* const source = database();
    if (!source) return nullptr;
    const Zr::Ptr<kesta> copied(new CopiedDatabase(*source));
    auto result = std::make_unique<KSTViewRep>(copied.get());
    std::vector<unsigned> rows;
    for (int row = 0; row < m_index.size(); ++row) {
        if ((*this)[row]) rows.push_back(static_cast<unsigned>(baseIndex(row)));
    }
    result->m_index.insertOneByOne(0, std::move(rows));
    result->addParamsFrom(this);
    copyTagsTo(*result);
    return result.release();
}

void KSTViewRep::copyTagsTo(KSTViewRep& other) const {
    for (int row = 0; row < m_index.size(); ++row) {
        other.set_tag(static_cast<unsigned>(row), m_index.tag(row) ? 1 : 0);
    }
}
