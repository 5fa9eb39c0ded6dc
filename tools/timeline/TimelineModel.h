// What a timeline shows: the records of a log as bars in lanes, and where they overlap or leave gaps.
//
// All places are frames from the midnight before the lane begins; a range is [from, to). Nothing here depends
// on how the timeline is drawn.
//
// Thread-safety: makeTimeline by one thread at a time; what it returns is plain data.
#pragma once

#include <string>
#include <vector>

#include "record/kesta.h"
#include "tools/timeline/FrameRate.h"

struct TimelineRange {
    std::int64_t from = 0;
    std::int64_t to = 0;  ///< not before `from`

    std::int64_t length() const noexcept { return to - from; }
};

/// Adds a range that begins no earlier than those that are there; ranges that meet become one.
void addRange(std::vector<TimelineRange>& ranges, const TimelineRange& range);

struct TimelineBar {
    TimelineRange range;
    bool dropFrame = false;
    bool isTagged = false;
    unsigned row = 0;    ///< in the log, from 0
    unsigned level = 0;  ///< bars of one level do not overlap
    std::string name;    ///< empty when the record has none
    std::string notes;
};

struct TimelineLane {
    std::string name;               ///< empty for the records that name no lane
    std::vector<TimelineBar> bars;  ///< by their beginnings; at least one
    unsigned levels = 0;
    std::vector<TimelineRange> covered;   ///< where there is a record, in order, with gaps between
    std::vector<TimelineRange> overlaps;  ///< where there is more than one, in order

    bool dropFrame() const noexcept { return bars.front().dropFrame; }
    std::int64_t recorded() const noexcept;  ///< the frames that are covered
};

/// A record that cannot be shown.
struct TimelineProblem {
    unsigned row;        ///< in the log, from 0
    std::string reason;  ///< as in "End time is empty"
};

struct Timeline {
    std::vector<TimelineLane> lanes;  ///< in dictionary order, the one without a name last
    std::vector<TimelineProblem> problems;
    std::size_t records = 0;  ///< that are shown
    std::size_t tagged = 0;   ///< of those
    std::size_t overlaps = 0;
    std::size_t gaps = 0;
};

/// The columns of the log, by number, that say where its records belong.
struct TimelineColumns {
    unsigned lane;
    unsigned start;
    unsigned end;
};

/// Which records share the day that their time codes count: those of one lane, or all.
enum class TimelineDays { eachLane, common };

/// A record whose end is before its start passes midnight when that makes it at most six hours long; what its
/// lane, or with `common` the log, has of the day after it then comes later.
Timeline makeTimeline(kesta& log, const TimelineColumns& columns, const FrameRate& rate, TimelineDays days);
