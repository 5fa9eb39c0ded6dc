// The text of a file that holds a table.
#pragma once

#include <string>
#include <string_view>

/// All of the file's text without a byte order mark. Throws Failure when the file cannot be read or holds no
/// text: zero bytes, or UTF-16.
std::string readTableText(const std::string& path);

/// Whether lines end with a CR alone, as in files of old systems.
bool endsLinesWithCR(std::string_view text) noexcept;
