// The words of column types: what stands for a type in the header of a file.
//
// Thread-safety: constants.
#pragma once

#include "record/DBFieldTypes.h"
#include "support/Ascii.h"

namespace ColumnTypes {

struct Word {
    const char* text;
    DBFieldTypes::eType type;
    bool isWritten = true;
};

constexpr Word words[] = {
    {"timecode", DBFieldTypes::eTimecode},
    {"timecode_s", DBFieldTypes::eTimecodeS},
    {"text", DBFieldTypes::eText},
    {"text_s", DBFieldTypes::eTextS},
    {"time_of_day", DBFieldTypes::eTimeOfDay},
    {"date", DBFieldTypes::eDate},
    {"dos_date", DBFieldTypes::eDosDate},
    {"char", DBFieldTypes::eChar, false},  // deliberately only read: its own letter stands for it
    {"numeric", DBFieldTypes::eNumeric},
    {"long", DBFieldTypes::eLong},
    {"double", DBFieldTypes::eDouble},
};

/// The type that a word or any one character stands for; eNone for anything else. Characters above 127 are
/// negative codes.
inline DBFieldTypes::eType fromWord(const LightweightString<char>& word) noexcept {
    for (const Word& known : words) {
        if (word.icompare(known.text) == 0) return known.type;
    }
    return word.length() == 1 ? static_cast<DBFieldTypes::eType>(static_cast<signed char>(*word.c_str()))
                              : DBFieldTypes::eNone;
}

/// The word that a save writes for a type: the type's own, or its code as a character. A code that a line
/// would not give back, zero or white space, stands as eText's.
inline LightweightString<char> toWord(DBFieldTypes::eType type) {
    for (const Word& known : words) {
        if (known.type == type && known.isWritten) return known.text;
    }
    const char code = static_cast<char>(type);
    if (code == 0 || Ascii::isSpace(code)) return toWord(DBFieldTypes::eText);
    return LightweightString<char>(&code, 1);
}

/// What a column keeps of a type: eNone is no column's.
constexpr DBFieldTypes::eType stored(DBFieldTypes::eType type) noexcept {
    return type == DBFieldTypes::eNone ? DBFieldTypes::eText : type;
}

}  // namespace ColumnTypes
