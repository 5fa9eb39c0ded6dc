// LifeSupport: announces a long operation to the application's watchdog for as long as it lives.
#pragma once

#include "support/SystemWatchdog.h"

class LifeSupport {
 public:
    LifeSupport() noexcept { SystemWatchdog::beginLifeSupport(); }
    LifeSupport(const LifeSupport&) = delete;
    LifeSupport& operator=(const LifeSupport&) = delete;
    ~LifeSupport() { SystemWatchdog::endLifeSupport(); }
};
