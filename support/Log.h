// Diagnostics: printf-style lines to the application's log.
//
// Thread-safety: may be called from any thread; each message reaches the sink in one piece.
#pragma once

#include "support/Export.h"

/// Warnings and notes.
KESTA_API void dorp_printf(const char* format, ...) noexcept __attribute__((format(printf, 1, 2)));

/// As dorp_printf; the application also shows these to its user.
KESTA_API void LogBoth(const char* format, ...) noexcept __attribute__((format(printf, 1, 2)));

/// Reports an internal error and returns; the caller carries on.
KESTA_API void kes_splat(const char* message) noexcept;

/// Takes each message, formatted, ending as the caller ended it. Must not throw.
using LogSink = void (*)(const char* message, void* context);

/// Sends all messages to `sink`, which gets `context` with each; null brings back standard error. For
/// start-up and tests, while no other thread logs.
KESTA_API void set_log_sink(LogSink sink, void* context) noexcept;
