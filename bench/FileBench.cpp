// Loading and saving a log file of 300,000 records, about 93 MB, beside a plain loader and writer of the same
// file, and beside reading the bytes and counting the separators. Memory is measured in a process of its own.
//
// The plain writer leaves its bytes to the system; the library's save has them on the disk when it answers.
// So that like stands beside like, a flush to disk is also timed behind the plain writer.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <malloc.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/GeneratedLog.h"
#include "bench/PlainLog.h"
#include "support/StringFunctions.h"

namespace {

constexpr unsigned rows = 300000;

/// The generated log and a place to save to, in a folder of their own while the program runs.
class LogFiles {
 public:
    static const LogFiles& instance() {
        static const LogFiles files;
        return files;
    }
    LogFiles(const LogFiles&) = delete;
    LogFiles& operator=(const LogFiles&) = delete;
    ~LogFiles() { std::filesystem::remove_all(m_folder); }

    std::string log() const { return m_folder + "/log.kst"; }
    std::string saved() const { return m_folder + "/saved.kst"; }
    std::int64_t bytes() const { return static_cast<std::int64_t>(std::filesystem::file_size(log())); }

 private:
    LogFiles() {
        std::string name = (std::filesystem::temp_directory_path() / "kesta_bench_XXXXXX").string();
        if (!::mkdtemp(name.data())) std::abort();
        m_folder = name;
        if (!GeneratedLog::write(log(), rows)) std::abort();
    }

    std::string m_folder;
};

Zr::Ptr<kesta> loadLog() {
    const LightweightString<wchar_t> name = Zr::WStringFromAscii(LogFiles::instance().log().c_str());
    return Zr::Ptr<kesta>(new kesta(name, INT_MAX, true));
}

void finish(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * rows);
    state.SetBytesProcessed(state.iterations() * LogFiles::instance().bytes());
}

void loadKesta(benchmark::State& state) {
    LogFiles::instance();
    for (auto _ : state) {
        const Zr::Ptr<kesta> database = loadLog();
        if (database->get_num_records() != rows) state.SkipWithError("records are missing");
        state.PauseTiming();  // the end of the database is not part of loading
        const_cast<Zr::Ptr<kesta>&>(database).reset();
        state.ResumeTiming();
    }
    finish(state);
}

void loadPlain(benchmark::State& state) {
    const std::string name = LogFiles::instance().log();
    for (auto _ : state) {
        PlainLog::Table table = PlainLog::load(name);
        benchmark::DoNotOptimize(table);
        state.PauseTiming();
        table = {};
        state.ResumeTiming();
    }
    finish(state);
}

void readAndCount(benchmark::State& state) {
    const std::string name = LogFiles::instance().log();
    std::string bytes(static_cast<std::size_t>(LogFiles::instance().bytes()), '\0');
    for (auto _ : state) {
        std::FILE* const file = std::fopen(name.c_str(), "rb");
        const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
        std::size_t separators = 0;
        const char* at = bytes.data();
        const char* const end = at + count;
        while ((at = static_cast<const char*>(std::memchr(at, ',', static_cast<std::size_t>(end - at))))) {
            ++separators;
            ++at;
        }
        benchmark::DoNotOptimize(separators);
    }
    finish(state);
}

void saveKesta(benchmark::State& state) {
    const Zr::Ptr<kesta> database = loadLog();
    database->set_filename(Zr::WStringFromAscii(LogFiles::instance().saved().c_str()));
    for (auto _ : state) {
        if (database->save_text() != static_cast<int>(rows)) state.SkipWithError("the save failed");
    }
    finish(state);
}

void savePlain(benchmark::State& state, bool flushed) {
    const PlainLog::Table table = PlainLog::load(LogFiles::instance().log());
    const std::string name = LogFiles::instance().saved();
    for (auto _ : state) {
        PlainLog::save(table, name);
        if (!flushed) continue;
        const int file = ::open(name.c_str(), O_WRONLY);
        ::fsync(file);
        ::close(file);
    }
    finish(state);
}

/// A line of /proc/self/status, in bytes.
double memory(const char* key) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind(key, 0) == 0) return 1024.0 * std::atof(line.c_str() + std::strlen(key));
    }
    return 0;
}

/// Memory that a load takes at most, and when it is done, as multiples of the file's size.
template <class Load>
void measureMemory(benchmark::State& state, Load load) {
    LogFiles::instance();
    double grown[2] = {};
    for (auto _ : state) {
        int ends[2];
        if (::pipe(ends) != 0) std::abort();
        const pid_t child = ::fork();
        if (child == 0) {
            ::malloc_trim(0);
            std::ofstream("/proc/self/clear_refs") << "5";  // the peak begins here
            const double before = memory("VmRSS:");
            const auto loaded = load();
            grown[0] = memory("VmHWM:") - before;
            grown[1] = memory("VmRSS:") - before;
            ::_exit(::write(ends[1], grown, sizeof grown) == sizeof grown ? 0 : 1);
        }
        if (::read(ends[0], grown, sizeof grown) != sizeof grown) state.SkipWithError("the child failed");
        ::waitpid(child, nullptr, 0);
        ::close(ends[0]);
        ::close(ends[1]);
    }
    const auto bytes = static_cast<double>(LogFiles::instance().bytes());
    state.counters["peak_over_file"] = grown[0] / bytes;
    state.counters["after_over_file"] = grown[1] / bytes;
    finish(state);
}

}  // namespace

BENCHMARK(readAndCount)->Name("load/count separators")->Unit(benchmark::kMillisecond);
BENCHMARK(loadPlain)->Name("load/plain")->Unit(benchmark::kMillisecond);
BENCHMARK(loadKesta)->Name("load/kesta")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(savePlain, unflushed, false)
    ->Name("save/plain")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(savePlain, flushed, true)
    ->Name("save/plain, flushed")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(saveKesta)->Name("save/kesta")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(measureMemory, kesta, loadLog)
    ->Name("memory/kesta")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measureMemory, plain, [] { return PlainLog::load(LogFiles::instance().log()); })
    ->Name("memory/plain")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
