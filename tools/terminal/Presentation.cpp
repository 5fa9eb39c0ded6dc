#include "tools/terminal/Presentation.h"

#include <cstdlib>
#include <unistd.h>

namespace {

struct State {
    bool quiet = false;
    bool coloursOutput = false;
    bool coloursError = false;
};

State& state() noexcept {
    static State chosen;
    return chosen;
}

bool environmentAllowsColour() noexcept {
    const char* const noColour = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    return (!noColour || !*noColour) && terminal && std::string_view(terminal) != "dumb";
}

const char* startOf(Colour colour) noexcept {
    switch (colour) {
        case Colour::bold:
            return "\x1B[1m";
        case Colour::red:
            return "\x1B[1;31m";
        case Colour::yellow:
            return "\x1B[33m";
        case Colour::cyan:
            break;
    }
    return "\x1B[36m";
}

std::string coloured(bool wanted, Colour colour, std::string_view text) {
    if (!wanted) return std::string(text);
    return std::string(startOf(colour)).append(text).append("\x1B[0m");
}

}  // namespace

void present(const Presentation& wanted) {
    const bool always = wanted.colour == "always";
    const bool automatic = wanted.colour == "auto" && environmentAllowsColour();
    state().quiet = wanted.quiet;
    state().coloursOutput = always || (automatic && isatty(STDOUT_FILENO) != 0);
    state().coloursError = always || (automatic && isatty(STDERR_FILENO) != 0);
}

bool isQuiet() noexcept {
    return state().quiet;
}

std::string colouredOutput(Colour colour, std::string_view text) {
    return coloured(state().coloursOutput, colour, text);
}

std::string colouredError(Colour colour, std::string_view text) {
    return coloured(state().coloursError, colour, text);
}
