// The commands of the program: what each takes, and its work. Each is defined in its own file of commands/
// and made known to the user in CommandLine.cpp; a further command is one more of both.
//
// Each answers its exit code and throws Failure when it cannot do what it was asked for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/files/Saving.h"

struct InfoOptions {
    std::vector<std::string> logs;
};

/// How records are shown. Lists of columns are as columnsNamed reads them.
struct TableOptions {
    std::vector<std::string> columns;  ///< in the order to show; empty for those that the log shows
    bool allColumns = false;           ///< whatever the log shows
    std::vector<std::string> sort;     ///< the most important first; empty for the order of the log
    std::string format = "table";      ///< table, csv or json
};

struct ShowOptions {
    std::vector<std::string> logs;
    std::optional<std::string> rows;  ///< as RowRanges.h reads it
    bool tagged = false;              ///< tagged ones only
    TableOptions table;
};

struct FindOptions {
    std::string log;
    std::vector<std::string> arguments;  ///< further logs, then COLUMN=TEXT
    TableOptions table;
    std::string output;  ///< the log to save to; empty to show
    Saving saving;
};

struct CheckOptions {
    std::vector<std::string> logs;
};

struct ImportOptions {
    std::string file;
    std::string format;  ///< csv or ale; empty for what the file is
    std::string log;
    bool allWarnings = false;
    Saving saving;
};

struct ExportOptions {
    std::string log;
    std::string format;  ///< csv, ale or json
    std::string output;  ///< empty for standard output
    bool allColumns = false;
    Saving saving;
};

struct SetOptions {
    std::string log;
    std::string row;
    std::string column;
    std::string value;
    Saving saving;
};

struct AddOptions {
    std::string log;
    std::vector<std::string> values;  ///< COLUMN=VALUE
    Saving saving;
};

/// Either rows or the tagged ones.
struct DeleteOptions {
    std::string log;
    std::optional<std::string> rows;
    bool tagged = false;
    Saving saving;
};

struct SortOptions {
    std::string log;
    std::vector<std::string> columns;  ///< the most important first
    bool descending = false;
    bool ignoreCase = false;
    Saving saving;
};

/// One of the ways to choose records, or `list`.
struct TagOptions {
    std::string log;
    std::vector<std::string> where;  ///< COLUMN=TEXT
    std::optional<std::string> rows;
    std::optional<std::string> duplicates;  ///< the column to compare
    std::optional<std::string> distinct;    ///< the column to compare
    bool invert = false;
    bool clear = false;
    bool list = false;
    bool keep = false;   ///< add to the tags that are there
    TableOptions table;  ///< for the list
    Saving saving;
};

struct MergeOptions {
    std::string into;
    std::vector<std::string> from;
    Saving saving;
};

struct ParamOptions {
    std::string log;
    std::optional<std::string> key;
    std::optional<std::string> value;
    Saving saving;
};

struct ColumnsOptions {
    std::string log;
    std::vector<std::string> show;
    std::vector<std::string> hide;
    std::vector<std::string> order;  ///< the columns to come first
    bool reset = false;              ///< before anything else, back to all columns in the log's own order
    bool names = false;              ///< list only the names of all columns
    Saving saving;
};

struct ItemsOptions {
    std::string container;
    std::string format = "table";  ///< table, csv or json
};

struct PackOptions {
    std::string container;
    std::string name;
    std::vector<std::string> identifiers;
    bool names = false;  ///< a text that is no identifier stands for the one made of it
    bool permanent = false;
    Saving saving;
};

/// Either a picture or text.
struct TimelineOptions {
    std::string log;
    std::string output;  ///< the picture's file, "-" for standard output
    bool text = false;
    std::optional<unsigned> width;  ///< of the text, in characters
    std::string lanes = "Reel";     ///< columns
    std::string start = "Start time";
    std::string end = "End time";
    std::optional<std::string> rate;  ///< as FrameRate reads it
    bool common = false;              ///< one axis for all lanes
    bool allWarnings = false;
    Saving saving;
};

namespace Commands {

int showInfo(const InfoOptions& options);
int showRecords(const ShowOptions& options);
int findRecords(const FindOptions& options);
int checkLogs(const CheckOptions& options);
int importFile(const ImportOptions& options);
int exportLog(const ExportOptions& options);
int setValue(const SetOptions& options);
int addRecord(const AddOptions& options);
int deleteRecords(const DeleteOptions& options);
int sortRecords(const SortOptions& options);
int tagRecords(const TagOptions& options);
int mergeLogs(const MergeOptions& options);
int parameters(const ParamOptions& options);
int columns(const ColumnsOptions& options);
int showItems(const ItemsOptions& options);
int packItems(const PackOptions& options);
int timeline(const TimelineOptions& options);

}  // namespace Commands
