// The name "-": standard input where a file is read, standard output where one is written.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>

bool isStandardStream(const std::string& path) noexcept;

/// The name under which the library opens the file: the path itself, or a copy of all of standard input, made
/// at the first call, that lives as long as the program. Throws Failure when that cannot be read.
std::string readablePath(const std::string& path);

/// The file as messages name it.
std::string shownName(const std::string& path);
