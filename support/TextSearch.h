// Matching text against criteria.
//
// What a query asks is prepared once, when the criterion is made; matching a text then allocates nothing.
// Thread-safety: criteria are values; matching against one from several threads is safe while nobody changes
// it.
#pragma once

#include <vector>

#include "support/Export.h"
#include "support/LightweightString.h"

namespace TextSearch {

enum eMatchMethod : int { eWhole = 0, eContains = 1, eBeginsWith = 2, eEndsWith = 3 };

/// Bits of match's options.
enum eOption : unsigned {
    eMatchCase = 1,        ///< Letters match only their own case.
    eSeparatorsEqual = 2,  ///< The separators ":;.," are one character.
};

/// One text to look for, and where.
class KESTA_API Criterion {
 public:
    Criterion(const LightweightString<char>& text, eMatchMethod method);

    const LightweightString<char>& text() const noexcept { return m_text; }
    eMatchMethod method() const noexcept { return m_method; }

    /// An empty text matches everything.
    bool matches(std::string_view text, unsigned options) const noexcept;

 private:
    LightweightString<char> m_text;
    LightweightString<char> m_folded;
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

    /// The criterion at `index`; one without text when there is none.
    const Criterion& getCriterion(unsigned short index) const noexcept;

 private:
    std::vector<Criterion> m_criteria;
};

/// Whether `text` satisfies all criteria; `options` is a sum of eOption bits, others are ignored.
KESTA_API bool match(const LightweightString<char>& text, const Criteria& criteria,
                     unsigned options) noexcept;

}  // namespace TextSearch
