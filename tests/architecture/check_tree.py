"""Checks the source tree against the rules of its layers.

usage: check_tree.py ROOT RULE

Rules:
  include-directions  who may include what (the tables below)
  output              the library neither prints nor ends the process
  ascii               sources hold ASCII only
  words               sources hold no reminders and no paths of one developer's machine
"""

import pathlib
import re
import sys

# The folders of the library, and whose private headers each may include.
LAYERS = {
    "include": set(),
    "geometry": {"geometry"},
    "model": {"geometry", "model"},
    "compute": {"geometry", "model", "compute"},
    "io": {"geometry", "model", "io"},
}

# Libraries on top of the public headers alone, not of each other: the folder, and the prefix of its
# own public headers, which lie in its include/. Those may include what a public header may.
SECOND_LAYERS = {"path": "Orvo/Path/", "exchange": "Orvo/Exchange/"}

# Users of the library: public headers, and headers that lie beside the source.
# The plain computation can't be had from outside: the benchmarks reach for its switch.
PRIVATE_USERS = {"benchmarks/PlainPath.cpp"}
USERS = ["tools", "examples", "benchmarks", "python", "viewer", "tests/interface", "tests/package"]

# Headers of other projects, and the folders of the library that may include them.
THIRD_PARTY = [
    (re.compile(r"tinyxml2\.h$"), {"io"}),
    (re.compile(r"utf8(/.*|\.h)$"), {"io", "path", "exchange"}),
    (re.compile(r"nlohmann/"), {"path", "exchange"}),
    (re.compile(r"fmt/"), {"path"}),
    (re.compile(r"(CLI|gtest|gmock|benchmark)/"), set()),
]

# What a public header may include beside public headers and the standard library.
PUBLIC_EXTRAS = {"Orvo/Simd128.h": {"emmintrin.h", "simde/x86/sse2.h"}}

# Sources whose text is checked: all code that people write here.
CODE_FOLDERS = ["include", "geometry", "model", "compute", "io", "path", "exchange", "tools",
                "examples", "tests", "cmake", "scripts", "fuzz", "benchmarks", "python", "viewer", "packaging", ".ci"]
CODE_SUFFIXES = {".h", ".cpp", ".py", ".sh", ".cmake", ".in"}
CODE_NAMES = {"CMakeLists.txt", "CMakePresets.json", "setup.sh", "test.sh", "demo.sh", "run"}

PRINTING = re.compile(
    r"\b(printf|fprintf|vprintf|vfprintf|wprintf|fwprintf|puts|putchar|putwchar|perror)\s*\("
    r"|\b(stdout|stderr)\b|\bstd\s*::\s*w?(cout|cerr|clog)\b")
ENDING = re.compile(
    r"\b(abort|exit|_Exit|_exit|quick_exit|terminate|raise|kill|assert|__builtin_trap)\s*\(")
OUTPUT_HEADERS = {"iostream", "cassert", "assert.h", "csignal", "signal.h"}

# Spelled in parts, so that this file does not hold them.
WORDS = re.compile(r"\b(TO" r"DO|FIX" r"ME|X" r"XX|HA" r"CK)\b|(?<![\w./])/(home|root|Users)/")

INCLUDE = re.compile(r"^[ \t]*#[ \t]*include[ \t]*([<\"])([^>\"]+)[>\"]", re.MULTILINE)

COMMENT_OR_LITERAL = re.compile(
    r"//[^\n]*|/\*.*?\*/|R\"([^()\\\s]{0,16})\(.*?\)\1\"|\"(?:\\.|[^\"\\\n])*\""
    r"|(?<![\w'])'(?:\\.|[^'\\\n])+'", re.DOTALL)


def blank(match):
    """Keeps the lines of a comment or literal, and nothing else."""
    return " " + "\n" * match.group(0).count("\n")


def without_comments(text):
    def keep_literals(match):
        return blank(match) if match.group(0).startswith("/") else match.group(0)
    return COMMENT_OR_LITERAL.sub(keep_literals, text)


def without_comments_and_literals(text):
    return COMMENT_OR_LITERAL.sub(blank, text)


def line_of(text, offset):
    return text.count("\n", 0, offset) + 1


def sources(root, folder):
    """The C++ files below a folder, as pairs of path below the root and text."""
    for path in sorted((root / folder).rglob("*")):
        if path.suffix in {".h", ".cpp"} and path.is_file():
            yield path.relative_to(root).as_posix(), path.read_text(encoding="utf-8")


def is_standard(name):
    """Standard C++ headers have neither a folder nor a suffix."""
    return re.fullmatch(r"[a-z0-9_]+", name) is not None


def is_public_header(root, name):
    """Public headers lie in an include folder, or are made of what lies there."""
    folders = ["include"] + [f"{layer}/include" for layer in SECOND_LAYERS]
    return any((root / folder / (name + suffix)).is_file()
               for folder in folders for suffix in ("", ".in"))


def check_library_include(root, layer, file, quote, name):
    """The fault of one include line of the library, or None."""
    if quote == '"':
        folder = name.split("/")[0]
        if folder not in LAYERS[layer]:
            return f'{layer} may not include "{name}"'
        return None if (root / name).is_file() else f'"{name}" is no file of the project'
    if name.startswith("Orvo/"):
        if any(name.startswith(prefix) for prefix in SECOND_LAYERS.values()):
            return f"{layer} may not include <{name}>"
        return None if is_public_header(root, name) else f"<{name}> is no public header"
    for pattern, folders in THIRD_PARTY:
        if pattern.match(name):
            return None if layer in folders else f"{layer} may not include <{name}>"
    if layer == "include" and not is_standard(name):
        allowed = PUBLIC_EXTRAS.get(file.removeprefix("include/"), set())
        return None if name in allowed else f"a public header may not include <{name}>"
    return None


def check_second_include(root, layer, file, quote, name):
    """The fault of one include line of a library on top of the first, or None."""
    is_public = file.startswith(f"{layer}/include/")
    if quote == '"':
        good = not is_public and name.startswith(layer + "/") and (root / name).is_file()
        return None if good else f'{layer} may not include "{name}"'
    if name.startswith("Orvo/"):
        if any(name.startswith(prefix) for other, prefix in SECOND_LAYERS.items() if other != layer):
            return f"{layer} may not include <{name}>"
        return None if is_public_header(root, name) else f"<{name}> is no public header"
    for pattern, folders in THIRD_PARTY:
        if pattern.match(name) and (is_public or layer not in folders):
            return f"{layer} may not include <{name}>"
    return f"a public header may not include <{name}>" if is_public and not is_standard(name) else None


def check_include_directions(root):
    for layer in SECOND_LAYERS:
        for file, text in sources(root, layer):
            code = without_comments(text)
            for match in INCLUDE.finditer(code):
                fault = check_second_include(root, layer, file, match.group(1), match.group(2))
                if fault:
                    yield file, line_of(code, match.start()), fault
    for layer in LAYERS:
        for file, text in sources(root, layer):
            code = without_comments(text)
            for match in INCLUDE.finditer(code):
                fault = check_library_include(root, layer, file, match.group(1), match.group(2))
                if fault:
                    yield file, line_of(code, match.start()), fault
    for folder in USERS:
        for file, text in sources(root, folder):
            code = without_comments(text)
            for match in INCLUDE.finditer(code):
                quote, name = match.groups()
                beside = (root / file).parent / name
                private = (name.split("/")[0] in {*LAYERS, *SECOND_LAYERS}
                           or name.startswith("tests/"))
                if name.startswith("Orvo/"):
                    good = quote == "<" and is_public_header(root, name)
                elif quote == '"':
                    good = beside.is_file() or (name.startswith("support/")
                                                and folder.startswith("tests/"))
                else:
                    good = not private
                if not good and file not in PRIVATE_USERS:
                    yield file, line_of(code, match.start()), f"{folder} may not include {name}"


def check_output(root):
    for layer in [*LAYERS, *SECOND_LAYERS]:
        for file, text in sources(root, layer):
            code = without_comments(text)
            for match in INCLUDE.finditer(code):
                if match.group(2) in OUTPUT_HEADERS:
                    yield file, line_of(code, match.start()), f"<{match.group(2)}> in the library"
            code = without_comments_and_literals(text)
            for match in PRINTING.finditer(code):
                yield file, line_of(code, match.start()), f"prints: {match.group(0)}"
            for match in ENDING.finditer(code):
                yield file, line_of(code, match.start()), f"ends the process: {match.group(0)}"


def code_files(root):
    """All files that people write as code, as pairs of path below the root and bytes."""
    candidates = [path for path in root.iterdir() if path.is_file()]
    for folder in CODE_FOLDERS:
        candidates += (root / folder).rglob("*")
    for path in sorted(candidates):
        parts = path.relative_to(root).parts
        if "__pycache__" in parts or not path.is_file():
            continue
        if path.suffix in CODE_SUFFIXES or path.name in CODE_NAMES:
            yield "/".join(parts), path.read_bytes()


def check_ascii(root):
    for file, content in code_files(root):
        for number, line in enumerate(content.split(b"\n"), 1):
            if not line.isascii():
                yield file, number, f"not ASCII: {line.decode('utf-8', 'backslashreplace').strip()}"


def check_words(root):
    for file, content in code_files(root):
        text = content.decode("utf-8", "replace")
        for match in WORDS.finditer(text):
            yield file, line_of(text, match.start()), f"not in sources: {match.group(0)}"


RULES = {
    "include-directions": check_include_directions,
    "output": check_output,
    "ascii": check_ascii,
    "words": check_words,
}


def main():
    root, rule = pathlib.Path(sys.argv[1]), sys.argv[2]
    faults = list(RULES[rule](root))
    for file, line, fault in faults:
        print(f"{file}:{line}: {fault}")
    # A tree without sources would pass any rule.
    library = [file for layer in LAYERS for file, _ in sources(root, layer)]
    if len(library) < 20:
        print(f"only {len(library)} sources found below {root}")
        return 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
