// A text file: a list of lines, read and written in one piece, or taken from the front to the back in little
// memory.
//
// Thread-safety: one thread at a time; reading lines from several threads while nobody writes is safe.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "support/Export.h"
#include "support/LightweightString.h"

class LineBlocks;
class LineReader;
class LineWriter;

class KESTA_API TextFile {
 public:
    /// How save ends each line: 0 is CR LF, 1 is LF.
    enum eEOLStyle : int { eCRLF = 0, eLF = 1 };

    TextFile();
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    ~TextFile();

    /// Replaces the lines with those of the named file and puts the cursor on the first. Lines end with
    /// `separator`; with the line feed, a CR before it belongs to the end. Text after the last end is a line
    /// too. A UTF-8 byte order mark is dropped; all other bytes are kept. `flag` is reserved; pass false.
    /// Returns false, with no lines and errno set, when the file cannot be read. At most 4294967295 lines
    /// have a number.
    bool load(LightweightString<wchar_t> name, char separator, bool flag);

    /// Begins to load the file for a reader that goes through it once, from the first line to the last: only
    /// the line at the cursor is there, and nextLine reads the one after it. So a file of any size is read in
    /// the memory that its longest line takes. Returns what load does; a failure later on ends the lines
    /// there, and endLoad tells of it.
    bool beginLoad(const LightweightString<wchar_t>& name, char separator);

    /// Reads the rest of the file and forgets it: no lines are left. Returns whether all of the file could be
    /// read; if not, errno says why. Appending a line ends the reading too, and nothing is told of a failure.
    bool endLoad();

    /// Writes all lines, each ended as `style` says. An existing file is never damaged: the lines go to a
    /// temporary file beside it, which is flushed to disk and renamed over it. Symbolic links are followed,
    /// permissions kept. Returns false on any failure; then the target is as it was and the temporary file is
    /// gone. errno says why. A process that is killed meanwhile may leave the temporary file: its name is
    /// ".kesta-" and 12 letters and digits, and it may be deleted.
    bool save(LightweightString<wchar_t> name, eEOLStyle style) const;

    /// Begins a save while lines are still to be appended: those that there are and those to come go to the
    /// temporary file in large pieces and are forgotten, so that a file of any size is saved in little
    /// memory. `save` with the same arguments writes the rest, puts the file in place, and tells of failures
    /// up to there. Without it, nothing is saved.
    void beginSave(const LightweightString<wchar_t>& name, eEOLStyle style);

    /// The number of lines, also of those that a begun save has forgotten. During a begun load, those up to
    /// the one at the cursor.
    unsigned size() const noexcept;

    /// The line without its end; past the last line, or for a forgotten one, the empty string.
    LightweightString<char> operator[](unsigned line) const {
        return LightweightString<char>(lineView(line));
    }

    /// The same without a copy; valid until the lines change, nextLine reads or a load ends.
    std::string_view lineView(unsigned line) const noexcept;

    void appendLine(const LightweightString<char>& text);

    /// The two halves of appending a line without a string in between: room for a line of at most `longest`
    /// bytes; then the line, which begins where the room does and ends at `end`. Without the second call
    /// nothing is appended.
    char* beginLine(std::size_t longest);
    void endLine(char* end);

    /// The index of the line that the next reader takes, which may be past the last.
    unsigned cursor() const noexcept { return m_cursor; }
    void setCursor(unsigned line) noexcept { m_cursor = line; }

    /// Moves the cursor to the next line; during a begun load, reads it. Readers call it when they are done
    /// with the line at the cursor.
    void nextLine();

 private:
    void clear() noexcept;

    std::unique_ptr<LineBlocks> m_lines;  // never null
    // At most one of these is there, and then there is no line in m_lines.
    std::unique_ptr<LineReader> m_begunLoad;
    std::unique_ptr<LineWriter> m_begunSave;
    unsigned m_cursor = 0;
};
