// What the commands ask of files and do with them.
#include "tools/files/Files.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/Failure.h"
#include "tools/terminal/StandardStreams.h"

namespace {

struct stat statusOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) throw fileFailure(path, errno);
    return status;
}

}  // namespace

std::string resolved(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    fs::path end = path;
    for (int links = 0; fs::is_symlink(fs::symlink_status(end, error)); ++links) {
        if (links == 40) throw fileFailure(path, ELOOP);
        end = end.parent_path() / fs::read_symlink(end, error);
    }
    const fs::path folder = fs::canonical(end.has_parent_path() ? end.parent_path() : ".", error);
    if (error) throw fileFailure(path, error.value());
    return folder / end.filename();
}

void requireReadable(const std::string& path) {
    const struct stat status = statusOf(path);
    if (S_ISDIR(status.st_mode)) throw fileFailure(path, EISDIR);
    if (!S_ISREG(status.st_mode)) throw Failure(path + ": is no plain file");
    if (access(path.c_str(), R_OK) != 0) throw fileFailure(path, errno);
}

std::uintmax_t fileSize(const std::string& path) {
    return static_cast<std::uintmax_t>(statusOf(path).st_size);
}

std::string readBytes(const std::string& path) {
    const std::string readable = readablePath(path);
    requireReadable(readable);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(readable.c_str(), "rb"),
                                                               std::fclose);
    if (!file) throw fileFailure(path, errno);
    std::string bytes(fileSize(readable), '\0');
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    if (std::ferror(file.get())) throw fileFailure(path, errno);
    return bytes;
}

bool isSameFile(const std::string& a, const std::string& b) noexcept {
    struct stat first {};
    struct stat second {};
    return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 && first.st_ino == second.st_ino &&
           first.st_dev == second.st_dev;
}

void requireReplaceable(const std::string& path, bool replace) {
    struct stat status {};
    const bool isPlainFile = stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    if (isPlainFile && !replace) throw Failure(path + ": is there already; --force replaces it");
}

void requireOutputApart(const std::string& input, const std::string& output) {
    if (!isStandardStream(output) && isSameFile(isStandardStream(input) ? "/dev/stdin" : input, output)) {
        throw Failure(output + ": is the log itself, which would be lost; give the output another name");
    }
}

bool isThere(const std::string& path) noexcept {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}
