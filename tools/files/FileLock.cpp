// FileLock: taking the lock that stands beside a file, and removing those that were left over.
#include "tools/files/FileLock.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "support/Configuration.h"
#include "tools/Failure.h"
#include "tools/files/Files.h"
#include "tools/terminal/DisplayText.h"

namespace {

namespace fs = std::filesystem;

/// The lock file of that path. Long names share the lock of their beginning.
std::string lockFileOf(const std::string& path) {
    constexpr std::size_t longestName = 255;
    constexpr std::string_view ending = ".lock";
    const fs::path target = resolved(path);
    const std::string name = target.filename();
    const std::string_view begin = cutTo(name, longestName - 1 - ending.size());
    return target.parent_path() / ("." + std::string(begin) + std::string(ending));
}

bool isPlainFileOrNone(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

bool isStillNamed(int descriptor, const std::string& path) {
    struct stat held {};
    struct stat named {};
    return fstat(descriptor, &held) == 0 && lstat(path.c_str(), &named) == 0 && held.st_ino == named.st_ino &&
           held.st_dev == named.st_dev;
}

/// What a lock file says of its holder: "PROCESS NAME" and a line feed. Empty when it says nothing yet, none
/// when it is no lock file.
std::optional<std::string> holderIn(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    std::array<char, 128> buffer;
    const ssize_t size = pread(descriptor, buffer.data(), buffer.size(), 0);
    if (size < 0 || size == static_cast<ssize_t>(buffer.size())) return std::nullopt;
    const std::string_view text(buffer.data(), static_cast<std::size_t>(size));
    if (text.empty()) return std::string();
    const std::size_t digits = text.find_first_not_of("0123456789");
    const bool isHolder = digits > 0 && digits != std::string_view::npos && text[digits] == ' ' &&
                          text.size() > digits + 2 && text.find('\n') == text.size() - 1;
    if (!isHolder) return std::nullopt;
    return std::string(text.substr(digits + 1, text.size() - digits - 2)) + ", process " +
           std::string(text.substr(0, digits));
}

enum class Grip { held, busy, impossible };

Grip grip(int descriptor) noexcept {
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) return Grip::held;
    // Network file systems refuse with EBADF to lock what may only be read, whether it is locked or not.
    const bool maybeHeld = errno == EWOULDBLOCK || errno == EINTR || errno == EBADF;
    return maybeHeld ? Grip::busy : Grip::impossible;
}

/// Gets hold of a lock file. Only a file that it has made itself is ever written to, and only one that says
/// what lock files say is ever removed.
class LockTaker {
 public:
    LockTaker(const std::string& path, const std::string& lockPath) : m_path(path), m_lockPath(lockPath) {}

    /// The lock file, gripped; no file where the system cannot lock files; none while another program holds
    /// it.
    std::optional<SystemFile> take() {
        constexpr int mostAttempts = 100;  // others may make and remove the file between our looks at it
        for (int attempt = 0; attempt < mostAttempts; ++attempt) {
            constexpr int ours = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
            SystemFile made(open(m_lockPath.c_str(), ours, 0666));
            if (made) {
                if (std::optional<SystemFile> taken = keep(std::move(made))) return taken;
            } else if (errno != EEXIST) {
                throw fileFailure(m_path, errno);
            } else if (!removeLeftOver()) {
                return std::nullopt;
            }
        }
        return std::nullopt;
    }

    /// Who holds it, as far as is known.
    const std::string& holder() const noexcept { return m_holder; }

 private:
    // Until it is gripped, the new file looks left over: another program may have removed it.
    std::optional<SystemFile> keep(SystemFile made) const {
        const Grip result = grip(made.descriptor());
        if (result == Grip::impossible) {
            unlink(m_lockPath.c_str());
            return SystemFile();
        }
        if (result != Grip::held || !isStillNamed(made.descriptor(), m_lockPath)) return std::nullopt;
        made.write(std::to_string(getpid()) + " kesta\n");  // a lock that does not say whose it is serves too
        return made;
    }

    /// False when somebody holds the lock file.
    bool removeLeftOver() {
        const SystemFile found(openFound());
        if (!found && errno == ENOENT) return true;
        if (!found && errno != ELOOP) throw fileFailure(m_lockPath, errno);
        const std::optional<std::string> holder = found ? holderIn(found.descriptor()) : std::nullopt;
        if (!holder) {
            throw Failure(m_path + ": cannot be locked, because " + m_lockPath +
                          " is no lock file; move that out of the way");
        }
        m_holder = *holder;
        if (grip(found.descriptor()) == Grip::busy) return false;
        if (isStillNamed(found.descriptor(), m_lockPath) && unlink(m_lockPath.c_str()) != 0)
            throw fileFailure(m_lockPath, errno);
        return true;
    }

    int openFound() const noexcept {
        constexpr int careful = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
        const int found = open(m_lockPath.c_str(), O_RDWR | careful);
        return found < 0 && errno == EACCES ? open(m_lockPath.c_str(), O_RDONLY | careful) : found;
    }

    const std::string& m_path;
    const std::string& m_lockPath;
    std::string m_holder;
};

}  // namespace

FileLock::FileLock(const std::string& path) {
    if (!isPlainFileOrNone(path)) return;
    m_lockPath = lockFileOf(path);
    constexpr auto pause = std::chrono::milliseconds(20);
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(config_int("lock_wait", 5, 0, 3600));
    LockTaker taker(path, m_lockPath);
    for (;;) {
        if (std::optional<SystemFile> taken = taker.take()) {
            m_file = std::move(*taken);
            return;
        }
        if (std::chrono::steady_clock::now() >= end) break;
        std::this_thread::sleep_for(pause);
    }
    const std::string holder = taker.holder().empty() ? "another program" : taker.holder();
    throw Failure(path + " is being edited by " + holder + "; try again when it has ended");
}

void FileLock::release() noexcept {
    if (!m_file) return;
    // While it is held nobody else may remove it, so that the name is still this file's.
    unlink(m_lockPath.c_str());
    m_file.close();
}
