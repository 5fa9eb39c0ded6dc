// kesta: sorting the records, and the order itself.
#include <vector>

#include "record/kesta.h"
#include "record/parts/SortKeys.h"
#include "support/Ascii.h"

int* cmp_fields = sortKeys.fields;

namespace {

const dbrecord* recordAt(const void* element) noexcept {
    return element ? static_cast<const Zr::Ptr<dbrecord>*>(element)->get() : nullptr;
}

// Rows without a record come last, whatever the direction.
int compareMissing(const dbrecord* a, const dbrecord* b) noexcept {
    return (a ? 0 : 1) - (b ? 0 : 1);
}

}  // namespace

int dbr_cmp(void* first, void* second) {
    const dbrecord* const a = recordAt(first);
    const dbrecord* const b = recordAt(second);
    if (!a || !b) return compareMissing(a, b);
    const bool blankA = a->is_blank();
    const bool blankB = b->is_blank();
    if (blankA || blankB) return (blankA ? 1 : 0) - (blankB ? 1 : 0);

    for (const int* field = cmp_fields; field && *field >= 0; ++field) {
        const LightweightString<char>& textA = a->getField(static_cast<unsigned short>(*field));
        const LightweightString<char>& textB = b->getField(static_cast<unsigned short>(*field));
        // Two empty values deliberately end the comparison: later keys are not consulted.
        if (textA.empty()) return textB.empty() ? 0 : 1;
        if (textB.empty()) return -1;
        const int result = KeyRules::withRule(sortKeys.rule(*field), [&](auto rule) {
            return rule.compare(Ascii::skipSpace(textA.c_str()), Ascii::skipSpace(textB.c_str()));
        });
        if (result != 0) return result;
    }
    return 0;
}

// Descending order deliberately has no rule for blank records, empty values, white space, time codes or case,
// so it is not the mirror of ascending order.
int dbr_backcmp(void* first, void* second) {
    const dbrecord* const a = recordAt(first);
    const dbrecord* const b = recordAt(second);
    if (!a || !b) return compareMissing(a, b);

    for (const int* field = cmp_fields; field && *field >= 0; ++field) {
        const int result =
            KeyRules::Folded::compare(a->getField(static_cast<unsigned short>(*field)).c_str(),
                                      b->getField(static_cast<unsigned short>(*field)).c_str());
        if (result != 0) return -result;
    }
    return 0;
}

void kesta::set_sortfield(int field) {
    std::vector<unsigned short>(1, static_cast<unsigned short>(field)).swap(m_sortFields);
}

void kesta::set_sortfields(int* fields) {
    std::vector<unsigned short> sortFields;
    for (const int* field = fields; field && *field >= 0; ++field) {
        sortFields.push_back(static_cast<unsigned short>(*field));
    }
    m_sortFields.swap(sortFields);
}

int kesta::getSortFieldIdx() const {
    return m_sortFields.empty() ? 0 : m_sortFields.front();
}

void kesta::sortPrepare(int /*direction*/, int caseInsensitive) {
    sortKeys.clear(caseInsensitive != 0);
    unsigned count = 0;
    for (; count < m_sortFields.size() && count < SortKeys::maxKeys; ++count) {
        sortKeys.fields[count] = m_sortFields[count];
    }
    sortKeys.fields[count] = -1;
    cmp_fields = sortKeys.fields;

    // A bad field number ends the keys at its place, yet the fields after it are deliberately still looked
    // at: the last time-code field of them all becomes the one that compares by the time-code rule.
    const unsigned columns = get_num_fields();
    for (unsigned i = 0; i < count; ++i) {
        const int field = sortKeys.fields[i];
        if (static_cast<unsigned>(field) >= columns) {
            sortKeys.fields[i] = -1;
        } else {
            sortKeys.setType(field, get_field_type(static_cast<unsigned>(field)));
        }
    }
}

void kesta::sort(int direction, int caseInsensitive) {
    sortPrepare(direction, caseInsensitive);
    if (!m_records.empty()) {
        Zr::Ptr<dbrecord>* const records = m_records.contiguous();
        std::vector<const dbrecord*> listed(m_records.size());
        for (std::size_t row = 0; row < listed.size(); ++row) listed[row] = records[row].get();
        const std::vector<unsigned> order = sortedOrder(listed, direction < 0);

        // Nothing is moved until all memory is there.
        std::vector<Zr::Ptr<dbrecord>> sorted(order.size());
        for (std::size_t row = 0; row < order.size(); ++row) sorted[row].swap(records[order[row]]);
        for (std::size_t row = 0; row < order.size(); ++row) sorted[row].swap(records[row]);
    }
    if (m_showTagsOnly) index_tags();
}
