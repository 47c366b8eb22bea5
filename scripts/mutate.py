#!/usr/bin/env python3
"""Changes the library's sources by one token at a time and asks whether a test notices.

  scripts/mutate.py --work DIR [--seed N] [--count N]    draw mutants and test them
  scripts/mutate.py --work DIR --again                   test those that survived against the
                                                         sources and tests of today
  scripts/mutate.py --work DIR --report                  print the results so far
  scripts/mutate.py --list                               print every mutant that can be drawn

A mutant is one small fault: another constant, comparison or operator, a sign turned, && for ||,
operands or arguments changed over, a statement or a return value left out. They are drawn by seed
from all sources of the four folders, in proportion to the lines that each file offers. The checkout
is not touched: DIR gets a copy of it, a build of that copy and the results, one line of JSON for
each mutant in DIR/results.jsonl. A run that was stopped goes on where it was.

Each mutant ends as one of

  invalid      does not compile; another one of the same file is drawn in its place
  equivalent   compiles to the same optimized machine code; not counted either
  killed       a test fails, crashes or runs into its memory limit
  timeout      a test takes many times as long as it should; counts as killed
  survived     no test notices

The tests of the mutant's own folder run first, then those of the other folders, and the first
failure ends it.
"""

import argparse
import pathlib
import sys
import time

from mutation.draw import Draw
from mutation.mutants import Mutant, describe, find_mutants, identity, line_places
from mutation.results import COUNTED, append_result, latest, print_report, read_results, sentence
from mutation.sources import ROOT, read_sources
from mutation.workshop import Workshop


def run(workshop, results_path, arguments):
    sources = read_sources(workshop.tree)
    draw = Draw(sources, arguments.seed)
    known = latest(read_results(results_path))
    counted = 0
    while counted < arguments.count:
        mutant = draw.next()
        if mutant is None:
            break
        text = sources[mutant.file]
        record = describe(mutant, text)
        record["id"] = list(identity(record))
        earlier = known.get(tuple(record["id"]))
        if earlier is None:
            start = time.monotonic()
            record["outcome"], record["test"] = workshop.judge(mutant, text)
            record["seconds"] = round(time.monotonic() - start, 1)
            record["seed"] = arguments.seed
            append_result(results_path, record)
            print(f"{counted:>4} {record['seconds']:>6} s  {sentence(record)}", flush=True)
        else:
            record = earlier
        if record["outcome"] in COUNTED:
            counted += 1
            draw.count(mutant.file)


def find_again(record, text):
    """The mutant of an earlier record in today's text of its file, null where its lines are gone.

    Of several places with the same lines, the one with the same number among them."""
    places = line_places(record["before"], text)
    if not places:
        return None
    first = places[min(record["number"], len(places) - 1)]
    start = first + record["column"] - 1
    return Mutant(record["file"], record["kind"], start, start + len(record["old"]), record["new"])


def run_again(workshop, results_path, files):
    sources = read_sources(workshop.tree)
    for record in list(latest(read_results(results_path)).values()):
        if record["outcome"] != "survived" or (files and record["file"] not in files):
            continue
        text = sources.get(record["file"], "")
        mutant = find_again(record, text)
        record = dict(record, again=True)
        if mutant is None:
            record["outcome"], record["test"] = "gone", None
        else:
            record.update(describe(mutant, text))
            record["outcome"], record["test"] = workshop.judge(mutant, text)
        append_result(results_path, record)
        print(sentence(record), flush=True)


def list_mutants():
    for file, text in read_sources(ROOT).items():
        for mutant in find_mutants(file, text):
            record = describe(mutant, text)
            print(f"{file}:{record['line']}:{record['column']} {mutant.kind}: "
                  f"{record['old']!r} -> {record['new']!r}")


def parse_arguments():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--work", type=pathlib.Path, metavar="DIR",
                        help="the folder for the copy, its build and the results")
    parser.add_argument("--seed", type=int, default=1, help="what the draw depends on (1)")
    parser.add_argument("--count", type=int, default=400,
                        help="how many mutants that compile and are no equivalents (400)")
    parser.add_argument("--jobs", type=int, default=1,
                        help="how many compilers at once for the first build (1)")
    parser.add_argument("--files", nargs="+", metavar="FILE",
                        help="with --again: only the survivors in these files")
    action = parser.add_mutually_exclusive_group()
    action.add_argument("--again", action="store_true",
                        help="copy the checkout anew and test the survivors again")
    action.add_argument("--report", action="store_true", help="print the results so far")
    action.add_argument("--list", action="store_true", help="print every mutant, test none")
    arguments = parser.parse_args()
    if not arguments.list and arguments.work is None:
        parser.error("--work DIR is missing")
    return arguments


def main():
    arguments = parse_arguments()
    if arguments.list:
        list_mutants()
        return 0
    arguments.work.mkdir(parents=True, exist_ok=True)
    results_path = arguments.work / "results.jsonl"
    if not arguments.report:
        workshop = Workshop(arguments.work, arguments.jobs)
        # What was drawn before belongs to the copy that it was drawn from.
        if arguments.again or not results_path.is_file():
            workshop.copy_tree()
        workshop.build_tree()
        workshop.measure_tests()
        if arguments.again:
            run_again(workshop, results_path, arguments.files)
        else:
            run(workshop, results_path, arguments)
    print_report(read_results(results_path))
    return 0


if __name__ == "__main__":
    sys.exit(main())
