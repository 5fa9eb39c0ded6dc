// FileState and FileClaim: noticing what others do to a file.
#include "tools/files/FileClaim.h"

#include <cerrno>

#include "tools/Failure.h"

FileState::FileState(const std::string& path) : m_exists(stat(path.c_str(), &m_status) == 0) {
    if (!m_exists && errno != ENOENT) throw fileFailure(path, errno);
}

bool FileState::operator==(const FileState& other) const noexcept {
    return m_exists == other.m_exists && m_status.st_dev == other.m_status.st_dev &&
           m_status.st_ino == other.m_status.st_ino && m_status.st_size == other.m_status.st_size &&
           m_status.st_mtim.tv_sec == other.m_status.st_mtim.tv_sec &&
           m_status.st_mtim.tv_nsec == other.m_status.st_mtim.tv_nsec;
}

void FileClaim::requireUnchanged() const {
    if (!isChanged()) return;
    throw Failure(
        m_path + " was changed by another program while it was being edited; nothing was saved: do it again");
}
