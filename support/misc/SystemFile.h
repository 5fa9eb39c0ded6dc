// What loading and saving files need of the system: names as it takes them, and descriptors that close
// themselves. Failures are told by errno.
//
// Thread-safety: one thread at a time for each object.
#pragma once

#include <string_view>
#include <unistd.h>
#include <utility>

#include "support/LibraryAllocator.h"
#include "support/LightweightString.h"

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
    bool write(std::string_view bytes) const noexcept;

 private:
    int m_descriptor;
};

/// A file name as the system takes it; empty, with errno set, when it is none.
LibraryString systemPath(const LightweightString<wchar_t>& name);

/// Opens a regular file, a pipe or a terminal without waiting for the other end of a pipe; from then on
/// reading and writing wait as usual. Devices that may have no end are refused.
SystemFile openStream(const LibraryString& path, int access) noexcept;
