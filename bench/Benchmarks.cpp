#include "bench/Benchmarks.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace {

constexpr unsigned sizes[] = {1000, 10'000, 100'000, 1'000'000};

// A line of /proc/self/status, in bytes.
double memory(const char* key) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind(key, 0) == 0) return 1024.0 * std::atof(line.c_str() + std::strlen(key));
    }
    return 0;
}

benchmark::internal::Benchmark* addSize(const std::string& name, const Benchmarks::Body& body,
                                        unsigned rows) {
    const auto measured = [body](benchmark::State& state) {
        body(state);
        state.counters.insert({"peak_bytes", Benchmarks::memoryAtPeak()});
    };
    return benchmark::RegisterBenchmark(name.c_str(), measured)->Arg(rows)->Unit(benchmark::kMillisecond);
}

// As many rounds as have so many records in all, but at least one.
unsigned rounds(unsigned records, unsigned rows) {
    return std::max(1U, records / rows);
}

}  // namespace

void Benchmarks::add(const std::string& name, Body body) {
    for (const unsigned rows : sizes) addSize(name, body, rows)->Iterations(rounds(100'000, rows));
}

void Benchmarks::addOnce(const std::string& name, Body body) {
    for (const unsigned rows : sizes) addSize(name, body, rows)->Iterations(1);
}

void Benchmarks::addOnDisk(const std::string& name, Body body) {
    for (const unsigned rows : sizes) {
        addSize(name, body, rows)->Iterations(rounds(10'000, rows))->UseRealTime();
    }
}

void Benchmarks::addProcess(const std::string& name, Body body) {
    for (const unsigned rows : sizes) {
        addSize(name, body, rows)->Iterations(rounds(10'000, rows))->UseManualTime();
    }
}

double Benchmarks::memoryNow() {
    return memory("VmRSS:");
}

double Benchmarks::memoryAtPeak() {
    return memory("VmHWM:");
}

int main(int argc, char** argv) {
    Benchmarks::addFiles();
    Benchmarks::addPrograms();
    Benchmarks::addRecords();
    Benchmarks::addMatches();
    Benchmarks::addSorts();
    Benchmarks::addViews();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
