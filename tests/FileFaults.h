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
    static const auto real = FileFaults::next<int(const char*, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return FileFaults::fails("open") ? -1 : real(path, flags, mode);
}

// A descriptor is gone also when closing it fails.
int faultyClose(int file) {
    static const auto real = FileFaults::next<int(int)>("close");
    if (!FileFaults::fails("close")) return real(file);
    const int error = errno;
    real(file);
    errno = error;
    return -1;
}

int faultyStat(const char* path, struct stat* status) {
    static const auto real = FileFaults::next<int(const char*, struct stat*)>("stat");
    return FileFaults::fails("stat") ? -1 : real(path, status);
}

int faultyFstat(int file, struct stat* status) {
    static const auto real = FileFaults::next<int(int, struct stat*)>("fstat");
    return FileFaults::fails("fstat") ? -1 : real(file, status);
}

ssize_t faultyReadlink(const char* path, char* target, size_t size) {
    static const auto real = FileFaults::next<ssize_t(const char*, char*, size_t)>("readlink");
    return FileFaults::fails("readlink") ? -1 : real(path, target, size);
}

int faultyAccess(const char* path, int mode) {
    static const auto real = FileFaults::next<int(const char*, int)>("access");
    return FileFaults::fails("access") ? -1 : real(path, mode);
}

int faultyFaccessat(int folder, const char* path, int mode, int flags) {
    static const auto real = FileFaults::next<int(int, const char*, int, int)>("faccessat");
    return FileFaults::fails("faccessat") ? -1 : real(folder, path, mode, flags);
}

int faultyFchown(int file, uid_t owner, gid_t group) {
    static const auto real = FileFaults::next<int(int, uid_t, gid_t)>("fchown");
    return FileFaults::fails("fchown") ? -1 : real(file, owner, group);
}

int faultyFchmod(int file, mode_t mode) {
    static const auto real = FileFaults::next<int(int, mode_t)>("fchmod");
    return FileFaults::fails("fchmod") ? -1 : real(file, mode);
}

int faultyChmod(const char* path, mode_t mode) {
    static const auto real = FileFaults::next<int(const char*, mode_t)>("chmod");
    return FileFaults::fails("chmod") ? -1 : real(path, mode);
}

// What is read and written through the standard streams is no file's.
ssize_t faultyRead(int file, void* bytes, size_t size) {
    static const auto real = FileFaults::next<ssize_t(int, void*, size_t)>("read");
    return file > STDERR_FILENO && FileFaults::fails("read") ? -1 : real(file, bytes, size);
}

ssize_t faultyWrite(int file, const void* bytes, size_t size) {
    static const auto real = FileFaults::next<ssize_t(int, const void*, size_t)>("write");
    if (file <= STDERR_FILENO) return real(file, bytes, size);
    const bool isShort = FileFaults::state.plan.kind == FileFaults::Kind::shortWrite && size > 1;
    if (isShort && FileFaults::isItsTurn("write")) return real(file, bytes, size / 2);
    return FileFaults::fails("write") ? -1 : real(file, bytes, size);
}

// Nothing is flushed: what survives a power failure is not looked at, and a thousand flushes take their time.
int faultyFsync(int) {
    return FileFaults::fails("fsync") ? -1 : 0;
}

int faultyRename(const char* from, const char* to) {
    static const auto real = FileFaults::next<int(const char*, const char*)>("rename");
    return FileFaults::fails("rename") ? -1 : real(from, to);
}

int faultyUnlink(const char* path) {
    static const auto real = FileFaults::next<int(const char*)>("unlink");
    return FileFaults::fails("unlink") ? -1 : real(path);
}

int faultyFlock(int file, int operation) {
    static const auto real = FileFaults::next<int(int, int)>("flock");
    return FileFaults::fails("flock") ? -1 : real(file, operation);
}

ssize_t faultyGetrandom(void* bytes, size_t size, unsigned flags) {
    static const auto real = FileFaults::next<ssize_t(void*, size_t, unsigned)>("getrandom");
    return FileFaults::fails("getrandom") ? -1 : real(bytes, size, flags);
}
