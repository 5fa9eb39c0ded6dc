#include "tools/timeline/FrameRate.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "support/Ascii.h"
#include "support/time_def.h"

namespace {

struct Clock {
    unsigned hours;
    unsigned minutes;
    unsigned seconds;
    unsigned frames;
};

Clock clockOf(const time_def& code) {
    const LightweightString<char> digits = code.get_database_str();
    const auto pair = [&](std::size_t at) {
        return static_cast<unsigned>((digits.view()[at] - '0') * 10 + (digits.view()[at + 1] - '0'));
    };
    return {pair(0), pair(2), pair(4), pair(6)};
}

/// The number that the text begins with, and the rest of the text.
std::optional<double> takeNumber(std::string_view& text) {
    double number = 0;
    const auto result =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (result.ec != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return number;
}

}  // namespace

std::optional<FrameRate> FrameRate::parse(std::string_view text) {
    text = Ascii::trimmed(text);
    std::string_view rest = text;
    std::optional<double> rate = takeNumber(rest);
    if (!rate) return std::nullopt;
    if (!rest.empty() && rest.front() == '/') {
        rest.remove_prefix(1);
        const std::optional<double> divisor = takeNumber(rest);
        if (!divisor || !(*divisor > 0)) return std::nullopt;
        *rate /= *divisor;
    }
    const std::string_view name = text.substr(0, text.size() - rest.size());
    rest = Ascii::trimmed(rest);
    if (!rest.empty() && !Ascii::equalFolded(rest, "fps") && !Ascii::equalFolded(rest, "p"))
        return std::nullopt;
    constexpr double furthest = 0.07;  // 59.94 counts 60 frames
    if (!(*rate > 1 - furthest && *rate < 100 + furthest)) return std::nullopt;
    if (std::abs(*rate - std::round(*rate)) > furthest) return std::nullopt;
    return FrameRate(std::string(name), static_cast<unsigned>(std::lround(*rate)));
}

// Two numbers in thirty are left out at the beginning of each minute but every tenth, so that the codes keep
// pace with the clock at 29.97 frames a second. Nothing but multiples of that rate has drop frame codes.
unsigned FrameRate::droppedPerMinute(bool dropFrame) const noexcept {
    return dropFrame && m_perSecond % 30 == 0 ? m_perSecond / 15 : 0;
}

std::int64_t FrameRate::framesPerDay(bool dropFrame) const noexcept {
    return frameAtSecond(std::int64_t(24) * 60 * 60, dropFrame);
}

std::string FrameRate::objectionTo(const time_def& code) const {
    const Clock clock = clockOf(code);
    if (clock.hours > 23 || clock.minutes > 59 || clock.seconds > 59) return "is no time of a day";
    if (clock.frames >= m_perSecond) {
        return "has frame " + std::to_string(clock.frames) + " of a second that has " +
               std::to_string(m_perSecond);
    }
    if (!code.dropFrame()) return {};
    const unsigned dropped = droppedPerMinute(true);
    if (dropped == 0) return "is drop frame, which there is not at " + m_name + " frames a second";
    const bool isDropped = clock.minutes % 10 != 0 && clock.seconds == 0 && clock.frames < dropped;
    return isDropped ? "is one of the numbers that drop frame leaves out" : "";
}

std::int64_t FrameRate::frameOf(const time_def& code) const {
    const Clock clock = clockOf(code);
    const std::int64_t minutes = clock.hours * 60 + clock.minutes;
    return (minutes * 60 + clock.seconds) * m_perSecond + clock.frames -
           droppedPerMinute(code.dropFrame()) * (minutes - minutes / 10);
}

std::int64_t FrameRate::frameAtSecond(std::int64_t second, bool dropFrame) const noexcept {
    const std::int64_t minutes = second / 60;
    const std::int64_t dropped = droppedPerMinute(dropFrame);
    // The first second of a minute lacks its first numbers, and its first frame has the next one.
    const bool isShort = second % 60 == 0 && minutes % 10 != 0;
    return second * m_perSecond - dropped * (minutes - minutes / 10) + (isShort ? dropped : 0);
}

std::string FrameRate::codeOf(std::int64_t frame, bool dropFrame) const {
    const std::int64_t dropped = droppedPerMinute(dropFrame);
    const std::int64_t perMinute = std::int64_t(60) * m_perSecond - dropped;
    const std::int64_t perTenMinutes = 10 * perMinute + dropped;
    frame %= framesPerDay(dropFrame);
    const std::int64_t inTen = frame % perTenMinutes;
    const std::int64_t shortMinutes = inTen < dropped ? 0 : (inTen - dropped) / perMinute;
    const std::int64_t number = frame + dropped * (9 * (frame / perTenMinutes) + shortMinutes);
    const std::int64_t seconds = number / m_perSecond;
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d%c%02d", static_cast<int>(seconds / 3600),
                  static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60), dropFrame ? ';' : ':',
                  static_cast<int>(number % m_perSecond));
    return text;
}
