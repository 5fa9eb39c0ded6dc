// Column types and column descriptors.
#pragma once

#include "support/LightweightString.h"

/// How a column's text is meant to be read. The codes are ASCII letters because they reach the file; any
/// other character code is a legal type too. eNone ends arrays of descriptors and is never stored as a
/// column's type.
struct DBFieldTypes {
    /// The codes of the types.
    enum eType : int {
        eNone = 0,
        eTimecode = 't',
        eTimecodeS = 'T',
        eText = 'a',
        eTextS = 'A',
        eTimeOfDay = 'D',
        eDate = 'd',
        eDosDate = 'M',
        eChar = 'c',
        eNumeric = 'n',
        eLong = 'l',
        eDouble = 'f'
    };
};

/// One column: its name, compared ignoring case when looked up, and its type.
struct DBFieldDesc {
    LightweightString<char> name;                    ///< may be empty; such a column is not found by name
    DBFieldTypes::eType type = DBFieldTypes::eNone;  ///< eNone ends an array of columns

    /// The end of an array of columns.
    DBFieldDesc() = default;

    /// A column of that name and type.
    DBFieldDesc(const LightweightString<char>& columnName, DBFieldTypes::eType columnType)
        : name(columnName), type(columnType) {}
};
