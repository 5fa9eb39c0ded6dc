#include "tools/timeline/TimelineSvg.h"

#include <algorithm>

#include "tools/terminal/DisplayText.h"
#include "tools/timeline/SvgWriter.h"
#include "tools/timeline/TimelineAxis.h"

namespace {

constexpr const char* style =
    "text{font:12px system-ui,'Segoe UI',Roboto,'Helvetica Neue',Arial,sans-serif;fill:#1f2328}"
    "text.title{font-size:19px;font-weight:600}"
    "text.minor{fill:#57606a}"
    "text.lane,text.name,text.code{font-family:ui-monospace,SFMono-Regular,Menlo,Consolas,'DejaVu Sans Mono',"
    "monospace}"
    "text.lane{font-weight:600}"
    "text.name{font-size:11px;fill:#fff;pointer-events:none}"
    "text.code{font-size:10px;fill:#57606a}"
    ".page{fill:#fff}"
    ".track{fill:#f6f8fa}"
    ".line{stroke:#d0d7de;fill:none}"
    ".tick{stroke:#d8dee4;fill:none}"
    ".bar{fill:#2563a8}"
    ".tagged{fill:#8a5200}"
    ".flag{fill:#8a5200}"
    ".gap{fill:url(#gap)}"
    ".hatch{stroke:#c3cad2;stroke-width:1.2}"
    ".cut{stroke:#57606a;fill:none}"
    ".overlap{fill:url(#overlap)}"
    ".cross{stroke:#e5786d;stroke-width:1.6}"
    ".edge{fill:#ff8f85;pointer-events:none}"
    "@media(prefers-color-scheme:dark){"
    "text{fill:#e6edf3}"
    "text.minor,text.code{fill:#9aa7b4}"
    "text.name{fill:#0b1118}"
    ".page{fill:#0f1318}"
    ".track{fill:#161b22}"
    ".line{stroke:#343c46}"
    ".tick{stroke:#2a313a}"
    ".bar{fill:#6cb0f0}"
    ".tagged,.flag{fill:#e3a83b}"
    ".hatch{stroke:#3d4752}"
    ".cut{stroke:#9aa7b4}"
    ".cross{stroke:#a8453e}"
    ".edge{fill:#b3140c}}";

// All sizes are those of the picture, in which a cell of the fixed-width font is 0.6 of its size.
constexpr double pictureWidth = 1200;
constexpr double margin = 20;
constexpr double laneCell = 7.25;
constexpr double nameCell = 6.65;
constexpr double codeCell = 6.05;
constexpr double textCell = 6.4;  // of the proportional font, on average
constexpr double codeWidth = 11 * codeCell;
constexpr std::size_t mostLabelCells = 28;
constexpr double headerHeight = 92;
constexpr double rulerHeight = 17;
constexpr double levelHeight = 25;
constexpr double barHeight = 18;
constexpr double laneGap = 9;
constexpr double lowestLane = 34;
constexpr double edgeHeight = 3;
constexpr double narrowestBar = 1.5;
constexpr double spaceBetweenBars = 1;
constexpr double noteLine = 18;
constexpr std::size_t mostProblems = 12;

std::string cutToCells(const std::string& text, std::size_t cells) {
    const std::string shown = xmlCharacters(text);
    if (displayWidth(shown) <= cells) return shown;
    return cells < 2 ? "" : std::string(fitting(shown, cells - 1)) + "\xE2\x80\xA6";
}

std::string number(double value) {
    return SvgWriter::Value(value).text();
}

std::size_t cellsIn(double width, double cell) {
    return width > 0 ? static_cast<std::size_t>(width / cell) : 0;
}

/// The seconds between ticks: the first sensible number of them that leaves room for a code at each.
std::int64_t secondsBetweenTicks(double widthOfSecond) {
    constexpr double room = codeWidth + 24;
    for (const std::int64_t seconds :
         {1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 14400}) {
        if (static_cast<double>(seconds) * widthOfSecond >= room) return seconds;
    }
    return std::int64_t(6) * 3600;
}

class Painter {
 public:
    Painter(const Timeline& timeline, const TimelineCaption& caption, LineSink& out)
        : m_timeline(timeline),
          m_caption(caption),
          m_svg(out),
          m_axes(timeline, caption.rate, caption.days),
          m_left(margin + labelWidth() + 16),
          m_right(pictureWidth - margin) {
        m_scale = (m_right - m_left) / static_cast<double>(m_axes.length());
        m_tickSeconds = secondsBetweenTicks(m_scale * caption.rate.framesPerSecond());
    }

    void paint() {
        const double height = pictureHeight();
        m_svg.open("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
                           {"width", pictureWidth},
                           {"height", height},
                           {"viewBox", "0 0 1200 " + number(height)},
                           {"role", "img"},
                           {"aria-labelledby", "title desc"}});
        m_svg.text("title", {{"id", "title"}}, "Timeline of " + m_caption.title);
        m_svg.text("desc", {{"id", "desc"}},
                   facts(", ") + ". Each lane is one " + m_caption.laneName +
                       ", each bar a record from its start to its end.");
        m_svg.text("style", {}, style);
        paintPatterns();
        m_svg.shape("rect", {{"class", "page"}, {"width", pictureWidth}, {"height", height}});
        paintHeader();
        const double bottom =
            forEachLane([&](std::size_t lane, double bars, double end) { paintTrack(lane, bars, end); });
        if (isCommon()) {
            paintRuler(0, headerHeight, bottom);
        } else {
            forEachLane([&](std::size_t lane, double bars, double end) {
                paintRuler(lane, bars - rulerHeight, end);
            });
        }
        forEachLane([&](std::size_t lane, double bars, double end) { paintLane(lane, bars, end); });
        paintProblems(bottom);
        m_svg.close();
    }

 private:
    bool isCommon() const noexcept { return m_caption.days == TimelineDays::common; }

    // --- Sizes ---

    double labelWidth() const {
        double width = 0;
        const auto widen = [&](const std::string& text, double cell) {
            width = std::max(width, static_cast<double>(displayWidth(text)) * cell);
        };
        for (const TimelineLane& lane : m_timeline.lanes) {
            widen(cutToCells(m_caption.nameOf(lane), mostLabelCells), laneCell);
            widen(summaryOf(lane), codeCell);
        }
        return width;
    }

    std::string summaryOf(const TimelineLane& lane) const {
        return counted(lane.bars.size(), "record") + ", " + m_caption.code(lane.recorded(), lane.dropFrame());
    }

    double laneHeight(const TimelineLane& lane) const {
        const double bars = std::max(lane.levels * levelHeight, lowestLane - (isCommon() ? 0 : rulerHeight));
        return (isCommon() ? 0 : rulerHeight) + bars + laneGap;
    }

    /// Calls `work` with each lane and the upper and lower end of its bars. Returns the end of the lanes.
    template <class Work>
    double forEachLane(Work work) const {
        double top = headerHeight + (isCommon() ? rulerHeight : 0);
        for (std::size_t lane = 0; lane < m_timeline.lanes.size(); ++lane) {
            const double end = top + laneHeight(m_timeline.lanes[lane]);
            work(lane, top + (isCommon() ? 0 : rulerHeight), end - laneGap);
            top = end;
        }
        return top;
    }

    double pictureHeight() const {
        const std::size_t problems = m_timeline.problems.size();
        const std::size_t lines = problems == 0 ? 0 : 1 + std::min(problems, mostProblems + 1);
        return forEachLane([](std::size_t, double, double) {}) + margin / 2 +
               static_cast<double>(lines) * noteLine;
    }

    double xOf(std::size_t lane, std::int64_t frame) const {
        return m_left + static_cast<double>(m_axes.of(lane).placeOf(frame)) * m_scale;
    }

    // --- Around the lanes ---

    std::string facts(const char* separator) const {
        std::string text;
        for (const std::string& fact : m_caption.facts(m_timeline)) {
            if (!text.empty()) text += separator;
            text += fact;
        }
        return text;
    }

    void paintPatterns() {
        m_svg.open("defs", {});
        paintPattern("gap", "hatch", "M-1 1l2-2M0 6l6-6M5 7l2-2");
        paintPattern("overlap", "cross", "M-1 5l2 2M0 0l6 6M5-1l2 2");
        m_svg.close();
    }

    void paintPattern(const char* id, const char* shapeClass, const char* path) {
        m_svg.open("pattern", {{"id", id}, {"width", 6}, {"height", 6}, {"patternUnits", "userSpaceOnUse"}});
        m_svg.shape("path", {{"class", shapeClass}, {"d", path}});
        m_svg.close();
    }

    void paintHeader() {
        m_svg.text("text", {{"class", "title"}, {"x", margin}, {"y", 34}}, cutToCells(m_caption.title, 100));
        m_svg.text("text", {{"class", "minor"}, {"x", margin}, {"y", 54}},
                   cutToCells(facts(" \xC2\xB7 "), 170));
        paintLegend(70);
    }

    void paintLegend(double y) {
        double x = margin;
        const auto entry = [&](const char* shapeClass, const char* meaning) {
            m_svg.shape("rect",
                        {{"class", shapeClass}, {"x", x}, {"y", y - 1}, {"width", 18}, {"height", 11}});
            m_svg.text("text", {{"class", "minor"}, {"x", x + 24}, {"y", y + 9}}, meaning);
            x += 24 + static_cast<double>(std::string_view(meaning).size()) * textCell + 18;
        };
        entry("bar", "record");
        if (m_timeline.tagged > 0) {
            paintFlag(x, y - 1, 18);
            entry("bar tagged", "tagged");
        }
        if (m_timeline.overlaps > 0) {
            entry("overlap", "records overlap");
        }
        if (m_timeline.gaps > 0) entry("gap", "gap");
        if (hasShortenedGaps()) {
            paintCut(x + 9, y - 1, y + 10);
            entry("gap", "gap, drawn shorter than it is");
        }
    }

    bool hasShortenedGaps() const {
        for (std::size_t lane = 0; lane < m_timeline.lanes.size(); ++lane) {
            if (m_axes.of(lane).parts().size() > 1) return true;
        }
        return false;
    }

    void paintProblems(double top) {
        const std::size_t count = m_timeline.problems.size();
        if (count == 0) return;
        double y = top + noteLine;
        m_svg.text(
            "text", {{"x", margin}, {"y", y}},
            std::to_string(count) + " of " + counted(count + m_timeline.records, "record") + " not shown:");
        const auto line = [&](const std::string& text) {
            y += noteLine;
            m_svg.text("text", {{"class", "minor"}, {"x", margin + 12}, {"y", y}}, cutToCells(text, 170));
        };
        for (std::size_t i = 0; i < std::min(count, mostProblems); ++i)
            line(describe(m_timeline.problems[i]));
        if (count > mostProblems) line("and " + std::to_string(count - mostProblems) + " more");
    }

    // --- A lane ---

    void paintTrack(std::size_t laneIndex, double top, double bottom) {
        const double end =
            isCommon() ? m_right : xOf(laneIndex, m_timeline.lanes[laneIndex].covered.back().to);
        m_svg.shape("rect", {{"class", "track"},
                             {"x", m_left},
                             {"y", top},
                             {"width", std::max(end - m_left, narrowestBar)},
                             {"height", bottom - top}});
    }

    void paintLane(std::size_t laneIndex, double top, double bottom) {
        const TimelineLane& lane = m_timeline.lanes[laneIndex];
        m_svg.open("g", {});
        paintLabel(lane, top);
        for (std::size_t i = 1; i < lane.covered.size(); ++i) {
            paintGap(laneIndex, {lane.covered[i - 1].to, lane.covered[i].from}, top, bottom);
        }
        for (const TimelineRange& overlap : lane.overlaps) paintOverlap(laneIndex, overlap, top, bottom);
        for (const TimelineBar& bar : lane.bars) paintBar(laneIndex, bar, top);
        m_svg.close();
    }

    void paintLabel(const TimelineLane& lane, double top) {
        const std::string name = m_caption.nameOf(lane);
        const std::string summary = summaryOf(lane);
        m_svg.text("text", {{"class", "lane"}, {"x", margin}, {"y", top + 11}},
                   cutToCells(name, mostLabelCells), name + '\n' + summary);
        m_svg.text("text", {{"class", "minor code"}, {"x", margin}, {"y", top + 25}}, summary);
    }

    // A code stands at the beginning of each part of the axis, and at ticks as far as there is room.
    void paintRuler(std::size_t lane, double top, double bottom) {
        const std::vector<TimelineAxis::Part>& parts = m_axes.of(lane).parts();
        const bool dropFrame = m_timeline.lanes[lane].dropFrame();
        double free = m_left;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const double next = i + 1 < parts.size() ? xOf(lane, parts[i + 1].range.from) : pictureWidth;
            const auto label = [&](std::int64_t frame, double end) {
                const double x = xOf(lane, frame);
                if (x < free || x + codeWidth > end) return;
                m_svg.text("text", {{"class", "code"}, {"x", x}, {"y", top + 12}},
                           m_caption.code(frame, dropFrame));
                free = x + codeWidth + 8;
            };
            label(parts[i].range.from, pictureWidth - 4);
            forEachTick(parts[i].range, dropFrame, [&](std::int64_t frame) {
                const double x = xOf(lane, frame);
                m_svg.shape("path", {{"class", "tick"}, {"d", line(x, top + rulerHeight - 3, bottom)}});
                label(frame, std::min(next - 8, pictureWidth - 4));
            });
        }
    }

    template <class Work>
    void forEachTick(const TimelineRange& range, bool dropFrame, Work work) const {
        const FrameRate& rate = m_caption.rate;
        std::int64_t second = range.from / rate.framesPerSecond() / m_tickSeconds * m_tickSeconds;
        for (std::int64_t frame = 0; (frame = rate.frameAtSecond(second, dropFrame)) <= range.to;
             second += m_tickSeconds) {
            if (frame >= range.from) work(frame);
        }
    }

    static std::string line(double x, double from, double to) {
        return 'M' + number(x) + ' ' + number(from) + 'V' + number(to);
    }

    std::string described(const TimelineRange& range, bool dropFrame) const {
        return m_caption.code(range.from, dropFrame) + " - " + m_caption.code(range.to, dropFrame) + ", " +
               m_caption.code(range.length(), dropFrame);
    }

    void paintGap(std::size_t laneIndex, const TimelineRange& gap, double top, double bottom) {
        const bool dropFrame = m_timeline.lanes[laneIndex].dropFrame();
        const double x = xOf(laneIndex, gap.from);
        const double width = xOf(laneIndex, gap.to) - x;
        m_svg.shape("rect",
                    {{"class", "gap"}, {"x", x}, {"y", top}, {"width", width}, {"height", bottom - top}},
                    "Gap: " + described(gap, dropFrame));
        const double middle = x + width / 2;
        const bool isShortened =
            m_axes.of(laneIndex).placeOf(gap.to) - m_axes.of(laneIndex).placeOf(gap.from) < gap.length();
        if (isShortened && width >= 8) paintCut(middle, top, bottom);
        if (width < codeWidth + 8) return;
        m_svg.shape("rect", {{"class", "page"},
                             {"x", middle - codeWidth / 2 - 4},
                             {"y", top + barHeight / 2 - 4},
                             {"width", codeWidth + 8},
                             {"height", 14}});
        m_svg.text(
            "text",
            {{"class", "code"}, {"x", middle}, {"y", top + barHeight / 2 + 6}, {"text-anchor", "middle"}},
            m_caption.code(gap.length(), dropFrame));
    }

    void paintCut(double x, double top, double bottom) {
        std::string path = 'M' + number(x) + ' ' + number(top);
        bool right = true;
        for (double y = top; y + 3 <= bottom; y += 3, right = !right) path += right ? "l3 3" : "l-3 3";
        m_svg.shape("path", {{"class", "cut"}, {"d", path}});
    }

    void paintOverlap(std::size_t laneIndex, const TimelineRange& overlap, double top, double bottom) {
        const double x = xOf(laneIndex, overlap.from);
        const double width = std::max(xOf(laneIndex, overlap.to) - x, narrowestBar);
        m_svg.shape("rect",
                    {{"class", "overlap"}, {"x", x}, {"y", top}, {"width", width}, {"height", bottom - top}},
                    "Overlap: " + described(overlap, m_timeline.lanes[laneIndex].dropFrame()));
    }

    void paintBar(std::size_t laneIndex, const TimelineBar& bar, double top) {
        const double x = xOf(laneIndex, bar.range.from);
        const double y = top + bar.level * levelHeight + levelHeight - barHeight - 1;
        const double width = std::max(xOf(laneIndex, bar.range.to) - x - spaceBetweenBars, narrowestBar);
        m_svg.shape("rect",
                    {{"class", bar.isTagged ? "bar tagged" : "bar"},
                     {"x", x},
                     {"y", y},
                     {"width", width},
                     {"height", barHeight}},
                    tooltipOf(laneIndex, bar));
        if (bar.isTagged) paintFlag(x, y, width);
        paintOverlapsIn(laneIndex, bar, x + width, y + barHeight);
        const std::size_t cells = cellsIn(width - 8, nameCell);
        constexpr std::size_t fewestCells = 4;
        if (bar.name.empty() || (cells < fewestCells && displayWidth(xmlCharacters(bar.name)) > cells))
            return;
        m_svg.text("text", {{"class", "name"}, {"x", x + 4}, {"y", y + 12.5}}, cutToCells(bar.name, cells));
    }

    // Along the bar's lower edge. Between two overlaps there is one bar at most, so these are few.
    void paintOverlapsIn(std::size_t laneIndex, const TimelineBar& bar, double end, double bottom) {
        const std::vector<TimelineRange>& overlaps = m_timeline.lanes[laneIndex].overlaps;
        auto overlap =
            std::partition_point(overlaps.begin(), overlaps.end(),
                                 [&](const TimelineRange& range) { return range.to <= bar.range.from; });
        for (; overlap != overlaps.end() && overlap->from < bar.range.to; ++overlap) {
            const double from = xOf(laneIndex, std::max(overlap->from, bar.range.from));
            const double to = std::min(xOf(laneIndex, overlap->to), end);
            if (to <= from) continue;
            m_svg.shape("rect", {{"class", "edge"},
                                 {"x", from},
                                 {"y", bottom - edgeHeight},
                                 {"width", to - from},
                                 {"height", edgeHeight}});
        }
    }

    void paintFlag(double x, double y, double width) {
        const double size = std::clamp(width, 3.0, 8.0);
        m_svg.shape("path", {{"class", "flag"},
                             {"d", 'M' + number(x) + ' ' + number(y - 6) + 'h' + number(size) + "l-" +
                                       number(size / 2) + " 5h-" + number(size / 2) + 'z'}});
    }

    std::string tooltipOf(std::size_t laneIndex, const TimelineBar& bar) const {
        const TimelineLane& lane = m_timeline.lanes[laneIndex];
        std::string text = bar.name.empty() ? "(no name)" : bar.name;
        text += '\n' + m_caption.nameOf(lane) + '\n' + described(bar.range, bar.dropFrame);
        text += "\nrow " + std::to_string(bar.row + 1);
        if (bar.isTagged) text += ", tagged";
        if (!bar.notes.empty()) text += '\n' + bar.notes;
        return text;
    }

    const Timeline& m_timeline;
    const TimelineCaption& m_caption;
    SvgWriter m_svg;
    TimelineAxes m_axes;
    double m_left;
    double m_right;
    double m_scale = 1;  // picture per drawn frame
    std::int64_t m_tickSeconds = 1;
};

}  // namespace

void writeTimelineSvg(const Timeline& timeline, const TimelineCaption& caption, LineSink& out) {
    Painter(timeline, caption, out).paint();
}
