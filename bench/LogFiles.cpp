#include "bench/LogFiles.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/GeneratedLog.h"
#include "support/StringFunctions.h"

namespace {

constexpr unsigned linesBeforeRecords = 6;

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "kesta_bench: cannot make %s\n", what.c_str());
    std::exit(1);
}

class Folder {
 public:
    static const Folder& instance() {
        static const Folder folder;
        return folder;
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        if (m_temporary) std::filesystem::remove_all(m_name, ignored);
    }

    std::string file(const std::string& name) const { return m_name + "/" + name; }

 private:
    Folder() {
        if (const char* const given = std::getenv("KESTA_BENCH_FOLDER")) {
            m_name = given;
            return;
        }
        m_name = (std::filesystem::temp_directory_path() / "kesta_bench_XXXXXX").string();
        if (!::mkdtemp(m_name.data())) fail(m_name);
        m_temporary = true;
    }

    std::string m_name;
    bool m_temporary = false;
};

using Write = bool (*)(const std::string& fileName, unsigned rows);

std::string made(const std::string& kind, unsigned rows, Write write) {
    const std::string name = Folder::instance().file(kind + "-" + std::to_string(rows) + ".log");
    if (std::filesystem::exists(name)) return name;
    const pid_t child = ::fork();
    if (child == 0) ::_exit(write(name, rows) ? 0 : 1);
    int status = 1;
    if (child < 0 || ::waitpid(child, &status, 0) != child || status != 0) fail(name);
    return name;
}

}  // namespace

std::string LogFiles::generated(unsigned rows) {
    return made("generated", rows, GeneratedLog::write);
}

std::string LogFiles::repeating(unsigned rows) {
    return made("repeating", rows, GeneratedLog::writeRepeating);
}

std::string LogFiles::target() {
    return Folder::instance().file("saved-" + std::to_string(::getpid()) + ".log");
}

Zr::Ptr<kesta> LogFiles::load(const std::string& fileName) {
    return Zr::Ptr<kesta>(new kesta(fromUTF8(fileName.c_str()), INT_MAX, true));
}

Zr::Ptr<kesta> LogFiles::database(unsigned rows) {
    return load(generated(rows));
}

PlainLog::Table LogFiles::table(unsigned rows) {
    PlainLog::Table lines = PlainLog::load(generated(rows));
    lines.erase(lines.begin(), lines.begin() + linesBeforeRecords);
    return lines;
}

Zr::Ptr<kesta> LogFiles::copy(const Zr::Ptr<kesta>& log) {
    return Zr::Ptr<kesta>(new kesta(*log, 1));
}

PlainLog::Table LogFiles::copy(const PlainLog::Table& log) {
    return log;
}
