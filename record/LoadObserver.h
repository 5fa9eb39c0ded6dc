// LoadObserver: hears from a load what it takes from a file, and what of the file does not come into the
// database as it stands there.
//
// Lines and fields count from 1; a line ends where TextFile says. Texts and records that an observer is given
// are valid during the call. An observer may throw: the load is then taken back, as when memory runs out. It
// must not change the database that is being loaded.
//
// Thread-safety: called on the thread that loads.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "record/DBFieldTypes.h"
#include "support/AttribValuePair.h"
#include "support/Export.h"

class dbrecord;

/// What does not come into the database as it stands in the file, and where that is.
struct LoadEvent {
    /// What happened; where nothing is said, reading goes on.
    enum Kind {
        // A field of a line whose texts are taken: a parameter, a column's name, a value. A line tells of
        // nothing after its first cut: what is read there is not what was meant.
        eFieldCut,        ///< longer than dbrecord::longestField; what comes after is read as further fields
        eQuoteDropped,    ///< a double quote stands in the text and is not doubled
        eQuoteNotClosed,  ///< the line ends inside quotes
        eSpaceTrimmed,    ///< the text, not what stands around its quotes, begins or ends with white space

        // A parameter line.
        eParameterWithoutColon,  ///< dropped
        eParameterWithoutKey,    ///< dropped
        eParameterHasFields,     ///< `count` fields after the first are dropped

        // The header.
        eNotALog,         ///< the first line is no parameter "KESTA:"; `line` is 0 when there is none
        eOtherRevision,   ///< read as if it were the current one
        eMarkerMissing,   ///< `line` is the first that is neither a parameter nor blank, or the last
        eTypesDoNotFit,   ///< `count` types for `expected` names; nothing is loaded
        eTypeUnknown,     ///< `text` is no type; the column's type is eText
        eColumnsMissing,  ///< the header, or the first line of a comma-separated file, names no columns

        // The records.
        eReadAsHeader,     ///< a one-column log's value: with the next two lines it is dropped as a header
        eWrongFieldCount,  ///< `count` fields where `expected` columns are; reading ends here
        eBlankLine,        ///< reading ends here, though lines that are not blank come after it
        eRecordLimit,      ///< reading ends before this line, because enough records are read

        // A comma-separated file.
        eValuesDropped,   ///< `count` values after the last column
        eQuoteUnmatched,  ///< the line has an odd number of double quotes

        eUnreadable,  ///< nothing is loaded, because the file could not be read; `count` is the errno
    };

    Kind kind;                   ///< says which of the following mean something
    unsigned line = 0;           ///< of the file, from 1
    unsigned field = 0;          ///< of the line, from 1; 0 when it is about the line
    std::size_t count = 0;       ///< what there is
    std::size_t expected = 0;    ///< what there should be
    unsigned linesAfter = 0;     ///< where reading ends: how many lines that are not blank come after `line`
    std::string_view text = {};  ///< what stands there
};

/// What is not overridden does nothing.
class KESTA_API LoadObserver {
 public:
    virtual ~LoadObserver();

    /// In the order of the file.
    virtual void lost(const LoadEvent& event);

    /// Another parameter is there.
    virtual void parameterRead(unsigned line, const Zr::AttribValuePair& parameter);

    /// The columns are there. `line` is the one that names them.
    virtual void columnsRead(unsigned line, const std::vector<DBFieldDesc>& columns);

    /// Another record is there. `line` is the one that its fields come from, `text` what it holds.
    virtual void recordRead(unsigned line, std::string_view text, const dbrecord& record);
};
