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
    ~Block() { release(); }

    void release() noexcept { OS()->allocator()->release(std::exchange(data, nullptr)); }

    char* data;
    std::size_t size = 0;
    std::size_t capacity;
    std::size_t firstLine = 0;
    std::size_t endLine = 0;
    bool written = false;  // made by appending: holds its lines as they are saved, a line feed behind each
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
    m_begunSave.reset();
    m_forgotten = 0;
    m_firstKeptBlock = 0;
    m_cursor = 0;
    m_forgetful = false;
}

TextFile::Block& TextFile::addBlock(std::size_t capacity) {
    m_blocks.emplace_back(capacity);
    m_blocks.back().firstLine = m_blocks.back().endLine = m_lines.size();
    return m_blocks.back();
}

bool TextFile::load(LightweightString<wchar_t> name, char separator, bool) {
    clear();
    const LibraryString path = systemPath(name);
    if (path.empty()) return false;
    const SystemFile file = openStream(path, O_RDONLY);
    if (file && readBlocks(file.descriptor(), separator)) return true;
    const int error = errno;
    clear();
    errno = error;
    return false;
}

bool TextFile::readBlocks(int file, char separator) {
    struct stat status;
    if (::fstat(file, &status) != 0) return false;
    // One byte more than a small file has, so that its end is met without a second block.
    const std::size_t wanted = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1;
    Block* block = &addBlock(S_ISREG(status.st_mode) ? std::min(wanted, standardBlock) : standardBlock);
    std::size_t lineBegin = 0;

    const auto addLine = [&](std::size_t end) {
        m_lines.emplace_back(block->data + lineBegin, end - lineBegin);
        block->endLine = m_lines.size();
    };

    for (;;) {
        if (block->size == block->capacity) {
            // The line that has not ended moves to the next block; one that fills a block gets a larger one.
            const std::string_view open(block->data + lineBegin, block->size - lineBegin);
            Block next(std::max(standardBlock, 2 * open.size()));
            if (!open.empty()) std::memcpy(next.data, open.data(), open.size());
            next.size = open.size();
            next.firstLine = next.endLine = m_lines.size();
            block->size = lineBegin;
            if (lineBegin == 0) m_blocks.pop_back();
            m_blocks.push_back(std::move(next));
            block = &m_blocks.back();
            lineBegin = 0;
        }
        const ssize_t count = ::read(file, block->data + block->size, block->capacity - block->size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) break;

        const char* begin = block->data + block->size;
        block->size += static_cast<std::size_t>(count);
        const char* const end = block->data + block->size;
        while (const void* found = std::memchr(begin, separator, static_cast<std::size_t>(end - begin))) {
            const char* const separatorAt = static_cast<const char*>(found);
            const auto position = static_cast<std::size_t>(separatorAt - block->data);
            const bool carriageReturn =
                separator == '\n' && position > lineBegin && block->data[position - 1] == '\r';
            addLine(carriageReturn ? position - 1 : position);
            lineBegin = position + 1;
            begin = separatorAt + 1;
        }
    }
    if (lineBegin < block->size) addLine(block->size);

    if (!m_lines.empty() && m_lines[0].substr(0, byteOrderMark.size()) == byteOrderMark) {
        m_lines[0].remove_prefix(byteOrderMark.size());
        const bool nothingElse = m_lines.size() == 1 && m_lines[0].empty() && lineBegin == 0;
        if (nothingElse) clear();
    }
    return true;
}

void TextFile::appendLine(const LightweightString<char>& text) {
    char* const line = beginLine(text.length());
    if (!text.empty()) std::memcpy(line, text.c_str(), text.length());
    endLine(line + text.length());
}

char* TextFile::beginLine(std::size_t longest) {
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

void TextFile::forgetRead() noexcept {
    // The last block stays: lines may be appended to it.
    while (m_firstKeptBlock + 1 < m_blocks.size() &&
           m_forgotten + m_blocks[m_firstKeptBlock].endLine <= m_cursor) {
        Block& block = m_blocks[m_firstKeptBlock++];
        for (std::size_t line = block.firstLine; line < block.endLine; ++line) m_lines[line] = {};
        block.release();
        block.size = 0;
    }
}

void TextFile::beginSave(const LightweightString<wchar_t>& name, eEOLStyle style) {
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
    FileReplacement file(name);
    writeLines(file, style);
    return file.commit();
}

void TextFile::writeLines(FileReplacement& file, eEOLStyle style) const {
    const std::string_view end = style == eCRLF ? "\r\n" : "\n";
    LibraryString buffer;
    for (const Block& block : m_blocks) {
        if (block.written && style != eCRLF) {
            file.write(std::string_view(block.data, block.size));
            continue;
        }
        for (std::size_t line = block.firstLine; line < block.endLine; ++line) {
            buffer.append(m_lines[line]).append(end);
            if (buffer.size() < standardBlock) continue;
            file.write(buffer);
            buffer.clear();
        }
        file.write(buffer);
        buffer.clear();
    }
}

/// Writes the lines that there are to the file that is being saved, and keeps the last block for the next
/// ones.
void TextFile::putOut() {
    writeLines(m_begunSave->file, m_begunSave->style);
    m_forgotten += m_lines.size();
    m_lines.clear();
    if (m_blocks.empty()) return;
    Block kept = std::move(m_blocks.back());
    kept.size = kept.firstLine = kept.endLine = 0;
    m_blocks.clear();
    m_blocks.push_back(std::move(kept));
    m_firstKeptBlock = 0;
}
