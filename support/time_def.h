// Time codes as text: the stored and the shown form.
#pragma once

#include "support/Export.h"
#include "support/LightweightString.h"

/// The kind of a time or film code.
enum label_t : int { eTimecodeLabel = 6 };

/// A time code of hours, minutes, seconds and frames, drop frame or not. Reads "hhmmssff", optionally
/// followed by ";" for drop frame, or "hh:mm:ss:ff" with single separators from ":;.,"; a ";" or "," before
/// the frames means drop frame. Text that is neither comes back from both forms as it is, so that nothing is
/// lost.
class KESTA_API time_def {
 public:
    /// Null is the empty text. Every kind but eTimecodeLabel is kept as text.
    time_def(const char* text, label_t kind);

    /// "01000010", drop frame "01000010;".
    LightweightString<char> get_database_str() const;

    /// "01:00:00:10", drop frame "01:00:00;10".
    LightweightString<char> get_punctuated_str() const;

    /// Whether the text was a time code.
    bool valid() const noexcept { return m_valid; }
    bool dropFrame() const noexcept { return m_dropFrame; }

 private:
    LightweightString<char> m_text;
    char m_digits[8] = {};
    bool m_valid = false;
    bool m_dropFrame = false;
};
