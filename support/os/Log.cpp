// Messages: formatting them, and where they go.
#include "support/Log.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <mutex>
#include <new>

namespace {

void writeToStandardError(const char* message, void* /*context*/) {
    std::fputs(message, stderr);
}

struct Destination {
    LogSink sink;
    void* context;
};

std::mutex destinationLock;
Destination destination{writeToStandardError, nullptr};

// The sink runs without the lock, so it may log itself.
void deliver(const char* message) noexcept {
    Destination current{};
    {
        const std::lock_guard<std::mutex> guard(destinationLock);
        current = destination;
    }
    current.sink(message, current.context);
}

// Ordinary messages fit the stack, so what is logged because memory has run out still arrives. A longer one
// is cut when there is no memory for it.
void deliverFormatted(const char* format, std::va_list arguments) noexcept {
    if (!format) return;
    char brief[1024];
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(brief, sizeof brief, format, arguments);
    if (length < 0) {
        deliver(format);  // an argument that cannot be printed
    } else if (static_cast<std::size_t>(length) < sizeof brief) {
        deliver(brief);
    } else {
        const std::size_t size = static_cast<std::size_t>(length) + 1;
        const std::unique_ptr<char[]> whole(new (std::nothrow) char[size]);
        if (whole) std::vsnprintf(whole.get(), size, format, again);
        deliver(whole ? whole.get() : brief);
    }
    va_end(again);
}

}  // namespace

void dorp_printf(const char* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    deliverFormatted(format, arguments);
    va_end(arguments);
}

void LogBoth(const char* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    deliverFormatted(format, arguments);
    va_end(arguments);
}

void kes_splat(const char* message) noexcept {
    if (message) deliver(message);
}

void set_log_sink(LogSink sink, void* context) noexcept {
    const std::lock_guard<std::mutex> guard(destinationLock);
    destination = sink ? Destination{sink, context} : Destination{writeToStandardError, nullptr};
}
