// LogFiles: the logs that benchmarks work on, as files and as what has been loaded from them.
//
// A file is made once, by a process of its own, so that the memory which that takes is not the benchmark's.
// The files are in the folder that the environment names in KESTA_BENCH_FOLDER, where the next process finds
// them; else in a temporary folder that goes with this process. A file that cannot be made ends the process.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>

#include "bench/PlainLog.h"
#include "record/kesta.h"

namespace LogFiles {

/// The first so many records of the generated log.
std::string generated(unsigned rows);

/// A log of as many columns, in which each has twenty different texts.
std::string repeating(unsigned rows);

/// A name to save to, in the same folder.
std::string target();

/// A file as a database, and the records of the generated log as a database and as plain strings.
Zr::Ptr<kesta> load(const std::string& fileName);
Zr::Ptr<kesta> database(unsigned rows);
PlainLog::Table table(unsigned rows);

Zr::Ptr<kesta> copy(const Zr::Ptr<kesta>& log);
PlainLog::Table copy(const PlainLog::Table& log);

}  // namespace LogFiles
