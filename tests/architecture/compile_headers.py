"""Compiles every public header alone, and twice, in a source of its own; warnings are errors.

usage: compile_headers.py COMPILER STANDARD INCLUDE_FOLDER...
"""

import pathlib
import subprocess
import sys

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wsign-conversion"]


def main():
    compiler, standard, *include_folders = sys.argv[1:]
    headers = []
    include_flags = []
    for folder in include_folders:
        root = pathlib.Path(folder)
        found = sorted(path.relative_to(root).as_posix() for path in root.rglob("*.h"))
        if not found:
            sys.exit(f"no header in {root}")
        headers += found
        include_flags += ["-I", folder]
    failed = 0
    for header in headers:
        source = f"#include <{header}>\n#include <{header}>\n"
        command = [compiler, f"-std=c++{standard}", *WARNINGS, "-Werror", "-fsyntax-only",
                   *include_flags, "-x", "c++", "-"]
        result = subprocess.run(command, input=source, text=True, stderr=subprocess.STDOUT,
                                stdout=subprocess.PIPE, check=False)
        if result.returncode != 0:
            failed += 1
            print(f"<{header}> does not compile alone:\n{result.stdout}")
    print(f"{len(headers) - failed} of {len(headers)} headers compile alone")
    sys.exit(1 if failed else 0)


main()
