// LineWriter: puts lines in the place of a file's content, wholly or not at all, while they are made.
//
// Lines go to the disk in large pieces, so that a file of any size is written in little memory.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string_view>

#include "support/misc/FileReplacement.h"
#include "support/misc/LineBlocks.h"

class LineWriter {
 public:
    /// Begins the file. A failure here or later is kept, and told by commit.
    LineWriter(const LightweightString<wchar_t>& name, std::string_view lineEnd);

    /// Whether it was made for that name and line end.
    bool isFor(const LightweightString<wchar_t>& name, std::string_view lineEnd) const noexcept;

    /// The number of lines so far.
    unsigned size() const noexcept { return m_size; }

    void append(const LineBlocks& lines);

    /// The two halves of appending a line: room for at most `longest` bytes; then the line, from there to
    /// `end`.
    char* beginLine(std::size_t longest);
    void endLine(char* end) noexcept;

    /// Puts the file in its place. Returns false, with errno set, on any failure up to here; then the file is
    /// as it was. To be called once.
    bool commit();

 private:
    void writePending() noexcept;

    LightweightString<wchar_t> m_name;
    std::string_view m_lineEnd;
    FileReplacement m_file;
    TextBlock m_pending;
    unsigned m_size = 0;
};
