// Sorting a log, beside std::sort over plain strings with the same order.
//
// Both are sorted from the order of the identifiers, which is no order at all: rows that follow each other
// lie far apart in memory.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cctype>
#include <strings.h>

#include "bench/GeneratedLog.h"
#include "support/Ascii.h"
#include "support/StringFunctions.h"

namespace {

using Strings = std::vector<std::string>;

const char* skipSpace(const std::string& text) {
    const char* begin = text.c_str();
    while (Ascii::isSpace(*begin)) ++begin;
    return begin;
}

int compareKey(const std::string& a, const std::string& b, bool timecode) {
    if (a.empty()) return b.empty() ? 0 : 1;
    if (b.empty()) return -1;
    const char* const textA = skipSpace(a);
    const char* const textB = skipSpace(b);
    if (!timecode) return strxcmp(textA, textB);
    if (const int result = strncasecmp(textA, textB, 8)) return result;
    const auto frames = [](const char* text) { return strnlen(text, 9) == 9 ? text + 9 : ""; };
    return strcasecmp(frames(textA), frames(textB));
}

void sortTable(GeneratedLog::Table& table, const std::vector<int>& keys) {
    const auto blank = [](const Strings& row) {
        return std::all_of(row.begin(), row.end(), [](const std::string& text) { return text.empty(); });
    };
    std::sort(table.begin(), table.end(), [&](const Strings& a, const Strings& b) {
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

void sortLog(benchmark::State& state, const std::vector<int>& keys) {
    const Zr::Ptr<kesta> database = GeneratedLog::database(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        sortDatabase(*database, {GeneratedLog::eCookie});
        state.ResumeTiming();
        sortDatabase(*database, keys);
    }
}

void sortStrings(benchmark::State& state, const std::vector<int>& keys) {
    GeneratedLog::Table table = GeneratedLog::table(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        sortTable(table, {GeneratedLog::eCookie});
        state.ResumeTiming();
        sortTable(table, keys);
    }
}

const std::vector<int> name = {GeneratedLog::eName};
const std::vector<int> timecode = {GeneratedLog::eStartTime};
const std::vector<int> threeKeys = {GeneratedLog::eReel, GeneratedLog::eScene, GeneratedLog::eName};

void rows(benchmark::internal::Benchmark* bench) {
    bench->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(sortLog, name, name)->Apply(rows);
BENCHMARK_CAPTURE(sortStrings, name, name)->Apply(rows);
BENCHMARK_CAPTURE(sortLog, reelSceneName, threeKeys)->Apply(rows);
BENCHMARK_CAPTURE(sortStrings, reelSceneName, threeKeys)->Apply(rows);
BENCHMARK_CAPTURE(sortLog, timecode, timecode)->Apply(rows);
BENCHMARK_CAPTURE(sortStrings, timecode, timecode)->Apply(rows);

}  // namespace
