// A line on the terminal that says what a lengthy operation is at.
//
// Thread-safety: one at a time; begins and ends on one thread.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

/// Shows "reading day1.log [   ====     ] 3 s" on standard error from the second second of its life on, and
/// takes it away at its end. Does nothing unless standard error is a terminal, when the program is to be
/// quiet, and while a user types the file. A thread of its own does the writing, because the library says
/// nothing on its way; the destructor waits for it.
class Progress {
 public:
    /// As in "reading", "day1.log".
    Progress(const std::string& what, const std::string& path);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    /// Writes to standard error, without a progress line in between.
    static void write(std::string_view line);

 private:
    void showUntilEnd();

    std::string m_text;
    bool m_ended = false;
    std::condition_variable m_end;
    std::thread m_thread;
};
