// What file operations need of the system: descriptors that close themselves, and names as the system takes
// them. Failures are told by errno.
//
// Thread-safety: one thread at a time for each object.
#pragma once

#include <cerrno>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "support/LibraryAllocator.h"
#include "support/LightweightString.h"
#include "support/StringFunctions.h"

/// A file descriptor that closes itself.
class SystemFile {
 public:
    explicit SystemFile(int descriptor = -1) noexcept : m_descriptor(descriptor) {}
    SystemFile(SystemFile&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    SystemFile& operator=(SystemFile&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~SystemFile() { close(); }

    explicit operator bool() const noexcept { return m_descriptor >= 0; }
    int descriptor() const noexcept { return m_descriptor; }

    /// False when the system could not keep what was written.
    bool close() noexcept { return m_descriptor < 0 || ::close(std::exchange(m_descriptor, -1)) == 0; }

    /// Writes all of the bytes, in as many pieces as the system takes them.
    bool write(std::string_view bytes) const noexcept {
        while (!bytes.empty()) {
            const ssize_t written = ::write(m_descriptor, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        return true;
    }

 private:
    int m_descriptor;
};

/// A file name as the system takes it; empty, with errno set, when it is none: the system would cut the name
/// at a zero character and take another file for it.
inline LibraryString systemPath(const LightweightString<wchar_t>& name) {
    const LightweightString<char> path = toUTF8(name);
    if (path.empty() || path.view().find('\0') != std::string_view::npos) {
        errno = path.empty() ? ENOENT : EINVAL;
        return {};
    }
    return LibraryString(path.view());
}
