// Files as the commands meet them.
//
// Thread-safety: any thread.
#pragma once

#include <cstdint>
#include <string>

/// Throws Failure, with the reason, unless the path names a plain file that may be read.
void requireReadable(const std::string& path);

/// The size in bytes of a readable file.
std::uintmax_t fileSize(const std::string& path);

/// All bytes of the file, or of standard input for "-". Throws Failure when it cannot be read.
std::string readBytes(const std::string& path);

/// Whether both names are of one file.
bool isSameFile(const std::string& a, const std::string& b) noexcept;

/// Where a chain of symbolic links ends, which need not be there, in its folder's true path. Throws Failure
/// when the folder is not there or the links go round.
std::string resolved(const std::string& path);

/// Throws Failure when a plain file of that name is there and not to be replaced.
void requireReplaceable(const std::string& path, bool replace);

/// Throws Failure when `output` is the file that is read from, under whatever name: it would be lost.
void requireOutputApart(const std::string& input, const std::string& output);

/// Whether something of that name is there, a dangling link included.
bool isThere(const std::string& path) noexcept;
