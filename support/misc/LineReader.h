// LineReader: goes through the lines of a file once, from the first to the last, in the memory that the
// longest line takes.
//
// Thread-safety: one thread at a time.
#pragma once

#include <memory>
#include <string_view>

#include "support/SystemFile.h"
#include "support/misc/TextBlock.h"

class LineReader {
 public:
    /// Opens the file and reads its first line. Null, with errno set, when it cannot be read. Lines end with
    /// `separator`; with the line feed, a carriage return before it belongs to the end. Text after the last
    /// end is a line too. A UTF-8 byte order mark at the beginning is dropped.
    static std::unique_ptr<LineReader> open(const LightweightString<wchar_t>& name, char separator);

    /// Takes the file over.
    LineReader(SystemFile file, char separator, std::size_t capacity);

    /// The index of the line; after the last line, how many there are.
    unsigned number() const noexcept { return m_number; }
    bool isPastEnd() const noexcept { return m_isPastEnd; }

    /// The line, without its end; empty after the last. Valid until the next one is read.
    std::string_view line() const noexcept { return m_line; }

    /// Reads the next line, if there is one. When memory runs out, another call tries the same line again.
    void next();

    /// Why the lines ended before the file's end; a value of errno, 0 when they did not.
    int error() const noexcept { return m_error; }

 private:
    void readLine();
    bool readPiece();

    SystemFile m_file;  // closed when all is read
    char m_separator;
    TextBlock m_block;
    std::size_t m_rest = 0;  // where in the block the text after the line begins
    std::string_view m_line;
    unsigned m_number = 0;
    bool m_isPastEnd = false;
    int m_error = 0;
};
