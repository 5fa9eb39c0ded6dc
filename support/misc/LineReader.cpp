// LineReader: the lines of a file, one after the other.
#include "support/misc/LineReader.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

#include "support/misc/OpenStream.h"

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// One byte more than a small file has, so that its end is met without more room.
std::size_t capacityFor(const struct stat& status) noexcept {
    if (!S_ISREG(status.st_mode)) return TextBlock::usualCapacity;
    return std::min(static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1,
                    TextBlock::usualCapacity);
}

}  // namespace

std::unique_ptr<LineReader> LineReader::open(const LightweightString<wchar_t>& name, char separator) {
    const LibraryString path = systemPath(name);
    if (path.empty()) return nullptr;
    SystemFile file = openStream(path, O_RDONLY);
    struct stat status;
    if (!file || ::fstat(file.descriptor(), &status) != 0) return nullptr;
    auto reader = std::make_unique<LineReader>(std::move(file), separator, capacityFor(status));
    if (reader->error() == 0) return reader;
    const int error = reader->error();
    reader.reset();
    errno = error;
    return nullptr;
}

LineReader::LineReader(SystemFile file, char separator, std::size_t capacity)
    : m_file(std::move(file)), m_separator(separator), m_block(capacity) {
    while (m_block.view().size() < byteOrderMark.size() && readPiece()) {
    }
    if (m_block.view().substr(0, byteOrderMark.size()) == byteOrderMark) m_rest = byteOrderMark.size();
    readLine();
}

void LineReader::next() {
    if (m_isPastEnd) return;
    readLine();
    ++m_number;
}

void LineReader::readLine() {
    m_line = {};
    std::size_t searched = 0;  // so many bytes of the rest hold no separator
    for (;;) {
        const std::string_view rest = m_block.view().substr(m_rest);
        const std::size_t length = rest.find(m_separator, searched);
        if (length != std::string_view::npos) {
            m_line = rest.substr(0, length);
            m_rest += length + 1;
            break;
        }
        searched = rest.size();
        if (readPiece()) continue;
        // Text after the last end is a line too.
        m_isPastEnd = searched == 0 || m_error != 0;
        if (!m_isPastEnd) m_line = m_block.view().substr(m_rest);
        m_rest = m_block.view().size();
        return;
    }
    if (m_separator == '\n' && !m_line.empty() && m_line.back() == '\r') m_line.remove_suffix(1);
}

/// Makes the rest longer. False when there is nothing left to read, or it cannot be read.
bool LineReader::readPiece() {
    if (!m_file) return false;
    m_block.dropFront(m_rest);
    m_rest = 0;
    if (m_block.room() == 0) m_block.reallocate(std::max(TextBlock::usualCapacity, 2 * m_block.capacity()));
    ssize_t count;
    do count = ::read(m_file.descriptor(), m_block.end(), m_block.room());
    while (count < 0 && errno == EINTR);
    if (count > 0) {
        m_block.extendTo(m_block.end() + count);
        return true;
    }
    if (count < 0) m_error = errno;
    m_file.close();
    return false;
}
