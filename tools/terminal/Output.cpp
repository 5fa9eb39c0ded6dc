#include "tools/terminal/Output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

#include "support/StringFunctions.h"
#include "support/TextFile.h"
#include "tools/Failure.h"

namespace {

class StandardOutput : public LineSink {
 public:
    explicit StandardOutput(LineEnd end) : m_end(end == LineEnd::lf ? "\n" : "\r\n") {}

    void line(std::string_view text) override {
        write(text);
        write(m_end);
    }

    std::optional<TerminalSize> terminal() const noexcept override {
        if (!isatty(STDOUT_FILENO)) return std::nullopt;
        winsize size{};
        if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
            return TerminalSize{80, 24};
        }
        return TerminalSize{size.ws_col, size.ws_row};
    }

    void finish() override {
        if (std::fflush(stdout) != 0) fail();
    }

 private:
    void write(std::string_view bytes) {
        if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) fail();
    }

    [[noreturn]] static void fail() { throw fileFailure("standard output", errno); }

    std::string_view m_end;
};

class TextFileSink : public LineSink {
 public:
    TextFileSink(std::string path, LineEnd end) : m_path(std::move(path)), m_end(end) {}

    void line(std::string_view text) override {
        m_file.endLine(std::copy(text.begin(), text.end(), m_file.beginLine(text.size())));
    }

    void finish() override {
        errno = 0;
        const auto style = m_end == LineEnd::lf ? TextFile::eLF : TextFile::eCRLF;
        if (!m_file.save(Zr::WStringFromAscii(m_path.c_str()), style)) throw fileFailure(m_path, errno);
    }

 private:
    TextFile m_file;
    std::string m_path;
    LineEnd m_end;
};

}  // namespace

std::unique_ptr<LineSink> standardOutput(LineEnd end) {
    return std::make_unique<StandardOutput>(end);
}

std::unique_ptr<LineSink> fileOutput(const std::string& path, LineEnd end) {
    return std::make_unique<TextFileSink>(path, end);
}
