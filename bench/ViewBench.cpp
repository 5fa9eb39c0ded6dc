// Views: rows that go under two chained views, showing all rows of another view, building a view, tagging
// duplicates, a subview of tagged rows, and sorting a view beside sorting its database.
//
// Scattered rows are every tenth row of a sorted view, each a run of its own in the database; a block is half
// of the database in one deletion.
#include <benchmark/benchmark.h>

#include "bench/GeneratedLog.h"
#include "view/KSTView.h"

namespace {

constexpr unsigned step = 10;

Zr::Ptr<kesta> newLog(const benchmark::State& state) {
    return Zr::Ptr<kesta>(new kesta(*GeneratedLog::database(static_cast<unsigned>(state.range(0))), 1));
}

int sortColumn(const kesta& log) {
    return static_cast<int>(log.get_num_fields()) / 2;
}

KSTView viewOn(kesta& log) {
    KSTView view(new KSTViewRep(&log));
    view->displayAllRecords();
    return view;
}

KSTView viewOn(kesta& log, const KSTView& base) {
    KSTView view(new KSTViewRep(&log));
    view->baseView(base.rep());
    view->displayAllRecords();
    return view;
}

void sorted(const KSTView& view, const kesta& log) {
    view->set_sortfield(sortColumn(log));
    view->sort(1, 0);
}

template <class Delete>
void deleteUnderTwoViews(benchmark::State& state, Delete deletion) {
    for (auto _ : state) {
        state.PauseTiming();
        {
            const Zr::Ptr<kesta> log = newLog(state);
            const KSTView base = viewOn(*log);
            sorted(base, *log);
            const KSTView top = viewOn(*log, base);
            for (unsigned row = 0; row < top->get_num_records(); row += step) {
                top->set_tag(row, 1);
                log->set_tag(static_cast<unsigned>(top->baseIndex(static_cast<int>(row))), 1);
            }
            state.ResumeTiming();
            deletion(*log, top);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}

void deleteThroughTopView(benchmark::State& state) {
    deleteUnderTwoViews(state, [](kesta&, const KSTView& top) { top->deleteTagged(); });
}

void deleteInDatabase(benchmark::State& state) {
    deleteUnderTwoViews(state, [](kesta& log, const KSTView&) { log.delete_tagged_records(); });
}

void deleteBlock(benchmark::State& state) {
    deleteUnderTwoViews(state,
                        [](kesta& log, const KSTView&) { log.delete_records(0, log.get_num_records() / 2); });
}

void removeFromViews(benchmark::State& state) {
    deleteUnderTwoViews(state, [](kesta&, const KSTView& top) { top->removeTagged(); });
}

void buildView(benchmark::State& state) {
    const Zr::Ptr<kesta> log = newLog(state);
    for (auto _ : state) benchmark::DoNotOptimize(viewOn(*log).rep());
}

void displayAllFrom(benchmark::State& state) {
    const Zr::Ptr<kesta> log = newLog(state);
    const KSTView all = viewOn(*log);
    for (auto _ : state) {
        const KSTView view(new KSTViewRep(log.get()));
        view->displayRecordsAt(0, static_cast<int>(all->get_num_records()) / 2, 0);
        benchmark::DoNotOptimize(view->displayAllFromAt(all.rep(), 1));
    }
}

void tagDuplicates(benchmark::State& state) {
    const Zr::Ptr<kesta> log = newLog(state);
    const KSTView view = viewOn(*log);
    for (auto _ : state) benchmark::DoNotOptimize(view->tagDuplicates(sortColumn(*log)));
}

void tagSubview(benchmark::State& state) {
    const Zr::Ptr<kesta> log = newLog(state);
    const KSTView view = viewOn(*log);
    for (unsigned row = 0; row < view->get_num_records(); row += 2) view->set_tag(row, 1);
    for (auto _ : state) benchmark::DoNotOptimize(KSTView(view->newTagSubview()).rep());
}

// Sorting what is sorted already would be another matter, so each round begins from the log's own order.
void sortView(benchmark::State& state) {
    const Zr::Ptr<kesta> log = newLog(state);
    for (auto _ : state) {
        state.PauseTiming();
        const KSTView view = viewOn(*log);
        state.ResumeTiming();
        sorted(view, *log);
    }
}

void sortDatabase(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        const Zr::Ptr<kesta> log = newLog(state);
        log->set_sortfield(sortColumn(*log));
        state.ResumeTiming();
        log->sort(1, 0);
    }
}

void many(benchmark::internal::Benchmark* bench) {
    bench->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

void growing(benchmark::internal::Benchmark* bench) {
    bench->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(deleteThroughTopView)->Apply(many);
BENCHMARK(deleteInDatabase)->Apply(many);
BENCHMARK(deleteBlock)->Apply(many);
BENCHMARK(removeFromViews)->Apply(many);
BENCHMARK(buildView)->Apply(growing);
BENCHMARK(displayAllFrom)->Apply(growing);
BENCHMARK(tagDuplicates)->Apply(growing);
BENCHMARK(tagSubview)->Apply(growing);
BENCHMARK(sortView)->Apply(growing);
BENCHMARK(sortDatabase)->Apply(growing);

}  // namespace
