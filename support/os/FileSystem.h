// The file operations of the operating-system object. Stateless, so any thread may use it.
#pragma once

#include "support/OS.h"

class FileSystem final : public iFileSystem {
 public:
    constexpr FileSystem() = default;

    bool move(const LightweightString<wchar_t>& from, const LightweightString<wchar_t>& to,
              int flags) override;
};
