#include "support/TextFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "support/LibraryAllocator.h"
#include "support/StringFunctions.h"

namespace {

constexpr std::size_t standardBlock = std::size_t(1) << 16;
constexpr std::size_t firstBlock = std::size_t(1) << 14;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// A file descriptor that closes itself.
class File {
 public:
    explicit File(int descriptor) noexcept : m_descriptor(descriptor) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { close(); }

    explicit operator bool() const noexcept { return m_descriptor >= 0; }
    int descriptor() const noexcept { return m_descriptor; }

    /// False when the system could not keep what was written.
    bool close() noexcept { return m_descriptor < 0 || ::close(std::exchange(m_descriptor, -1)) == 0; }

 private:
    int m_descriptor;
};

/// A file name as the system takes it; empty, with errno set, when it is none.
LibraryString systemPath(const LightweightString<wchar_t>& name) {
    const LightweightString<char> path = toUTF8(name);
    if (path.empty() || path.view().find('\0') != std::string_view::npos) {
        errno = path.empty() ? ENOENT : EINVAL;
        return {};
    }
    return LibraryString(path.view());
}

LibraryString folderOf(const LibraryString& path) {
    const std::size_t slash = path.rfind('/');
    return slash == LibraryString::npos ? "." : path.substr(0, slash + 1);
}

/// What a chain of symbolic links ends at, which need not exist; empty, with errno set, when a link cannot be
/// read or the links go round.
LibraryString followLinks(LibraryString path) {
    for (int links = 0; links < 40; ++links) {
        char target[4096];
        const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
        if (length < 0 && (errno == EINVAL || errno == ENOENT)) return path;  // no link
        if (length == sizeof target) errno = ENAMETOOLONG;
        if (length < 0 || length == sizeof target) return {};
        const std::string_view text(target, static_cast<std::size_t>(length));
        path = (text[0] == '/' ? LibraryString() : folderOf(path) + "/").append(text);
    }
    errno = ELOOP;
    return {};
}

/// False, with errno set, for a device that may have no end.
bool hasEnd(int file, int access) noexcept {
    struct stat status;
    if (::fstat(file, &status) != 0) return false;
    const bool isEndless =
        S_ISBLK(status.st_mode) || (S_ISCHR(status.st_mode) && access == O_RDONLY && ::isatty(file) == 0);
    if (isEndless) errno = EINVAL;
    return !isEndless;
}

/// Opens without waiting for the other end of a pipe; from then on reading and writing wait as usual. Regular
/// files, pipes and terminals are taken.
int openStream(const LibraryString& path, int access) noexcept {
    const int file = ::open(path.c_str(), access | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return file;
    if (hasEnd(file, access) && ::fcntl(file, F_SETFL, access) == 0) return file;
    const int error = errno;
    ::close(file);
    errno = error;
    return -1;
}

bool writeAll(int file, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// A new file in the folder, under a name that nobody can have guessed. Its name comes back in `path`.
int createTemporary(const LibraryString& folder, mode_t mode, LibraryString& path) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        unsigned char random[12];
        if (::getrandom(random, sizeof random, 0) != sizeof random) return -1;
        path = folder + "/.kesta-";
        for (const unsigned char byte : random) path += "abcdefghijklmnopqrstuvwxyz234567"[byte % 32];
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (file >= 0 || errno != EEXIST) return file;
    }
    return -1;
}

/// Takes the name of a temporary file away again unless it was put to use. Keeps errno.
class TemporaryName {
 public:
    explicit TemporaryName(const LibraryString& path) noexcept : m_path(path) {}
    TemporaryName(const TemporaryName&) = delete;
    TemporaryName& operator=(const TemporaryName&) = delete;
    ~TemporaryName() {
        if (m_used) return;
        const int error = errno;
        ::unlink(m_path.c_str());
        errno = error;
    }
    void used() noexcept { m_used = true; }

 private:
    const LibraryString& m_path;
    bool m_used = false;
};

/// Makes the folder's list of names survive a power failure. That the file system cannot is no failure of the
/// save.
void flushFolder(const LibraryString& folder) noexcept {
    const int error = errno;
    const File file(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (file) ::fsync(file.descriptor());
    errno = error;
}

}  // namespace

struct TextFile::Block {
    explicit Block(std::size_t room)
        : data(static_cast<char*>(OS()->allocator()->allocate(room))), capacity(room) {}
    Block(Block&& other) noexcept
        : data(std::exchange(other.data, nullptr)),
          size(other.size),
          capacity(other.capacity),
          firstLine(other.firstLine),
          endLine(other.endLine),
          written(other.written) {}
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() { release(); }

    void release() noexcept { OS()->allocator()->release(std::exchange(data, nullptr)); }

    char* data;
    std::size_t size = 0;
    std::size_t capacity;
    std::size_t firstLine = 0;
    std::size_t endLine = 0;
    bool written = false;  // made by appending: holds its lines as they are saved, a line feed behind each
};

TextFile::TextFile() noexcept = default;

TextFile::~TextFile() = default;

void TextFile::clear() noexcept {
    m_blocks.clear();
    m_lines.clear();
    m_firstKeptBlock = 0;
    m_cursor = 0;
    m_forgetful = false;
}

TextFile::Block& TextFile::addBlock(std::size_t capacity) {
    m_blocks.emplace_back(capacity);
    m_blocks.back().firstLine = m_blocks.back().endLine = m_lines.size();
    return m_blocks.back();
}

bool TextFile::load(LightweightString<wchar_t> name, char separator, bool) {
    clear();
    const LibraryString path = systemPath(name);
    if (path.empty()) return false;
    const File file(openStream(path, O_RDONLY));
    if (file && readBlocks(file.descriptor(), separator)) return true;
    const int error = errno;
    clear();
    errno = error;
    return false;
}

bool TextFile::readBlocks(int file, char separator) {
    struct stat status;
    if (::fstat(file, &status) != 0) return false;
    // One byte more than a small file has, so that its end is met without a second block.
    const std::size_t wanted = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1;
    Block* block = &addBlock(S_ISREG(status.st_mode) ? std::min(wanted, standardBlock) : standardBlock);
    std::size_t lineBegin = 0;

    const auto addLine = [&](std::size_t end) {
        m_lines.emplace_back(block->data + lineBegin, end - lineBegin);
        block->endLine = m_lines.size();
    };

    for (;;) {
        if (block->size == block->capacity) {
            // The line that has not ended moves to the next block; one that fills a block gets a larger one.
            const std::string_view open(block->data + lineBegin, block->size - lineBegin);
            Block next(std::max(standardBlock, 2 * open.size()));
            if (!open.empty()) std::memcpy(next.data, open.data(), open.size());
            next.size = open.size();
            next.firstLine = next.endLine = m_lines.size();
            block->size = lineBegin;
            if (lineBegin == 0) m_blocks.pop_back();
            m_blocks.push_back(std::move(next));
            block = &m_blocks.back();
            lineBegin = 0;
        }
        const ssize_t count = ::read(file, block->data + block->size, block->capacity - block->size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) break;

        const char* begin = block->data + block->size;
        block->size += static_cast<std::size_t>(count);
        const char* const end = block->data + block->size;
        while (const void* found = std::memchr(begin, separator, static_cast<std::size_t>(end - begin))) {
            const char* const separatorAt = static_cast<const char*>(found);
            const auto position = static_cast<std::size_t>(separatorAt - block->data);
            const bool carriageReturn =
                separator == '\n' && position > lineBegin && block->data[position - 1] == '\r';
            addLine(carriageReturn ? position - 1 : position);
            lineBegin = position + 1;
            begin = separatorAt + 1;
        }
    }
    if (lineBegin < block->size) addLine(block->size);

    if (!m_lines.empty() && m_lines[0].substr(0, byteOrderMark.size()) == byteOrderMark) {
        m_lines[0].remove_prefix(byteOrderMark.size());
        const bool nothingElse = m_lines.size() == 1 && m_lines[0].empty() && lineBegin == 0;
        if (nothingElse) clear();
    }
    return true;
}

void TextFile::appendLine(const LightweightString<char>& text) {
    char* const line = beginLine(text.length());
    if (!text.empty()) std::memcpy(line, text.c_str(), text.length());
    endLine(line + text.length());
}

char* TextFile::beginLine(std::size_t longest) {
    const std::size_t room = longest + 1;
    const bool fits = !m_blocks.empty() && m_blocks.back().written &&
                      m_blocks.back().capacity - m_blocks.back().size >= room;
    // Blocks begin small, for short files, and double.
    const std::size_t usual =
        m_blocks.empty() ? firstBlock : std::min(2 * m_blocks.back().capacity, standardBlock);
    Block& block = fits ? m_blocks.back() : addBlock(std::max(room, usual));
    block.written = true;
    return block.data + block.size;
}

void TextFile::endLine(char* end) {
    Block& block = m_blocks.back();
    char* const begin = block.data + block.size;
    m_lines.emplace_back(begin, static_cast<std::size_t>(end - begin));
    *end = '\n';
    block.size = static_cast<std::size_t>(end + 1 - block.data);
    block.endLine = m_lines.size();
}

void TextFile::forgetRead() noexcept {
    // The last block stays: lines may be appended to it.
    while (m_firstKeptBlock + 1 < m_blocks.size() && m_blocks[m_firstKeptBlock].endLine <= m_cursor) {
        Block& block = m_blocks[m_firstKeptBlock++];
        for (std::size_t line = block.firstLine; line < block.endLine; ++line) m_lines[line] = {};
        block.release();
        block.size = 0;
    }
}

bool TextFile::save(LightweightString<wchar_t> name, eEOLStyle style) const {
    LibraryString path = systemPath(name);
    if (path.empty()) return false;
    path = followLinks(std::move(path));
    if (path.empty()) return false;

    struct stat status;
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) return false;
    if (exists && S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return false;
    }
    if (exists && ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return false;
    if (exists && !S_ISREG(status.st_mode)) {
        // A device or pipe has no content to protect, and must not be replaced by a file.
        File device(openStream(path, O_WRONLY));
        return device && writeLines(device.descriptor(), style) && device.close();
    }

    const LibraryString folder = folderOf(path);
    LibraryString temporary;
    File file(createTemporary(folder, exists ? status.st_mode & 0777 : 0666, temporary));
    if (!file) return false;
    TemporaryName temporaryName(temporary);
    if (exists) {
        // Keeping another owner takes privileges; the permissions are set last, for a change of owner alters
        // them.
        const bool sameOwner = ::fchown(file.descriptor(), status.st_uid, status.st_gid) == 0;
        const mode_t kept = sameOwner ? 07777 : 0777;
        if (::fchmod(file.descriptor(), status.st_mode & kept) != 0) return false;
    }
    if (!writeLines(file.descriptor(), style) || ::fsync(file.descriptor()) != 0 || !file.close())
        return false;
    if (::rename(temporary.c_str(), path.c_str()) != 0) return false;
    temporaryName.used();
    flushFolder(folder);
    return true;
}

bool TextFile::writeLines(int file, eEOLStyle style) const {
    const std::string_view end = style == eCRLF ? "\r\n" : "\n";
    LibraryString buffer;
    for (const Block& block : m_blocks) {
        if (block.written && style != eCRLF) {
            if (!writeAll(file, std::string_view(block.data, block.size))) return false;
            continue;
        }
        for (std::size_t line = block.firstLine; line < block.endLine; ++line) {
            buffer.append(m_lines[line]).append(end);
            if (buffer.size() < standardBlock) continue;
            if (!writeAll(file, buffer)) return false;
            buffer.clear();
        }
        if (!writeAll(file, buffer)) return false;
        buffer.clear();
    }
    return true;
}
