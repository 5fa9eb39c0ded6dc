// Sorting records by a few bytes of their keys at a time.
//
// What a record sorts by is seen as a row of 64-bit words, eight characters in each, that compare as the
// comparators compare the texts. The records are sorted by their first words; each group that is still level
// is sorted by its next ones, and so on. So a text is fetched once for each key, most comparisons are of two
// numbers that stand side by side, and the cost stays linear in the characters that decide, however alike the
// texts are. A time code brings its frames with its first word, and so is sorted at once; texts that differ
// in nothing but case are sorted once more, with case.
#include "record/parts/SortKeys.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "record/kesta.h"
#include "record/parts/Prefetch.h"
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

    /// With the first word of a time code the four characters from the tenth on. With any other which of its
    /// characters were capitals, while case does not count; that is no part of the order.
    std::uint32_t extra;

    unsigned row;
};

struct ByWord {
    bool operator()(const Entry& a, const Entry& b) const noexcept {
        return a.word != b.word ? a.word < b.word : a.row < b.row;
    }
};

struct ByTimecode {
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

// Where in the words of its key a group stands; equal for all its entries, as their words so far are equal.
struct Place {
    unsigned key = 0;
    unsigned offset = 0;
    bool exact = false;        // in the second round of the dictionary rule, which minds case
    bool casesDiffer = false;  // in the first: texts of the group may differ in case so far

    bool beginsKey() const noexcept { return offset == 0 && !exact; }
};

/// Entries that are level so far.
struct Group {
    unsigned begin;
    unsigned end;
    unsigned rank;  // of its first entry among all records
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
    const Word topBits = (fromA ^ pastZ) & ~word & ones * 0x80;  // of capitals
    return word | topBits >> 2;
}

// For each of eight characters a bit, set when folding has changed it.
std::uint32_t capitals(Word word, Word foldedWord) noexcept {
    constexpr Word gather = 0x0102040810204080;
    return static_cast<std::uint32_t>((((word ^ foldedWord) >> 5) * gather) >> 56);
}

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
            settleBlanksBehind(m_entries, 0);
        } else if (!m_entries.empty()) {
            m_groups.push_back({0, count(m_entries), 0, Place()});
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
        unsigned rank = count(m_entries);
        for (unsigned row = 0; rank < m_records.size(); ++row) {
            if (!m_records[row]) m_rows[rank++] = row;
        }
    }

    // Sorts each group by its next words. Those that are level in them are the groups of the next round,
    // whose entries close up; the others have found their ranks.
    void sortRound() {
        for (Group& group : m_groups) fetchWords(group);
        m_level.clear();
        unsigned kept = 0;
        for (const Group& group : m_groups) {
            sortByWord(group);
            kept = keepLevelOnes(group, kept);
        }
        m_entries.resize(kept);
        m_groups.swap(m_level);
    }

    void fetchWords(Group& group) {
        const bool beginsKey = group.place.beginsKey();
        m_withoutText.clear();
        unsigned kept = group.begin;
        for (unsigned i = group.begin; i < group.end; ++i) {
            prefetch(i, group.place);
            Entry& entry = m_entries[i];
            if (beginsKey && !fetchText(entry, group.place)) {
                m_withoutText.push_back(entry);
                continue;
            }
            fetchWord(entry, group.place);
            if (kept != i) m_entries[kept] = entry;
            ++kept;
        }
        if (kept != group.end) settleWithoutText(group, kept);
    }

    // Asks for what entries further on will need. Groups may be small, so these may be the next ones', which
    // are likely to stand at the same place.
    void prefetch(std::size_t i, const Place& place) const noexcept {
        const std::size_t end = m_entries.size();
        if (i + Prefetch::recordAhead < end) {
            __builtin_prefetch(&m_sources[m_entries[i + Prefetch::recordAhead].row]);
        }
        if (place.beginsKey()) {
            const unsigned short key = field(place);
            if (i + Prefetch::fieldAhead < end) {
                Prefetch::field(textOf(m_entries[i + Prefetch::fieldAhead], key));
            }
            if (i + Prefetch::textAhead < end) {
                Prefetch::text(textOf(m_entries[i + Prefetch::textAhead], key));
            }
        } else if (i + Prefetch::textAhead < end) {
            Prefetch::characters(m_sources[m_entries[i + Prefetch::textAhead].row].text, place.offset);
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
        m_sources[entry.row].length = static_cast<unsigned>(text.size());
        return true;
    }

    void fetchWord(Entry& entry, const Place& place) const noexcept {
        const Source& source = m_sources[entry.row];
        const Word raw = wordAt(source, place.offset);
        const Word word = place.exact ? raw : folded(raw);
        entry.word = m_descending ? ~word : word;
        entry.extra = beginsTimecode(place)
                          ? static_cast<std::uint32_t>(folded(wordAt(source, framesAt)) >> 32)
                          : capitals(raw, word);
    }

    static Word wordAt(const Source& source, unsigned offset) noexcept {
        return offset < source.length ? leadingWord(source.text + offset, source.length - offset) : 0;
    }

    // The character before the frames, a separator, is never compared.
    static constexpr unsigned framesAt = wordSize + 1;
    static constexpr unsigned framesEnd = framesAt + sizeof(Entry::extra);

    bool beginsTimecode(const Place& place) const noexcept {
        return place.offset == 0 && m_keys[place.key].rule == KeyRule::timecode;
    }

    // Entries without a text for the key leave the group: they come behind the others, and for them the
    // comparison ends here.
    void settleWithoutText(Group& group, unsigned kept) {
        const unsigned rank = group.rank + (kept - group.begin);
        // A record with text in the first key is not blank, so only the others need looking at.
        if (group.place.key == 0) {
            settleBlanksBehind(m_withoutText, rank);
        } else {
            settle(m_withoutText, rank);
        }
        group.end = kept;
    }

    void settleBlanksBehind(std::vector<Entry>& entries, unsigned rank) {
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
    void sortByWord(const Group& group) {
        Entry* const begin = m_entries.data() + group.begin;
        Entry* const end = m_entries.data() + group.end;
        if (!beginsTimecode(group.place)) {
            sortBy(ByWord(), begin, end);
        } else if (sortBy(ByTimecode(), begin, end) == Sorted::byWordsAlone) {
            sortByFrames(begin, end);
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
    static void sortByFrames(Entry* begin, Entry* end) {
        while (begin != end) {
            Entry* const first = begin;
            while (begin != end && begin->word == first->word) ++begin;
            if (begin - first > 1) std::sort(first, begin, ByTimecode());
        }
    }

    // Moves those that are level to `kept`, which is not behind them; answers where they end.
    unsigned keepLevelOnes(const Group& group, unsigned kept) {
        const bool framesCount = beginsTimecode(group.place);
        for (unsigned begin = group.begin; begin < group.end;) {
            const Entry& first = m_entries[begin];
            bool extrasDiffer = false;
            unsigned end = begin + 1;
            for (; end < group.end && m_entries[end].word == first.word; ++end) {
                if (m_entries[end].extra == first.extra) continue;
                if (framesCount) break;
                extrasDiffer = true;
            }
            const Place next = following(group.place, first, extrasDiffer);
            unsigned rank = group.rank + (begin - group.begin);
            if (end - begin > 1 && next.key < m_keys.size()) {
                m_level.push_back({kept, kept + (end - begin), rank, next});
                for (; begin != end; ++begin) m_entries[kept++] = m_entries[begin];
            } else {
                for (; begin != end; ++begin) m_rows[rank++] = m_entries[begin].row;
            }
        }
        return kept;
    }

    // Where texts that are level with the entry's go on.
    Place following(const Place& place, const Entry& entry, bool capitalsDiffer) const noexcept {
        const bool timecode = beginsTimecode(place);
        const Word fetched = timecode ? entry.extra : m_descending ? ~entry.word : entry.word;
        const bool textEnds = (fetched & 0xFF) == 0;
        const bool casesDiffer = place.casesDiffer || capitalsDiffer;
        if (!textEnds) {
            const unsigned fetchedTo = timecode ? framesEnd : place.offset + wordSize;
            return {place.key, fetchedTo, place.exact, casesDiffer};
        }
        const bool mindsCase = m_keys[place.key].rule == KeyRule::dictionary;
        if (mindsCase && !place.exact && casesDiffer) return {place.key, 0, true, false};
        return {place.key + 1, 0, false, false};
    }

    const std::vector<const dbrecord*>& m_records;
    const bool m_descending;
    std::vector<Key> m_keys;
    std::vector<Source> m_sources;  // by row
    std::vector<Entry> m_entries;   // of all groups, one behind the other
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
