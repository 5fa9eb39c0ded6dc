// Logs as the commands hold them: opened with what there is to say about them said, changed only when that
// loses nothing, saved with the reason when it fails.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>
#include <vector>

#include "record/kesta.h"
#include "tools/Failure.h"
#include "tools/files/FileClaim.h"
#include "tools/files/Saving.h"

/// A log whose records are to be shown, and the exit code that its state calls for.
struct LogForReading {
    Zr::Ptr<kesta> log;
    ExitCode exitCode = exitDone;  ///< exitFindings when text of the file was lost
};

/// A loaded log for reading. Warns of what the loader dropped. Throws Failure when the file cannot be read or
/// is no log.
LogForReading openLog(const std::string& path);

/// A loaded log for changing and saving. Other runs of the program wait until it has been saved.
class LogForEditing {
 public:
    /// Throws Failure as openLog and FileLock do, and when saving would lose any text of the file, unless
    /// `force`, for a comma-separated file, and for standard input.
    LogForEditing(const std::string& path, bool force);

    kesta& operator*() const noexcept { return *m_log; }
    kesta* operator->() const noexcept { return m_log.get(); }

    /// Once, as saveLog does.
    void save(const Saving& how, const std::vector<std::string>& summary = {});

 private:
    std::string m_path;
    FileClaim m_claim;  // from before the log is read
    Zr::Ptr<kesta> m_log;
};

/// A loaded log whose records go into another one. Throws Failure as LogForEditing does.
Zr::Ptr<kesta> openLogForCopying(const std::string& path, bool force);

/// Throws Failure when no log can be made under this name: it says comma-separated text, or something is
/// there already and not to be replaced.
void requireLogMayBeMade(const std::string& path, bool replace);

/// Saves the log under its file name, which `claim` is for, or writes it to standard output for a path of
/// "-", without a claim; as save() does. Texts of a column "Tag" stay as they are. Throws Failure, with the
/// file as it was, when it cannot be written or another program has written it.
void saveLog(kesta& log, const std::string& path, FileClaim* claim, const Saving& how,
             const std::vector<std::string>& summary = {});

/// Writes records of the log, those of a view on it or its own, to standard output as a log's file.
void writeRecords(const kesta& log, const iKST& rows);

/// The names of the log's columns, in order.
std::vector<std::string> columnNames(const kesta& log);

/// The first column of that name. Throws Failure, which lists the columns, when there is none.
unsigned columnNamed(const kesta& log, const std::string& name);

/// The columns that lists name, in their order: names with commas between. Where a name holds commas itself,
/// the longest one that fits is meant. Throws Failure as columnNamed does.
std::vector<unsigned> columnsNamed(const kesta& log, const std::vector<std::string>& lists);

/// The file's types of the log's columns: "text", "timecode" ...
std::vector<std::string> columnTypes(const kesta& log);

/// Why the log would not give the value back from that column exactly; empty when it would.
std::string valueObjection(const kesta& log, unsigned column, const std::string& value);

/// Throws Failure for a value that the column would not give back exactly.
void requireKeptValue(const kesta& log, unsigned column, const std::string& value);
