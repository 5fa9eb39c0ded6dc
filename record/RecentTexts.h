// RecentTexts: makes the strings of the lines of a log, sharing the texts that come again.
//
// Logs repeat reels, scenes, names, dates and codes from row to row. For each column this keeps some of the
// texts that have been seen, by hash, each in the one place its hash names, and hands out the kept string for
// an equal text. A column whose texts hardly ever come again is left in peace for a while. The new texts of a
// line are made together, in one block of memory.
//
// Thread-safety: one thread at a time.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "support/LightweightString.h"

class RecentTexts {
 public:
    using Fields = std::vector<LightweightString<char>>;

    /// Makes room for as many fields as the line before had, and forgets what it has left unmade.
    void beginLine(Fields& fields) {
        fields.reserve(m_fieldsOfLine);
        m_noted = 0;
    }

    /// Appends a field of that text. A new text is only noted: the field stays empty, and `text` must stay as
    /// it is, until makeNoted is called with the same fields.
    void append(Fields& fields, std::string_view text);

    void makeNoted(Fields& fields);

 private:
    static constexpr std::size_t placesPerColumn = 128;
    static constexpr std::size_t watchedColumns =
        256;  // enough for any log; bounds the memory for wild files

    struct Place {
        std::uint32_t hash = 0;
        LightweightString<char> text;
    };
    struct Column {
        std::vector<Place> places;
        int patience = fullPatience;
        int rest = 0;
    };
    static constexpr int fullPatience = 256;
    static constexpr int worthOfHit = 8;
    static constexpr int longRest = 4096;

    /// Where a noted text goes: a field, and the place where it is kept, which may be null.
    struct Target {
        std::size_t field;
        Place* place;
    };

    Column* columnToWatch(std::size_t column);
    void note(std::string_view text, Target target);

    std::vector<Column> m_columns;
    // The first m_noted of each are in use. Their elements are assigned rather than appended: it spares each
    // text two waits for its own store.
    std::vector<std::string_view> m_notedTexts;
    std::vector<Target> m_notedTargets;
    std::size_t m_noted = 0;
    std::size_t m_fieldsOfLine = 0;
};
