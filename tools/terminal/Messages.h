// What the program says on standard error, each message one line after the program's name.
//
// Thread-safety: one thread at a time.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text from files and from the command line may stand in a message as it is: it is made harmless here.
void complain(std::string_view message);
void warn(std::string_view message);

/// Takes over the library's own messages.
void tidyLibraryMessages();

/// While one lives, the library's messages are left out: for reading logs, of which the program says more
/// itself.
class LibraryMessagesOff {
 public:
    LibraryMessagesOff() noexcept;
    LibraryMessagesOff(const LibraryMessagesOff&) = delete;
    LibraryMessagesOff& operator=(const LibraryMessagesOff&) = delete;
    ~LibraryMessagesOff();
};

/// Warnings of one kind of trouble that may come a million times: the first ones are shown, the others
/// counted.
class Warnings {
 public:
    /// With `showAll`, nothing is left out.
    explicit Warnings(bool showAll = false) noexcept : m_showAll(showAll) {}

    void add(std::string_view message);
    std::size_t count() const noexcept { return m_count; }

    /// Says how many were not shown; `howToSeeAll` follows that.
    void summarise(std::string_view howToSeeAll) const;

 private:
    static constexpr std::size_t shownAtMost = 20;
    bool m_showAll;
    std::size_t m_count = 0;
};
