// The axis of a timeline: frames to places, true to scale but for long gaps.
//
// Thread-safety: constant after its making.
#pragma once

#include <vector>

#include "tools/timeline/TimelineModel.h"

class TimelineAxis {
 public:
    /// A part that is true to scale. Between two of them lies a gap that is drawn shorter than it is.
    struct Part {
        TimelineRange range;
        std::int64_t place;  ///< of its beginning, in drawn frames
    };

    /// For ranges in order, at least one, with gaps between. Where the gaps together are longer than the
    /// ranges, the long ones are drawn as short as it takes. `shortest` frames count as a range's worth at
    /// least.
    TimelineAxis(const std::vector<TimelineRange>& covered, std::int64_t shortest);

    /// In drawn frames.
    std::int64_t length() const noexcept;

    /// The place of a frame, from 0 to length(); frames in a shortened gap lie in its middle.
    std::int64_t placeOf(std::int64_t frame) const noexcept;

    const std::vector<Part>& parts() const noexcept { return m_parts; }

 private:
    std::vector<Part> m_parts;
};

/// One axis for each lane, or with `common` one for all.
class TimelineAxes {
 public:
    /// For a timeline that shows a record at least.
    TimelineAxes(const Timeline& timeline, const FrameRate& rate, TimelineDays days);

    const TimelineAxis& of(std::size_t lane) const noexcept { return m_axes[m_isCommon ? 0 : lane]; }

    /// Drawn frames of the longest axis; at least 1.
    std::int64_t length() const noexcept;

 private:
    bool m_isCommon;
    std::vector<TimelineAxis> m_axes;
};
