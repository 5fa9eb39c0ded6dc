// FileReplacement: gives a file a new content, wholly or not at all.
#include "support/misc/FileReplacement.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>

#include "support/StandIn.h"
#include "support/misc/OpenStream.h"

namespace {

/// The system is given pieces of this size, so that each begins where a page of the file does: others cost it
/// three times as much.
constexpr std::size_t pieceSize = std::size_t(1) << 16;

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

/// Makes the folder's list of names survive a power failure. That the file system cannot is no failure of the
/// replacement.
void flushFolder(const LibraryString& folder) noexcept {
    const int error = errno;
    const SystemFile file(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (file) ::fsync(file.descriptor());
    errno = error;
}

}  // namespace

FileReplacement::FileReplacement(const LightweightString<wchar_t>& name) : m_piece(pieceSize) {
    open(name);
    if (!m_file) fail();
}

FileReplacement::FileReplacement(const LightweightString<wchar_t>& name,
                                 const LightweightString<wchar_t>& original)
    : m_path(systemPath(name)), m_piece(pieceSize) {
    const LibraryString originalPath = systemPath(original);
    struct stat status;
    if (!m_path.empty() && !originalPath.empty() && ::stat(originalPath.c_str(), &status) == 0) {
        status.st_mode |= S_IWUSR;
        openTemporaryLike(status);
    }
    if (!m_file) fail();
}

FileReplacement::~FileReplacement() {
    const int error = errno;
    removeTemporary();
    errno = error;
}

void FileReplacement::removeTemporary() noexcept {
    if (m_temporaryPath.empty()) return;
    ::unlink(m_temporaryPath.c_str());
    m_temporaryPath.clear();
}

bool FileReplacement::fail() noexcept {
    if (m_error == 0) m_error = errno;
    m_file.close();
    removeTemporary();
    errno = m_error;
    return false;
}

void FileReplacement::open(const LightweightString<wchar_t>& name) {
    m_path = systemPath(name);
    if (!m_path.empty()) m_path = followLinks(std::move(m_path));
    if (m_path.empty()) return;

    struct stat status;
    if (::stat(m_path.c_str(), &status) != 0) {
        if (errno == ENOENT) openTemporary(0666);
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return;
    }
    if (::faccessat(AT_FDCWD, m_path.c_str(), W_OK, AT_EACCESS) != 0) return;
    if (!S_ISREG(status.st_mode)) {
        m_file = openStream(m_path, O_WRONLY);
        return;
    }
    openTemporaryLike(status);
}

/// With the permissions and, as far as may be, the owner of another file.
void FileReplacement::openTemporaryLike(const struct stat& status) {
    openTemporary(status.st_mode & 0777);
    if (!m_file) return;
    // Keeping another owner takes privileges; the permissions are set last, for a change of owner alters
    // them.
    const bool sameOwner = ::fchown(m_file.descriptor(), status.st_uid, status.st_gid) == 0;
    const mode_t kept = sameOwner ? 07777 : 0777;
    if (::fchmod(m_file.descriptor(), status.st_mode & kept) != 0) fail();
}

/// Makes a new file in the folder, under a name that nobody can have guessed.
void FileReplacement::openTemporary(mode_t mode) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        unsigned char random[12];
        if (::getrandom(random, sizeof random, 0) != sizeof random) return;
        LibraryString path = folderOf(m_path) + "/.kesta-";
        for (const unsigned char byte : random) path += "abcdefghijklmnopqrstuvwxyz234567"[byte % 32];
        m_file = SystemFile(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
        if (m_file) m_temporaryPath = std::move(path);
        if (m_file || errno != EEXIST) return;
    }
}

void FileReplacement::write(std::string_view bytes) noexcept {
    while (m_file && !bytes.empty()) {
        const bool whole = m_pending == 0 && bytes.size() >= pieceSize;
        const std::size_t count =
            whole ? bytes.size() / pieceSize * pieceSize : std::min(bytes.size(), pieceSize - m_pending);
        if (whole) {
            writeOut({bytes.data(), count});
        } else {
            std::memcpy(m_piece.data() + m_pending, bytes.data(), count);
            m_pending += count;
            if (m_pending == pieceSize) writePending();
        }
        bytes.remove_prefix(count);
    }
}

void FileReplacement::writePending() noexcept {
    writeOut({m_piece.data(), m_pending});
    m_pending = 0;
}

void FileReplacement::writeOut(std::string_view bytes) noexcept {
    if (m_file && !m_file.write(bytes)) fail();
}

bool FileReplacement::commit() {
    writePending();
    if (!m_file) {
        if (m_error == 0) errno = EINVAL;  // a second commit
        return fail();
    }
    if (m_temporaryPath.empty()) return m_file.close() || fail();
    const LibraryString folder = folderOf(m_path);  // after the renaming nothing may fail
    if (::fsync(m_file.descriptor()) != 0 || !m_file.close()) return fail();
    if (::rename(m_temporaryPath.c_str(), m_path.c_str()) != 0) return fail();
    m_temporaryPath.clear();
    flushFolder(folder);
    return true;
}

bool makeStandIn(const LightweightString<wchar_t>& name, const LightweightString<wchar_t>& original) {
    return FileReplacement(name, original).commit();
}
