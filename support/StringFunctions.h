// The text functions of the support libraries. None of them depends on the locale; all folding is ASCII.
#pragma once

#include "support/Export.h"
#include "support/LightweightString.h"

namespace Zr {

/// The number in decimal, with a minus sign when negative.
KESTA_API LightweightString<char> StringFromInteger(int number);

/// The whole text, apart from white space around it, as an unsigned decimal number of 32 bits; `fallback`
/// when it is anything else.
KESTA_API unsigned UIntFromString(const LightweightString<char>& text, unsigned fallback) noexcept;

/// The number with eight decimals and a point, whatever the locale.
KESTA_API LightweightString<char> StringFromDouble(double number);

/// What strtod reads from the beginning of the text in the "C" locale: 0 when it is no number. Null is the
/// empty text.
KESTA_API double DoubleFromString(const char* text) noexcept;

/// Lower-cases the ASCII letters in place.
KESTA_API void toLower(LightweightString<char>& text);

/// As fromUTF8: what is called ASCII here may be UTF-8. Null is the empty text.
KESTA_API LightweightString<wchar_t> WStringFromAscii(const char* text);

}  // namespace Zr

/// The characters that stand for bytes 0x80 to 0xFF that are no part of well-formed UTF-8: surrogates that no
/// well-formed text has.
constexpr wchar_t firstStrayByte = 0xDC80;
constexpr wchar_t lastStrayByte = 0xDCFF;
constexpr bool isStrayByte(wchar_t c) noexcept {
    return c >= firstStrayByte && c <= lastStrayByte;
}

/// Decodes UTF-8. A byte that is no part of a well-formed sequence becomes a stray byte's character, which
/// toUTF8 turns back, so every byte sequence survives the way there and back.
KESTA_API LightweightString<wchar_t> fromUTF8(const LightweightString<char>& text);

/// Encodes as UTF-8. Characters that Unicode does not have become U+FFFD.
KESTA_API LightweightString<char> toUTF8(const LightweightString<wchar_t>& text);

/// The name without its directory and without its last extension. A leading dot begins a name, not an
/// extension.
KESTA_API LightweightString<wchar_t> stripPathAndExt(const LightweightString<wchar_t>& fileName);

/// Whether something of that name exists (a folder counts).
KESTA_API bool fileExists(const LightweightString<wchar_t>& fileName);

/// Whether the text is empty or holds nothing but white space.
KESTA_API bool isEssentiallyEmpty(const LightweightString<char>& text) noexcept;

/// "true" or "false".
KESTA_API LightweightString<char> BoolAsString(bool flag);

/// Reads t, true, y, yes, 1 and f, false, n, no, 0, ignoring case and white space around them. Returns
/// whether the text was one of these; when not, `flag` stays as it was.
KESTA_API bool BoolFromString(const LightweightString<char>& text, bool& flag) noexcept;

/// Dictionary order of two zero-terminated texts: ignoring case first, ties by byte value. Negative, zero or
/// positive; zero only for equal texts. Null is the empty text.
KESTA_API int strxcmp(const char* a, const char* b) noexcept;
