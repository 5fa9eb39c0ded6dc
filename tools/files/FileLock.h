// Lets one program at a time write a file: a lock that stands beside it.
//
// The lock of "NAME" is the file ".NAME.lock" in the same folder, held with flock by the program that it
// names. It goes when its holder ends; one that a killed program left behind is held by nobody, and the next
// program removes it. A program that takes no lock is not kept from anything.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>

#include "support/SystemFile.h"

class FileLock {
 public:
    /// Takes the lock of the file at the end of the path's symbolic links, which need not exist. Waits for
    /// another program that holds it, as many seconds as the setting "lock_wait" says, 5 unless set. Throws
    /// Failure, which names that program, when it takes longer, and with the reason when the folder takes no
    /// lock. What is no plain file is not locked.
    explicit FileLock(const std::string& path);
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock() { release(); }

    void release() noexcept;

 private:
    std::string m_lockPath;
    SystemFile m_file;  // none when nothing is held
};
