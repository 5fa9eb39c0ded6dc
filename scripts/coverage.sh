#!/usr/bin/env bash
# What of the library the tests run: builds the preset coverage, runs all tests, and prints lines and branches per folder.
# Fails when the library falls below 95 % of lines or 85 % of branches; the program's own folder is shown, not judged.
# Branches that only the compiler makes, for exceptions that pass through and for code that cannot be reached, do not
# count. Counters of processes that were killed are lost, which can only make the figures smaller.
# build/coverage/lines.txt names the lines that no test runs.
set -euo pipefail
cd "$(dirname "$0")/.."

library=(support expr record search view fieldmap container)
lines_wanted=95
branches_wanted=85

rm -rf build/coverage  # counters of an earlier build, and sources that have gone since, would count too
scripts/build.sh coverage
ctest --preset coverage --parallel "$(nproc)" --quiet

gcovr --root . --filter "($(IFS='|' && echo "${library[*]}")|tools)/" build/coverage --object-directory build/coverage \
    --exclude-throw-branches --exclude-unreachable-branches --txt build/coverage/lines.txt --csv build/coverage/files.csv

awk -F, -v lines_wanted=$lines_wanted -v branches_wanted=$branches_wanted -v folders="${library[*]} tools" '
    function share(part, whole) { return whole ? 100 * part / whole : 100 }
    function row(name, at) {
        printf "%-12s %6d %6d %7.1f %% %8d %6d %7.1f %%\n", name, covered[at], lines[at], share(covered[at], lines[at]),
            taken[at], branches[at], share(taken[at], branches[at])
    }
    NR == 1 { for (i = 1; i <= NF; ++i) column[$i] = i; next }
    {
        folder = $column["filename"]
        sub("/.*", "", folder)
        names[1] = folder
        names[2] = folder == "tools" ? "" : "library"
        for (i in names) {
            lines[names[i]] += $column["line_total"]
            covered[names[i]] += $column["line_covered"]
            branches[names[i]] += $column["branch_total"]
            taken[names[i]] += $column["branch_covered"]
        }
    }
    END {
        printf "%-12s %6s %6s %9s %8s %6s %9s\n", "folder", "run", "lines", "", "taken", "branches", ""
        count = split(folders, order, " ")
        for (i = 1; i < count; ++i) row(order[i], order[i])
        row("library", "library")
        row("(tools)", "tools")
        if (share(covered["library"], lines["library"]) < lines_wanted ||
            share(taken["library"], branches["library"]) < branches_wanted) {
            printf "coverage: the library is below %d %% of lines or %d %% of branches\n", lines_wanted, branches_wanted
            exit 1
        }
    }' build/coverage/files.csv
