#include "support/TextFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

#include "support/misc/FileReplacement.h"
#include "support/misc/SystemFile.h"

namespace {

constexpr std::size_t standardBlock = std::size_t(1) << 16;
constexpr std::size_t firstBlock = std::size_t(1) << 14;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

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
    ~Block() { OS()->allocator()->release(data); }

    char* data;
    std::size_t size = 0;
    std::size_t capacity;
    std::size_t firstLine = 0;
    std::size_t endLine = 0;
    bool written = false;  // made by appending: holds its lines as they are saved, a line feed behind each
};

/// A file that is being read. The line that has not ended yet begins at lineBegin, in the last block.
struct TextFile::BegunLoad {
    SystemFile file;
    char separator;
    std::size_t lineBegin = 0;
    bool atEnd = false;
    int error = 0;
};

/// A file that is being saved while lines are still appended.
struct TextFile::BegunSave {
    BegunSave(const LightweightString<wchar_t>& target, eEOLStyle endings)
        : name(target), style(endings), file(target) {}

    LightweightString<wchar_t> name;
    eEOLStyle style;
    FileReplacement file;
};

TextFile::TextFile() noexcept = default;

TextFile::~TextFile() = default;

void TextFile::clear() noexcept {
    m_blocks.clear();
    m_lines.clear();
    m_begunLoad.reset();
    m_begunSave.reset();
    m_forgotten = 0;
    m_cursor = 0;
}

TextFile::Block& TextFile::addBlock(std::size_t capacity) {
    m_blocks.emplace_back(capacity);
    m_blocks.back().firstLine = m_blocks.back().endLine = m_lines.size();
    return m_blocks.back();
}

bool TextFile::load(LightweightString<wchar_t> name, char separator, bool) {
    if (!beginLoad(name, separator)) return false;
    while (readPiece()) {
    }
    if (endLoad()) return true;
    return giveUp(errno);
}

bool TextFile::beginLoad(const LightweightString<wchar_t>& name, char separator) {
    clear();
    const LibraryString path = systemPath(name);
    if (path.empty()) return false;
    SystemFile file = openStream(path, O_RDONLY);
    struct stat status;
    if (!file || ::fstat(file.descriptor(), &status) != 0) return false;
    // One byte more than a small file has, so that its end is met without a second block.
    const std::size_t wanted = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1;
    addBlock(S_ISREG(status.st_mode) ? std::min(wanted, standardBlock) : standardBlock);
    m_begunLoad = std::make_unique<BegunLoad>(BegunLoad{std::move(file), separator});
    readOn();
    return m_begunLoad->error == 0 || giveUp(m_begunLoad->error);
}

bool TextFile::giveUp(int error) noexcept {
    clear();
    errno = error;
    return false;
}

bool TextFile::endLoad() {
    while (m_begunLoad && !m_begunLoad->atEnd) readOn();
    const int error = m_begunLoad ? m_begunLoad->error : 0;
    m_begunLoad.reset();
    if (error != 0) errno = error;
    return error == 0;
}

/// While a file is being read, the line at the cursor is there, if the file has it.
void TextFile::readOn() {
    do {
        forgetLines();
        // The line that has not ended yet goes on behind its begin.
        Block& block = m_blocks.back();
        std::size_t& lineBegin = m_begunLoad->lineBegin;
        block.size -= lineBegin;
        std::memmove(block.data, block.data + lineBegin, block.size);
        lineBegin = 0;
    } while (readPiece() && m_cursor >= size());
}

/// Reads as much as the last block has room for, and adds the lines that end there. False when there is
/// nothing left to read, or it cannot be read.
bool TextFile::readPiece() {
    BegunLoad& load = *m_begunLoad;
    if (load.atEnd) return false;
    load.atEnd = true;  // should there be no memory for a line
    load.error = ENOMEM;
    if (m_blocks.back().size == m_blocks.back().capacity) continueLastBlock();
    Block& block = m_blocks.back();
    ssize_t count;
    do count = ::read(load.file.descriptor(), block.data + block.size, block.capacity - block.size);
    while (count < 0 && errno == EINTR);
    if (count <= 0) {
        const int error = count < 0 ? errno : 0;
        const bool onlyMark = size() == 0 && std::string_view(block.data, block.size) == byteOrderMark;
        if (error == 0 && load.lineBegin < block.size && !onlyMark) addLine(block.size);
        load.error = error;
        return false;
    }

    const char* begin = block.data + block.size;
    block.size += static_cast<std::size_t>(count);
    const char* const end = block.data + block.size;
    while (const void* found = std::memchr(begin, load.separator, static_cast<std::size_t>(end - begin))) {
        const char* const separatorAt = static_cast<const char*>(found);
        const auto position = static_cast<std::size_t>(separatorAt - block.data);
        const bool carriageReturn =
            load.separator == '\n' && position > load.lineBegin && block.data[position - 1] == '\r';
        addLine(carriageReturn ? position - 1 : position);
        load.lineBegin = position + 1;
        begin = separatorAt + 1;
    }
    load.atEnd = false;
    load.error = 0;
    return true;
}

/// The line that has not ended moves to the next block; one that fills a block gets a larger one.
void TextFile::continueLastBlock() {
    Block& full = m_blocks.back();
    std::size_t& lineBegin = m_begunLoad->lineBegin;
    const std::string_view open(full.data + lineBegin, full.size - lineBegin);
    Block next(std::max(standardBlock, 2 * open.size()));
    if (!open.empty()) std::memcpy(next.data, open.data(), open.size());
    next.size = open.size();
    next.firstLine = next.endLine = m_lines.size();
    full.size = lineBegin;
    if (lineBegin == 0) m_blocks.pop_back();
    m_blocks.push_back(std::move(next));
    lineBegin = 0;
}

/// The line from lineBegin to `end`, in the last block.
void TextFile::addLine(std::size_t end) {
    Block& block = m_blocks.back();
    std::string_view line(block.data + m_begunLoad->lineBegin, end - m_begunLoad->lineBegin);
    const bool marked = size() == 0 && line.substr(0, byteOrderMark.size()) == byteOrderMark;
    if (marked) line.remove_prefix(byteOrderMark.size());
    m_lines.push_back(line);
    block.endLine = m_lines.size();
}

/// What is left is the last block, for whatever comes next.
void TextFile::forgetLines() noexcept {
    m_forgotten += m_lines.size();
    m_lines.clear();
    if (m_blocks.empty()) return;
    Block last = std::move(m_blocks.back());
    last.firstLine = last.endLine = 0;
    m_blocks.clear();
    m_blocks.push_back(std::move(last));
}

void TextFile::appendLine(const LightweightString<char>& text) {
    char* const line = beginLine(text.length());
    if (!text.empty()) std::memcpy(line, text.c_str(), text.length());
    endLine(line + text.length());
}

char* TextFile::beginLine(std::size_t longest) {
    m_begunLoad.reset();
    const std::size_t room = longest + 1;
    const auto hasRoom = [&] {
        return !m_blocks.empty() && m_blocks.back().written &&
               m_blocks.back().capacity - m_blocks.back().size >= room;
    };
    bool fits = hasRoom();
    if (!fits && m_begunSave) {
        putOut();
        fits = hasRoom();
    }
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

void TextFile::beginSave(const LightweightString<wchar_t>& name, eEOLStyle style) {
    m_begunLoad.reset();
    m_begunSave = std::make_unique<BegunSave>(name, style);
}

bool TextFile::save(LightweightString<wchar_t> name, eEOLStyle style) const {
    if (m_begunSave) {
        if (name != m_begunSave->name || style != m_begunSave->style) {
            errno = EINVAL;
            return false;
        }
        writeLines(m_begunSave->file, style);
        return m_begunSave->file.commit();
    }
    if (m_begunLoad || m_forgotten != 0) {
        errno = EINVAL;
        return false;
    }
    FileReplacement file(name);
    writeLines(file, style);
    return file.commit();
}

void TextFile::writeLines(FileReplacement& file, eEOLStyle style) const noexcept {
    const std::string_view end = style == eCRLF ? "\r\n" : "\n";
    for (const Block& block : m_blocks) {
        if (block.written && style != eCRLF) {
            file.write(std::string_view(block.data, block.size));
            continue;
        }
        for (std::size_t line = block.firstLine; line < block.endLine; ++line) {
            file.write(m_lines[line]);
            file.write(end);
        }
    }
}

/// Writes the lines that there are to the file that is being saved.
void TextFile::putOut() {
    writeLines(m_begunSave->file, m_begunSave->style);
    forgetLines();
    if (!m_blocks.empty()) m_blocks.back().size = 0;
}
