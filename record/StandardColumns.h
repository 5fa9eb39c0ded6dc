// The columns of a standard log: their names, how they are read and how wide they are written at least. The
// one place that lists them.
//
// Thread-safety: constants.
#pragma once

#include <string_view>

#include "record/DBFieldTypes.h"
#include "support/Ascii.h"

struct StandardColumn {
    std::string_view name;
    int leastWidth;            ///< in the header of a file, in characters
    DBFieldTypes::eType type;  ///< where nothing else says it

    /// Where the column holds the start of a range of codes: the column that holds the end.
    std::string_view end = {};
};

namespace StandardColumns {

constexpr auto text = DBFieldTypes::eText;
constexpr auto timecode = DBFieldTypes::eTimecode;
constexpr auto date = DBFieldTypes::eDate;

constexpr StandardColumn all[] = {
    {"Cookie", 12, text},
    {"Type", 6, text},
    {"Flags", 8, text},
    {"Name", 32, text},
    {"Date", 12, date},
    {"Size", 8, text},
    {"pic qual", 4, text},
    {"aud qual", 32, text},
    {"chans", 64, text},
    {"Start time", 12, timecode, "End time"},
    {"End time", 12, timecode},
    {"Duration", 16, timecode},
    {"Reel", 10, text},
    {"Reel Type", 30, text},
    {"Scene", 24, text},
    {"Shot", 24, text},
    {"Who", 24, text},
    {"Description", 64, text},
    {"Notes", 100, text},
    {"snd start", 12, timecode, "snd end"},
    {"snd end", 12, timecode},
    {"snd reel", 10, text},
    {"start 24P code", 12, timecode, "end 24P code"},
    {"end 24P code", 12, timecode},
    {"24P reel", 10, text},
    {"film_origin", 3, text},
    {"pulldown", 3, text},
    {"sequence", 2, text},
    {"start keycode", 17, text, "end keycode"},
    {"end keycode", 17, text},
    {"film duration", 9, text},
    {"start camcode", 12, timecode, "end camcode"},
    {"end camcode", 12, timecode},
    {"cam reel", 10, text},
    {"comp reel", 10, text},
    {"cam_date", 6, date},
    {"start inkcode", 15, text, "end inkcode"},
    {"end inkcode", 15, text},
    {"lab reel", 10, text},
    {"Mdrive", 4, text},
    {"Tag", 1, text},
};

/// The column of that name, ignoring case; null when it is no standard one.
inline const StandardColumn* find(std::string_view name) noexcept {
    for (const StandardColumn& column : all) {
        if (Ascii::equalFolded(column.name, name)) return &column;
    }
    return nullptr;
}

/// The column that starts the range of codes of which the column of that name is the start or the end; null
/// when it is neither. Unlike look-ups this minds case, deliberately.
constexpr const StandardColumn* rangeOf(std::string_view name) noexcept {
    for (const StandardColumn& column : all) {
        if (!column.end.empty() && (column.name == name || column.end == name)) return &column;
    }
    return nullptr;
}

}  // namespace StandardColumns
