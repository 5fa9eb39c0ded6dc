// kesta: matching records against the query, and tagging by match or by distinct value.
#include <algorithm>
#include <cstring>
#include <vector>

#include "record/StandardColumns.h"
#include "record/kesta.h"
#include "record/parts/Prefetch.h"
#include "support/Ascii.h"

namespace {

// The columns that hold the two ends of one code range.
struct CodeRange {
    LightweightString<char> start;
    LightweightString<char> end;
};

// The range that a column is an end of, by its exact name; null when of none. Look-ups take strings, which
// are not made for each record.
const CodeRange* codeRangeOf(const LightweightString<char>& name) {
    static const std::vector<CodeRange> ranges = [] {
        std::vector<CodeRange> made;
        for (const StandardColumn& column : StandardColumns::all) {
            if (column.end.empty()) continue;
            made.push_back({LightweightString<char>(column.name), LightweightString<char>(column.end)});
        }
        return made;
    }();
    const auto found = std::find_if(ranges.begin(), ranges.end(), [&name](const CodeRange& range) {
        return range.start == name || range.end == name;
    });
    return found == ranges.end() ? nullptr : &*found;
}

const LightweightString<char>& textOf(const dbrecord& record, unsigned field) noexcept {
    return record.getField(static_cast<unsigned short>(field));
}

}  // namespace

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

// A query text in either field of a pair finds the records whose range from start to end touches it.
bool kesta::found_in_special_label_field(const dbrecord* record, int index) const {
    const auto field = static_cast<unsigned>(index);
    if (field >= m_query.size() || m_query[field].empty()) return true;
    const CodeRange* const range = field < m_fields.size() ? codeRangeOf(m_fields[field].name) : nullptr;
    if (!range) return true;

    const unsigned startField = get_fieldnum(range->start);
    if (!record || startField == notFound) return false;
    const LightweightString<char>& start = textOf(*record, startField);
    if (start.empty()) return false;

    // Only the first criterion counts, and only its text. As many characters as it has are compared, so it
    // stands for every code that begins with it.
    const LightweightString<char>& sought = m_query[field].getCriterion(0).text();
    const unsigned length = sought.length();
    const int againstStart = std::strncmp(sought.c_str(), start.c_str(), length);
    if (againstStart == 0) return true;

    const unsigned endField = get_fieldnum(range->end);
    if (endField == notFound) return false;
    const LightweightString<char>& end = textOf(*record, endField);
    if (end.empty() || againstStart < 0) return false;
    return std::strncmp(sought.c_str(), end.c_str(), length) <= 0;
}

bool kesta::match_field(const dbrecord* record, int index) const {
    const auto field = static_cast<unsigned>(index);
    if (field < m_specialLabels.size() && m_specialLabels[field]) {
        return found_in_special_label_field(record, index);
    }
    if (field >= m_query.size() || m_query[field].empty()) return true;
    return matchField(record, static_cast<unsigned short>(field), m_query[field]);
}

int kesta::match_record(const Zr::Ptr<dbrecord>& record) const {
    if (!record || m_query.empty()) return -1;
    // Fields without a condition match, so only the others are looked at.
    for (const unsigned field : m_conditions) {
        if (field >= get_num_fields()) break;
        if (!match_field(record.get(), static_cast<int>(field))) return 0;
    }
    return 1;
}

// Callers walk the rows in order, and a text that has to come from main memory costs more than its match.
void kesta::prefetchForMatch(std::size_t row) const noexcept {
    if (m_showTagsOnly || m_conditions.empty() || row + Prefetch::recordAhead >= m_records.size()) return;
    const auto field = static_cast<unsigned short>(m_conditions.front());
    Prefetch::record(m_records[row + Prefetch::recordAhead].get());
    const dbrecord* const second = m_records[row + Prefetch::fieldAhead].get();
    const dbrecord* const first = m_records[row + Prefetch::textAhead].get();
    if (second) Prefetch::field(second->getField(field));
    if (first) Prefetch::text(first->getField(field));
}

int kesta::match_record(int row) const {
    prefetchForMatch(static_cast<unsigned>(row));
    return match_record(get_record(static_cast<unsigned>(row)));
}

int kesta::tag_matching_records(int keepTags) {
    if (m_query.empty()) return 0;
    int count = 0;
    for (unsigned row = 0; row < get_num_records(); ++row) {
        // Deliberately not only 1: a row without a record, which answers -1, counts as well.
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
