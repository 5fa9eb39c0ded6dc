// Configuration: integer settings of the process, and blocks of keyed values.
//
// Thread-safety: the integer settings may be used from any thread; a block belongs to one thread at a time.
#pragma once

#include <map>

#include "support/Export.h"
#include "support/LightweightString.h"

/// The integer setting `name`: the value that config_set_int gave it, else the environment variable "KESTA_"
/// plus the name in capitals when it is a whole number, else `fallback`; limited to lowest .. highest.
KESTA_API int config_int(const char* name, int fallback, int lowest, int highest);

/// Gives the setting a value for the rest of the process. Readers that read a setting once keep what they
/// have read.
KESTA_API void config_set_int(const char* name, int value);

/// A text value of a configuration block.
class KESTA_API strp_field {
 public:
    strp_field();
    void set(const LightweightString<char>& value);
    const LightweightString<char>& get() const noexcept { return m_value; }

 private:
    LightweightString<char> m_value;
};

/// A configuration block: values by key. Keys compare by their bytes; a null key is the empty one.
class KESTA_API configb {
 public:
    configb();
    configb(const configb&) = delete;
    configb& operator=(const configb&) = delete;
    ~configb();

    void set(const char* key, const strp_field& value);

    /// The value under `key`, which belongs to the block; null when there is none.
    const strp_field* find(const char* key) const;

 private:
    std::map<LightweightString<char>, strp_field> m_values;
};
