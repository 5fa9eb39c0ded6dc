// Deleting every tenth record of a log, each a run of its own, with and without a listener, beside one pass
// over plain strings that drops as many.
#include <algorithm>
#include <benchmark/benchmark.h>

#include "bench/GeneratedLog.h"

namespace {

constexpr unsigned step = 10;

void deleteTagged(benchmark::State& state, bool listen) {
    const Zr::Ptr<kesta> log = GeneratedLog::database(static_cast<unsigned>(state.range(0)));
    const int deletions = NotifyMsgTypeDictionary::instance().intern("recordsDeleted");
    for (auto _ : state) {
        state.PauseTiming();
        {
            const Zr::Ptr<kesta> copy(new kesta(*log, 1));
            std::size_t heard = 0;
            Zr::Ptr<Zr::Guard> guard;
            if (listen) {
                guard = copy->registerNotification(deletions, [&heard](const NotifyMsg& message) {
                    heard += message.text().length();
                    return 0;
                });
            }
            for (unsigned row = 0; row < copy->get_num_records(); row += step) copy->set_tag(row, 1);
            state.ResumeTiming();
            benchmark::DoNotOptimize(copy->delete_tagged_records());
            state.PauseTiming();
            benchmark::DoNotOptimize(heard);
        }
        state.ResumeTiming();
    }
}

void deleteStrings(benchmark::State& state) {
    const GeneratedLog::Table log = GeneratedLog::table(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        {
            GeneratedLog::Table copy = log;
            state.ResumeTiming();
            unsigned row = 0;
            copy.erase(
                std::remove_if(copy.begin(), copy.end(), [&row](const auto&) { return row++ % step == 0; }),
                copy.end());
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}

void rows(benchmark::internal::Benchmark* bench) {
    bench->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(deleteTagged, nobodyListens, false)->Apply(rows);
BENCHMARK_CAPTURE(deleteTagged, listened, true)->Apply(rows);
BENCHMARK(deleteStrings)->Apply(rows);

}  // namespace
