// Text that is built by appending.
#pragma once

#include "support/Export.h"
#include "support/LightweightString.h"

class KESTA_API GrowString {
 public:
    GrowString();
    ~GrowString();

    /// Null adds nothing.
    void append(const char* text);
    void append(char character);

    /// The text built so far, zero-terminated; valid until the next append.
    operator const char*() const noexcept { return m_text.c_str(); }

 private:
    LightweightString<char> m_text;
};
