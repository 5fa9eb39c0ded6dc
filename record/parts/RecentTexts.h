// RecentTexts: makes the strings of the lines of a log, sharing the texts that come again.
//
// Logs repeat reels, scenes, names, dates and codes from row to row. For each column this keeps some of the
// texts that have been seen, by hash, each in the one place its hash names, and hands out the kept string for
// an equal text. A column whose texts hardly ever come again is left in peace for a while.
//
// Thread-safety: one thread at a time.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

#include "record/parts/RecordMemory.h"

class RecentTexts {
 public:
    /// Makes room for as many fields as the line before had, in an empty list.
    void beginLine(FieldList& fields) { m_memory.reserve(fields, m_fieldsOfLine); }

    /// Appends a field of that text.
    void append(FieldList& fields, std::string_view text);

    void endLine(const FieldList& fields) noexcept { m_fieldsOfLine = fields.size(); }

 private:
    static constexpr std::size_t placesPerColumn = 128;
    static constexpr std::size_t watchedColumns = 256;  // enough for any log; wild files may have more

    /// What a text begins and ends with, and its length: all of it, up to sixteen bytes.
    struct Ends {
        explicit Ends(std::string_view text) noexcept;
        Ends() noexcept = default;

        std::uint64_t head = 0;
        std::uint64_t tail = 0;
        std::size_t length = 0;
    };

    struct Place {
        Ends ends;
        LightweightString<char> text;
    };
    struct Column {
        std::unique_ptr<Place[]> places;
        int patience = fullPatience;
        int rest = 0;
    };
    static constexpr int fullPatience = 256;
    static constexpr int worthOfHit = 8;
    static constexpr int longRest = 4096;

    static std::size_t placeOf(const Ends& ends) noexcept;
    Column* columnToWatch(std::size_t number);
    static bool holds(const Place& place, const Ends& ends, std::string_view text) noexcept;
    void keep(std::string_view text, const Ends& ends, Place& place);
    static void rest(Column& column) noexcept;

    RecordMemory m_memory;
    std::array<Column, watchedColumns> m_columns;
    std::size_t m_fieldsOfLine = 0;
};
