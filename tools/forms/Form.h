// The forms in which logs are written, for people and for other programs: the one place that knows which
// there are.
//
// Thread-safety: one thread at a time.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "record/kesta.h"
#include "tools/terminal/Output.h"
#include "view/KSTView.h"

/// The part of a log that is written: the rows of a view on it, in the view's order, and columns by number,
/// in the order wanted.
struct Selection {
    KSTView rows;
    std::vector<unsigned> columns;
};

/// All columns and rows of the log, which must outlive its use.
Selection everythingOf(kesta& log);

/// What a form says of a log before its records, where it has a place for it.
struct Heading {
    std::vector<std::string> lines;  ///< above a table; harmless
    /// The first ones of a JSON object: names, and values written as JSON.
    std::vector<std::pair<std::string, std::string>> properties;
};

/// What stands around several logs in one output, each a line; null for none.
struct Series {
    const char* first;
    const char* between;
    const char* last;
};

struct Form {
    std::string_view name;  ///< as options give it
    LineEnd lineEnd;        ///< of the sink to write to
    void (*write)(const kesta& log, const Selection& selection, const Heading& heading, LineSink& out);
    const Series* series;  ///< null when one output takes one log
};

/// The form that has this name; there must be one.
const Form& formNamed(std::string_view name);
