// Reads a log's file the way the loader does, and says where the loader stops, drops text or warns.
//
// Lines are read by the library, so what is found here is what the loader does.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>
#include <vector>

class dbrecord;

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

struct Inspection {
    bool loads = false;  ///< whether the loader takes the file for a log
    unsigned records = 0;
    std::vector<Finding> findings;  ///< by line; when it does not load, the last one says why

    bool losesText() const noexcept;
};

/// Sees every record that the loader takes, in order.
class RecordVisitor {
 public:
    virtual ~RecordVisitor() = default;
    /// Comes first, with the line that names the columns.
    virtual void begin(unsigned line, const std::vector<std::string>& columnNames,
                       std::vector<Finding>& findings) = 0;
    virtual void record(unsigned line, const dbrecord& fields, std::vector<Finding>& findings) = 0;
};

/// Inspects a log, or a comma-separated file when the name ends in ".csv". Throws Failure when the file
/// cannot be read.
Inspection inspectLog(const std::string& path, RecordVisitor* visitor = nullptr);

/// Whether the library reads the file as plain comma-separated text.
bool isCommaSeparated(const std::string& path) noexcept;
