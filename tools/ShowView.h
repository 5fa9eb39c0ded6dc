// The rows of a view as a command shows them.
#pragma once

#include "record/kesta.h"
#include "tools/Commands.h"
#include "view/KSTView.h"

/// Writes rows of the log to standard output as the options say; sorts the view when they say so.
void showView(kesta& log, const KSTView& view, const TableOptions& options);
