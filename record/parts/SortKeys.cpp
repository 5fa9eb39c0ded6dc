// Sorting records by a few bytes of their keys at a time.
//
// What a record sorts by is seen as a row of words, which compare as the comparators compare the texts
// (KeyRules). The records are sorted by their first words; each group that is still level is sorted by its
// next ones, and so on. So a text is fetched once for each key, most comparisons are of two numbers that
// stand side by side, and the cost stays linear in the characters that decide, however alike the texts are.
#include "record/parts/SortKeys.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "record/kesta.h"
#include "record/parts/Prefetch.h"
#include "support/Ascii.h"

SortKeys sortKeys;

namespace {

using KeyRules::Word;
using KeyRules::wordSize;

struct Key {
    unsigned short field;
    KeyRule rule;
};

/// What is sorted.
struct Entry {
    Word word;
    std::uint32_t extra;  // part of the order only where the rule says so
    unsigned row;
};

struct ByWord {
    bool operator()(const Entry& a, const Entry& b) const noexcept {
        return a.word != b.word ? a.word < b.word : a.row < b.row;
    }
};

struct ByWordAndExtra {
    bool operator()(const Entry& a, const Entry& b) const noexcept {
        return a.word != b.word ? a.word < b.word : a.extra != b.extra ? a.extra < b.extra : a.row < b.row;
    }
};

/// Where the words of a row come from.
struct Source {
    const LightweightString<char>* fields = nullptr;  // the record's; null when it lacks fields that are keys
    const char* text = nullptr;
    unsigned length = 0;  // of the text
};

/// Entries that are level so far, and so stand at the same place of the same key.
struct Group {
    unsigned begin;
    unsigned end;
    unsigned rank;  // of its first entry among all records
    unsigned key;
    KeyRules::Place place;
};

/// From how many entries on it is cheaper to sort byte by byte than by comparing.
constexpr std::size_t worthOfBytes = 256;

class RecordSorter {
 public:
    RecordSorter(const std::vector<const dbrecord*>& records, bool descending)
        : m_records(records), m_descending(descending), m_rows(records.size()) {
        takeKeys();
    }

    std::vector<unsigned> order() {
        listRecords();
        if (m_keys.empty()) {
            settleBlanksLast(m_entries, 0);
        } else if (!m_entries.empty()) {
            m_groups.push_back({0, count(m_entries), 0, 0, {}});
        }
        while (!m_groups.empty()) sortRound();
        return std::move(m_rows);
    }

 private:
    // Rows are counted in 32 bits.
    static unsigned count(const std::vector<Entry>& entries) noexcept {
        return static_cast<unsigned>(entries.size());
    }

    void takeKeys() {
        for (const int* field = cmp_fields; field && *field >= 0; ++field) {
            const KeyRule rule = m_descending ? KeyRule::folded : sortKeys.rule(*field);
            m_keys.push_back({static_cast<unsigned short>(*field), rule});
        }
    }

    void listRecords() {
        m_sources.resize(m_records.size());
        m_entries.reserve(m_records.size());
        for (unsigned row = 0; row < m_records.size(); ++row) {
            if (row + Prefetch::recordAhead < m_records.size()) {
                Prefetch::record(m_records[row + Prefetch::recordAhead]);
            }
            if (!m_records[row]) continue;
            m_sources[row].fields = fieldsOf(*m_records[row]);
            m_entries.push_back({0, 0, row});
        }
        unsigned rank = count(m_entries);
        for (unsigned row = 0; rank < m_records.size(); ++row) {
            if (!m_records[row]) m_rows[rank++] = row;
        }
    }

    // Sorts each group by its next words. Those that are level in them are the groups of the next round,
    // whose entries close up; the others have found their ranks.
    void sortRound() {
        for (Group& group : m_groups) {
            withRule(group, [&](auto rule) { fetchWords(rule, group); });
        }
        m_level.clear();
        unsigned kept = 0;
        for (const Group& group : m_groups) {
            withRule(group, [&](auto rule) {
                sortByWord(rule, group);
                kept = keepLevelOnes(rule, group, kept);
            });
        }
        m_entries.resize(kept);
        m_groups.swap(m_level);
    }

    template <class Act>
    void withRule(const Group& group, Act act) const {
        KeyRules::withRule(m_keys[group.key].rule, act);
    }

    template <class Rule>
    void fetchWords(Rule rule, Group& group) {
        const bool beginsKey = group.place.isBeginning();
        m_withoutText.clear();
        unsigned kept = group.begin;
        for (unsigned i = group.begin; i < group.end; ++i) {
            prefetch(i, group);
            Entry& entry = m_entries[i];
            if (beginsKey && !fetchText(entry, group.key)) {
                m_withoutText.push_back(entry);
                continue;
            }
            fetchWord(rule, entry, group.place);
            if (kept != i) m_entries[kept] = entry;
            ++kept;
        }
        if (kept != group.end) settleWithoutText(group, kept);
    }

    // Asks for what entries further on will need. Groups may be small, so these may be the next ones', which
    // are likely to stand at the same place.
    void prefetch(std::size_t i, const Group& group) const noexcept {
        const std::size_t end = m_entries.size();
        if (i + Prefetch::recordAhead < end) {
            __builtin_prefetch(&m_sources[m_entries[i + Prefetch::recordAhead].row]);
        }
        if (group.place.isBeginning()) {
            const unsigned short field = m_keys[group.key].field;
            if (i + Prefetch::fieldAhead < end) {
                Prefetch::field(textOf(m_entries[i + Prefetch::fieldAhead], field));
            }
            if (i + Prefetch::textAhead < end) {
                Prefetch::text(textOf(m_entries[i + Prefetch::textAhead], field));
            }
        } else if (i + Prefetch::textAhead < end) {
            Prefetch::characters(m_sources[m_entries[i + Prefetch::textAhead].row].text, group.place.offset);
        }
    }

    // Goes round the record, which would have to come from memory for each key again.
    const LightweightString<char>& textOf(const Entry& entry, unsigned short field) const noexcept {
        const Source& source = m_sources[entry.row];
        return source.fields ? source.fields[field] : record(entry)->getField(field);
    }

    const LightweightString<char>* fieldsOf(const dbrecord& record) const noexcept {
        const bool hasAll = std::all_of(m_keys.begin(), m_keys.end(),
                                        [&](const Key& key) { return key.field < record.get_num_fields(); });
        return hasAll ? record.fields().data() : nullptr;
    }

    const dbrecord* record(const Entry& entry) const noexcept { return m_records[entry.row]; }

    // Gives the entry its text for the key; false when in ascending order it has none.
    bool fetchText(Entry& entry, unsigned key) noexcept {
        std::string_view text = textOf(entry, m_keys[key].field).view();
        if (text.empty() && !m_descending) return false;
        // The comparators see texts that end at a zero character.
        text = text.substr(0, text.find('\0'));
        if (!m_descending) text = Ascii::withoutLeadingSpace(text);
        m_sources[entry.row].text = text.data();
        m_sources[entry.row].length = static_cast<unsigned>(text.size());
        return true;
    }

    template <class Rule>
    void fetchWord(Rule rule, Entry& entry, const KeyRules::Place& place) const noexcept {
        const Source& source = m_sources[entry.row];
        const KeyRules::Words words = rule.fetch({source.text, source.length}, place);
        entry.word = m_descending ? ~words.word : words.word;
        entry.extra = words.extra;
    }

    // Entries without a text for the key leave the group: they come after the others, and for them the
    // comparison ends here.
    void settleWithoutText(Group& group, unsigned kept) {
        const unsigned rank = group.rank + (kept - group.begin);
        // A record with text in the first key is not blank, so only the others need looking at.
        if (group.key == 0) {
            settleBlanksLast(m_withoutText, rank);
        } else {
            settle(m_withoutText, rank);
        }
        group.end = kept;
    }

    void settleBlanksLast(std::vector<Entry>& entries, unsigned rank) {
        if (!m_descending) {
            std::stable_partition(entries.begin(), entries.end(),
                                  [this](const Entry& entry) { return !record(entry)->is_blank(); });
        }
        settle(entries, rank);
    }

    void settle(const std::vector<Entry>& entries, unsigned rank) noexcept {
        for (const Entry& entry : entries) m_rows[rank++] = entry.row;
    }

    // Entries that are level stay in the order of their rows, in which they come.
    template <class Rule>
    void sortByWord(Rule rule, const Group& group) {
        Entry* const begin = m_entries.data() + group.begin;
        Entry* const end = m_entries.data() + group.end;
        if (!rule.extraCounts(group.place)) {
            sortBy(ByWord(), begin, end);
        } else if (sortBy(ByWordAndExtra(), begin, end) == Sorted::byWordsAlone) {
            sortByExtra(begin, end);
        }
    }

    enum class Sorted { wholly, byWordsAlone };

    template <class Before>
    Sorted sortBy(const Before& before, Entry* begin, Entry* end) {
        if (std::is_sorted(begin, end, before)) return Sorted::wholly;
        if (static_cast<std::size_t>(end - begin) < worthOfBytes) {
            std::sort(begin, end, before);
            return Sorted::wholly;
        }
        sortByBytes(begin, static_cast<std::size_t>(end - begin));
        return Sorted::byWordsAlone;
    }

    // By the words, one byte after the other, from the last; each time what is level stays as it was. A byte
    // that all words have alike is passed over.
    void sortByBytes(Entry* entries, std::size_t count) {
        std::array<std::array<unsigned, 256>, wordSize> counts{};
        for (std::size_t i = 0; i < count; ++i) {
            for (unsigned byte = 0; byte < wordSize; ++byte) ++counts[byte][byteOf(entries[i].word, byte)];
        }
        m_spare.resize(std::max(m_spare.size(), count));
        Entry* from = entries;
        Entry* to = m_spare.data();
        for (unsigned byte = 0; byte < wordSize; ++byte) {
            std::array<unsigned, 256>& places = counts[byte];
            if (places[byteOf(from->word, byte)] == count) continue;
            unsigned place = 0;
            for (unsigned& next : places) place += std::exchange(next, place);
            for (std::size_t i = 0; i < count; ++i) to[places[byteOf(from[i].word, byte)]++] = from[i];
            std::swap(from, to);
        }
        if (from != entries) std::copy(from, from + count, entries);
    }

    static unsigned byteOf(Word word, unsigned byte) noexcept { return word >> 8 * byte & 0xFF; }

    // Entries that are in the order of their words.
    static void sortByExtra(Entry* begin, Entry* end) {
        while (begin != end) {
            Entry* const first = begin;
            while (begin != end && begin->word == first->word) ++begin;
            if (begin - first > 1) std::sort(first, begin, ByWordAndExtra());
        }
    }

    // Moves those that are level to `kept`, which is not after them; returns where they end.
    template <class Rule>
    unsigned keepLevelOnes(Rule rule, const Group& group, unsigned kept) {
        const bool extraCounts = rule.extraCounts(group.place);
        for (unsigned begin = group.begin; begin < group.end;) {
            const Entry& first = m_entries[begin];
            bool extrasDiffer = false;
            unsigned end = begin + 1;
            for (; end < group.end && m_entries[end].word == first.word; ++end) {
                if (m_entries[end].extra == first.extra) continue;
                if (extraCounts) break;
                extrasDiffer = true;
            }
            Group level{kept, kept + (end - begin), group.rank + (begin - group.begin), group.key, {}};
            if (end - begin > 1 && goesOn(rule, level, group.place, first, extrasDiffer)) {
                m_level.push_back(level);
                for (; begin != end; ++begin) m_entries[kept++] = m_entries[begin];
            } else {
                for (; begin != end; ++begin) m_rows[level.rank++] = m_entries[begin].row;
            }
        }
        return kept;
    }

    // Whether there are words after those of the entry, which all of the group have. Moves the group there.
    template <class Rule>
    bool goesOn(Rule rule, Group& group, const KeyRules::Place& place, const Entry& entry,
                bool extrasDiffer) const noexcept {
        const KeyRules::Words words{m_descending ? ~entry.word : entry.word, entry.extra};
        if (const auto next = rule.next(place, words, extrasDiffer)) {
            group.place = *next;
            return true;
        }
        return ++group.key < m_keys.size();
    }

    const std::vector<const dbrecord*>& m_records;
    const bool m_descending;
    std::vector<Key> m_keys;
    std::vector<Source> m_sources;  // by row
    std::vector<Entry> m_entries;   // of all groups, one after the other
    std::vector<Entry> m_withoutText;
    std::vector<Entry> m_spare;
    std::vector<Group> m_groups;  // of the round
    std::vector<Group> m_level;
    std::vector<unsigned> m_rows;  // by rank
};

}  // namespace

std::vector<unsigned> sortedOrder(const std::vector<const dbrecord*>& records, bool descending) {
    return RecordSorter(records, descending).order();
}
