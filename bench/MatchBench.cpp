// Tagging the records that match a query, beside strcasestr over the same column as plain strings.
#include <cstring>

#include "bench/Benchmarks.h"
#include "bench/GeneratedLog.h"

namespace {

void setQuery(kesta& database, unsigned column, const char* text) {
    const Zr::Ptr<dbrecord> query = database.make_dummy_record();
    query->set_field(static_cast<int>(column), text, false);
    database.set_query(query.get());
}

void matchKesta(benchmark::State& state, unsigned column, const char* text) {
    const Zr::Ptr<kesta> database = LogFiles::database(Benchmarks::rows(state));
    setQuery(*database, column, text);
    for (auto _ : state) benchmark::DoNotOptimize(database->tag_matching_records(0));
}

void matchStrcasestr(benchmark::State& state, unsigned column, const char* text) {
    const PlainLog::Table table = LogFiles::table(Benchmarks::rows(state));
    std::vector<bool> tags(table.size());
    for (auto _ : state) {
        for (std::size_t row = 0; row < table.size(); ++row) {
            tags[row] = strcasestr(table[row][column].c_str(), text) != nullptr;
        }
        benchmark::ClobberMemory();
    }
}

void addMatch(const std::string& operation, unsigned column, const char* text) {
    Benchmarks::add(operation + "/kesta", [=](benchmark::State& state) { matchKesta(state, column, text); });
    Benchmarks::add(operation + "/strcasestr",
                    [=](benchmark::State& state) { matchStrcasestr(state, column, text); });
}

}  // namespace

void Benchmarks::addMatches() {
    addMatch("match-name", GeneratedLog::eName, "shot 12A");
    addMatch("match-description", GeneratedLog::eDescription, "street, night");
}
