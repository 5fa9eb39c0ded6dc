// How a command shows records: which columns, in which order of rows, in which form.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>
#include <vector>

#include "tools/forms/Form.h"

namespace CLI {
class App;
}  // namespace CLI

struct TableOptions {
    std::vector<std::string> columns;  ///< lists, in the order to show; empty for those that the log shows
    bool allColumns = false;           ///< whatever the log shows
    std::vector<std::string> sort;     ///< lists, the most important first; empty for the order of the log
    std::string format = "table";

    void declare(CLI::App& app);

    /// Sorts rows of the log as the options say. Throws Failure when they name other columns than the log
    /// has.
    void order(const kesta& log, KSTViewRep& rows) const;

    /// These rows, sorted, and the columns of the log that the options choose. Throws Failure as `order`
    /// does, and when there are no columns to show.
    Selection select(kesta& log, const KSTView& rows) const;
};
