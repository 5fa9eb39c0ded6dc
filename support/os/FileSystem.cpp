#include "support/os/FileSystem.h"

#include <cstdio>
#include <unistd.h>

#include "support/StringFunctions.h"

namespace {

// The system would cut the name at a zero character and take another file for it.
bool canNameFile(const LightweightString<char>& path) noexcept {
    return !path.empty() && path.view().find('\0') == std::string_view::npos;
}

}  // namespace

bool FileSystem::move(const LightweightString<wchar_t>& from, const LightweightString<wchar_t>& to,
                      int /*flags*/) {
    const LightweightString<char> source = toUTF8(from);
    const LightweightString<char> target = toUTF8(to);
    return canNameFile(source) && canNameFile(target) && std::rename(source.c_str(), target.c_str()) == 0;
}

bool fileExists(const LightweightString<wchar_t>& fileName) {
    const LightweightString<char> path = toUTF8(fileName);
    return canNameFile(path) && access(path.c_str(), F_OK) == 0;
}
