// How a record line is taken apart and put together.
#include "record/RecordLine.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "record/LoadObserver.h"
#include "record/dbrecord.h"
#include "record/parts/RecentTexts.h"
#include "support/Ascii.h"

namespace {

/// The first byte in begin .. end that is one of the three; `end` when none is. Sixteen bytes at a time where
/// possible.
template <char A, char B, char C>
const char* findOneOf(const char* begin, const char* end) noexcept {
#if defined(__SSE2__)
    const __m128i a = _mm_set1_epi8(A);
    const __m128i b = _mm_set1_epi8(B);
    const __m128i c = _mm_set1_epi8(C);
    for (; end - begin >= 16; begin += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(begin));
        const __m128i hits = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(bytes, a), _mm_cmpeq_epi8(bytes, b)),
                                          _mm_cmpeq_epi8(bytes, c));
        const int mask = _mm_movemask_epi8(hits);
        if (mask != 0) return begin + __builtin_ctz(static_cast<unsigned>(mask));
    }
#endif
    while (begin != end && *begin != A && *begin != B && *begin != C) ++begin;
    return begin;
}

/// Bytes of a field's text that do not go into a line as they are.
bool isEscaped(char c) noexcept {
    return c == '"' || c == '\r' || c == '\n';
}

#if defined(__SSE2__)

__m128i escapedBytes(__m128i bytes) noexcept {
    return _mm_or_si128(
        _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r'))),
        _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n')));
}

/// Copies a text of at least sixteen bytes; the last sixteen overlap those before. Returns whether no byte of
/// it is an escaped one: otherwise the copy is of no use.
bool copyLongIfPlain(const char* from, std::size_t size, char* to) noexcept {
    __m128i escaped = _mm_setzero_si128();
    const auto copySixteen = [&](std::size_t at) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), bytes);
        escaped = _mm_or_si128(escaped, escapedBytes(bytes));
    };
    for (std::size_t at = 0; at + 16 <= size; at += 16) copySixteen(at);
    copySixteen(size - 16);
    return _mm_movemask_epi8(escaped) == 0;
}

/// The same for texts as long as Half to twice as long: its first and its last half overlap.
template <class Half>
bool copyShortIfPlain(const char* from, std::size_t size, char* to) noexcept {
    Half first;
    Half last;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&last, from + size - sizeof last, sizeof last);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + size - sizeof last, &last, sizeof last);
    const __m128i bytes = _mm_set_epi64x(static_cast<std::int64_t>(first), static_cast<std::int64_t>(last));
    return _mm_movemask_epi8(escapedBytes(bytes)) == 0;
}

#endif

/// Copies the text as far as that can be done without a look at each byte. Returns whether all of it is
/// copied and none of its bytes is an escaped one.
bool copyIfPlain(const char* from, std::size_t size, char* to) noexcept {
#if defined(__SSE2__)
    if (size >= 16) return copyLongIfPlain(from, size, to);
    if (size >= 8) return copyShortIfPlain<std::uint64_t>(from, size, to);
    if (size >= 4) return copyShortIfPlain<std::uint32_t>(from, size, to);
#endif
    for (std::size_t i = 0; i < size; ++i) {
        if (isEscaped(from[i])) return false;
        to[i] = from[i];
    }
    return true;
}

char* copyEscaped(const char* from, std::size_t size, char* to) noexcept {
    for (std::size_t i = 0; i < size; ++i) {
        if (from[i] == '\n') {
            *to++ = '\\';
            *to++ = 'n';
        } else if (from[i] != '\r') {
            if (from[i] == '"') *to++ = '"';
            *to++ = from[i];
        }
    }
    return to;
}

std::string_view withoutTrailingSpace(const char* begin, const char* end) noexcept {
    while (end != begin && Ascii::isSpace(end[-1])) --end;
    return {begin, static_cast<std::size_t>(end - begin)};
}

/// Takes a line apart, field by field.
class Reader {
 public:
    Reader(std::string_view line, FieldList& fields, RecentTexts* recent, RecordLine::Hearer hearer) noexcept
        : m_at(line.data()),
          m_end(line.data() + line.size()),
          m_fields(fields),
          m_recent(recent),
          m_hearer(hearer) {}

    int readAll() {
        if (m_recent) m_recent->beginLine(m_fields);
        int count = 0;
        while (m_at != m_end) {
            if (count != INT_MAX) ++count;
            if (Ascii::isControl(*m_at)) {
                ++m_at;  // counts, but is no field
            } else if (!(*m_at == '"' ? readUsualQuoted() : readUsualUnquoted())) {
                readAnyField();
            }
        }
        if (m_recent) m_recent->endLine(m_fields);
        return count;
    }

 private:
    // A field as most are: in quotes, with nothing to undo, trim or cut. Otherwise does nothing.
    bool readUsualQuoted() {
        const char* const begin = m_at + 1;
        const char* const stop = findOneOf<'"', '\\', '\\'>(begin, searchEnd(begin));
        if (stop == m_end || *stop != '"') return false;
        return (stop + 1 == m_end || stop[1] == ',') && appendUsual(begin, stop, stop + 1);
    }

    // The same without quotes.
    bool readUsualUnquoted() {
        const char* const stop = findOneOf<'"', '\\', ','>(m_at, searchEnd(m_at));
        return (stop == m_end || *stop == ',') && appendUsual(m_at, stop, stop);
    }

    // A field that goes on beyond the greatest length is no usual one: no need to look further, which would
    // be done again for each of the pieces that it is cut into.
    const char* searchEnd(const char* begin) const noexcept {
        return begin + std::min(static_cast<std::size_t>(m_end - begin), dbrecord::longestField);
    }

    // Goes on after the comma at `next`.
    bool appendUsual(const char* begin, const char* end, const char* next) {
        const auto size = static_cast<std::size_t>(end - begin);
        if (size >= dbrecord::longestField) return false;
        if (size != 0 && (mayBeSpace(*begin) || mayBeSpace(end[-1]))) return false;
        append({begin, size});
        m_at = next == m_end ? next : next + 1;
        return true;
    }

    static bool mayBeSpace(char c) noexcept { return static_cast<unsigned char>(c) <= ' '; }

    void readAnyField() {
        bool quoted = *m_at == '"';
        Losses losses;
        losses.opened = quoted;
        if (quoted) ++m_at;
        losses.space = skipSpace() && (quoted || m_at == m_end || *m_at != '"');
        char buffer[dbrecord::longestField];
        char* out = buffer;
        const char* const full = buffer + dbrecord::longestField;
        while (m_at != m_end && out < full) {
            const bool last = m_at + 1 == m_end;
            if (*m_at == '"') {
                if (!last && m_at[1] == '"') {
                    *out++ = '"';
                    m_at += 2;
                } else {
                    if (m_hearer.observer) judgeQuote(out == buffer, out, losses);
                    ++m_at;  // a quote inside an unquoted field is simply dropped
                    quoted = false;
                }
            } else if (*m_at == '\\' && !last && m_at[1] == 'n') {
                *out++ = '\n';
                m_at += 2;
            } else if (*m_at == '\\' && !last && m_at[1] == '\\' && out + 1 < full) {
                *out++ = '\\';
                *out++ = '\\';
                m_at += 2;
            } else if (*m_at == ',' && !quoted) {
                break;
            } else {
                *out++ = *m_at++;
            }
        }
        const std::string_view text = withoutTrailingSpace(buffer, out);
        append(text);
        if (m_hearer.observer) {
            if (text.data() + text.size() < (losses.textEnd ? losses.textEnd : out)) losses.space = true;
            tell(losses, quoted);
        }
        if (m_at != m_end) ++m_at;  // the comma, or the byte at which a long field was cut
    }

    /// What an observer is to hear of a field.
    struct Losses {
        bool opened = false;            // by a quote
        const char* textEnd = nullptr;  // where the quote stood that closes the field
        bool quote = false;             // one that stands in the text was dropped
        bool space = false;             // around the text
    };

    // The quote that opens a field, if only after white space, and the one that closes what was opened, with
    // nothing but blanks before the comma, are no part of the text; any other was meant to be.
    void judgeQuote(bool comesFirst, const char* out, Losses& losses) const noexcept {
        const char* next = m_at + 1;
        while (next != m_end && (*next == ' ' || *next == '\t')) ++next;
        if (comesFirst && !losses.opened) {
            losses.opened = true;
        } else if (losses.opened && (next == m_end || *next == ',')) {
            losses.textEnd = out;
        } else {
            losses.quote = true;
        }
    }

    // The field has been appended; `quoted` says whether the reader is inside quotes still.
    void tell(const Losses& losses, bool quoted) {
        if (losses.quote) tell(LoadEvent::eQuoteDropped);
        const bool atComma = m_at != m_end && *m_at == ',' && !quoted;
        const bool atLastQuote = m_end - m_at == 1 && *m_at == '"';
        if (m_at != m_end && !atComma && !atLastQuote) {
            tell(LoadEvent::eFieldCut);
            m_hearer.observer = nullptr;
            return;
        }
        if (m_at == m_end && quoted) tell(LoadEvent::eQuoteNotClosed);
        if (losses.space) tell(LoadEvent::eSpaceTrimmed);
    }

    void tell(LoadEvent::Kind kind) {
        LoadEvent event{kind};
        event.line = m_hearer.line;
        event.field = static_cast<unsigned>(m_fields.size());
        m_hearer.observer->lost(event);
    }

    bool skipSpace() noexcept {
        const char* const begin = m_at;
        while (m_at != m_end && Ascii::isSpace(*m_at)) ++m_at;
        return m_at != begin;
    }

    void append(std::string_view text) {
        if (m_recent) {
            m_recent->append(m_fields, text);
        } else {
            m_fields.push_back(LightweightString<char>(text));
        }
    }

    const char* m_at;
    const char* const m_end;
    FieldList& m_fields;
    RecentTexts* const m_recent;
    RecordLine::Hearer m_hearer;
};

}  // namespace

int RecordLine::read(std::string_view line, FieldList& fields, RecentTexts* recent, Hearer hearer) {
    return Ascii::trimmed(line).empty() ? 0 : Reader(line, fields, recent, hearer).readAll();
}

std::size_t RecordLine::longestLine(const FieldList& fields) noexcept {
    std::size_t longest = 0;
    for (const auto& field : fields) longest += 2 * std::size_t(field.length()) + 3;
    return longest;
}

char* RecordLine::write(const FieldList& fields, char* out) noexcept {
    for (const auto& field : fields) {
        if (&field != fields.begin()) *out++ = ',';
        *out++ = '"';
        const std::string_view text = field.view();
        out = copyIfPlain(text.data(), text.size(), out) ? out + text.size()
                                                         : copyEscaped(text.data(), text.size(), out);
        *out++ = '"';
    }
    return out;
}
