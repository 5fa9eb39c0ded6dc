// TextFile: which of its parts the lines go to and come from.
#include "support/TextFile.h"

#include <algorithm>
#include <cerrno>

#include "support/misc/LineBlocks.h"
#include "support/misc/LineReader.h"
#include "support/misc/LineWriter.h"

namespace {

std::string_view lineEnd(TextFile::eEOLStyle style) noexcept {
    return style == TextFile::eCRLF ? "\r\n" : "\n";
}

}  // namespace

TextFile::TextFile() : m_lines(std::make_unique<LineBlocks>()) {}

TextFile::~TextFile() = default;

void TextFile::clear() noexcept {
    m_lines->clear();
    m_begunLoad.reset();
    m_begunSave.reset();
    m_cursor = 0;
}

// --- Lines ---

unsigned TextFile::size() const noexcept {
    if (m_begunLoad) return m_begunLoad->number() + (m_begunLoad->isPastEnd() ? 0 : 1);
    return m_begunSave ? m_begunSave->size() : static_cast<unsigned>(m_lines->lines().size());
}

std::string_view TextFile::lineView(unsigned line) const noexcept {
    if (m_begunLoad) return line == m_begunLoad->number() ? m_begunLoad->line() : std::string_view();
    const std::vector<std::string_view>& lines = m_lines->lines();
    return line < lines.size() ? lines[line] : std::string_view();
}

void TextFile::nextLine() {
    ++m_cursor;
    if (!m_begunLoad) return;
    while (m_begunLoad->number() < m_cursor && !m_begunLoad->isPastEnd()) m_begunLoad->next();
}

void TextFile::appendLine(const LightweightString<char>& text) {
    const std::string_view line = text.view();
    endLine(std::copy(line.begin(), line.end(), beginLine(line.size())));
}

char* TextFile::beginLine(std::size_t longest) {
    m_begunLoad.reset();
    return m_begunSave ? m_begunSave->beginLine(longest) : m_lines->beginLine(longest);
}

void TextFile::endLine(char* end) {
    if (m_begunSave) {
        m_begunSave->endLine(end);
    } else {
        m_lines->endLine(end);
    }
}

// --- Loading ---

bool TextFile::load(LightweightString<wchar_t> name, char separator, bool) {
    if (!beginLoad(name, separator)) return false;
    int error = 0;
    {
        const std::unique_ptr<LineReader> reader = std::move(m_begunLoad);
        LineBlocks lines;
        for (; !reader->isPastEnd(); reader->next()) lines.append(reader->line());
        error = reader->error();
        if (error == 0) *m_lines = std::move(lines);
    }
    if (error != 0) errno = error;
    return error == 0;
}

bool TextFile::beginLoad(const LightweightString<wchar_t>& name, char separator) {
    clear();
    m_begunLoad = LineReader::open(name, separator);
    return m_begunLoad != nullptr;
}

bool TextFile::endLoad() {
    if (!m_begunLoad) return true;
    while (!m_begunLoad->isPastEnd()) m_begunLoad->next();
    const int error = m_begunLoad->error();
    m_begunLoad.reset();
    if (error != 0) errno = error;
    return error == 0;
}

// --- Saving ---

bool TextFile::save(LightweightString<wchar_t> name, eEOLStyle style) const {
    const bool isBegunOtherwise = m_begunSave && !m_begunSave->isFor(name, lineEnd(style));
    if (m_begunLoad || isBegunOtherwise) {
        errno = EINVAL;
        return false;
    }
    if (m_begunSave) return m_begunSave->commit();
    LineWriter writer(name, lineEnd(style));
    writer.append(*m_lines);
    return writer.commit();
}

void TextFile::beginSave(const LightweightString<wchar_t>& name, eEOLStyle style) {
    m_begunLoad.reset();
    m_begunSave = std::make_unique<LineWriter>(name, lineEnd(style));
    m_begunSave->append(*m_lines);
    m_lines->clear();
}
