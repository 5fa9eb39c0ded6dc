// kesta: matching records against the query, and tagging by match or by distinct value.
#include <cstring>
#include <vector>

#include "record/kesta.h"
#include "search/Matching.h"
#include "support/Ascii.h"

void kesta::set_query(dbrecord* query) {
    if (!query || query->get_num_fields() < get_num_fields()) return;
    const unsigned short count = query->get_num_fields();
    std::vector<TextSearch::Criteria> criteria;
    criteria.reserve(count);
    for (unsigned short i = 0; i < count; ++i) {
        criteria.emplace_back(TextSearch::Criterion(query->getField(i), TextSearch::eContains));
    }
    setQuery(criteria);
}

// A query text in either column of a pair finds the records whose range from start to end touches it.
bool kesta::found_in_special_label_field(const dbrecord* record, int index) const {
    const auto field = static_cast<unsigned>(index);
    const TextSearch::Criteria* const criteria = m_query.criteriaFor(field);
    const Matching::CodeRange* const range =
        criteria && field < m_fields.size() ? Matching::codeRangeOf(m_fields[field].name) : nullptr;
    if (!range) return true;

    const unsigned startField = get_fieldnum(range->start);
    if (!record || startField == Zr::notFound) return false;
    const LightweightString<char>& start = record->getField(static_cast<unsigned short>(startField));
    const unsigned endField = get_fieldnum(range->end);
    const LightweightString<char> none;
    const LightweightString<char>& end =
        endField == Zr::notFound ? none : record->getField(static_cast<unsigned short>(endField));
    // Only the first criterion counts, and only its text.
    return Matching::rangeHolds(criteria->getCriterion(0).text(), start, end);
}

bool kesta::match_field(const dbrecord* record, int index) const {
    const auto field = static_cast<unsigned>(index);
    if (field < m_specialLabels.size() && m_specialLabels[field]) {
        return found_in_special_label_field(record, index);
    }
    const TextSearch::Criteria* const criteria = m_query.criteriaFor(field);
    return !criteria || matchField(record, static_cast<unsigned short>(field), *criteria);
}

int kesta::match_record(const Zr::Ptr<dbrecord>& record) const {
    if (!record || m_query.empty()) return -1;
    // Fields without a condition match, so only the others are looked at.
    for (const unsigned field : m_query.conditions()) {
        if (field >= get_num_fields()) break;
        if (!match_field(record.get(), static_cast<int>(field))) return 0;
    }
    return 1;
}

int kesta::match_record(int row) const {
    const auto at = static_cast<unsigned>(row);
    if (!m_showTagsOnly && !m_query.conditions().empty()) {
        Matching::askAhead(m_records, at, m_query.conditions().front());
    }
    return match_record(get_record(at));
}

int kesta::tag_matching_records(int keepTags) {
    if (m_query.empty()) return 0;
    int count = 0;
    for (unsigned row = 0; row < get_num_records(); ++row) {
        // Deliberately not only 1: a row without a record, for which it is -1, counts as well.
        if (match_record(static_cast<int>(row)) != 0) {
            ++count;
            set_tag(row, 1);
        } else if (keepTags == 0) {
            set_tag(row, 0);
        }
    }
    return count;
}

int kesta::tag_all_different(int field) {
    set_all_tags(0);
    set_show_tags_only(0);
    set_sortfield(field);
    sort(1, 0);

    // What is longer than the buffer deliberately differs from its own cut copy: equal long values are all
    // tagged.
    char previous[256] = "";
    for (unsigned row = 0; row < get_num_records(); ++row) {
        const char* const value = getField(row, static_cast<unsigned>(field)).c_str();
        if (Ascii::compareFolded(value, previous) == 0) continue;
        const std::size_t length = strnlen(value, sizeof(previous) - 1);
        std::memcpy(previous, value, length);
        previous[length] = '\0';
        set_tag(row, 1);
    }
    return get_num_tags();
}
