#include "tools/Output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sys/stat.h>

#include "support/StringFunctions.h"
#include "support/TextFile.h"
#include "tools/Failure.h"

namespace {

/// An open stream; closes what it owns.
class StreamSink : public LineSink {
 public:
    using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

    StreamSink(Stream stream, std::string name, LineEnd end)
        : m_stream(std::move(stream)), m_name(std::move(name)), m_end(end == LineEnd::lf ? "\n" : "\r\n") {}

    void line(std::string_view text) override {
        write(text);
        write(m_end);
    }

    void finish() override {
        if (std::fflush(m_stream.get()) != 0) fail();
    }

 private:
    void write(std::string_view bytes) {
        if (std::fwrite(bytes.data(), 1, bytes.size(), m_stream.get()) != bytes.size()) fail();
    }

    [[noreturn]] void fail() const { throw fileFailure(m_name, errno); }

    Stream m_stream;
    std::string m_name;
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

int keepOpen(std::FILE*) noexcept {
    return 0;
}

}  // namespace

std::unique_ptr<LineSink> standardOutput(LineEnd end) {
    return std::make_unique<StreamSink>(StreamSink::Stream(stdout, keepOpen), "standard output", end);
}

std::unique_ptr<LineSink> fileOutput(const std::string& path, LineEnd end) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode)) {
        return std::make_unique<TextFileSink>(path, end);
    }
    StreamSink::Stream stream(std::fopen(path.c_str(), "wb"), std::fclose);
    if (!stream) throw fileFailure(path, errno);
    return std::make_unique<StreamSink>(std::move(stream), path, end);
}
