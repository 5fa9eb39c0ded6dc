// Opening files that are read or written from the beginning to the end.
#include "support/misc/OpenStream.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

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
