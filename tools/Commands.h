// The commands of the program: what each takes, and its work. Each is defined in its own file of commands/
// and made known to the user in CommandLine.cpp; a further command is one more of both.
//
// Each answers its exit code and throws Failure when it cannot do what it was asked for.
#pragma once

#include <optional>
#include <string>
#include <vector>

struct InfoOptions {
    std::string log;
};

struct ShowOptions {
    std::string log;
    std::vector<std::string> columns;  ///< in the order to show; empty for those that the log shows
    bool allColumns = false;           ///< whatever the log shows
    std::string rows;                  ///< as RowRanges.h reads it; empty for all
    std::string format = "table";      ///< table, csv or json
};

struct CheckOptions {
    std::vector<std::string> logs;
};

struct ImportOptions {
    std::string file;
    std::string log;
    bool force = false;  ///< replace an existing log
    bool allWarnings = false;
};

struct ExportOptions {
    std::string log;
    std::string format;  ///< csv, ale or json
    std::string output;  ///< empty for standard output
    bool allColumns = false;
};

struct SetOptions {
    std::string log;
    std::string row;
    std::string column;
    std::string value;
    bool force = false;  ///< save even though that loses text of the file
};

struct AddOptions {
    std::string log;
    std::vector<std::string> values;  ///< COLUMN=VALUE
    bool force = false;
};

struct DeleteOptions {
    std::string log;
    std::string rows;
    bool force = false;
};

struct ParamOptions {
    std::string log;
    std::optional<std::string> key;
    std::optional<std::string> value;
    bool force = false;
};

struct ColumnsOptions {
    std::string log;
    std::vector<std::string> show;
    std::vector<std::string> hide;
    std::vector<std::string> order;  ///< the columns to come first
    bool reset = false;              ///< before anything else, back to all columns in the log's own order
    bool force = false;
};

struct ItemsOptions {
    std::string container;
    std::string format = "table";  ///< table, csv or json
};

struct PackOptions {
    std::string container;
    std::string name;
    std::vector<std::string> identifiers;
    bool permanent = false;
    bool force = false;  ///< replace an existing file
};

namespace Commands {

int showInfo(const InfoOptions& options);
int showRecords(const ShowOptions& options);
int checkLogs(const CheckOptions& options);
int importFile(const ImportOptions& options);
int exportLog(const ExportOptions& options);
int setValue(const SetOptions& options);
int addRecord(const AddOptions& options);
int deleteRecords(const DeleteOptions& options);
int parameters(const ParamOptions& options);
int columns(const ColumnsOptions& options);
int showItems(const ItemsOptions& options);
int packItems(const PackOptions& options);

}  // namespace Commands
