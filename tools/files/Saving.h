// How commands change files: whether they may replace what is there, keep it, or write at all.
//
// Thread-safety: one thread at a time.
#pragma once

#include <functional>
#include <string>
#include <vector>

class FileClaim;

struct Saving {
    bool force = false;   ///< replace or lose what the command's help says
    bool dryRun = false;  ///< do everything but write
    bool backup = false;  ///< keep the old file as FILE~
};

/// Calls `write`, which puts the file in its place, and tells `summary` on standard output then, unless the
/// program is to be quiet. Keeps the old file first when that is wanted. A dry run says that it would save
/// `content`, as in "12 records", and writes nothing. A path of "-" is standard output, which gets nothing
/// but the file, and has no claim; any other path has one, which is given up when the file is there.
///
/// Throws Failure, with nothing written, when another program has changed the file, when the old file cannot
/// be kept or a dry run sees that writing would fail; and when the file was saved but the summary cannot be
/// told, which the message says.
void save(const std::string& path, FileClaim* claim, const Saving& how, const std::string& content,
          const std::vector<std::string>& summary, const std::function<void()>& write);
