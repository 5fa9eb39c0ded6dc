// Loading and saving a log file, beside a plain loader and writer of the same file, and beside reading the
// bytes and counting the separators.
//
// A load is measured cold, as the first that a process does: its memory comes from the system; and warm, with
// the heap of a load before. The cold load also says how much memory it takes. Files are in the system's
// cache. The library's save has the bytes on the disk when it returns, so the plain writer flushes them too.
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <malloc.h>
#include <memory>
#include <unistd.h>

#include "bench/Benchmarks.h"
#include "support/StringFunctions.h"

namespace {

std::size_t countSeparators(const std::string& fileName) {
    const std::size_t size = std::filesystem::file_size(fileName);
    const std::unique_ptr<char[]> bytes(new char[size]);
    std::FILE* const file = std::fopen(fileName.c_str(), "rb");
    const char* const end = bytes.get() + std::fread(bytes.get(), 1, size, file);
    std::fclose(file);
    std::size_t separators = 0;
    const char* at = bytes.get();
    while ((at = static_cast<const char*>(std::memchr(at, ',', static_cast<std::size_t>(end - at))))) {
        ++separators;
        ++at;
    }
    return separators;
}

using LogFile = std::string (*)(unsigned rows);

template <class Load>
Benchmarks::Body coldLoad(LogFile logFile, Load load) {
    return [logFile, load](benchmark::State& state) {
        const std::string name = logFile(Benchmarks::rows(state));
        const auto bytes = static_cast<double>(std::filesystem::file_size(name));
        const double before = Benchmarks::memoryNow();
        for (auto _ : state) {
            auto log = load(name);
            benchmark::DoNotOptimize(log);
            state.PauseTiming();  // neither the measuring nor the end of the log is part of loading
            state.counters["peak_over_file"] = (Benchmarks::memoryAtPeak() - before) / bytes;
            state.counters["after_over_file"] = (Benchmarks::memoryNow() - before) / bytes;
            log = {};
            state.ResumeTiming();
        }
    };
}

// The heap keeps what is released, of any size.
void keepHeap() {
    ::mallopt(M_MMAP_MAX, 0);
    ::mallopt(M_TRIM_THRESHOLD, -1);
}

template <class Load>
Benchmarks::Body warmLoad(Load load) {
    return [load](benchmark::State& state) {
        const std::string name = LogFiles::generated(Benchmarks::rows(state));
        keepHeap();
        benchmark::DoNotOptimize(load(name));
        for (auto _ : state) {
            auto log = load(name);
            benchmark::DoNotOptimize(log);
            state.PauseTiming();
            log = {};
            state.ResumeTiming();
        }
    };
}

// A place to save to, empty in the end.
class Target {
 public:
    Target() : m_name(LogFiles::target()) {}
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;
    ~Target() { std::filesystem::remove(m_name); }

    const std::string& name() const { return m_name; }

 private:
    std::string m_name;
};

void saveKesta(benchmark::State& state) {
    const Target target;
    const Zr::Ptr<kesta> log = LogFiles::database(Benchmarks::rows(state));
    log->set_filename(fromUTF8(target.name().c_str()));
    log->save_text();  // each round replaces a file
    for (auto _ : state) {
        if (log->save_text() != static_cast<int>(state.range(0))) state.SkipWithError("the save failed");
    }
}

void savePlain(benchmark::State& state) {
    const Target target;
    const PlainLog::Table log = PlainLog::load(LogFiles::generated(Benchmarks::rows(state)));
    PlainLog::save(log, target.name());
    for (auto _ : state) {
        PlainLog::save(log, target.name());
        const int file = ::open(target.name().c_str(), O_WRONLY);
        ::fsync(file);
        ::close(file);
    }
}

}  // namespace

void Benchmarks::addFiles() {
    addOnce("load-cold/kesta", coldLoad(LogFiles::generated, LogFiles::load));
    addOnce("load-cold/plain", coldLoad(LogFiles::generated, PlainLog::load));
    addOnce("load-cold/count", coldLoad(LogFiles::generated, countSeparators));
    add("load-warm/kesta", warmLoad(LogFiles::load));
    add("load-warm/plain", warmLoad(PlainLog::load));
    add("load-warm/count", warmLoad(countSeparators));
    addOnce("load-repeating/kesta", coldLoad(LogFiles::repeating, LogFiles::load));
    addOnce("load-repeating/plain", coldLoad(LogFiles::repeating, PlainLog::load));
    addOnDisk("save/kesta", saveKesta);
    addOnDisk("save/plain", savePlain);
}
