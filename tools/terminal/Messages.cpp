// How the program speaks on standard error.
#include "tools/terminal/Messages.h"

#include <cstdio>

#include "support/Log.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Presentation.h"
#include "tools/terminal/Progress.h"

namespace {

void say(const std::string& prefix, std::string_view message) {
    const std::string line = prefix + ' ' + harmless(message) + '\n';
    Progress::write(line);
}

int libraryMessagesOff = 0;

void passOn(const char* message, void*) noexcept {
    if (libraryMessagesOff > 0) return;
    try {
        std::string_view text(message);
        while (!text.empty() && text.back() == '\n') text.remove_suffix(1);
        warn(text);
    } catch (...) {
        std::fputs("kesta: warning: a message was lost for want of memory\n", stderr);
    }
}

}  // namespace

void complain(std::string_view message) {
    say(colouredError(Colour::red, "kesta:"), message);
}

void warn(std::string_view message) {
    say("kesta: " + colouredError(Colour::yellow, "warning:"), message);
}

void tidyLibraryMessages() {
    set_log_sink(passOn, nullptr);
}

LibraryMessagesOff::LibraryMessagesOff() noexcept {
    ++libraryMessagesOff;
}

LibraryMessagesOff::~LibraryMessagesOff() {
    --libraryMessagesOff;
}

void Warnings::add(std::string_view message) {
    ++m_count;
    if (m_showAll || m_count <= shownAtMost) warn(message);
}

void Warnings::summarise(std::string_view howToSeeAll) const {
    if (m_showAll || m_count <= shownAtMost) return;
    warn("and " + std::to_string(m_count - shownAtMost) + " more like these; " + std::string(howToSeeAll));
}
