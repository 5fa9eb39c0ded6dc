// Frame rates, and the frames of a day that time codes name at them.
//
// Thread-safety: values; constant operations may run at the same time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

class time_def;

class FrameRate {
 public:
    /// Reads "25", "23.976", "30000/1001", also with "fps" or "p" after it. Nothing for what is no frame
    /// rate: it must be within 0.07 of a whole number from 1 to 100, whose frames the codes count.
    static std::optional<FrameRate> parse(std::string_view text);

    /// As it was written, in frames a second: "29.97".
    const std::string& name() const noexcept { return m_name; }

    /// The frames that a second of time code counts.
    unsigned framesPerSecond() const noexcept { return m_perSecond; }
    std::int64_t framesPerDay(bool dropFrame) const noexcept;

    /// Why a valid time code names no frame at this rate, as in "has frame 30 of a second that has 25"; empty
    /// when it names one.
    std::string objectionTo(const time_def& code) const;

    /// The frame, from 0 at midnight, that a time code without objection names.
    std::int64_t frameOf(const time_def& code) const;

    /// The first frame of a second from midnight, which may lie on a later day.
    std::int64_t frameAtSecond(std::int64_t second, bool dropFrame) const noexcept;

    /// "01:00:00:10", drop frame "01:00:00;10", of a frame from 0 on; a later day begins at 00:00:00:00
    /// again.
    std::string codeOf(std::int64_t frame, bool dropFrame) const;

 private:
    FrameRate(std::string name, unsigned perSecond) : m_name(std::move(name)), m_perSecond(perSecond) {}

    unsigned droppedPerMinute(bool dropFrame) const noexcept;

    std::string m_name;
    unsigned m_perSecond;
};
