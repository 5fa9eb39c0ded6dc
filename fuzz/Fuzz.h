// What the fuzzers share: reading an input, promises, files.
//
// Thread-safety: none; a fuzzer runs on one thread.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <sanitizer/common_interface_defs.h>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>

#include "support/LightweightString.h"
#include "support/StringFunctions.h"

namespace Fuzz {

using Text = LightweightString<char>;

/// Ends the process, so that the fuzzer reports the input, unless what the library promises was kept.
inline void promise(bool kept, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (kept) return;
    const std::string message = std::string(file) + ':' + std::to_string(line) + ": not as promised";
    __sanitizer_report_error_summary(message.c_str());
    std::abort();
}

inline std::string str(const Text& text) {
    return std::string(text.view());
}

/// Takes an input apart from its front. Past the end it returns zeros and empty texts.
class Input {
 public:
    Input(const std::uint8_t* data, std::size_t size) noexcept
        : m_rest(size != 0 ? std::string_view(reinterpret_cast<const char*>(data), size)
                           : std::string_view()) {}

    bool empty() const noexcept { return m_rest.empty(); }

    unsigned char byte() noexcept { return static_cast<unsigned char>(take(1).c_str()[0]); }

    /// A number below `bound`.
    unsigned below(unsigned bound) noexcept { return byte() % bound; }

    /// Mostly a small number, which may name a row or a column; else one that is easily got wrong.
    int number() noexcept {
        constexpr int wild[] = {-1,    -2,    INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1,
                                65535, 65536, -65536,  1000000,     255,     256};
        constexpr unsigned small = 256 - static_cast<unsigned>(std::size(wild));
        const unsigned value = byte();
        return value < small ? static_cast<int>(value % 32) : wild[value - small];
    }

    /// So many bytes, or what is left of them.
    std::string take(std::size_t count) {
        const std::string taken(m_rest.substr(0, count));
        m_rest.remove_prefix(taken.size());
        return taken;
    }

    /// A text of up to 15 bytes after the byte that tells its length.
    std::string text() { return take(below(16)); }

    /// Up to the line's end or the end; the line end goes too.
    std::string line() {
        const std::string taken = take(m_rest.find('\n'));
        take(1);
        return taken;
    }

    std::string rest() { return take(m_rest.size()); }

 private:
    std::string_view m_rest;
};

/// A folder of the process's own for files, removed at its end. In a RAM disk where TMPDIR says so.
class Folder {
 public:
    Folder() : m_path(std::filesystem::temp_directory_path() / ("kesta-fuzz-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(m_path);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::string operator/(const char* name) const { return (m_path / name).string(); }

    /// The same as the library takes file names.
    LightweightString<wchar_t> wide(const char* name) const { return fromUTF8((*this / name).c_str()); }

 private:
    std::filesystem::path m_path;
};

inline const Folder& folder() {
    static const Folder theFolder;
    return theFolder;
}

inline void writeFile(const std::string& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    promise(file.flush().good());
}

inline std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace Fuzz
