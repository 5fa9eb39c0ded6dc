// Sorting a log, beside std::sort over plain strings with the same order. Both begin with the rows as the log
// has them.
#include <algorithm>
#include <cctype>
#include <strings.h>

#include "bench/Benchmarks.h"
#include "bench/GeneratedLog.h"
#include "support/Ascii.h"
#include "support/StringFunctions.h"

namespace {

int compareKey(const std::string& a, const std::string& b, bool timecode) {
    if (a.empty()) return b.empty() ? 0 : 1;
    if (b.empty()) return -1;
    const char* const textA = Ascii::skipSpace(a.c_str());
    const char* const textB = Ascii::skipSpace(b.c_str());
    if (!timecode) return strxcmp(textA, textB);
    if (const int result = strncasecmp(textA, textB, 8)) return result;
    const auto frames = [](const char* text) { return strnlen(text, 9) == 9 ? text + 9 : ""; };
    return strcasecmp(frames(textA), frames(textB));
}

void sortTable(PlainLog::Table& table, const std::vector<int>& keys) {
    const auto blank = [](const PlainLog::Row& row) {
        return std::all_of(row.begin(), row.end(), [](const std::string& text) { return text.empty(); });
    };
    std::sort(table.begin(), table.end(), [&](const PlainLog::Row& a, const PlainLog::Row& b) {
        const bool blankA = blank(a);
        const bool blankB = blank(b);
        if (blankA || blankB) return blankA < blankB;
        for (const int key : keys) {
            const auto i = static_cast<std::size_t>(key);
            const int result = compareKey(a[i], b[i], key == GeneratedLog::eStartTime);
            if (result != 0) return result < 0;
            if (a[i].empty()) return false;
        }
        return false;
    });
}

void sortDatabase(kesta& database, std::vector<int> keys) {
    keys.push_back(-1);
    database.set_sortfields(keys.data());
    database.sort(1, 0);
}

void addSort(const std::string& operation, const std::vector<int>& keys) {
    Benchmarks::add(operation + "/kesta", [keys](benchmark::State& state) {
        Benchmarks::change(state, LogFiles::database(Benchmarks::rows(state)),
                           [&keys](const Zr::Ptr<kesta>& log) { sortDatabase(*log, keys); });
    });
    Benchmarks::add(operation + "/plain", [keys](benchmark::State& state) {
        Benchmarks::change(state, LogFiles::table(Benchmarks::rows(state)),
                           [&keys](PlainLog::Table& log) { sortTable(log, keys); });
    });
}

}  // namespace

void Benchmarks::addSorts() {
    addSort("sort-name", {GeneratedLog::eName});
    addSort("sort-three-columns", {GeneratedLog::eScene, GeneratedLog::eReel, GeneratedLog::eName});
    addSort("sort-timecode", {GeneratedLog::eStartTime});
}
