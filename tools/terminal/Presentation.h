// How much the program says, and in which colours: chosen once, before a command runs.
//
// Thread-safety: present() before any other thread is started; the questions from any thread.
#pragma once

#include <string>
#include <string_view>

struct Presentation {
    bool quiet = false;           ///< results, warnings and errors only
    std::string colour = "auto";  ///< auto, always or never
};

/// For the program's start. "auto" colours what goes to a terminal, unless the environment sets NO_COLOR to
/// any text or TERM to "dumb".
void present(const Presentation& wanted);

bool isQuiet() noexcept;

enum class Colour { bold, red, yellow, cyan };

/// The text in a colour, where standard output or standard error takes colours; otherwise as it is.
std::string colouredOutput(Colour colour, std::string_view text);
std::string colouredError(Colour colour, std::string_view text);
