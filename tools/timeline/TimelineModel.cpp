#include "tools/timeline/TimelineModel.h"

#include <algorithm>
#include <functional>
#include <queue>
#include <tuple>
#include <unordered_map>

#include "support/Ascii.h"
#include "support/StringFunctions.h"
#include "support/time_def.h"
#include "tools/logs/LogView.h"

namespace {

constexpr std::int64_t longestPastMidnight = 6;  // hours

/// Finds where records begin and end, or why that cannot be said.
class RangeReader {
 public:
    RangeReader(const kesta& log, const TimelineColumns& columns, const FrameRate& rate)
        : m_rate(rate),
          m_start{columns.start, log.get_fieldname(columns.start)},
          m_end{columns.end, log.get_fieldname(columns.end)} {}

    /// Returns the objection, empty when the bar has its range now.
    std::string read(const dbrecord& record, TimelineBar& bar) const {
        const time_def start = codeIn(record, m_start);
        const time_def end = codeIn(record, m_end);
        for (const auto& [column, code] : {std::tie(m_start, start), std::tie(m_end, end)}) {
            std::string objection = objectionTo(code);
            if (!objection.empty()) return column.name + ' ' + objection;
        }
        if (start.dropFrame() != end.dropFrame())
            return "one of its time codes is drop frame, the other is not";
        bar.dropFrame = start.dropFrame();
        bar.range = {m_rate.frameOf(start), m_rate.frameOf(end)};
        if (bar.range.length() >= 0) return {};
        bar.range.to += m_rate.framesPerDay(bar.dropFrame);
        const std::int64_t longest = m_rate.frameAtSecond(longestPastMidnight * 60 * 60, bar.dropFrame);
        if (bar.range.length() <= longest) return {};
        return m_end.name + ' ' + shown(end) + " is before " + m_start.name + ' ' + shown(start);
    }

 private:
    struct Column {
        unsigned number;
        std::string name;
    };

    static time_def codeIn(const dbrecord& record, const Column& column) {
        return {record.getField(static_cast<unsigned short>(column.number)).c_str(), eTimecodeLabel};
    }

    static std::string shown(const time_def& code) { return std::string(code.get_punctuated_str().view()); }

    std::string objectionTo(const time_def& code) const {
        const std::string text = shown(code);
        if (Ascii::trimmed(text).empty()) return "is empty";
        if (!code.valid()) return '"' + text + "\" is no time code";
        const std::string objection = m_rate.objectionTo(code);
        return objection.empty() ? "" : text + ' ' + objection;
    }

    const FrameRate& m_rate;
    Column m_start;
    Column m_end;
};

class LaneList {
 public:
    TimelineLane& named(std::string_view name) {
        const auto place = m_places.emplace(name, m_lanes.size());
        if (place.second) m_lanes.emplace_back().name = name;
        return m_lanes[place.first->second];
    }

    std::vector<TimelineLane> sorted() && {
        std::sort(m_lanes.begin(), m_lanes.end(), [](const TimelineLane& a, const TimelineLane& b) {
            if (a.name.empty() != b.name.empty()) return b.name.empty();
            return strxcmp(a.name.c_str(), b.name.c_str()) < 0;
        });
        return std::move(m_lanes);
    }

 private:
    std::vector<TimelineLane> m_lanes;
    std::unordered_map<std::string, std::size_t> m_places;
};

using Bars = std::vector<TimelineBar*>;

bool isEarlier(const TimelineBar& a, const TimelineBar& b) noexcept {
    if (a.range.from != b.range.from) return a.range.from < b.range.from;
    return a.range.to != b.range.to ? a.range.to > b.range.to : a.row < b.row;
}

/// On the round of a day, where the bars begin again after their longest pause.
std::int64_t endOfLongestPause(const Bars& bars, std::int64_t day) {
    std::int64_t reached = 0;
    for (const TimelineBar* const bar : bars) reached = std::max(reached, bar->range.to - day);
    std::int64_t longest = 0;
    std::int64_t end = 0;
    for (const TimelineBar* const bar : bars) {
        if (bar->range.from - reached > longest) {
            longest = bar->range.from - reached;
            end = bar->range.from;
        }
        reached = std::max(reached, bar->range.to);
    }
    return end;
}

// Only a bar that reaches midnight says that the early hours belong to the day after.
void moveNextDay(Bars bars, const FrameRate& rate) {
    if (bars.empty()) return;
    const std::int64_t day = rate.framesPerDay(bars.front()->dropFrame);
    const auto reachesMidnight = [&](const TimelineBar* bar) { return bar->range.to >= day; };
    if (std::none_of(bars.begin(), bars.end(), reachesMidnight)) return;
    std::sort(bars.begin(), bars.end(),
              [](const TimelineBar* a, const TimelineBar* b) { return isEarlier(*a, *b); });
    const std::int64_t begin = endOfLongestPause(bars, day);
    for (TimelineBar* const bar : bars) {
        if (bar->range.from >= begin) continue;
        bar->range.from += day;
        bar->range.to += day;
    }
}

void moveNextDays(std::vector<TimelineLane>& lanes, const FrameRate& rate, TimelineDays days) {
    Bars bars;
    for (TimelineLane& lane : lanes) {
        for (TimelineBar& bar : lane.bars) bars.push_back(&bar);
        if (days == TimelineDays::common) continue;
        moveNextDay(std::move(bars), rate);
        bars.clear();
    }
    moveNextDay(std::move(bars), rate);
}

/// Each bar gets the lowest level that is free where it begins.
void stack(TimelineLane& lane) {
    using Busy = std::pair<std::int64_t, unsigned>;  // until when, which level
    std::priority_queue<Busy, std::vector<Busy>, std::greater<>> busy;
    std::priority_queue<unsigned, std::vector<unsigned>, std::greater<>> free;
    for (TimelineBar& bar : lane.bars) {
        for (; !busy.empty() && busy.top().first <= bar.range.from; busy.pop()) free.push(busy.top().second);
        if (free.empty()) free.push(lane.levels++);
        bar.level = free.top();
        free.pop();
        busy.emplace(bar.range.to, bar.level);
    }
}

void findStretches(TimelineLane& lane) {
    for (const TimelineBar& bar : lane.bars) {
        const std::int64_t reached = lane.covered.empty() ? bar.range.from : lane.covered.back().to;
        if (bar.range.from < reached && bar.range.length() > 0) {
            addRange(lane.overlaps, {bar.range.from, std::min(bar.range.to, reached)});
        }
        addRange(lane.covered, bar.range);
    }
}

void arrange(TimelineLane& lane) {
    std::sort(lane.bars.begin(), lane.bars.end(), isEarlier);
    stack(lane);
    findStretches(lane);
}

}  // namespace

void addRange(std::vector<TimelineRange>& ranges, const TimelineRange& range) {
    if (ranges.empty() || range.from > ranges.back().to) {
        ranges.push_back(range);
    } else {
        ranges.back().to = std::max(ranges.back().to, range.to);
    }
}

std::int64_t TimelineLane::recorded() const noexcept {
    std::int64_t frames = 0;
    for (const TimelineRange& range : covered) frames += range.length();
    return frames;
}

Timeline makeTimeline(kesta& log, const TimelineColumns& columns, const FrameRate& rate, TimelineDays days) {
    Timeline timeline;
    LaneList lanes;
    const RangeReader reader(log, columns, rate);
    const unsigned name = log.get_fieldnum("Name");
    const unsigned notes = log.get_fieldnum("Notes");
    const KSTView view = viewOf(log);  // of all records, so its rows are the log's
    forEachRow(view, [&](unsigned row, const dbrecord& record) {
        TimelineBar bar;
        std::string objection = reader.read(record, bar);
        if (!objection.empty()) {
            timeline.problems.push_back({row, std::move(objection)});
            return;
        }
        bar.row = row;
        bar.isTagged = view->tag(static_cast<int>(row)) != 0;
        bar.name = valueIn(record, name);
        bar.notes = valueIn(record, notes);
        ++timeline.records;
        timeline.tagged += bar.isTagged;
        lanes.named(Ascii::trimmed(valueIn(record, columns.lane))).bars.push_back(std::move(bar));
    });
    timeline.lanes = std::move(lanes).sorted();
    moveNextDays(timeline.lanes, rate, days);
    for (TimelineLane& lane : timeline.lanes) {
        arrange(lane);
        timeline.overlaps += lane.overlaps.size();
        timeline.gaps += lane.covered.size() - 1;
    }
    return timeline;
}
