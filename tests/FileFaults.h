// Makes file operations fail: while a plan is at work, the functions of the C library below count themselves,
// and the one that the plan names fails, falls short, or kills the process instead.
//
// The functions stand in for those of the C library throughout the program, its shared libraries included.
// Include this in one source of a program, or of a library that is loaded before the others.
//
// Thread-safety: one thread at a time while a plan is at work.
#pragma once

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <string>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace FileFaults {

enum class Kind { none, error, shortWrite, kill };

/// What happens to the `at`-th operation, counted from 1; of short writes only writes are counted.
struct Plan {
    Kind kind = Kind::none;
    int error = 0;  // for Kind::error
    unsigned at = 0;
};

struct State {
    Plan plan;
    unsigned operations = 0;
    const char* struck = nullptr;  // the operation that the plan hit
    void (*onStrike)() = nullptr;
};

inline State state;

/// Puts a plan to work until it is destroyed.
class Armed {
 public:
    explicit Armed(const Plan& plan) noexcept {
        state = State();
        state.plan = plan;
    }
    Armed(const Armed&) = delete;
    Armed& operator=(const Armed&) = delete;
    ~Armed() { state.plan = Plan(); }
};

inline bool isItsTurn(const char* name) noexcept {
    if (++state.operations != state.plan.at) return false;
    state.struck = name;
    if (state.onStrike) state.onStrike();
    return true;
}

/// Whether the operation is to fail; errno says why.
inline bool fails(const char* name) noexcept {
    const Kind kind = state.plan.kind;
    if ((kind != Kind::error && kind != Kind::kill) || !isItsTurn(name)) return false;
    if (kind == Kind::kill) raise(SIGKILL);
    errno = state.plan.error;
    return true;
}

/// The function that would have been called.
template <class Function>
Function* next(const char* name) noexcept {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

template <class Result, class... Arguments>
Result callNext(const char* name, Arguments... arguments) noexcept {
    return next<Result(Arguments...)>(name)(arguments...);
}

template <class Result, class... Arguments>
Result failOr(const char* name, Arguments... arguments) noexcept {
    return fails(name) ? -1 : callNext<Result>(name, arguments...);
}

}  // namespace FileFaults

// Under names of their own, so that what the headers say of the functions does not matter here.
extern "C" {
[[gnu::visibility("default")]] int faultyOpen(const char*, int, ...) __asm__("open");
[[gnu::visibility("default")]] int faultyClose(int) __asm__("close");
[[gnu::visibility("default")]] int faultyStat(const char*, struct stat*) __asm__("stat");
[[gnu::visibility("default")]] int faultyFstat(int, struct stat*) __asm__("fstat");
[[gnu::visibility("default")]] ssize_t faultyReadlink(const char*, char*, size_t) __asm__("readlink");
[[gnu::visibility("default")]] int faultyAccess(const char*, int) __asm__("access");
[[gnu::visibility("default")]] int faultyFaccessat(int, const char*, int, int) __asm__("faccessat");
[[gnu::visibility("default")]] int faultyFchown(int, uid_t, gid_t) __asm__("fchown");
[[gnu::visibility("default")]] int faultyFchmod(int, mode_t) __asm__("fchmod");
[[gnu::visibility("default")]] int faultyChmod(const char*, mode_t) __asm__("chmod");
[[gnu::visibility("default")]] ssize_t faultyRead(int, void*, size_t) __asm__("read");
[[gnu::visibility("default")]] ssize_t faultyWrite(int, const void*, size_t) __asm__("write");
[[gnu::visibility("default")]] int faultyFsync(int) __asm__("fsync");
[[gnu::visibility("default")]] int faultyRename(const char*, const char*) __asm__("rename");
[[gnu::visibility("default")]] int faultyUnlink(const char*) __asm__("unlink");
[[gnu::visibility("default")]] int faultyFlock(int, int) __asm__("flock");
[[gnu::visibility("default")]] ssize_t faultyGetrandom(void*, size_t, unsigned) __asm__("getrandom");
}

int faultyOpen(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (FileFaults::fails("open")) return -1;
    return FileFaults::next<int(const char*, int, ...)>("open")(path, flags, mode);
}

// A descriptor is gone also when closing it fails.
int faultyClose(int file) {
    const bool fails = FileFaults::fails("close");
    const int error = errno;
    const int result = FileFaults::callNext<int>("close", file);
    if (!fails) return result;
    errno = error;
    return -1;
}

int faultyStat(const char* path, struct stat* status) {
    return FileFaults::failOr<int>("stat", path, status);
}

int faultyFstat(int file, struct stat* status) {
    return FileFaults::failOr<int>("fstat", file, status);
}

ssize_t faultyReadlink(const char* path, char* target, size_t size) {
    return FileFaults::failOr<ssize_t>("readlink", path, target, size);
}

int faultyAccess(const char* path, int mode) {
    return FileFaults::failOr<int>("access", path, mode);
}

int faultyFaccessat(int folder, const char* path, int mode, int flags) {
    return FileFaults::failOr<int>("faccessat", folder, path, mode, flags);
}

int faultyFchown(int file, uid_t owner, gid_t group) {
    return FileFaults::failOr<int>("fchown", file, owner, group);
}

int faultyFchmod(int file, mode_t mode) {
    return FileFaults::failOr<int>("fchmod", file, mode);
}

int faultyChmod(const char* path, mode_t mode) {
    return FileFaults::failOr<int>("chmod", path, mode);
}

// What is read and written through the standard streams is no file's.
ssize_t faultyRead(int file, void* bytes, size_t size) {
    if (file <= STDERR_FILENO) return FileFaults::callNext<ssize_t>("read", file, bytes, size);
    return FileFaults::failOr<ssize_t>("read", file, bytes, size);
}

ssize_t faultyWrite(int file, const void* bytes, size_t size) {
    if (file <= STDERR_FILENO) return FileFaults::callNext<ssize_t>("write", file, bytes, size);
    const bool isShort = FileFaults::state.plan.kind == FileFaults::Kind::shortWrite && size > 1;
    if (isShort && FileFaults::isItsTurn("write"))
        return FileFaults::callNext<ssize_t>("write", file, bytes, size / 2);
    return FileFaults::failOr<ssize_t>("write", file, bytes, size);
}

// Nothing is flushed: what survives a power failure is not looked at, and a thousand flushes take their time.
int faultyFsync(int) {
    return FileFaults::fails("fsync") ? -1 : 0;
}

int faultyRename(const char* from, const char* to) {
    return FileFaults::failOr<int>("rename", from, to);
}

int faultyUnlink(const char* path) {
    return FileFaults::failOr<int>("unlink", path);
}

int faultyFlock(int file, int operation) {
    return FileFaults::failOr<int>("flock", file, operation);
}

ssize_t faultyGetrandom(void* bytes, size_t size, unsigned flags) {
    return FileFaults::failOr<ssize_t>("getrandom", bytes, size, flags);
}
