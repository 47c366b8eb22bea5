"""Holds the pages in docs/ against what they speak of.

usage: check_pages.py ROOT RULE
       check_pages.py ROOT quotes --update

Rules:
  quotes     what stands behind the line <!-- FILE --> is the file's text; every example is quoted
  errors     errors.md lists each error code with its number, and the text of each exception
  constants  tolerances.md lists each threshold of the library with its value
  words      machine-file.md names each element, attribute and word of machine files
  links      links between pages lead to files

--update writes the files' texts into the pages.
"""

import pathlib
import re
import sys

LAYERS = ["geometry", "model", "compute", "io"]

QUOTE = re.compile(r"^<!-- (\S+) -->\n\n```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)

# Numbers that decide nothing about machines, directions or lengths.
NO_THRESHOLDS = {
    "Pi", "TwoPi", "FullTurnDeg",  # what a turn is
    "DirectionSignCount", "FixedTextCapacity", "Unseen", "NoPlace",  # sizes and marks in memory
    "BlockSize", "FirstBlockSize", "BytesPerElement", "RecordsPerBlock",
    "Padding", "HasChild", "MostDigits", "VectorNb", "NumberNb", "TriangleSize",
    "LargestPlainAttributeNb", "LargestPlainDepth",  # beyond them the other way is taken
    "HeaderSize", "CountOffset", "RecordSize", "AttributeSize", "FileVersion",  # layouts of files
    "LargestTriangleNb", "NoNumberCharacter", "Replacement", "LargestCodePoint",
}
CONSTANT = re.compile(
    r"^ *(?:inline |static )*constexpr (?:double|int|unsigned int|std::size_t|std::uint32_t|char"
    r"|char32_t) (\w+) = ([^;]+);", re.MULTILINE)


def page(root, name):
    return (root / "docs" / name).read_text(encoding="utf-8")


def rows(text):
    """The cells of every table row."""
    for line in text.split("\n"):
        if line.startswith("| "):
            yield [cell.strip() for cell in line.strip().strip("|").split("|")]


def sources(root, *patterns):
    for layer in LAYERS:
        for pattern in patterns:
            yield from sorted((root / layer).glob(pattern))


def pages(root):
    return sorted((root / "docs").glob("*.md"))


def check_quotes(root):
    quoted = set()
    for file in pages(root):
        text = file.read_text(encoding="utf-8")
        for name, _, block in QUOTE.findall(text):
            quoted.add(name)
            source = root / name
            if not source.is_file():
                yield f"{file.name} quotes {name}, which is not there"
            elif source.read_text(encoding="utf-8") != block:
                yield f"{file.name} does not quote {name} as it is"
        if text.count("<!-- ") != len(QUOTE.findall(text)):
            yield f"{file.name} has a quoting line without a block behind it"
    for example in sorted((root / "examples").glob("[0-9]*/*")):
        name = example.relative_to(root).as_posix()
        if name not in quoted:
            yield f"no page quotes {name}"


def update_quotes(root):
    for file in pages(root):
        text = file.read_text(encoding="utf-8")
        new = QUOTE.sub(
            lambda match: f"<!-- {match[1]} -->\n\n```{match[2]}\n"
            + (root / match[1]).read_text(encoding="utf-8") + "```", text)
        if new != text:
            file.write_text(new, encoding="utf-8")


def check_errors(root):
    header = (root / "include/Orvo/Kin/Enumerations.h").read_text(encoding="utf-8")
    wanted = {(number, f"`{name}`")
              for name, number in re.findall(r"(\w*Error\w+) = (\d+)", header)}
    text = page(root, "errors.md")
    found = {(row[0], row[1]) for row in rows(text) if row[0].isdigit()}
    for number, name in sorted(wanted - found):
        yield f"errors.md does not say that {name} is {number}"
    for number, name in sorted(found - wanted):
        yield f"errors.md says that {name} is {number}"
    thrown = set()
    for source in sources(root, "*.cpp"):
        thrown.update(re.findall(r'throw std::(\w+)\("([^"]+)"\)',
                                 source.read_text(encoding="utf-8")))
    if len(thrown) < 5:
        yield f"only {len(thrown)} exceptions found in the sources"
    listed = {(row[0].strip("`").removeprefix("std::"), row[1].strip("`"))
              for row in rows(text) if row[0].startswith("`std::") and row[1]}
    for kind, what in sorted(thrown - listed):
        yield f'errors.md does not list std::{kind} "{what}"'
    for kind, what in sorted(listed - thrown):
        yield f'errors.md lists std::{kind} "{what}", which nothing throws'


def check_constants(root):
    defined = {}
    files = [*sources(root, "*.cpp", "*.h"), *sorted((root / "include").rglob("*.h"))]
    for source in files:
        for name, value in CONSTANT.findall(source.read_text(encoding="utf-8")):
            if name not in NO_THRESHOLDS:
                defined[(name, source.relative_to(root).as_posix())] = value
    if len(defined) < 20:
        yield f"only {len(defined)} constants found in the sources"
    listed = {(row[0].strip("`"), row[2]): row[1]
              for row in rows(page(root, "tolerances.md")) if row[0].startswith("`")}
    for key in sorted(defined.keys() - listed.keys()):
        yield f"tolerances.md does not list {key[0]} of {key[1]}"
    for key in sorted(listed.keys() - defined.keys()):
        yield f"tolerances.md lists {key[0]} of {key[1]}, which is not there"
    for key in sorted(defined.keys() & listed.keys()):
        if defined[key] != listed[key]:
            yield f"{key[0]} of {key[1]} is {defined[key]}, and {listed[key]} in tolerances.md"


def check_words(root):
    header = (root / "include/Orvo/Kin/Enumerations.h").read_text(encoding="utf-8")
    words = set(re.findall(r'///< "(\w+)"', header))
    for source in sources(root, "*XML.cpp"):
        if source.parent.name == "io":
            words.update(re.findall(r'L"(\w+)"', source.read_text(encoding="utf-8")))
    if len(words) < 50:
        yield f"only {len(words)} words found in the sources"
    text = page(root, "machine-file.md")
    for word in sorted(words):
        if f"`{word}`" not in text:
            yield f"machine-file.md does not name {word}"


def check_links(root):
    for file in [*pages(root), root / "README.md", root / "CONTRIBUTING.md"]:
        for link in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", file.read_text(encoding="utf-8")):
            if not (file.parent / link).exists():
                yield f"{file.name} links to {link}, which is not there"


RULES = {
    "quotes": check_quotes,
    "errors": check_errors,
    "constants": check_constants,
    "words": check_words,
    "links": check_links,
}


def main():
    root, rule = pathlib.Path(sys.argv[1]), sys.argv[2]
    if sys.argv[3:] == ["--update"] and rule == "quotes":
        update_quotes(root)
    faults = list(RULES[rule](root))
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
