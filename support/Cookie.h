// Cookie: the identifier of a media object.
//
// Thread-safety: plain values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "support/Export.h"
#include "support/LightweightString.h"

namespace Zr {

/// 128 bits, in the order in which they are written.
struct UUID {
    std::array<std::uint8_t, 16> bytes{};
};

}  // namespace Zr

/// The kind letter of a cookie, such as 'M', 'B', 'I' or 'N'; 0 for the null identifier.
using CookieType = char;

/// A UUID with two qualifiers: the kind of object, and eight bits that are the application's.
///
/// Text form: the kind letter, 32 lower-case hexadecimal digits, two hexadecimal digits of the qualifier;
/// with flag true the UUID is written in its hyphenated groups. The null identifier is the empty text.
/// Reading takes both spellings, in either case, whatever the flag. Any other text is a name: kind 'N',
/// qualifier 0, and for UUID a fixed hash of the text without the white space around it, so different names
/// are different identifiers.
class KESTA_API Cookie {
 public:
    /// The null identifier.
    Cookie() noexcept = default;

    /// A small kind letter counts as its capital; a kind that is no letter gives the null identifier.
    Cookie(const Zr::UUID& uuid, CookieType type, unsigned char qualifier) noexcept;

    /// Null is the empty text. `flag` makes no difference to reading.
    Cookie(const char* text, bool flag) noexcept;
    Cookie(const LightweightString<wchar_t>& text, bool flag);

    /// Parses back to an equal Cookie.
    LightweightString<char> asString(bool flag) const;

    /// A total order: UUID, then kind, then qualifier. Negative, zero or positive.
    int compare(const Cookie& other) const noexcept;

    /// For tables in memory. Differs from process to process, so that no file can be made to collide.
    std::size_t hash() const noexcept;

    const Zr::UUID& uuid() const noexcept { return m_uuid; }
    CookieType type() const noexcept { return m_type; }
    unsigned char qualifier() const noexcept { return m_qualifier; }
    bool isNull() const noexcept { return m_type == 0; }

    friend bool operator==(const Cookie& a, const Cookie& b) noexcept { return a.compare(b) == 0; }
    friend bool operator!=(const Cookie& a, const Cookie& b) noexcept { return a.compare(b) != 0; }
    friend bool operator<(const Cookie& a, const Cookie& b) noexcept { return a.compare(b) < 0; }

 private:
    Zr::UUID m_uuid;
    CookieType m_type = 0;  // a capital letter, or 0 with everything else 0
    unsigned char m_qualifier = 0;
};

/// The same UUID with another kind and qualifier, which mean what they mean to the constructor.
KESTA_API Cookie convertCookie(const Cookie& cookie, CookieType type, unsigned char qualifier) noexcept;
