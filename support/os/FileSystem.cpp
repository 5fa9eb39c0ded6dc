// The file operations of the operating-system object, by the C library.
#include "support/os/FileSystem.h"

#include <cstdio>
#include <unistd.h>

#include "support/SystemFile.h"

bool FileSystem::move(const LightweightString<wchar_t>& from, const LightweightString<wchar_t>& to,
                      int /*flags*/) {
    const LibraryString source = systemPath(from);
    const LibraryString target = systemPath(to);
    return !source.empty() && !target.empty() && std::rename(source.c_str(), target.c_str()) == 0;
}

bool fileExists(const LightweightString<wchar_t>& fileName) {
    const LibraryString path = systemPath(fileName);
    return !path.empty() && access(path.c_str(), F_OK) == 0;
}
