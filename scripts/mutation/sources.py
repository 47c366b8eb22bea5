"""The sources that mutants are made of."""

import pathlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDERS = ("geometry", "model", "io", "compute")


def read_sources(tree, folders=FOLDERS):
    """The library's sources below a folder, by path."""
    sources = {}
    for folder in folders:
        for path in sorted((tree / folder).rglob("*")):
            if path.suffix in (".cpp", ".h"):
                sources[path.relative_to(tree).as_posix()] = path.read_text(encoding="utf-8")
    return sources
