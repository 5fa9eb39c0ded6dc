// Announces long operations to the application's watchdog.
#pragma once

#include "support/Export.h"

/// Between the two calls the watchdog must not take the calling thread for hung. Calls come in matched pairs
/// and nest.
class KESTA_API SystemWatchdog {
 public:
    static void beginLifeSupport() noexcept;
    static void endLifeSupport() noexcept;

    /// How many announcements of the calling thread are open.
    static int openAnnouncements() noexcept;
};
