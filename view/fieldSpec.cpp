// KSTViewRep: the field specification.
#include <algorithm>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "support/Exception.h"
#include "support/Log.h"
#include "view/KSTViewRep.h"

namespace {

using FieldsByName = std::unordered_map<std::string_view, unsigned>;

/// The first field of each exact name. Valid while no name changes.
FieldsByName fieldsByName(const iKST* source) {
    FieldsByName fields;
    for (unsigned field = 0; source && field < source->get_num_fields(); ++field) {
        fields.emplace(source->get_fieldname(field), field);
    }
    return fields;
}

}  // namespace

void KSTViewRep::fieldSpec(const char* specification) {
    m_fieldSpec.reset();
    if (!specification) return;
    try {
        m_fieldSpec.emplace(specification);
    } catch (const Zr::Exception::BadAlloc&) {
        return;  // a view does well without
    }

    const FieldsByName fields = fieldsByName(db());
    constexpr std::string_view separators = "\t,";
    std::string_view rest = specification;
    for (;;) {
        rest.remove_prefix(std::min(rest.find_first_not_of(separators), rest.size()));
        if (rest.empty()) break;
        const std::string_view name = rest.substr(0, rest.find_first_of(separators));
        rest.remove_prefix(name.size());
        const auto found = fields.find(name);
        if (found != fields.end()) {
            pushFieldRef(found->second);
        } else {
            dorp_printf("Warning: KSTView::fieldSpec, non-existant fieldname \"%.*s\".\n",
                        static_cast<int>(name.size()), name.data());
        }
    }
    if (m_fields) m_fields.reset(m_fields.release()->reverse());
}

void KSTViewRep::pushFieldRef(unsigned field) {
    auto ref = std::make_unique<SExprRef>(field, db(), sourceWatch());
    auto cell = std::make_unique<SExpr>(ref.get(), m_fields.get());
    (void)ref.release();
    (void)m_fields.release();
    m_fields = std::move(cell);
}

void KSTViewRep::identityFieldSpec(GrowString& out) const {
    const iKST* const source = db();
    for (unsigned field = 0; source && field < source->get_num_fields(); ++field) {
        if (field != 0) out.append(',');
        out.append(source->get_fieldname(field));
    }
}

int KSTViewRep::dbFieldIndex(const char* name) const {
    const iKST* const source = db();
    if (!source || !name) return -1;
    if (static_cast<int>(source->get_num_fields()) < 0) return 0;
    const FieldsByName fields = fieldsByName(source);
    const auto found = fields.find(name);
    return found != fields.end() ? static_cast<int>(found->second) : -1;
}

void KSTViewRep::asString(GrowString& out) const {
    out.append("fieldSpec: ");
    out.append(fieldSpecText());
    out.append('\n');
    if (!m_fields) return;
    out.append("fields: ");
    m_fields->asString(out);
    out.append('\n');
}
