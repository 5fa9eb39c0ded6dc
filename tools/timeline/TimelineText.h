// A timeline as lines of characters, for a terminal.
//
// Thread-safety: one thread at a time.
#pragma once

#include "tools/terminal/Output.h"
#include "tools/timeline/TimelineCaption.h"

struct TimelineTextForm {
    std::size_t width;  ///< of a line, in character cells; at least narrowest
    bool asciiOnly;

    static constexpr std::size_t narrowest = 40;
};

/// A line for each level of each lane: the lane's name, its first time code, its bars, its last time code.
/// Names stand in bars that have room for them; control characters are shown harmlessly. For a timeline that
/// shows a record at least.
void writeTimelineText(const Timeline& timeline, const TimelineCaption& caption, const TimelineTextForm& form,
                       LineSink& out);
