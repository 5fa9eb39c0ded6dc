// A text file: a list of lines, read and written in one piece, or taken from front to back in little memory.
//
// Lines live one behind the other in large blocks, so a file costs little more than its bytes, and a save
// writes the blocks as they are.
//
// Thread-safety: one thread at a time; reading lines from several threads while nobody writes is safe.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "support/Export.h"
#include "support/LightweightString.h"

class FileReplacement;

class KESTA_API TextFile {
 public:
    /// How save ends each line: 0 is CR LF, 1 is LF.
    enum eEOLStyle : int { eCRLF = 0, eLF = 1 };

    TextFile() noexcept;
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    ~TextFile();

    /// Replaces the lines with those of the named file and puts the read cursor on the first. Lines end with
    /// `separator`; with the line feed, a CR before it belongs to the end. Text behind the last end is a line
    /// too. A UTF-8 byte order mark is dropped; all other bytes are kept. `flag` is reserved; pass false.
    /// Answers false, with no lines, when the file cannot be read.
    bool load(LightweightString<wchar_t> name, char separator, bool flag);

    /// Begins to load the file for a reader that goes through it once, from front to back: the file is read
    /// as the cursor moves on, and lines before the cursor may be forgotten, so that a file of any size is
    /// read in the memory that its longest line takes. Beyond the line at the cursor, if there is one, size()
    /// need not count. Answers as load does; a failure later on ends the lines there, and endLoad tells of
    /// it.
    bool beginLoad(const LightweightString<wchar_t>& name, char separator);

    /// Reads the rest of the file, whose lines may be forgotten. Answers whether all of the file could be
    /// read; if not, errno says why. Appending a line ends the reading too, and nothing is told of a failure.
    bool endLoad();

    /// Writes all lines, each ended as `style` says. An existing file is never damaged: the lines go to a
    /// temporary file beside it, which is flushed to disk and renamed over it. Symbolic links are followed,
    /// permissions kept. Answers false on any failure; then the target is as it was and the temporary file is
    /// gone. errno says why. A process that is killed meanwhile may leave the temporary file: its name is
    /// ".kesta-" and 12 letters and digits, and it may be deleted.
    bool save(LightweightString<wchar_t> name, eEOLStyle style) const;

    /// Begins a save while lines are still to be appended: from now on lines go to the temporary file in
    /// large pieces and are forgotten, so that a file of any size is saved in little memory. `save` with the
    /// same arguments writes the rest, puts the file in place, and tells of failures up to there. Without it,
    /// nothing is saved.
    void beginSave(const LightweightString<wchar_t>& name, eEOLStyle style);

    /// The number of lines.
    unsigned size() const noexcept { return static_cast<unsigned>(m_forgotten + m_lines.size()); }

    /// The line without its end; past the last line, or for a forgotten one, the empty string.
    LightweightString<char> operator[](unsigned line) const {
        return LightweightString<char>(lineView(line));
    }

    /// The same without a copy; valid until the lines change, the cursor moves or a load ends.
    std::string_view lineView(unsigned line) const noexcept {
        const std::size_t kept = line - m_forgotten;  // huge for a forgotten line
        return kept < m_lines.size() ? m_lines[kept] : std::string_view();
    }

    void appendLine(const LightweightString<char>& text);

    /// The two halves of appending a line without a string in between: room for a line of at most `longest`
    /// bytes; then the line, which begins where the room does and ends at `end`. Without the second call
    /// nothing is appended.
    char* beginLine(std::size_t longest);
    void endLine(char* end);

    /// The index of the line that the next reader takes.
    unsigned cursor() const noexcept { return m_cursor; }

    /// Moves the cursor. Readers that go on to the next line do so when they are done with the one they have
    /// read.
    void setCursor(unsigned line) {
        m_cursor = line;
        if (m_begunLoad && line >= size()) readOn();
    }

 private:
    struct Block;
    struct BegunLoad;
    struct BegunSave;

    void clear() noexcept;
    bool giveUp(int error) noexcept;
    Block& addBlock(std::size_t capacity);
    bool readPiece();
    void continueLastBlock();
    void addLine(std::size_t end);
    void readOn();
    void forgetLines() noexcept;
    void writeLines(FileReplacement& file, eEOLStyle style) const noexcept;
    void putOut();

    // Each line's bytes lie in one block. A block's end line is the number of lines up to and with its last;
    // forgotten lines, the first m_forgotten, count nowhere in here.
    std::vector<Block> m_blocks;
    std::vector<std::string_view> m_lines;
    std::unique_ptr<BegunLoad> m_begunLoad;
    std::unique_ptr<BegunSave> m_begunSave;
    std::size_t m_forgotten = 0;
    unsigned m_cursor = 0;
};
