// Loaded before the libraries of a program: its file operations fail as the environment says. KESTA_FAULT is
// "KIND ERROR AT MARK": a number of FileFaults::Kind, an errno, which operation, and a file that is made when
// it has been hit.
#include <cstdio>

#include "tests/FileFaults.h"

namespace {

char mark[4096];

void leaveMark() {
    const int file = FileFaults::next<int(const char*, int, ...)>("open")(mark, O_WRONLY | O_CREAT, 0600);
    FileFaults::next<int(int)>("close")(file);
}

[[gnu::constructor]] void readPlan() {
    const char* const text = std::getenv("KESTA_FAULT");
    int kind = 0;
    FileFaults::Plan plan;
    if (!text || std::sscanf(text, "%d %d %u %4095s", &kind, &plan.error, &plan.at, mark) != 4) return;
    plan.kind = static_cast<FileFaults::Kind>(kind);
    FileFaults::state.plan = plan;
    FileFaults::state.onStrike = leaveMark;
}

}  // namespace
