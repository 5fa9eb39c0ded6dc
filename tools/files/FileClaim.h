// A file that a command is about to write: other runs of the program keep away from it, and what programs do
// that take no lock is noticed.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>
#include <sys/stat.h>

#include "tools/files/FileLock.h"

/// Which file a name stands for, and in which state.
class FileState {
 public:
    /// Throws Failure when the system does not say.
    explicit FileState(const std::string& path);

    /// Whether it is the same file, unwritten since, as far as the system tells.
    bool operator==(const FileState& other) const noexcept;

 private:
    struct stat m_status {};
    bool m_exists;
};

/// From its making on, the file is to be read and written by this program alone.
class FileClaim {
 public:
    /// Throws Failure as FileLock does.
    explicit FileClaim(const std::string& path) : m_path(path), m_lock(path), m_before(path) {}

    /// To be called right before the file is written. Throws Failure when it is no longer as it was.
    void requireUnchanged() const;

    /// Whether the file is another one than when the claim was made, or written to.
    bool isChanged() const { return !(FileState(m_path) == m_before); }

    /// Lets the others have the file.
    void release() noexcept { m_lock.release(); }

 private:
    std::string m_path;
    FileLock m_lock;
    FileState m_before;
};
