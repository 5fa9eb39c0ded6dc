// Benchmarks: how the files of this folder measure.
//
// A benchmark is named "operation/variant", the variant being kesta or the baseline that stands beside it,
// and takes the number of records as its argument: 1,000 to 1,000,000. How often a round is repeated depends
// on that number only, so that both variants do the same. Each benchmark is meant to run in a process of its
// own, as report.py runs them: then the heap is as a new process has it, and the counter "peak_bytes" is its
// own.
//
// Thread-safety: one thread at a time.
#pragma once

#include <benchmark/benchmark.h>
#include <functional>
#include <string>
#include <utility>

#include "bench/LogFiles.h"

namespace Benchmarks {

using Body = std::function<void(benchmark::State&)>;

/// Registers a benchmark of CPU time, for every number of records.
void add(const std::string& name, Body body);

/// The same with a single round, for what a process does only once from a fresh start.
void addOnce(const std::string& name, Body body);

/// The same for what waits for the disk: time on the wall counts too.
void addOnDisk(const std::string& name, Body body);

/// The same for what another process does: the body sets its CPU time as the iteration's, in seconds.
void addProcess(const std::string& name, Body body);

/// The number of records to measure with.
inline unsigned rows(const benchmark::State& state) {
    return static_cast<unsigned>(state.range(0));
}

/// Bytes of memory that this process holds now, and at most since it began. The latter is not the system's
/// ru_maxrss, which remembers the process that started this one.
double memoryNow();
double memoryAtPeak();

/// Measures work(prepare(log)) with a log of its own for every round. What prepare returns lives as long as
/// the round. The last round gets the log itself, so that a single one finds no second log in memory.
template <class Log, class Prepare, class Work>
void change(benchmark::State& state, Log log, Prepare prepare, Work work) {
    benchmark::IterationCount left = state.max_iterations;
    for (auto _ : state) {
        state.PauseTiming();
        {
            Log own = --left == 0 ? std::move(log) : LogFiles::copy(log);
            auto&& prepared = prepare(own);
            state.ResumeTiming();
            work(prepared);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}

template <class Log, class Work>
void change(benchmark::State& state, Log log, Work work) {
    change(
        state, std::move(log), [](Log& own) -> Log& { return own; }, work);
}

// What each file registers.
void addFiles();
void addMatches();
void addPrograms();
void addRecords();
void addSorts();
void addViews();

}  // namespace Benchmarks
