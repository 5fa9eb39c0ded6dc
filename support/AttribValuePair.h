// A named value.
#pragma once

#include "support/LightweightString.h"

namespace Zr {

/// Prints as name, separator, value. A value type; copies share the texts.
class AttribValuePair {
 public:
    AttribValuePair(const LightweightString<char>& name, const LightweightString<char>& value, char separator)
        : m_name(name), m_value(value), m_separator(separator) {}

    const LightweightString<char>& name() const noexcept { return m_name; }
    const LightweightString<char>& value() const noexcept { return m_value; }
    void setValue(const LightweightString<char>& value) noexcept { m_value = value; }

    LightweightString<char> asString() const {
        LightweightString<char> text = m_name;
        text += m_separator;
        return text += m_value;
    }

 private:
    LightweightString<char> m_name;
    LightweightString<char> m_value;
    char m_separator;
};

}  // namespace Zr
