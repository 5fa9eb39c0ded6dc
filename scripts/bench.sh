#!/usr/bin/env bash
# Builds and runs the benchmarks, prints them as a table, and writes build/bench/results.json and plot.svg:
# scripts/bench.sh [--quick | --smoke] [FILTER], FILTER being a regular expression for operations. Installs what is
# missing for it. The machine should be doing nothing else.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh bench
scripts/build.sh release kesta_bench
# The system's Python, for which matplotlib has been installed.
PATH=/usr/bin:$PATH exec python3 bench/report.py "$@"
