#!/usr/bin/env python3
"""Runs clang-tidy with the rules of .clang-tidy over all sources; every finding is a failure.

usage: scripts/tidy.py [--jobs N] [PATTERN...]

A pattern is a regular expression for the path of a source from the root of the project. The build
tree build/tidy holds what the compiler is told of each source, and the names of the sources that
were clean: those whose preprocessed text and rules are as they were are not looked at again.
"""

import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "tidy"
TIDY = "clang-tidy-14"
COMPILER = "clang++"


def configure():
    """Has CMake say how each source is compiled; builds nothing."""
    done = subprocess.run(
        ["cmake", "-S", ROOT, "-B", BUILD, "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={COMPILER}",
         "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
         "-DORVO_BUILD_BENCHMARKS=ON"],
        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        sys.exit(done.stdout + "tidy.py: the project could not be configured")


def commands(patterns):
    """The compile commands of the sources whose paths match, one for each source."""
    found = {}
    for entry in json.loads((BUILD / "compile_commands.json").read_text(encoding="utf-8")):
        file = pathlib.Path(entry["file"])
        if ROOT in file.parents:
            name = file.relative_to(ROOT).as_posix()
            if any(re.search(pattern, name) for pattern in patterns):
                found.setdefault(name, entry)
    return found


def rules_of(file):
    """The texts of the rules that hold for a source: those of its folder and of all above it."""
    texts = []
    for folder in (ROOT / file).parents:
        path = folder / ".clang-tidy"
        if path.is_file():
            texts.append(path.read_bytes())
        if folder == ROOT:
            break
    return b"\0".join(texts)


def digest(file, entry):
    """A number for all that the findings of a source depend on; None where it doesn't compile."""
    words = shlex.split(entry["command"])
    del words[words.index("-o"):words.index("-o") + 2]
    words[words.index("-c")] = "-E"
    done = subprocess.run(words, cwd=entry["directory"], stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    if done.returncode != 0:
        return None
    text = done.stdout.replace(os.fsencode(ROOT), b"")
    return hashlib.sha256(b"\0".join([text, rules_of(file), " ".join(words[1:]).replace(
        str(ROOT), "").encode()])).hexdigest()


def check(file, entry):
    """Returns what is to be said of a source, or nothing."""
    key = digest(file, entry)
    clean = BUILD / "clean" / (key or "none")
    if key and clean.exists():
        return ""
    done = subprocess.run([TIDY, "--quiet", "--warnings-as-errors=*", "-p", BUILD, ROOT / file],
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          text=True)
    if done.returncode == 0 and not done.stdout.strip():
        if key:
            clean.touch()
        return ""
    return done.stdout or done.stderr


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("patterns", nargs="*", default=["."])
    arguments = parser.parse_args()
    configure()
    (BUILD / "clean").mkdir(exist_ok=True)
    sources = commands(arguments.patterns)
    if not sources:
        sys.exit("tidy.py: no source matches")
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        for report in pool.map(lambda item: check(*item), sorted(sources.items())):
            if report:
                failed += 1
                print(report, flush=True)
    print(f"{len(sources)} sources looked at, {failed} with findings")
    return 1 if failed else 0


sys.exit(main())
