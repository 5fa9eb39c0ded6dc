// What a load makes of a file's name and of a line's first field.
//
// Thread-safety: any thread.
#pragma once

#include "support/LightweightString.h"

namespace FileForm {

/// Whether a file of this name is read as plain comma-separated text: it ends in ".csv", in lower case.
inline bool isCommaSeparated(const LightweightString<wchar_t>& fileName) noexcept {
    constexpr std::wstring_view ending = L".csv";
    const std::wstring_view name = fileName.view();
    return name.size() >= ending.size() && name.substr(name.size() - ending.size()) == ending;
}

/// Whether a line whose first field holds this text marks the header: among parameters, and among the
/// records of a database with one column.
inline bool isHeaderMarker(const LightweightString<char>& field) noexcept {
    return field.icompare("KESTA") == 0;
}

}  // namespace FileForm
