"""Checks that a library was built with the run-time checks that the project asks for.

usage: check_hardening.py READELF LIBRARY
"""

import subprocess
import sys


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def missing(readelf, library):
    """Returns what the library lacks, one text for each."""
    segments = run(readelf, "--wide", "--program-headers", library)
    dynamic = run(readelf, "--wide", "--dynamic", library)
    symbols = run(readelf, "--wide", "--dyn-syms", library)
    if "GNU_RELRO" not in segments:
        yield "no segment that becomes read-only after loading (-z relro)"
    stack = [line for line in segments.splitlines() if "GNU_STACK" in line]
    if len(stack) != 1 or "E" in stack[0].split()[6:-1]:
        yield "an executable stack (-z noexecstack)"
    if not any("NOW" in line for line in dynamic.splitlines() if "FLAGS" in line):
        yield "addresses are looked up late and stay writable (-z now)"
    if "__stack_chk_fail" not in symbols:
        yield "no function checks its stack (-fstack-protector-strong)"
    if "_chk@GLIBC" not in symbols.replace("__stack_chk_fail", ""):
        yield "no call checks its buffer (_FORTIFY_SOURCE)"


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    faults = list(missing(*sys.argv[1:]))
    for fault in faults:
        print(f"{sys.argv[2]}: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
