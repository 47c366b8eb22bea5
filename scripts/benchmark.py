#!/usr/bin/env python3
"""Builds the benchmarks in build/benchmark, runs them, and prints how the library compares.

usage: scripts/benchmark.py [--filter REGEX] [--repetitions N] [--min-time SECONDS] [--json FILE]
                            [--markdown]

Prints a line for each work item and machine: the processor time of one operation (median), and its
ratio to each other system's in the same run: the median, and the smallest and largest over the
repetitions; "plain" is the library with nothing kept from call to call. Then how far the slowest
hundredth of the calls lies from the median. Ratios carry over from one machine to another; times
don't.
"""

import argparse
import collections
import json
import pathlib
import statistics
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "benchmark"
OWN = "orvo"
TAIL = "Tail-"
NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def build():
    commands = [
        ["cmake", "-S", ROOT, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
         "-DORVO_BUILD_BENCHMARKS=ON", "-DORVO_BUILD_TOOLS=OFF", "-DBUILD_TESTING=OFF"],
        ["cmake", "--build", BUILD, "--target", "orvo_benchmarks", "orvo_repeat"],
    ]
    for command in commands:
        result = subprocess.run(command, capture_output=True, text=True)
        if result.returncode != 0:
            sys.exit(result.stdout + result.stderr)


def run(options):
    command = [BUILD / "benchmarks" / "orvo_benchmarks", "--benchmark_format=json",
               f"--benchmark_filter={options.filter}",
               f"--benchmark_repetitions={options.repetitions}",
               f"--benchmark_min_time={options.min_time}",
               "--benchmark_enable_random_interleaving=true"]
    result = subprocess.run(command, stdout=subprocess.PIPE, text=True)
    if result.returncode != 0:
        sys.exit(result.returncode)
    return json.loads(result.stdout)


def collect(report):
    """Returns the times in nanoseconds by work and machine, by system, in order of repetition."""
    times = collections.defaultdict(lambda: collections.defaultdict(list))
    for entry in report["benchmarks"]:
        if entry.get("run_type") == "iteration" and not entry["run_name"].startswith(TAIL):
            item, _, system = entry["run_name"].rpartition("/")
            times[item][system].append(entry["cpu_time"] * NANOSECONDS[entry["time_unit"]])
    return times


def print_markdown(times):
    """Prints the same as a table of a page, a column for each other system."""
    others = []
    for systems in times.values():
        others += [system for system in systems if system != OWN and system not in others]
    print("| work | machine | time | " + " | ".join(f"by {system}" for system in others) + " |")
    print("|---|---|---:|" + "---:|" * len(others))
    for item, systems in times.items():
        if OWN not in systems:
            continue
        work, _, machine = item.partition("/")
        own = systems[OWN]
        cells = []
        for system in others:
            ratios = [a / b for a, b in zip(own, systems.get(system, []))]
            cells.append(f"{statistics.median(ratios):.3f} ({min(ratios):.3f} - {max(ratios):.3f})"
                         if ratios else "")
        print(f"| {work} | {machine} | {in_words(statistics.median(own))} | "
              + " | ".join(cells) + " |")


def print_tails(report):
    """Prints the 99th percentile of a call's time in units of the median, over the repetitions."""
    tails = collections.defaultdict(list)
    for entry in report["benchmarks"]:
        if entry.get("run_type") == "iteration" and "p99_to_p50" in entry:
            item = entry["run_name"].rpartition("/")[0].removeprefix(TAIL)
            tails[item].append(entry["p99_to_p50"])
    if tails:
        print(f"\n{'work':32} 99th percentile by median (median, smallest - largest)")
    for item, ratios in tails.items():
        print(f"{item:32} {statistics.median(ratios):.2f} "
              f"({min(ratios):.2f} - {max(ratios):.2f})")


def in_words(nanoseconds):
    for unit in ("ns", "us", "ms"):
        if nanoseconds < 1000.0:
            return f"{nanoseconds:.3g} {unit}"
        nanoseconds /= 1000.0
    return f"{nanoseconds:.3g} s"


def print_table(times):
    print(f"{'work':32} {'time':>9}  ratio to (median, smallest - largest)")
    for item, systems in times.items():
        own = systems.get(OWN)
        if own is None:
            continue
        cells = []
        for system, others in systems.items():
            if system != OWN:
                ratios = [a / b for a, b in zip(own, others)]
                cells.append(f"{system} {statistics.median(ratios):.3f} "
                             f"({min(ratios):.3f} - {max(ratios):.3f})")
        print(f"{item:32} {in_words(statistics.median(own)):>9}  {', '.join(cells)}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--filter", default=".", help="regular expression over names such as W1/M5/orvo")
    parser.add_argument("--repetitions", type=int, default=5)
    parser.add_argument("--min-time", type=float, default=0.1, help="seconds for each repetition")
    parser.add_argument("--markdown", action="store_true", help="print the ratios as a table")
    parser.add_argument("--json", type=pathlib.Path, help="also keep the whole report in a file")
    options = parser.parse_args()
    build()
    report = run(options)
    if options.json:
        options.json.write_text(json.dumps(report, indent=1))
    (print_markdown if options.markdown else print_table)(collect(report))
    print_tails(report)


if __name__ == "__main__":
    main()
