// Matching text against criteria.
//
// What a query asks is prepared once, when the criterion is made; matching a text then allocates nothing.
// Thread-safety: criteria are values; matching against one from several threads is safe while nobody changes
// it.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "support/Export.h"
#include "support/LibraryAllocator.h"
#include "support/LightweightString.h"

namespace TextSearch {

enum eMatchMethod : int { eWhole = 0, eContains = 1, eBeginsWith = 2, eEndsWith = 3 };

/// Bits of match's options.
enum eOption : unsigned {
    eMatchCase = 1,        ///< Letters match only their own case.
    eSeparatorsEqual = 2,  ///< The separators ":;.," are one character.
};

/// One text to look for, and where. Case is that of ASCII letters; a zero character is a character like any
/// other.
class KESTA_API Criterion {
 public:
    /// A method that is none of eMatchMethod counts as eWhole.
    Criterion(const LightweightString<char>& text, eMatchMethod method);

    const LightweightString<char>& text() const noexcept { return m_canonical[eMatchCase]; }
    eMatchMethod method() const noexcept { return m_method; }

    /// An empty text matches everything. Bits of `options` beyond eOption are ignored.
    bool matches(std::string_view text, unsigned options) const noexcept;

 private:
    // The text as each sum of options compares it: characters that count as one are written as one. That of
    // eMatchCase alone is the text itself.
    std::array<LightweightString<char>, 4> m_canonical;
    eMatchMethod m_method;
};

/// A list of criteria, all of which must match. One without criteria, or with none but empty texts, matches
/// everything.
class KESTA_API Criteria {
 public:
    Criteria();
    explicit Criteria(const Criterion& criterion);

    void add(const Criterion& criterion);

    /// Whether no criterion has a text, so that there is no condition.
    bool empty() const noexcept;

    unsigned size() const noexcept { return static_cast<unsigned>(m_criteria.size()); }

    /// Whether `text` satisfies all of them; `options` as for Criterion::matches.
    bool matches(std::string_view text, unsigned options) const noexcept {
        return std::all_of(m_criteria.begin(), m_criteria.end(), [text, options](const Criterion& criterion) {
            return criterion.matches(text, options);
        });
    }

    /// The criterion at `index`; one without text when there is none.
    const Criterion& getCriterion(unsigned short index) const noexcept;

 private:
    LightweightVector<Criterion> m_criteria;
};

/// Whether `text` satisfies all criteria; `options` is a sum of eOption bits, others are ignored. The time is
/// linear in the text for each criterion.
KESTA_API bool match(const LightweightString<char>& text, const Criteria& criteria,
                     unsigned options) noexcept;

}  // namespace TextSearch
