#include "tools/terminal/Progress.h"

#include <chrono>
#include <cstdio>
#include <system_error>
#include <unistd.h>

#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Presentation.h"
#include "tools/terminal/StandardStreams.h"

namespace {

constexpr std::size_t mostCells = 45;

// The bar: a mark that goes to and fro, because nobody knows how much is left.
constexpr int barCells = 12;
constexpr int markCells = 4;
constexpr int stepsPerSecond = 5;

/// Guards standard error, whether a progress line stands there, and the end of the progress.
std::mutex terminalMutex;
bool isShown = false;

void put(std::string_view text) noexcept {
    std::fwrite(text.data(), 1, text.size(), stderr);
}

void clear() noexcept {
    if (isShown) put("\r\x1B[K");
    isShown = false;
}

bool isWanted(const std::string& path) noexcept {
    const bool isTyped = isStandardStream(path) && isatty(STDIN_FILENO) != 0;
    return !isQuiet() && !isTyped && isatty(STDERR_FILENO) != 0;
}

}  // namespace

Progress::Progress(const std::string& what, const std::string& path) {
    if (!isWanted(path)) return;
    m_text = fitting(what + ' ' + harmless(shownName(path)), mostCells);
    try {
        m_thread = std::thread([this] { showUntilEnd(); });
    } catch (const std::system_error&) {
        // Work goes on without being watched.
    }
}

Progress::~Progress() {
    if (!m_thread.joinable()) return;
    {
        const std::lock_guard lock(terminalMutex);
        m_ended = true;
    }
    m_end.notify_one();
    m_thread.join();
    clear();
}

void Progress::showUntilEnd() {
    std::unique_lock lock(terminalMutex);
    const auto start = std::chrono::steady_clock::now();
    for (int step = stepsPerSecond;; ++step) {
        const auto due = start + std::chrono::milliseconds(step * 1000 / stepsPerSecond);
        if (m_end.wait_until(lock, due, [this] { return m_ended; })) return;
        constexpr int way = barCells - markCells;
        const int moved = (step - stepsPerSecond) % (2 * way);
        const int before = moved <= way ? moved : 2 * way - moved;
        // Nothing may be thrown on this thread, so no text is made that needs memory.
        std::fprintf(stderr, "\r\x1B[K%s [%*s%.*s%*s] %d s", m_text.c_str(), before, "", markCells,
                     "====", way - before, "", step / stepsPerSecond);
        isShown = true;
    }
}

void Progress::write(std::string_view line) {
    const std::lock_guard lock(terminalMutex);
    clear();
    put(line);
}
