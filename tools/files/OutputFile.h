// The file that a command makes of a log: csv, a picture and the like.
//
// Thread-safety: one thread at a time.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tools/files/FileClaim.h"
#include "tools/files/Saving.h"
#include "tools/terminal/Output.h"

class OutputFile {
 public:
    /// To be made before `input` is read. An empty path is standard output, as "-" is. Throws Failure when
    /// the path is the file that is read from, and when it is a file that `saving` does not let go.
    OutputFile(const std::string& input, const std::string& path, const Saving& saving);

    /// Lets `make` write the lines, and puts them in the file's place as save does.
    void write(LineEnd end, const std::string& content, const std::function<void(LineSink&)>& make);

 private:
    std::string m_path;
    const Saving& m_saving;
    std::optional<FileClaim> m_claim;
};
