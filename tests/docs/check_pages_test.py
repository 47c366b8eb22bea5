"""Spoils a copy of the pages and sources in one place after the other; the checker must say so.

usage: check_pages_test.py ROOT
"""

import pathlib
import shutil
import sys
import tempfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

import check_pages  # noqa: E402  (the path is set above)

FOLDERS = ["docs", "include", "geometry", "model", "compute", "io", "examples"]

# A rule, a file, what is replaced in it and by what, and how many faults that makes.
PLANTED = [
    ("quotes", "docs/tutorial.md", "Entity* const x = machine", "Entity* x = machine", 1),
    ("quotes", "docs/tutorial.md", "8 elements, 5 registers", "8 elements, 6 registers", 1),
    ("quotes", "docs/tutorial.md", "<!-- examples/01_build_a_machine/expected.txt -->\n\n", "", 1),
    ("quotes", "examples/04_solve_a_path/expected.txt", "-360.0", "-361.0", 1),
    ("errors", "docs/errors.md", "| 3 | `ComputeErrorEmptyPosition`",
     "| 4 | `ComputeErrorEmptyPosition`", 2),
    ("errors", "include/Orvo/Kin/Enumerations.h", "MachineErrorParentCycle = 4",
     "MachineErrorParentCycle = 5", 2),
    ("errors", "io/NumberParse.cpp", "invalid stod argument", "no number", 2),
    ("constants", "docs/tolerances.md", "`SnapTolerance` | 0.01", "`SnapTolerance` | 0.1", 1),
    ("constants", "compute/RotarySolution.cpp", "AlignedCosine = 0.99", "AlignedCosine = 0.999", 1),
    ("constants", "geometry/AngleKernel.h", "static constexpr double Shortest",
     "static constexpr double Longest = 1.0;\n  static constexpr double Shortest", 1),
    ("constants", "model/LinkDirection.h", "SmallestLinkDirection", "Shortest", 2),
    ("words", "docs/machine-file.md", "`RegR1`", "`R1`", 1),
    ("words", "include/Orvo/Kin/Enumerations.h", '"XYZIJK"', '"IJKXYZ"', 1),
    ("words", "io/EntityXML.cpp", 'L"Motor"', 'L"Driven"', 1),
    ("links", "docs/tutorial.md", "](errors.md)", "](mistakes.md)", 1),
]


def copy_tree(root, copy):
    for folder in FOLDERS:
        shutil.copytree(root / folder, copy / folder,
                        ignore=shutil.ignore_patterns("*.stl", "*.csv"))
    for file in ["README.md", "CONTRIBUTING.md", "CHANGELOG.md", "LICENSE"]:
        shutil.copy(root / file, copy / file)


def main():
    root = pathlib.Path(sys.argv[1])
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        copy = pathlib.Path(folder)
        copy_tree(root, copy)
        for rule, name, old, new, wanted in PLANTED:
            file = copy / name
            text = file.read_text(encoding="utf-8")
            before = set(check_pages.RULES[rule](copy))
            file.write_text(text.replace(old, new), encoding="utf-8")
            found = set(check_pages.RULES[rule](copy)) - before
            file.write_text(text, encoding="utf-8")
            if old not in text or len(found) != wanted:
                failures += 1
                print(f"{rule}, {name}, '{old}': wanted {wanted} faults, found {sorted(found)}")
        tutorial = copy / "docs/tutorial.md"
        text = tutorial.read_text(encoding="utf-8")
        tutorial.write_text(text.replace("Machine machine;", "Machine engine;"), encoding="utf-8")
        check_pages.update_quotes(copy)
        if list(check_pages.check_quotes(copy)):
            failures += 1
            print("--update leaves quotes that differ")
    return 1 if failures else 0


sys.exit(main())
