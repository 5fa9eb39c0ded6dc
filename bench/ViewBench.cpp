// Views: building one, showing all its rows, subviews, duplicates, sorting, and rows that go under two
// chained views. Baselines are lists of row numbers over plain strings, but sorting is measured beside the
// sort of a database whose records are in the same order.
//
// Scattered rows are every tenth row of a sorted view, each a run of its own in the database; a block is half
// of the database in one deletion.
#include <algorithm>
#include <cctype>
#include <numeric>
#include <unordered_set>

#include "bench/Benchmarks.h"
#include "bench/GeneratedLog.h"
#include "view/KSTView.h"

namespace {

constexpr unsigned step = 10;
constexpr int sortColumn = GeneratedLog::eDescription;

using RowNumbers = std::vector<unsigned>;

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

void sortBy(iKST& rows, int column) {
    rows.set_sortfield(column);
    rows.sort(1, 0);
}

RowNumbers allRows(std::size_t count) {
    RowNumbers rows(count);
    std::iota(rows.begin(), rows.end(), 0U);
    return rows;
}

void buildKesta(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    for (auto _ : state) benchmark::DoNotOptimize(viewOn(*log).rep());
}

void buildPlain(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(allRows(Benchmarks::rows(state)).data());
}

// Every field goes into a line of text, as on its way to a screen.
void showKesta(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    const KSTView view = viewOn(*log);
    std::string line;
    for (auto _ : state) {
        for (unsigned row = 0; row < view->get_num_records(); ++row) {
            line.clear();
            for (unsigned i = 0; i < GeneratedLog::eColumnCount; ++i) line += view->getField(row, i).view();
            benchmark::DoNotOptimize(line.data());
        }
    }
}

void showPlain(benchmark::State& state) {
    const PlainLog::Table log = LogFiles::table(Benchmarks::rows(state));
    const RowNumbers view = allRows(log.size());
    std::string line;
    for (auto _ : state) {
        for (const unsigned row : view) {
            line.clear();
            for (const std::string& text : log[row]) line += text;
            benchmark::DoNotOptimize(line.data());
        }
    }
}

void showFromOther(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    const KSTView all = viewOn(*log);
    for (auto _ : state) {
        const KSTView view(new KSTViewRep(log.get()));
        view->displayRecordsAt(0, static_cast<int>(all->get_num_records()) / 2, 0);
        benchmark::DoNotOptimize(view->displayAllFromAt(all.rep(), 1));
    }
}

void duplicatesKesta(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    const KSTView view = viewOn(*log);
    for (auto _ : state) benchmark::DoNotOptimize(view->tagDuplicates(sortColumn));
}

void duplicatesPlain(benchmark::State& state) {
    const PlainLog::Table log = LogFiles::table(Benchmarks::rows(state));
    std::vector<char> tags(log.size());
    for (auto _ : state) {
        std::unordered_set<std::string> seen;
        for (std::size_t row = 0; row < log.size(); ++row) {
            std::string text = log[row][sortColumn];
            for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            tags[row] = !seen.insert(std::move(text)).second;
        }
        benchmark::ClobberMemory();
    }
}

void subviewKesta(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    const KSTView view = viewOn(*log);
    for (unsigned row = 0; row < view->get_num_records(); row += 2) view->set_tag(row, 1);
    for (auto _ : state) benchmark::DoNotOptimize(KSTView(view->newTagSubview()).rep());
}

void subviewPlain(benchmark::State& state) {
    const RowNumbers view = allRows(Benchmarks::rows(state));
    std::vector<char> tags(view.size());
    for (std::size_t row = 0; row < tags.size(); row += 2) tags[row] = 1;
    for (auto _ : state) {
        RowNumbers subview;
        for (unsigned row = 0; row < view.size(); ++row) {
            if (tags[row]) subview.push_back(row);
        }
        benchmark::DoNotOptimize(subview.data());
    }
}

// Sorting what is sorted already would be another matter, so each round begins from the log's own order.
void sortView(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    for (auto _ : state) {
        state.PauseTiming();
        const KSTView view = viewOn(*log);
        state.ResumeTiming();
        sortBy(*view, sortColumn);
    }
}

void sortDatabase(benchmark::State& state) {
    Benchmarks::change(state, LogFiles::database(Benchmarks::rows(state)),
                       [](const Zr::Ptr<kesta>& log) { sortBy(*log, sortColumn); });
}

void sortViewOfView(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    const KSTView base = viewOn(*log);
    sortBy(*base, GeneratedLog::eName);
    for (auto _ : state) {
        state.PauseTiming();
        const KSTView top = viewOn(*log, base);
        state.ResumeTiming();
        sortBy(*top, sortColumn);
    }
}

void sortSortedDatabase(benchmark::State& state) {
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    sortBy(*log, GeneratedLog::eName);
    Benchmarks::change(state, log, [](const Zr::Ptr<kesta>& own) { sortBy(*own, sortColumn); });
}

// A database under two chained views, the lower one sorted, with every tenth row of the upper one tagged in
// all three.
struct Chain {
    explicit Chain(const Zr::Ptr<kesta>& database) : log(database), base(viewOn(*log)) {
        sortBy(*base, sortColumn);
        top = viewOn(*log, base);
        for (unsigned row = 0; row < top->get_num_records(); row += step) {
            top->set_tag(row, 1);
            log->set_tag(static_cast<unsigned>(top->baseIndex(static_cast<int>(row))), 1);
        }
    }

    Zr::Ptr<kesta> log;
    KSTView base;
    KSTView top;
};

using ChangeChain = void (*)(Chain&);

Benchmarks::Body underTwoViews(ChangeChain work) {
    return [work](benchmark::State& state) {
        Benchmarks::change(
            state, LogFiles::database(Benchmarks::rows(state)),
            [](const Zr::Ptr<kesta>& log) { return Chain(log); }, work);
    };
}

struct PlainChain {
    PlainLog::Table& log;
    RowNumbers base;
    RowNumbers top;
};

// The rows that stay, by their new numbers.
void renumber(RowNumbers& rows, const std::vector<char>& gone, const RowNumbers& newNumbers) {
    const auto end =
        std::remove_if(rows.begin(), rows.end(), [&gone](unsigned row) { return gone[row] != 0; });
    rows.erase(end, rows.end());
    for (unsigned& row : rows) row = newNumbers[row];
}

RowNumbers numbersWithout(const std::vector<char>& gone) {
    RowNumbers numbers;
    unsigned next = 0;
    for (const char isGone : gone) numbers.push_back(isGone ? next : next++);
    return numbers;
}

void deletePlain(PlainChain& chain) {
    std::vector<char> goneFromBase(chain.base.size());
    std::vector<char> gone(chain.log.size());
    for (std::size_t row = 0; row < chain.top.size(); row += step) {
        goneFromBase[chain.top[row]] = 1;
        gone[chain.base[chain.top[row]]] = 1;
    }
    renumber(chain.top, goneFromBase, numbersWithout(goneFromBase));
    renumber(chain.base, gone, numbersWithout(gone));
    std::size_t row = 0;
    const auto isGone = [&](const PlainLog::Row&) { return gone[row++] != 0; };
    chain.log.erase(std::remove_if(chain.log.begin(), chain.log.end(), isGone), chain.log.end());
}

void deleteUnderPlainLists(benchmark::State& state) {
    const auto prepare = [](PlainLog::Table& log) {
        PlainChain chain{log, allRows(log.size()), allRows(log.size())};
        std::stable_sort(chain.base.begin(), chain.base.end(),
                         [&log](unsigned a, unsigned b) { return log[a][sortColumn] < log[b][sortColumn]; });
        return chain;
    };
    Benchmarks::change(state, LogFiles::table(Benchmarks::rows(state)), prepare, deletePlain);
}

}  // namespace

void Benchmarks::addViews() {
    add("build-view/kesta", buildKesta);
    add("build-view/plain", buildPlain);
    add("show/kesta", showKesta);
    add("show/plain", showPlain);
    add("show-from-other-view/kesta", showFromOther);
    add("tag-duplicates/kesta", duplicatesKesta);
    add("tag-duplicates/plain", duplicatesPlain);
    add("subview/kesta", subviewKesta);
    add("subview/plain", subviewPlain);
    add("sort-view/kesta", sortView);
    add("sort-view/database", sortDatabase);
    add("sort-view-of-view/kesta", sortViewOfView);
    add("sort-view-of-view/database", sortSortedDatabase);
    add("delete-through-view/kesta", underTwoViews([](Chain& chain) { chain.top->deleteTagged(); }));
    add("delete-through-view/plain", deleteUnderPlainLists);
    add("delete-under-views/kesta", underTwoViews([](Chain& chain) { chain.log->delete_tagged_records(); }));
    add("delete-under-views/plain", deleteUnderPlainLists);
    add("delete-block-under-views/kesta",
        underTwoViews([](Chain& chain) { chain.log->delete_records(0, chain.log->get_num_records() / 2); }));
    add("remove-from-views/kesta", underTwoViews([](Chain& chain) { chain.top->removeTagged(); }));
}
