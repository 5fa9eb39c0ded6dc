#!/usr/bin/env python3
"""Runs the benchmarks of kesta_bench, prints them as a table, and writes results.json and plot.svg.

Every benchmark runs in a process of its own, so that none finds the memory of another, kesta and its baselines
taking turns. Times are medians over the processes; the JSON has their least and greatest too. A ratio is the
median over the turns of kesta's time divided by the baseline's.

With --against it compares two builds of kesta instead: each operation in pairs of processes, one of either build.
"""

import argparse
import collections
import json
import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile

SMALL, QUICK = 1_000, 100_000
KESTA = "kesta"


class Benchmark:
    """A benchmark as kesta_bench lists it: operation/variant/rows, and how it is repeated and timed."""

    def __init__(self, name):
        self.name = name
        self.operation, self.variant, rows, *how = name.split("/")
        self.rows = int(rows)
        self.wall_counts = "real_time" in how
        self.other_process = "manual_time" in how


def benchmarks(program):
    names = subprocess.run([program, "--benchmark_list_tests"], check=True, capture_output=True, text=True).stdout
    return [Benchmark(name) for name in names.split()]


def run(program, benchmark, folder):
    """One process with one benchmark: its times in milliseconds, and its counters."""
    result = subprocess.run(
        [program, f"--benchmark_filter=^{benchmark.name}$", "--benchmark_format=json"],
        env={**os.environ, "KESTA_BENCH_FOLDER": folder}, capture_output=True, text=True)
    if result.returncode != 0:
        sys.exit(f"report: {benchmark.name}: {result.stderr}")
    (measured,) = json.loads(result.stdout)["benchmarks"]
    if measured.get("error_occurred"):
        sys.exit(f"report: {benchmark.name}: {measured['error_message']}")
    # For other processes, what stands as real time is the CPU time that they have used.
    times = {"cpu_ms": measured["real_time" if benchmark.other_process else "cpu_time"]}
    if not benchmark.other_process:
        times["wall_ms"] = measured["real_time"]
    counters = {key: value for key, value in measured.items() if key.endswith(("_bytes", "_over_file"))}
    return {**times, **counters}


def summary(values):
    return {"median": statistics.median(values), "min": min(values), "max": max(values)}


def measure(program, variants, repetitions, folder):
    """Results of the variants of one operation at one size, the ratios with kesta's."""
    turns = [{b.variant: run(program, b, folder) for b in variants} for _ in range(repetitions)]
    results = []
    for benchmark in variants:
        own = [turn[benchmark.variant] for turn in turns]
        result = {"operation": benchmark.operation, "variant": benchmark.variant, "rows": benchmark.rows,
                  **{key: summary([values[key] for values in own]) for key in own[0]}}
        result["rows_per_second"] = 1000 * benchmark.rows / result["cpu_ms"]["median"]
        if benchmark.variant == KESTA:
            result["wall_counts"] = benchmark.wall_counts
            result["ratios"] = {
                other.variant: {key: summary([turn[KESTA][key] / turn[other.variant][key] for turn in turns])
                                for key in ("cpu_ms", "wall_ms") if key in own[0]}
                for other in variants if other.variant != KESTA}
        results.append(result)
    return results


def pair(program, other, benchmark, pairs, folder):
    """A line of the comparison of two builds: the median of the pairs' ratios, with the least and the greatest."""
    turns = [[run(each, benchmark, folder)["cpu_ms"] for each in (program, other)] for _ in range(pairs)]
    own, theirs = (statistics.median(times) for times in zip(*turns))
    ratio = summary([mine / its for mine, its in turns])
    return (benchmark.operation, f"{benchmark.rows:,}", time_text(own), time_text(theirs),
            *(f"{ratio[key]:.3f}" for key in ("median", "min", "max")))


def time_text(milliseconds):
    for unit, size in (("s", 1000), ("ms", 1), ("µs", 0.001)):
        if milliseconds >= size or unit == "µs":
            return f"{milliseconds / size:#.3g} {unit}".replace(". ", " ")


def count_text(number):
    for suffix, size in (("G", 1e9), ("M", 1e6), ("k", 1e3), ("", 1)):
        if number >= size or not suffix:
            return f"{number / size:.3g}{suffix}"


def memory_text(result):
    return f"{result['peak_bytes']['median'] / 2**20:.0f} MB"


def table(results):
    """A line for each of kesta's results, one more for each further baseline and where time on the wall counts."""
    at = {(r["operation"], r["variant"], r["rows"]): r for r in results}
    lines = [("operation", "rows", "time", "rows/s", "memory", "baseline", "its time", "its memory", "ratio")]
    for r in (r for r in results if r["variant"] == KESTA):
        for key in ("cpu_ms", "wall_ms")[:2 if r["wall_counts"] else 1]:
            time = r[key]["median"]
            name = r["operation"] + (", wall" if key == "wall_ms" else "")
            line = (name, f"{r['rows']:,}", time_text(time), count_text(1000 * r["rows"] / time), memory_text(r))
            for baseline, ratios in r["ratios"].items():
                other = at[r["operation"], baseline, r["rows"]]
                lines.append((*line, baseline, time_text(other[key]["median"]), memory_text(other),
                              f"{ratios[key]['median']:.3f}"))
            if not r["ratios"]:
                lines.append((*line, "", "", "", ""))
    return lines


def memory_table(results):
    lines = [("memory, times the file", "rows", "variant", "at its peak", "after the load")]
    for r in results:
        if "after_over_file" in r and r["after_over_file"]["median"] > 0.01:
            lines.append((r["operation"], f"{r['rows']:,}", r["variant"], f"{r['peak_over_file']['median']:.2f}",
                          f"{r['after_over_file']['median']:.2f}"))
    return lines


def show(lines, left):
    """Prints columns, those in `left` to the left."""
    widths = [max(map(len, column)) for column in zip(*lines)]
    for line in lines:
        print("  ".join(text.ljust(width) if i in left else text.rjust(width)
                        for i, (text, width) in enumerate(zip(line, widths))).rstrip())


def plot(results, file):
    """Time against rows, an axis for each operation. The colours can be read on white and on black."""
    import matplotlib
    matplotlib.use("svg")
    import matplotlib.pyplot as plt

    grey = "#808890"
    colours = ["#2f81f7", "#e07b00", "#2da44e"]
    plt.rcParams.update({"svg.hashsalt": KESTA, "svg.fonttype": "none", "font.size": 8, "axes.titlesize": 9,
                         "axes.spines.top": False, "axes.spines.right": False, "axes.edgecolor": grey,
                         **{key: grey for key in ("text.color", "axes.labelcolor", "xtick.color", "ytick.color")}})
    lines = collections.defaultdict(lambda: collections.defaultdict(list))
    for r in results:
        lines[r["operation"]][r["variant"]].append((r["rows"], r["cpu_ms"]["median"]))
    columns = min(4, len(lines))
    height = -(-len(lines) // columns)
    figure, axes = plt.subplots(height, columns, figsize=(3 * columns, 2.4 * height), squeeze=False)
    for axis in axes.flat[len(lines):]:
        axis.remove()
    for axis, (operation, variants) in zip(axes.flat, lines.items()):
        for colour, (variant, points) in zip(colours, variants.items()):
            axis.loglog(*zip(*points), marker="o", markersize=3, linewidth=1.2, color=colour, label=variant)
        axis.set(title=operation, xlabel="records", ylabel="CPU time, ms")
        axis.minorticks_off()
        axis.grid(color=grey, alpha=0.25, linewidth=0.5)
        axis.legend(frameon=False, fontsize=7)
    figure.tight_layout()
    figure.savefig(file, transparent=True, metadata={"Date": None})


def repetitions(arguments, rows):
    if arguments.smoke:
        return 1
    return 3 if arguments.quick or rows > QUICK else 5


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("filter", nargs="?", default="", metavar="FILTER",
                        help="a regular expression: only operations in whose name it is found")
    parser.add_argument("--program", default="build/release/bin/kesta_bench")
    parser.add_argument("--output", type=pathlib.Path, default="build/bench", help="the folder of what is written")
    parser.add_argument("--against", metavar="PROGRAM", help="the kesta_bench of another build, to compare with it")
    parser.add_argument("--pairs", type=int, default=9, help="with --against, how often each operation is run")
    size = parser.add_mutually_exclusive_group()
    size.add_argument("--quick", action="store_true", help=f"at most {QUICK:,} records, fewer repetitions")
    size.add_argument("--smoke", action="store_true", help=f"{SMALL:,} records, once, no plot: does it work?")
    arguments = parser.parse_args()
    most = SMALL if arguments.smoke else QUICK if arguments.quick else sys.maxsize

    groups = collections.defaultdict(list)
    for benchmark in benchmarks(arguments.program):
        if benchmark.rows <= most and re.search(arguments.filter, benchmark.operation):
            groups[benchmark.operation, benchmark.rows].append(benchmark)
    if not groups:
        sys.exit(f"report: no operation has {arguments.filter} in its name")

    arguments.output.mkdir(parents=True, exist_ok=True)
    if arguments.against:
        lines = [("operation", "rows", "time", "other's", "ratio", "least", "greatest")]
        known = {benchmark.name for benchmark in benchmarks(arguments.against)}
        with tempfile.TemporaryDirectory(dir=arguments.output) as folder:
            lines += [pair(arguments.program, arguments.against, benchmark, arguments.pairs, folder)
                      for variants in groups.values() for benchmark in variants
                      if benchmark.variant == KESTA and benchmark.name in known]
        return show(lines, left={0})

    results = []
    with tempfile.TemporaryDirectory(dir=arguments.output) as folder:
        for done, ((operation, rows), variants) in enumerate(groups.items()):
            if sys.stderr.isatty():
                print(f"\r\033[K{done} of {len(groups)}: {operation}, {rows:,} records", end="", file=sys.stderr)
            results += measure(arguments.program, variants, repetitions(arguments, rows), folder)
            # At once, so that a run which is broken off leaves what it has.
            (arguments.output / "results.json").write_text(json.dumps(results, indent=1) + "\n")
    if sys.stderr.isatty():
        print("\r\033[K", end="", file=sys.stderr)

    show(table(results), left={0, 5})
    memory = memory_table(results)
    if len(memory) > 1:
        print()
        show(memory, left={0, 2})
    if not arguments.smoke:
        plot(results, arguments.output / "plot.svg")


if __name__ == "__main__":
    main()
