// A timeline as a picture: one SVG file with all it needs, for light and dark surroundings.
//
// Thread-safety: one thread at a time.
#pragma once

#include "tools/terminal/Output.h"
#include "tools/timeline/TimelineCaption.h"

/// Bars stand in their lanes, those that overlap below each other; each has a tooltip that says all. The
/// picture is 1200 wide and as high as it takes. For a timeline that shows a record at least.
void writeTimelineSvg(const Timeline& timeline, const TimelineCaption& caption, LineSink& out);
