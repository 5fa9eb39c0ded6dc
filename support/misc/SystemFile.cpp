#include "support/misc/SystemFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

#include "support/StringFunctions.h"

namespace {

/// False, with errno set, for a device that may have no end.
bool hasEnd(int file, int access) noexcept {
    struct stat status;
    if (::fstat(file, &status) != 0) return false;
    const bool isEndless =
        S_ISBLK(status.st_mode) || (S_ISCHR(status.st_mode) && access == O_RDONLY && ::isatty(file) == 0);
    if (isEndless) errno = EINVAL;
    return !isEndless;
}

}  // namespace

bool SystemFile::write(std::string_view bytes) const noexcept {
    while (!bytes.empty()) {
        const ssize_t written = ::write(m_descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

LibraryString systemPath(const LightweightString<wchar_t>& name) {
    const LightweightString<char> path = toUTF8(name);
    if (path.empty() || path.view().find('\0') != std::string_view::npos) {
        errno = path.empty() ? ENOENT : EINVAL;
        return {};
    }
    return LibraryString(path.view());
}

SystemFile openStream(const LibraryString& path, int access) noexcept {
    SystemFile file(::open(path.c_str(), access | O_CLOEXEC | O_NONBLOCK));
    if (!file || (hasEnd(file.descriptor(), access) && ::fcntl(file.descriptor(), F_SETFL, access) == 0)) {
        return file;
    }
    const int error = errno;
    file.close();
    errno = error;
    return file;
}
