#include "tools/timeline/TimelineText.h"

#include <algorithm>

#include "tools/terminal/DisplayText.h"
#include "tools/timeline/TimelineAxis.h"

namespace {

constexpr std::size_t codeCells = 11;

/// What bars and gaps are drawn with, a cell each.
struct Glyphs {
    const char* record;
    const char* tagged;
    const char* overlap;
    const char* gap;
    const char* shortened;
    const char* several;
    const char* cut;  ///< after a text that goes on
};
constexpr Glyphs plainGlyphs = {"=", "#", "x", ".", "~", "+", "~"};
constexpr Glyphs unicodeGlyphs = {"\u2501", "\u2588", "\u2592", "\u00B7", "\u223F", "+", "\u2026"};

bool isContinued(char c) noexcept {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

class TextPainter {
 public:
    TextPainter(const Timeline& timeline, const TimelineCaption& caption, const TimelineTextForm& form,
                LineSink& out)
        : m_timeline(timeline),
          m_caption(caption),
          m_form(form),
          m_glyphs(form.asciiOnly ? plainGlyphs : unicodeGlyphs),
          m_out(out),
          m_axes(timeline, caption.rate, caption.days),
          m_length(m_axes.length()) {
        for (const TimelineLane& lane : timeline.lanes) {
            m_labelCells = std::max(m_labelCells, displayWidth(shown(caption.nameOf(lane))));
        }
        m_labelCells = std::min(m_labelCells, form.width / 5);
        m_cells = form.width - m_labelCells - 2 * codeCells - 3;
    }

    void paint() {
        paintHeader();
        for (std::size_t lane = 0; lane < m_timeline.lanes.size(); ++lane) paintLane(lane);
        paintLegend();
    }

 private:
    /// One line of bars: what each cell holds. A wide character leaves the cell after it empty.
    struct Cell {
        std::string glyph = " ";
        const TimelineBar* bar = nullptr;
    };
    using Cells = std::vector<Cell>;
    struct Span {
        std::size_t from;
        std::size_t to;
    };

    std::string shown(std::string_view text) const {
        const std::string safe = harmless(text);
        if (!m_form.asciiOnly) return safe;
        std::string plain;
        for (const char c : safe) {
            if (!isContinued(c)) plain += c >= 0 ? c : '?';
        }
        return plain;
    }

    std::string cutTo(const std::string& text, std::size_t cells) const {
        if (displayWidth(text) <= cells) return text;
        return cells == 0 ? "" : std::string(fitting(text, cells - 1)) + m_glyphs.cut;
    }

    static std::string padded(std::string text, std::size_t cells) {
        text.append(cells - std::min(cells, displayWidth(text)), ' ');
        return text;
    }

    /// A frame's cell boundary; frames within the same cell share the one before it.
    std::size_t boundaryOf(std::size_t lane, std::int64_t frame) const {
        const std::int64_t place = m_axes.of(lane).placeOf(frame);
        return static_cast<std::size_t>(place * static_cast<std::int64_t>(m_cells) / m_length);
    }

    /// At least one cell.
    Span spanOf(std::size_t lane, const TimelineRange& range) const {
        const std::size_t from = std::min(boundaryOf(lane, range.from), m_cells - 1);
        return {from, std::max(boundaryOf(lane, range.to), from + 1)};
    }

    void paintHeader() {
        std::string line = shown(m_caption.title) + ": ";
        for (const std::string& fact : m_caption.facts(m_timeline)) {
            if (line.back() != ' ') line += ", ";
            line += shown(fact);
        }
        m_out.line(line);
        const std::int64_t frames = std::max<std::int64_t>(m_length / static_cast<std::int64_t>(m_cells), 1);
        m_out.line("one character is " + m_caption.code(frames, false));
        m_out.line("");
    }

    void paintLane(std::size_t number) {
        const TimelineLane& lane = m_timeline.lanes[number];
        markOverlaps(number);
        std::string front = padded(cutTo(shown(m_caption.nameOf(lane)), m_labelCells), m_labelCells) + ' ' +
                            m_caption.code(lane.covered.front().from, lane.dropFrame()) + ' ';
        std::string after = m_caption.code(lane.covered.back().to, lane.dropFrame());
        for (const std::vector<const TimelineBar*>& level : levelsOf(lane)) {
            Cells cells(m_cells);
            if (!after.empty()) paintGaps(number, cells);
            for (const TimelineBar* const bar : level) fill(number, *bar, cells);
            for (const TimelineBar* const bar : level) label(number, *bar, cells);
            std::string line = front;
            for (const Cell& cell : cells) line += cell.glyph;
            (line += ' ') += after;
            line.erase(line.find_last_not_of(' ') + 1);
            m_out.line(line);
            front.assign(displayWidth(front), ' ');
            after.clear();
        }
    }

    static std::vector<std::vector<const TimelineBar*>> levelsOf(const TimelineLane& lane) {
        std::vector<std::vector<const TimelineBar*>> levels(lane.levels);
        for (const TimelineBar& bar : lane.bars) levels[bar.level].push_back(&bar);
        return levels;
    }

    void markOverlaps(std::size_t number) {
        m_overlaps.assign(m_cells, false);
        for (const TimelineRange& overlap : m_timeline.lanes[number].overlaps) {
            const Span span = spanOf(number, overlap);
            for (std::size_t i = span.from; i < span.to; ++i) m_overlaps[i] = true;
        }
    }

    void paintGaps(std::size_t number, Cells& cells) const {
        const std::vector<TimelineRange>& covered = m_timeline.lanes[number].covered;
        for (std::size_t i = 1; i < covered.size(); ++i) {
            paintGap(number, {covered[i - 1].to, covered[i].from}, cells);
        }
    }

    void paintGap(std::size_t number, const TimelineRange& gap, Cells& cells) const {
        const TimelineAxis& axis = m_axes.of(number);
        const bool isShortened = axis.placeOf(gap.to) - axis.placeOf(gap.from) < gap.length();
        const Span span{boundaryOf(number, gap.from), boundaryOf(number, gap.to)};
        for (std::size_t i = span.from; i < span.to; ++i) {
            cells[i].glyph = isShortened ? m_glyphs.shortened : m_glyphs.gap;
        }
        if (span.to - span.from < codeCells + 2) return;
        const std::string length = m_caption.code(gap.length(), m_timeline.lanes[number].dropFrame());
        const std::size_t at = span.from + (span.to - span.from - codeCells) / 2;
        for (std::size_t i = 0; i < codeCells; ++i) cells[at + i].glyph = length[i];
    }

    void fill(std::size_t number, const TimelineBar& bar, Cells& cells) {
        const Span span = spanOf(number, bar.range);
        m_hasSeveral = m_hasSeveral || cells[span.from].bar;
        const char* const inside = bar.isTagged ? m_glyphs.tagged : m_glyphs.record;
        for (std::size_t i = span.from; i < span.to; ++i) {
            cells[i].glyph = cells[i].bar ? m_glyphs.several : m_overlaps[i] ? m_glyphs.overlap : inside;
            cells[i].bar = &bar;
        }
        if (span.to - span.from < 2) return;
        cells[span.from].glyph = '[';
        cells[span.to - 1].glyph = ']';
    }

    // After the opening bracket, when there is room for the whole name; a tagged one begins with a star.
    void label(std::size_t number, const TimelineBar& bar, Cells& cells) const {
        const Span span = spanOf(number, bar.range);
        if (span.to - span.from < 3 || cells[span.from].bar != &bar) return;
        std::size_t at = span.from + 1;
        const std::size_t end = span.to - 1;
        if (bar.isTagged) cells[at++].glyph = '*';
        const std::string name = shown(bar.name);
        const std::size_t width = displayWidth(name);
        if (name.empty() || width > end - at) return;
        cells[at].glyph = name;
        for (std::size_t i = at + 1; i < at + width; ++i) cells[i].glyph.clear();
    }

    void paintLegend() {
        std::string line = std::string("[") + m_glyphs.record + "] record";
        if (m_timeline.tagged > 0) line += std::string("  [*") + m_glyphs.tagged + "] tagged";
        if (m_timeline.overlaps > 0) line += std::string("  ") + m_glyphs.overlap + " overlap";
        if (m_timeline.gaps > 0) {
            line += std::string("  ") + m_glyphs.gap + " gap  " + m_glyphs.shortened + " long gap, shortened";
        }
        if (m_hasSeveral) line += std::string("  ") + m_glyphs.several + " several records";
        m_out.line("");
        m_out.line(line);
    }

    const Timeline& m_timeline;
    const TimelineCaption& m_caption;
    const TimelineTextForm& m_form;
    const Glyphs& m_glyphs;
    LineSink& m_out;
    TimelineAxes m_axes;
    std::int64_t m_length;
    std::size_t m_labelCells = 0;
    std::size_t m_cells;
    bool m_hasSeveral = false;     // in some cell
    std::vector<bool> m_overlaps;  // in which cells of the lane
};

}  // namespace

void writeTimelineText(const Timeline& timeline, const TimelineCaption& caption, const TimelineTextForm& form,
                       LineSink& out) {
    TextPainter(timeline, caption, form, out).paint();
}
