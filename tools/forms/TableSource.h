// Tables in the files of other programs, read for import.
//
// Thread-safety: one thread at a time.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class TableSource {
 public:
    struct Parameter {
        unsigned line;
        std::string key;
        std::string value;
    };
    using Values = std::vector<std::string_view>;
    /// Gets the line of the file that a row begins on, and its values, which are valid during the call.
    using RowHandler = std::function<void(unsigned line, const Values& values)>;

    virtual ~TableSource() = default;

    /// What the file says of the table as a whole.
    virtual const std::vector<Parameter>& parameters() const noexcept = 0;

    virtual const std::vector<std::string>& columns() const noexcept = 0;

    /// The line of the file that names the columns.
    virtual unsigned columnLine() const noexcept = 0;

    /// All rows, in order; may be called again. Rows may be shorter and longer than the columns. Throws
    /// Failure, with the line, where the file cannot be understood.
    virtual void forEachRow(const RowHandler& handle) const = 0;
};

/// Reads comma-separated text by RFC 4180. Text that does not keep to it is taken as it stands: quotes inside
/// an unquoted value are text, text after a closing quote belongs to the value. A byte order mark is dropped,
/// blank lines are no rows. Lines end with LF, CR LF or, in a file without any LF, CR.
std::unique_ptr<TableSource> readCsvTable(const std::string& path);

/// Reads the tab-separated log exchange form: sections Heading, Column and Data. The heading's pairs may
/// stand one on a line or all on one line.
std::unique_ptr<TableSource> readAleTable(const std::string& path);

/// Reads the file, or standard input for "-", in this format, "csv" or "ale". Without one, a file is read as
/// its name's ending says, in either case, and standard input as what it begins with. Throws Failure for any
/// other ending, and for what is no text.
std::unique_ptr<TableSource> readTable(const std::string& path, const std::string& format);
