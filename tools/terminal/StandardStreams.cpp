#include "tools/terminal/StandardStreams.h"

#include <cerrno>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include "tools/Failure.h"

namespace {

/// All bytes of standard input, in a nameless file that can be opened again and again.
class StandardInputCopy {
 public:
    StandardInputCopy() : m_file(memfd_create("standard input", MFD_CLOEXEC)) {
        if (m_file < 0) throw fileFailure(shownName("-"), errno);
        std::vector<char> bytes(std::size_t(1) << 16);
        while (const std::size_t count = readSome(bytes)) append(bytes.data(), count);
    }

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_file); }

 private:
    static std::size_t readSome(std::vector<char>& bytes) {
        while (true) {
            const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
            if (count >= 0) return static_cast<std::size_t>(count);
            if (errno != EINTR) throw fileFailure(shownName("-"), errno);
        }
    }

    void append(const char* bytes, std::size_t count) const {
        while (count > 0) {
            const ssize_t written = write(m_file, bytes, count);
            if (written < 0 && errno != EINTR) throw fileFailure(shownName("-"), errno);
            if (written < 0) continue;
            bytes += written;
            count -= static_cast<std::size_t>(written);
        }
    }

    int m_file;  // open until the program ends
};

}  // namespace

bool isStandardStream(const std::string& path) noexcept {
    return path == "-";
}

std::string readablePath(const std::string& path) {
    if (!isStandardStream(path)) return path;
    static const StandardInputCopy copy;
    return copy.path();
}

std::string shownName(const std::string& path) {
    return isStandardStream(path) ? "standard input" : path;
}
