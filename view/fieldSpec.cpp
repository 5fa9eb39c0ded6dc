// KSTViewRep: the field specification.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <unordered_map>
#include <utility>

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

void pushFieldRef(std::unique_ptr<SExpr>& list, unsigned field, iKST* source, const LifeWatch& watch) {
    auto ref = std::make_unique<SExprRef>(field, source, watch);
    auto cell = std::make_unique<SExpr>(ref.get(), list.get());
    (void)ref.release();
    (void)list.release();
    list = std::move(cell);
}

}  // namespace

void KSTViewRep::fieldSpec(const char* specification) {
    m_fieldSpec.reset();
    if (!specification) return;
    try {
        const std::size_t size = std::strlen(specification) + 1;
        m_fieldSpec = std::make_unique<char[]>(size);
        std::memcpy(m_fieldSpec.get(), specification, size);
    } catch (const std::bad_alloc&) {
        return;  // a view does well without
    }

    const LifeWatch watch = m_base.isSet() ? m_base.watched().watch() : m_database.watched().watch();
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
            pushFieldRef(m_fields, found->second, db(), watch);
        } else {
            dorp_printf("Warning: KSTView::fieldSpec, non-existant fieldname \"%.*s\".\n",
                        static_cast<int>(name.size()), name.data());
        }
    }
    if (m_fields) m_fields.reset(m_fields.release()->reverse());
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
    out.append(m_fieldSpec.get());
    out.append('\n');
    if (!m_fields) return;
    out.append("fields: ");
    m_fields->asString(out);
    out.append('\n');
}
