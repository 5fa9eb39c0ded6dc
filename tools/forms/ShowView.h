// The rows of views as a command shows them on standard output.
//
// Thread-safety: one thread at a time.
#pragma once

#include <memory>
#include <string>

#include "record/kesta.h"
#include "tools/Commands.h"
#include "tools/terminal/Output.h"
#include "view/KSTView.h"

class ShownViews {
 public:
    /// For the rows of this many logs. Several stand under a line with the log's name each, or are a list in
    /// JSON, each with its name as "log". Throws Failure for several as comma-separated text: their columns
    /// may differ.
    ShownViews(const TableOptions& options, std::size_t logs);

    /// Writes rows of the log as the options say; sorts the view when they say so.
    void add(const std::string& path, kesta& log, const KSTView& view);

    /// To be called after the last one: throws Failure unless all has been written.
    void finish();

 private:
    void beginLog(const std::string& path);

    const TableOptions& m_options;
    const bool m_several;
    std::size_t m_count = 0;
    std::unique_ptr<LineSink> m_output;
};
