// Saving: checks, the copy of the old file, and what is told.
#include "tools/files/Saving.h"

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "tools/Failure.h"
#include "tools/files/FileClaim.h"
#include "tools/files/Files.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Output.h"
#include "tools/terminal/Presentation.h"
#include "tools/terminal/Progress.h"
#include "tools/terminal/StandardStreams.h"

namespace {

// Throws Failure, with the reason, when it can be seen that saving under this name would fail.
void requireWritable(const std::string& path) {
    struct stat status {};
    const bool exists = stat(path.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) throw fileFailure(path, EISDIR);
    // A plain file is replaced by another one, which needs the folder only.
    const bool isReplaced = !exists || S_ISREG(status.st_mode);
    const std::filesystem::path folder = std::filesystem::path(resolved(path)).parent_path();
    const std::string written = !isReplaced ? path : folder.empty() ? "." : folder.string();
    if (access(written.c_str(), isReplaced ? W_OK | X_OK : W_OK) != 0) throw fileFailure(path, errno);
}

/// A second name for the file, or a copy where the file system knows no second names.
void duplicate(const std::string& path, const std::string& copy, std::error_code& error) {
    std::filesystem::create_hard_link(path, copy, error);
    if (!error || error == std::errc::file_exists) return;
    error.clear();
    std::filesystem::copy_file(path, copy, error);
}

// Keeps a file that is there under its name followed by "~", in the place of an older one. The file itself is
// never missing. Follows symbolic links, as saving does.
void keepOldFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return;
    const std::string file = resolved(path);
    const std::string backup = file + '~';
    const std::string temporary = backup + '.' + std::to_string(getpid());
    std::error_code error;
    duplicate(file, temporary, error);
    if (!error) std::filesystem::rename(temporary, backup, error);
    if (!error) {
        // Renaming one name of a file to another name of it leaves both.
        std::filesystem::remove(temporary, error);
        return;
    }
    const Failure failure = fileFailure(backup, error.value());
    if (error != std::errc::file_exists) std::filesystem::remove(temporary, error);
    throw Failure(path + ": not saved, because the old file cannot be kept: " + failure.what());
}

void tell(const std::vector<std::string>& lines) {
    if (isQuiet() || lines.empty()) return;
    const auto output = standardOutput();
    for (const std::string& line : lines) output->line(harmless(line));
    output->finish();
}

void tellDryRun(const std::string& path, const std::string& content, std::vector<std::string> summary) {
    if (!isStandardStream(path)) requireWritable(path);
    summary.push_back("would save " + (isStandardStream(path) ? "to standard output" : path) + ": " +
                      content);
    tell(summary);
}

void tellSaved(const std::string& path, const std::vector<std::string>& summary) {
    try {
        tell(summary);
    } catch (const Failure& failure) {
        throw Failure(path +
                      ": is saved, but what there is to say of it could not be written: " + failure.what());
    }
}

}  // namespace

void save(const std::string& path, FileClaim* claim, const Saving& how, const std::string& content,
          const std::vector<std::string>& summary, const std::function<void()>& write) {
    if (how.dryRun) {
        tellDryRun(path, content, summary);
        return;
    }
    if (!claim) {
        write();
        return;
    }
    {
        const Progress progress("writing", path);
        claim->requireUnchanged();
        if (how.backup) keepOldFile(path);
        write();
        claim->release();
    }
    tellSaved(path, summary);
}
