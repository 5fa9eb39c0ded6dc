// The whole program: `kesta show` of a log, its output thrown away, beside a program that does nothing.
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "bench/Benchmarks.h"

namespace {

std::string programBesideThis(const char* name) {
    return std::filesystem::read_symlink("/proc/self/exe").replace_filename(name).string();
}

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

// Runs a program to its end without output and says what it used; false unless it ended well.
bool run(std::vector<std::string> words, rusage& usage) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const bool begun =
        ::posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), ::environ) == 0;
    ::posix_spawn_file_actions_destroy(&actions);
    int status = 1;
    return begun && ::wait4(child, &status, 0, &usage) == child && status == 0;
}

void measureProcess(benchmark::State& state, const std::vector<std::string>& words) {
    rusage usage = {};
    for (auto _ : state) {
        if (!run(words, usage)) state.SkipWithError("the program failed");
        state.SetIterationTime(seconds(usage.ru_utime) + seconds(usage.ru_stime));
    }
    state.counters["peak_bytes"] = 1024.0 * static_cast<double>(usage.ru_maxrss);
}

}  // namespace

void Benchmarks::addPrograms() {
    addProcess("program-show/kesta", [](benchmark::State& state) {
        measureProcess(state, {programBesideThis("kesta"), "show", LogFiles::generated(rows(state))});
    });
    addProcess("program-show/nothing", [](benchmark::State& state) { measureProcess(state, {"/bin/true"}); });
}
