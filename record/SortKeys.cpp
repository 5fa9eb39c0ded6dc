// Sorting records by a few bytes of their keys at a time.
//
// What a record sorts by is seen as a row of 64-bit words, eight characters in each, that compare as the
// comparators compare the texts. The records are sorted by their first words; each group that is still level
// is sorted by its next ones, and so on. So a text is fetched once for each key, most comparisons are of two
// numbers that stand side by side, and the cost stays linear in the characters that decide, however alike the
// texts are.
#include "record/SortKeys.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "record/Prefetch.h"
#include "record/kesta.h"
#include "support/Ascii.h"

SortKeys sortKeys;

namespace {

using Word = std::uint64_t;
constexpr unsigned wordSize = sizeof(Word);

struct Key {
    unsigned short field;
    KeyRule rule;
};

/// What is sorted.
struct Entry {
    Word word;
    unsigned length;  // of the text for the key
    unsigned row;
};

/// Where the words of a row come from.
struct Source {
    const LightweightString<char>* fields = nullptr;  // the record's; null when it lacks fields that are keys
    const char* text = nullptr;
};

// Where in the words of its key a group stands; equal for all its entries, as their words so far are equal.
struct Place {
    std::size_t key = 0;
    unsigned offset = 0;
    bool exact = false;  // in the second round of the dictionary rule, which minds case

    bool beginsKey() const noexcept { return offset == 0 && !exact; }
};

struct Group {
    std::size_t begin;
    std::size_t end;
    Place place;
};

template <class Number>
Word bigEndian(const char* bytes) noexcept {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    if constexpr (sizeof number == 8) return __builtin_bswap64(number);
    if constexpr (sizeof number == 4) return __builtin_bswap32(number);
#endif
    return number;
}

// The first characters of a text as a number that compares as they do; zeros fill what the text lacks.
Word leadingWord(const char* text, std::size_t length) noexcept {
    if (length >= wordSize) return bigEndian<std::uint64_t>(text);
    if (length >= 4) {  // two halves that overlap
        return bigEndian<std::uint32_t>(text) << 32 | bigEndian<std::uint32_t>(text + length - 4)
                                                          << 8 * (wordSize - length);
    }
    Word word = 0;
    for (unsigned i = 0; i < length; ++i) {
        word |= Word(static_cast<unsigned char>(text[i])) << (56 - 8 * i);
    }
    return word;
}

// Ascii::fold of all eight characters at once. Adding to the low seven bits of a byte carries into its top
// bit exactly when the byte reaches the bound.
Word folded(Word word) noexcept {
    constexpr Word ones = 0x0101010101010101;
    const Word low = word & ones * 0x7F;
    const Word fromA = low + ones * (0x80 - 'A');
    const Word pastZ = low + ones * (0x7F - 'Z');
    const Word capitals = (fromA ^ pastZ) & ~word & ones * 0x80;
    return word | capitals >> 2;
}

/// From how many entries on it is cheaper to sort byte by byte than by comparing.
constexpr std::size_t worthOfBytes = 256;

class RecordSorter {
 public:
    RecordSorter(const std::vector<const dbrecord*>& records, bool descending)
        : m_records(records), m_descending(descending) {
        takeKeys();
    }

    std::vector<unsigned> order() {
        listRecords();
        if (m_keys.empty()) {
            moveBlanksBehind(0);
        } else if (!m_entries.empty()) {
            m_groups.push_back({0, m_entries.size(), Place()});
        }
        while (!m_groups.empty()) sortRound();
        return rows();
    }

 private:
    // Walks the entries of all groups some steps ahead of the round.
    class Scout {
     public:
        Scout(const RecordSorter& sorter, unsigned lead) : m_sorter(sorter) {
            m_entry = sorter.m_groups.front().begin;
            for (; lead != 0; --lead) step();
        }

        void step() noexcept {
            if (atEnd() || ++m_entry != group().end) return;
            ++m_group;
            if (!atEnd()) m_entry = group().begin;
        }

        bool atEnd() const noexcept { return m_group == m_sorter.m_groups.size(); }
        const Group& group() const noexcept { return m_sorter.m_groups[m_group]; }
        const Entry& entry() const noexcept { return m_sorter.m_entries[m_entry]; }

     private:
        const RecordSorter& m_sorter;
        std::size_t m_group = 0;
        std::size_t m_entry;
    };

    void takeKeys() {
        for (const int* field = cmp_fields; field && *field >= 0; ++field) {
            const KeyRule rule = m_descending ? KeyRule::ignoringCase : sortKeys.rule(*field);
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
    }

    // Sorts each group by its next words and leaves the groups that are level in them.
    void sortRound() {
        fetchWords();
        m_level.clear();
        for (const Group& group : m_groups) {
            sortByWord(group);
            keepLevelOnes(group);
        }
        m_groups.swap(m_level);
    }

    // One walk over all groups, so that what comes from memory is asked for in time, however small they are.
    void fetchWords() {
        Scout sources(*this, Prefetch::recordAhead);
        Scout fields(*this, Prefetch::fieldAhead);
        Scout texts(*this, Prefetch::textAhead);
        for (Group& group : m_groups) {
            m_withoutText.clear();
            std::size_t kept = group.begin;
            for (std::size_t i = group.begin; i < group.end; ++i) {
                prefetch(sources, fields, texts);
                Entry& entry = m_entries[i];
                if (group.place.beginsKey() && !fetchText(entry, group.place)) {
                    m_withoutText.push_back(entry);
                    continue;
                }
                fetchWord(entry, group.place);
                if (kept != i) m_entries[kept] = entry;
                ++kept;
            }
            if (kept != group.end) moveBehind(group, kept);
        }
    }

    void prefetch(Scout& sources, Scout& fields, Scout& texts) const noexcept {
        if (!sources.atEnd()) __builtin_prefetch(&m_sources[sources.entry().row]);
        if (!fields.atEnd() && fields.group().place.beginsKey()) {
            Prefetch::field(textOf(fields.entry(), field(fields.group().place)));
        }
        if (!texts.atEnd()) {
            const Place& place = texts.group().place;
            if (place.beginsKey()) {
                Prefetch::text(textOf(texts.entry(), field(place)));
            } else {
                __builtin_prefetch(m_sources[texts.entry().row].text + place.offset);
            }
        }
        sources.step();
        fields.step();
        texts.step();
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
    unsigned short field(const Place& place) const noexcept { return m_keys[place.key].field; }

    // Gives the entry its text for the key; false when in ascending order it has none.
    bool fetchText(Entry& entry, const Place& place) noexcept {
        std::string_view text = textOf(entry, field(place)).view();
        if (text.empty() && !m_descending) return false;
        // The comparators see texts that end at a zero character.
        text = text.substr(0, text.find('\0'));
        if (!m_descending) {
            while (!text.empty() && Ascii::isSpace(text.front())) text.remove_prefix(1);
        }
        m_sources[entry.row].text = text.data();
        entry.length = static_cast<unsigned>(text.size());
        return true;
    }

    void fetchWord(Entry& entry, const Place& place) const noexcept {
        Word word = 0;
        if (place.offset < entry.length) {
            word = leadingWord(m_sources[entry.row].text + place.offset, entry.length - place.offset);
            if (!place.exact) word = folded(word);
        }
        entry.word = m_descending ? ~word : word;
    }

    // Entries without a text for the key leave the group: they come behind the others, and for them the
    // comparison ends here.
    void moveBehind(Group& group, std::size_t kept) {
        std::copy(m_withoutText.begin(), m_withoutText.end(),
                  m_entries.begin() + static_cast<std::ptrdiff_t>(kept));
        // A record with text in the first key is not blank, so only the others need looking at.
        if (group.place.key == 0) moveBlanksBehind(kept);
        group.end = kept;
    }

    // Entries that are level stay in the order of their rows.
    void sortByWord(const Group& group) {
        Entry* const begin = m_entries.data() + group.begin;
        Entry* const end = m_entries.data() + group.end;
        const auto before = [](const Entry& a, const Entry& b) {
            return a.word != b.word ? a.word < b.word : a.row < b.row;
        };
        if (std::is_sorted(begin, end, before)) return;
        if (group.end - group.begin < worthOfBytes) {
            std::sort(begin, end, before);
        } else {
            sortByBytes(begin, group.end - group.begin);
        }
    }

    // One byte after the other, from the last; each time what is level stays as it was. A byte that all words
    // have alike is passed over.
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

    void keepLevelOnes(const Group& group) {
        for (std::size_t begin = group.begin; begin < group.end;) {
            const Word word = m_entries[begin].word;
            std::size_t end = begin + 1;
            while (end < group.end && m_entries[end].word == word) ++end;
            if (end - begin > 1) {
                const Place next = following(group.place, m_descending ? ~word : word);
                if (next.key < m_keys.size()) m_level.push_back({begin, end, next});
            }
            begin = end;
        }
    }

    // Where texts that are level in `word` go on.
    Place following(Place place, Word word) const noexcept {
        const KeyRule rule = m_keys[place.key].rule;
        const bool textEnds = (word & 0xFF) == 0;
        if (!textEnds) {
            // The ninth character of a time code, the separator before the frames, is never compared.
            const unsigned separator = rule == KeyRule::timecode && place.offset == 0 ? 1 : 0;
            place.offset += wordSize + separator;
            return place;
        }
        if (rule == KeyRule::dictionary && !place.exact) return {place.key, 0, true};
        return {place.key + 1, 0, false};
    }

    void moveBlanksBehind(std::size_t begin) {
        if (m_descending) return;
        std::stable_partition(m_entries.begin() + static_cast<std::ptrdiff_t>(begin), m_entries.end(),
                              [this](const Entry& entry) { return !record(entry)->is_blank(); });
    }

    std::vector<unsigned> rows() const {
        std::vector<unsigned> rows;
        rows.reserve(m_records.size());
        for (const Entry& entry : m_entries) rows.push_back(entry.row);
        for (unsigned row = 0; row < m_records.size(); ++row) {
            if (!m_records[row]) rows.push_back(row);
        }
        return rows;
    }

    const std::vector<const dbrecord*>& m_records;
    const bool m_descending;
    std::vector<Key> m_keys;
    std::vector<Source> m_sources;  // by row
    std::vector<Entry> m_entries;
    std::vector<Entry> m_withoutText;
    std::vector<Entry> m_spare;
    std::vector<Group> m_groups;  // never an empty one
    std::vector<Group> m_level;
};

}  // namespace

std::vector<unsigned> sortedOrder(const std::vector<const dbrecord*>& records, bool descending) {
    return RecordSorter(records, descending).order();
}
