// FileReplacement: gives a file a new content, wholly or not at all.
//
// The content goes to a temporary file beside the file, which is flushed to disk and renamed over it.
// Symbolic links are followed, permissions kept. A device or pipe, which has no content to protect and must
// not be replaced by a file, is written directly.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string_view>
#include <sys/stat.h>
#include <vector>

#include "support/SystemFile.h"

class FileReplacement {
 public:
    /// Begins. A failure here or in write is kept, and told by commit.
    explicit FileReplacement(const LightweightString<wchar_t>& name);

    /// Begins a file that has the owner and permissions of `original`, and lets its owner write it, and that
    /// goes in the place of whatever bears the name: of a link itself, not of what it leads to.
    FileReplacement(const LightweightString<wchar_t>& name, const LightweightString<wchar_t>& original);

    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Without a commit the file stays as it was, and the temporary file goes. Keeps errno.
    ~FileReplacement();

    void write(std::string_view bytes) noexcept;

    /// Puts what was written in the file's place. Returns false, with errno set, on any failure up to here;
    /// then the file is as it was, and the temporary file is gone. To be called once.
    bool commit();

 private:
    void open(const LightweightString<wchar_t>& name);
    void openTemporaryLike(const struct stat& status);
    void openTemporary(mode_t mode);
    void removeTemporary() noexcept;
    void writePending() noexcept;
    void writeOut(std::string_view bytes) noexcept;
    bool fail() noexcept;

    LibraryString m_path;
    LibraryString m_temporaryPath;  // empty when there is no temporary file
    SystemFile m_file;
    std::vector<char> m_piece;
    std::size_t m_pending = 0;  // the bytes of the piece that are still to be written
    int m_error = 0;
};
