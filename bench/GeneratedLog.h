// GeneratedLog: the log of a production that never was, as large as a benchmark wants it.
//
// Twenty-four columns of the standard names. As in a real log, reels, scenes, dates and crew stay the same
// over many rows, while identifiers, names and codes differ from row to row; some cells are empty. The same
// seed gives the same log, on every machine. A log file of 300,000 records has about 93 MB.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "record/kesta.h"

class GeneratedLog {
 public:
    enum Column : unsigned {
        eCookie,
        eType,
        eFlags,
        eName,
        eDate,
        eStartTime,
        eEndTime,
        eDuration,
        eReel,
        eScene,
        eShot,
        eWho,
        eDescription,
        eNotes,
        eSoundStart,
        eSoundEnd,
        eSoundReel,
        eStartKeycode,
        eEndKeycode,
        eFilmDuration,
        eCameraReel,
        eLabReel,
        eDrive,
        eTag,
        eColumnCount
    };
    using Row = std::array<std::string, eColumnCount>;

    explicit GeneratedLog(std::uint64_t seed = 1) : m_random(seed) {}

    static std::vector<DBFieldDesc> columns();

    /// The texts of the next record; valid until the next call.
    const Row& next();

    /// Writes the first records of the log as a log file; and records whose every text is that of one of the
    /// log's first twenty, drawn at random. Both return whether the file could be written.
    static bool write(const std::string& fileName, unsigned rows);
    static bool writeRepeating(const std::string& fileName, unsigned rows);

 private:
    std::uint64_t random();
    unsigned random(unsigned limit) { return static_cast<unsigned>(random() % limit); }
    template <class Next>
    static bool writeRows(const std::string& fileName, unsigned rows, const Next& next);

    void nextReel();
    void nextScene();

    Row m_row;
    std::uint64_t m_random;
    unsigned m_reel = 0;
    unsigned m_rowsOfReel = 0;
    unsigned m_rowsOfScene = 0;
    unsigned m_day = 0;
    unsigned m_frame = 0;
    unsigned m_foot = 0;
    unsigned m_take = 0;
};
