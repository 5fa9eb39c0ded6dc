// Tagging the records that match a query, beside strcasestr over the same column as plain strings.
#include <benchmark/benchmark.h>
#include <cstring>

#include "bench/GeneratedLog.h"

namespace {

void setQuery(kesta& database, unsigned column, const char* text) {
    const Zr::Ptr<dbrecord> query = database.make_dummy_record();
    query->set_field(static_cast<int>(column), text, false);
    database.set_query(query.get());
}

void matchLog(benchmark::State& state, unsigned column, const char* text) {
    const Zr::Ptr<kesta> database = GeneratedLog::database(static_cast<unsigned>(state.range(0)));
    setQuery(*database, column, text);
    for (auto _ : state) benchmark::DoNotOptimize(database->tag_matching_records(0));
}

void matchStrings(benchmark::State& state, unsigned column, const char* text) {
    const GeneratedLog::Table table = GeneratedLog::table(static_cast<unsigned>(state.range(0)));
    std::vector<bool> tags(table.size());
    for (auto _ : state) {
        for (std::size_t row = 0; row < table.size(); ++row) {
            tags[row] = strcasestr(table[row][column].c_str(), text) != nullptr;
        }
        benchmark::ClobberMemory();
    }
}

void rows(benchmark::internal::Benchmark* bench) {
    bench->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(matchLog, name, GeneratedLog::eName, "shot 12A")->Apply(rows);
BENCHMARK_CAPTURE(matchStrings, name, GeneratedLog::eName, "shot 12A")->Apply(rows);
BENCHMARK_CAPTURE(matchLog, description, GeneratedLog::eDescription, "street, night")->Apply(rows);
BENCHMARK_CAPTURE(matchStrings, description, GeneratedLog::eDescription, "street, night")->Apply(rows);

}  // namespace
