#include "tools/timeline/TimelineAxis.h"

#include <algorithm>
#include <limits>

namespace {

/// How long a gap is drawn at most.
std::int64_t longestGap(const std::vector<TimelineRange>& covered, std::int64_t shortest) {
    constexpr std::int64_t anyLength = std::numeric_limits<std::int64_t>::max();
    std::int64_t recorded = covered.back().length();
    std::int64_t left = 0;
    std::vector<std::int64_t> gaps;
    for (std::size_t i = 1; i < covered.size(); ++i) {
        recorded += covered[i - 1].length();
        gaps.push_back(covered[i].from - covered[i - 1].to);
        left += gaps.back();
    }
    recorded = std::max(recorded, shortest);
    if (left <= recorded) return anyLength;

    // Together they get as much as the ranges, the shorter ones their full length first.
    std::sort(gaps.begin(), gaps.end());
    left = recorded;
    auto count = static_cast<std::int64_t>(gaps.size());
    for (const std::int64_t gap : gaps) {
        if (gap * count > left) break;
        left -= gap;
        --count;
    }
    return std::clamp<std::int64_t>(left / std::max<std::int64_t>(count, 1), 1,
                                    std::max<std::int64_t>(recorded / 8, 1));
}

std::vector<TimelineRange> coveredByAny(const Timeline& timeline) {
    std::vector<TimelineRange> all;
    for (const TimelineLane& lane : timeline.lanes) {
        all.insert(all.end(), lane.covered.begin(), lane.covered.end());
    }
    std::sort(all.begin(), all.end(),
              [](const TimelineRange& a, const TimelineRange& b) { return a.from < b.from; });
    std::vector<TimelineRange> joined;
    for (const TimelineRange& range : all) addRange(joined, range);
    return joined;
}

}  // namespace

TimelineAxis::TimelineAxis(const std::vector<TimelineRange>& covered, std::int64_t shortest) {
    const std::int64_t longest = longestGap(covered, shortest);
    for (const TimelineRange& range : covered) {
        if (m_parts.empty()) {
            m_parts.push_back({range, 0});
        } else if (range.from - m_parts.back().range.to > longest) {
            m_parts.push_back({range, length() + longest});
        } else {
            m_parts.back().range.to = range.to;
        }
    }
}

std::int64_t TimelineAxis::length() const noexcept {
    return m_parts.back().place + m_parts.back().range.length();
}

std::int64_t TimelineAxis::placeOf(std::int64_t frame) const noexcept {
    const auto next = std::upper_bound(m_parts.begin(), m_parts.end(), frame,
                                       [](std::int64_t f, const Part& part) { return f < part.range.from; });
    if (next == m_parts.begin()) return 0;
    const Part& part = *(next - 1);
    const std::int64_t end = part.place + part.range.length();
    if (frame <= part.range.to) return part.place + (frame - part.range.from);
    return next == m_parts.end() ? end : end + (next->place - end) / 2;
}

TimelineAxes::TimelineAxes(const Timeline& timeline, const FrameRate& rate, TimelineDays days)
    : m_isCommon(days == TimelineDays::common) {
    const std::int64_t second = rate.framesPerSecond();
    if (m_isCommon) {
        m_axes.emplace_back(coveredByAny(timeline), second);
    } else {
        for (const TimelineLane& lane : timeline.lanes) m_axes.emplace_back(lane.covered, second);
    }
}

std::int64_t TimelineAxes::length() const noexcept {
    std::int64_t longest = 1;
    for (const TimelineAxis& axis : m_axes) longest = std::max(longest, axis.length());
    return longest;
}
