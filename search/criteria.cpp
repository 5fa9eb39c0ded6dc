// kesta: queries as lists of criteria, one entry for each column by position.
#include <ctime>
#include <vector>

#include "record/kesta.h"
#include "support/StringFunctions.h"
#include "support/time_def.h"

namespace {

// A date is searched in the form in which it is shown: weekday, month, day, time of day and year in local
// time, and a line feed.
LightweightString<char> calendarForm(const LightweightString<char>& seconds) {
    const std::time_t time = Zr::UIntFromString(seconds, 0);
    char text[32] = "";
    return ctime_r(&time, text);
}

}  // namespace

void kesta::setQuery(const std::vector<TextSearch::Criteria>& criteria) {
    if (criteria.size() < get_num_fields() || &criteria == &m_query) return;
    std::vector<TextSearch::Criteria> query = criteria;
    std::vector<unsigned> conditions;
    for (unsigned i = 0; i < query.size(); ++i) {
        if (!query[i].empty()) conditions.push_back(i);
    }
    m_query.swap(query);
    m_conditions.swap(conditions);
}

bool kesta::matchField(const dbrecord* record, unsigned short field,
                       const TextSearch::Criteria& criteria) const {
    if (!record) return false;
    const unsigned options = m_matchOptions != 0 ? TextSearch::eMatchCase : 0U;
    const LightweightString<char>& text = record->getField(field);
    switch (field < m_fields.size() ? m_fields[field].type : DBFieldTypes::eText) {
        case DBFieldTypes::eTimecodeS:
            return TextSearch::match(time_def(text.c_str(), eTimecodeLabel).get_punctuated_str(), criteria,
                                     options | TextSearch::eSeparatorsEqual);
        case DBFieldTypes::eTimecode:
            return TextSearch::match(text, criteria, options | TextSearch::eSeparatorsEqual);
        case DBFieldTypes::eDosDate:
            return TextSearch::match(calendarForm(text), criteria, options);
        default:
            return TextSearch::match(text, criteria, options);
    }
}
