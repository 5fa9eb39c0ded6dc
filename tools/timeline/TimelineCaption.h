// What a timeline says beside its bars, the same in every form.
//
// Thread-safety: constant after its making.
#pragma once

#include "tools/timeline/TimelineModel.h"

struct TimelineCaption {
    std::string title;     ///< the log's name
    std::string laneName;  ///< the column that the lanes come from
    FrameRate rate;
    std::string rateOrigin;  ///< where the rate comes from, as in "from the log"
    TimelineDays days;

    /// "12 records", "3 lanes by Reel" ... of the timeline: what there is of it, counted.
    std::vector<std::string> facts(const Timeline& timeline) const;

    /// The lane's name, or what stands for it.
    std::string nameOf(const TimelineLane& lane) const;

    std::string code(std::int64_t frame, bool dropFrame) const { return rate.codeOf(frame, dropFrame); }
};

/// As in "row 7: End time is empty".
std::string describe(const TimelineProblem& problem);
