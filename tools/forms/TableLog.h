// The log that a table becomes.
//
// Its records are kept as lines of a log's file, one after the other in memory, and never as a database: that
// is all that it takes to write them, and takes less time and memory.
//
// Thread-safety: one thread at a time.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "record/kesta.h"
#include "support/TextFile.h"
#include "tools/forms/TableSource.h"
#include "tools/logs/LogForm.h"
#include "tools/terminal/Messages.h"

class TableLog {
 public:
    /// Makes the log. What a log cannot hold exactly is stored as the log would give it back, and warned of,
    /// in the order of the file, which messages call `name`. Throws Failure for a table that no log can hold.
    TableLog(const TableSource& source, std::string name, Warnings& warnings);

    /// Appends the lines of the log's file.
    void writeTo(TextFile& file) const;

    std::size_t records() const noexcept { return m_lines.size(); }
    std::size_t columns() const noexcept { return m_header.get_num_fields(); }

    /// How many values and parameters are not kept exactly.
    std::size_t changed() const noexcept { return m_changed; }

    /// How many of these lack more than white space around them.
    std::size_t lost() const noexcept { return m_lost; }

 private:
    using Values = TableSource::Values;

    /// A database without records that says how wide those of the log are.
    class Header : public kesta {
     public:
        unsigned get_fieldsize(unsigned field) const override { return widths[field]; }
        std::vector<unsigned> widths;
    };

    std::string atLine(unsigned line) const;
    void survey();
    void makeColumns();
    void warnOfRenaming(std::size_t column, const std::string& name, std::string_view stored);
    void storeParameters();
    std::string freeKey(const std::string& key);
    void storeChangedParameter(const std::string& place, const std::string& key, const std::string& value);
    void store(unsigned line, const Values& values);
    bool fill(const Values& values);
    void warnOfLongRow(unsigned line, const Values& values);
    void storeAsKept(unsigned line, const Values& values);
    void widen();

    const TableSource& m_source;
    const std::string m_name;
    Warnings& m_warnings;
    Header m_header;
    TextFile m_lines;      // of the records
    dbrecord m_record{0};  // the last one
    LineRoundTrip m_roundTrip;
    std::size_t m_reach = 0;  // the columns up to the last value of any row
    std::size_t m_namedColumns = 0;
    std::size_t m_changed = 0;
    std::size_t m_lost = 0;
    std::map<std::string, unsigned> m_lastKeyNumber;
    bool m_neededCare = false;  // the last record, before a log's form of its values was found
    bool m_keepsTags = true;    // whether a column "Tag" holds nothing but what a log keeps there
};
