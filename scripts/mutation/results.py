"""Keeps the results of mutants, and prints them."""

import collections
import difflib
import json

COUNTED = ("killed", "timeout", "survived")


def read_results(path):
    if not path.is_file():
        return []
    return [json.loads(line) for line in path.read_text(encoding="utf-8").splitlines()]


def append_result(path, record):
    with open(path, "a", encoding="utf-8") as results:
        results.write(json.dumps(record) + "\n")


def latest(records):
    """The last result of each mutant, by what identifies it."""
    results = {}
    for record in records:
        results[tuple(record["id"])] = record
    return results


def print_table(title, records, key):
    rows = collections.defaultdict(collections.Counter)
    for record in records:
        for name in (key(record), "all"):
            rows[name][record["outcome"]] += 1
    print(f"{title:<12} {'drawn':>6} {'invalid':>8} {'equivalent':>11} {'counted':>8} "
          f"{'killed':>7} {'timeout':>8} {'survived':>9} {'rate':>8}")
    for name in sorted(rows, key=lambda row: (row == "all", row)):
        row = rows[name]
        counted = sum(row[outcome] for outcome in COUNTED)
        dead = row["killed"] + row["timeout"]
        rate = f"{100.0 * dead / counted:.1f} %" if counted else "-"
        print(f"{name:<12} {sum(row.values()):>6} {row['invalid']:>8} {row['equivalent']:>11} "
              f"{counted:>8} {row['killed']:>7} {row['timeout']:>8} {row['survived']:>9} {rate:>8}")
    print()


def print_report(records):
    first = [record for record in records if not record.get("again")]
    now = list(latest(records).values())
    rounds = [("", now)] if len(first) == len(records) else [
        ("First run:\n", first), ("With the survivors tested again:\n", now)]
    for title, results in rounds:
        print(title)
        print_table("folder", results, lambda record: record["file"].split("/")[0])
        print_table("kind", results, lambda record: record["kind"])
    survivors = [record for record in now if record["outcome"] == "survived"]
    for record in sorted(survivors, key=lambda record: (record["file"], record["line"])):
        print(f"survived: {record['file']}:{record['line']}:{record['column']} ({record['kind']})")
        for line in list(difflib.unified_diff(record["before"].splitlines(),
                                              record["after"].splitlines(), lineterm="", n=0))[2:]:
            if not line.startswith("@@"):
                print("  " + line)


def sentence(record):
    return (f"{record['outcome']:<10} {record['file']}:{record['line']}  {record['old']!r} -> "
            f"{record['new']!r}  {record['test'] or ''}")
