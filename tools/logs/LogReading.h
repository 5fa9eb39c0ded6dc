// A log as the commands read it: once, with all that there is to say about its file.
//
// Thread-safety: one thread at a time.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "record/kesta.h"

/// Something wrong at a place in a log's file.
struct Finding {
    unsigned line = 0;       ///< of the file, from 1
    unsigned column = 0;     ///< of the log, from 1; 0 when it is about the line
    std::string columnName;  ///< may be empty
    std::string text;        ///< what is wrong; what to do
    bool losesText = false;  ///< saving the log as it loads would make a loss final
};

/// "FILE:LINE: column N (Name): what is wrong; what to do".
std::string describe(const std::string& path, const Finding& finding);

struct LogReading {
    Zr::Ptr<kesta> log;
    std::optional<Finding> refusal;  ///< why the file is no log, if it is none
    std::vector<Finding> findings;   ///< by line, the refusal among them
    std::optional<Finding>
        trimmed;  ///< the first place where a save drops white space, and how many there are

    bool losesText() const noexcept;
};

/// Sees every record of a log, in order. The names of findings' columns are filled in later.
class RecordVisitor {
 public:
    virtual ~RecordVisitor() = default;
    /// Comes first, with the line that names the columns.
    virtual void begin(unsigned line, const std::vector<std::string>& columnNames,
                       std::vector<Finding>& findings) = 0;
    virtual void record(unsigned line, const dbrecord& fields, std::vector<Finding>& findings) = 0;
};

/// Reads a log, or a comma-separated file, which a visitor does not see. Throws Failure when the file cannot
/// be read.
LogReading readLog(const std::string& path, RecordVisitor* visitor = nullptr);
