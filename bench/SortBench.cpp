// Sorting a log, beside std::sort over plain strings with the same order. Both begin with the rows as the log
// has them.
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
    const Zr::Ptr<kesta> log = GeneratedLog::database(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        Zr::Ptr<kesta> copy(new kesta(*log, 1));
        state.ResumeTiming();
        sortDatabase(*copy, keys);
        state.PauseTiming();
        copy.reset();
        state.ResumeTiming();
    }
}

void sortStrings(benchmark::State& state, const std::vector<int>& keys) {
    const GeneratedLog::Table log = GeneratedLog::table(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        GeneratedLog::Table copy = log;
        state.ResumeTiming();
        sortTable(copy, keys);
        state.PauseTiming();
        copy = {};
        state.ResumeTiming();
    }
}

const std::vector<int> name = {GeneratedLog::eName};
const std::vector<int> timecode = {GeneratedLog::eStartTime};
const std::vector<int> threeKeys = {GeneratedLog::eScene, GeneratedLog::eReel, GeneratedLog::eName};

void rows(benchmark::internal::Benchmark* bench) {
    bench->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(sortLog, name, name)->Apply(rows);
BENCHMARK_CAPTURE(sortStrings, name, name)->Apply(rows);
BENCHMARK_CAPTURE(sortLog, sceneReelName, threeKeys)->Apply(rows);
BENCHMARK_CAPTURE(sortStrings, sceneReelName, threeKeys)->Apply(rows);
BENCHMARK_CAPTURE(sortLog, timecode, timecode)->Apply(rows);
BENCHMARK_CAPTURE(sortStrings, timecode, timecode)->Apply(rows);

}  // namespace
