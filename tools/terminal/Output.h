// Where a command's result goes, line by line.
//
// Thread-safety: one thread at a time.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

enum class LineEnd { lf, crlf };

/// In character cells.
struct TerminalSize {
    unsigned columns;
    unsigned rows;
};

/// Takes lines without their ends.
class LineSink {
 public:
    virtual ~LineSink() = default;

    /// May throw Failure, when writing has failed.
    virtual void line(std::string_view text) = 0;

    /// The terminal that shows the lines; none when they go elsewhere.
    virtual std::optional<TerminalSize> terminal() const noexcept { return std::nullopt; }

    /// To be called after the last line: throws Failure unless every line has been written.
    virtual void finish() = 0;
};

std::unique_ptr<LineSink> standardOutput(LineEnd end = LineEnd::lf);

/// A file that is written as a whole by finish and stays as it was when that fails or is not reached.
std::unique_ptr<LineSink> fileOutput(const std::string& path, LineEnd end);
