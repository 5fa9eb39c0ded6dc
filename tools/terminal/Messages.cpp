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

bool isAboutLogLines(std::string_view message) noexcept {
    for (const std::string_view origin : {"kesta::add_text:", "kesta::read_text:"}) {
        if (message.substr(0, origin.size()) == origin) return true;
    }
    return false;
}

void passOn(const char* message, void*) noexcept {
    try {
        std::string_view text(message);
        while (!text.empty() && text.back() == '\n') text.remove_suffix(1);
        if (!isAboutLogLines(text)) warn(text);
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

void Warnings::add(std::string_view message) {
    ++m_count;
    if (m_showAll || m_count <= shownAtMost) warn(message);
}

void Warnings::summarise(std::string_view howToSeeAll) const {
    if (m_showAll || m_count <= shownAtMost) return;
    warn("and " + std::to_string(m_count - shownAtMost) + " more like these; " + std::string(howToSeeAll));
}
