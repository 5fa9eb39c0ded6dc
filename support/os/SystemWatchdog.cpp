// SystemWatchdog: whether the process is in a long operation.
#include "support/SystemWatchdog.h"

namespace {

thread_local int announcements = 0;

}  // namespace

void SystemWatchdog::beginLifeSupport() noexcept {
    ++announcements;
}

void SystemWatchdog::endLifeSupport() noexcept {
    if (announcements > 0) --announcements;
}

int SystemWatchdog::openAnnouncements() noexcept {
    return announcements;
}
