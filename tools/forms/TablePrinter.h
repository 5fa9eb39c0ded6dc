// A log as an aligned table of characters.
//
// Thread-safety: one thread at a time.
#pragma once

#include <optional>

#include "tools/forms/Writers.h"

struct TerminalSize {
    unsigned columns;
    unsigned rows;
};

/// The size of the terminal that standard output goes to; none when it goes elsewhere.
std::optional<TerminalSize> standardOutputTerminal() noexcept;

/// One line for each row, its number in the log first. Control characters are shown harmlessly. For a
/// terminal, long values and lines are cut to fit and the header comes again with every screenful; otherwise
/// everything is written in full. In colour, tagged records stand out.
void printTable(const kesta& log, const Selection& selection, std::optional<TerminalSize> terminal,
                LineSink& out);
