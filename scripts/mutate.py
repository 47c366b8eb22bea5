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
import collections
import difflib
import hashlib
import json
import math
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("geometry", "model", "io", "compute")
TEST_FOLDERS = FOLDERS + ("property", "faults", "limits")

# Of all mutants, what a file with a single line gets.
SMALLEST_SHARE = 1 / 300

# A single test that takes this long is a slow one.
SLOW_MS = 200

# Of the random tests each runs this share, in percent.
CASE_SHARE = "2"

MEMORY_LIMIT = 4 << 30
FILE_LIMIT = 1 << 30

# A test may take this many times its usual time of the processor, and of the clock, and some
# seconds on top.
SLOWDOWN = 4
PROCESSOR_GRACE_S = 3
CLOCK_GRACE_S = 60


# ---- Tokens --------------------------------------------------------------------------------------

TOKEN = re.compile(r"""
    (?P<directive> ^[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<space> \s+)
  | (?P<comment> //[^\n]* | /\*.*?\*/)
  | (?P<string> (?:u8|[LuU])?R"(?P<delimiter>[^()\\\s]{0,16})\(.*?\)(?P=delimiter)"
              | (?:u8|[LuU])?"(?:\\.|[^"\\\n])*")
  | (?P<char> (?:u8|[LuU])?'(?:\\.|[^'\\\n])+')
  | (?P<number> \.?\d(?:[eEpP][+-]|'(?=\w)|[\w.])*)
  | (?P<name> [A-Za-z_]\w*)
  | (?P<op> \.\.\.|->\*|<<=|>>=|<=>|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)
""", re.VERBOSE | re.MULTILINE | re.DOTALL)

KEYWORDS = set("""alignas alignof break case catch class const constexpr continue decltype default
    delete do else enum explicit export extern for friend goto if inline mutable namespace new
    noexcept operator private protected public return sizeof static static_assert struct switch
    template this throw try typedef typename union using virtual volatile while""".split())

TYPE_WORDS = set("bool char double float int long short signed unsigned void wchar_t auto".split())

OPENING = {"(": ")", "[": "]", "{": "}"}
CLOSING = {")", "]", "}"}


class Token:
    """A token of code; the blanks around it tell binary operators from unary ones and from brackets
    of templates, since the sources are laid out by one formatter."""

    def __init__(self, kind, text, start, end):
        self.kind = kind
        self.text = text
        self.start = start
        self.end = end
        self.space_before = False
        self.space_after = False
        self.partner = None  # of a bracket: the index of the other one
        self.frozen = False  # lies where nothing is to be changed

    @property
    def is_binary(self):
        return self.kind == "op" and self.space_before and self.space_after


def tokenize(text):
    """The tokens of code: neither blanks, comments nor preprocessor lines."""
    tokens = []
    after_space = True
    for match in TOKEN.finditer(text):
        if match.lastgroup in ("space", "comment", "directive"):
            after_space = True
            if tokens:
                tokens[-1].space_after = True
            continue
        kind = match.lastgroup if match.lastgroup != "delimiter" else "string"
        token = Token(kind, match.group(0), match.start(), match.end())
        token.space_before = after_space
        after_space = False
        tokens.append(token)
    pair_brackets(tokens)
    freeze(tokens)
    return tokens


def pair_brackets(tokens):
    open_places = []
    for place, token in enumerate(tokens):
        if token.kind != "op":
            continue
        if token.text in OPENING:
            open_places.append(place)
        elif token.text in CLOSING and open_places:
            token.partner = open_places.pop()
            tokens[token.partner].partner = place


def freeze(tokens):
    """Marks what is no code that runs: attributes, static assertions, heads of templates, aliases,
    names of operators, pure virtual members."""
    def mark(first, last):
        for token in tokens[first:last + 1]:
            token.frozen = True

    for place, token in enumerate(tokens):
        following = tokens[place + 1] if place + 1 < len(tokens) else None
        if following is None:
            break
        if token.text == "[" and following.text == "[" and token.partner:
            mark(place, token.partner)
        elif token.text in ("static_assert", "alignas", "noexcept") and following.text == "(":
            mark(place, following.partner or place)
        elif token.text in ("using", "typedef", "friend"):
            end = place
            while end + 1 < len(tokens) and tokens[end].text != ";":
                end += 1
            mark(place, end)
        elif token.text == "template" and following.text == "<":
            depth, end = 0, place + 1
            while end < len(tokens):
                depth += {"<": 1, ">": -1, ">>": -2}.get(tokens[end].text, 0)
                if depth <= 0:
                    break
                end += 1
            mark(place, end)
        elif token.text == "operator":
            mark(place, place + (2 if following.text in ("(", "[") else 1))
        elif token.text == "=" and following.text == "0" and (
                tokens[place - 1].text in (")", "const")):
            mark(place, place + 1)


# ---- Mutants -------------------------------------------------------------------------------------

class Mutant:
    def __init__(self, file, kind, start, end, new):
        self.file = file
        self.kind = kind
        self.start = start
        self.end = end
        self.new = new

    @property
    def site(self):
        return self.start, self.end, self.kind

    def apply(self, text):
        return text[:self.start] + self.new + text[self.end:]


COMPARISONS = {
    "<": ("<=", ">", ">="),
    "<=": ("<", ">", ">="),
    ">": (">=", "<", "<="),
    ">=": (">", "<", "<="),
    "==": ("!=",),
    "!=": ("==",),
}

ARITHMETIC = {
    "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("/",),
    "+=": ("-=",), "-=": ("+=",), "*=": ("/=",), "/=": ("*=",),
    "<<": (">>",), ">>": ("<<",), "&": ("|",), "|": ("&",), "^": ("|",),
    "<<=": (">>=",), ">>=": ("<<=",), "&=": ("|=",), "|=": ("&=",),
}

LOGICAL = {"&&": "||", "||": "&&"}

# What comes out the same for changed arguments.
SYMMETRIC = {"Dot", "max", "min", "swap", "fabs"}

FRAME_NAME = re.compile(r"From[A-Z]|[Ff]rame|[Mm]atrix|Inverse")


def number_variants(text):
    """Other values for a number, as texts."""
    if "'" in text:
        return []
    is_hex = text.lower().startswith("0x")
    if not is_hex and re.search(r"[.eE]", text):
        match = re.fullmatch(r"([\d.]+(?:[eE][+-]?\d+)?)([fFlL]?)", text)
        if not match:
            return []
        value, suffix = float(match.group(1)), match.group(2)
        if value == 0.0:
            values = [1.0]
        elif value == 1.0:
            values = [2.0, 0.0, -1.0]
        elif value <= 0.1:
            values = [value * 10.0, value / 10.0, -value]
        else:
            values = [value + 1.0, value - 1.0, -value]
        return [repr(float(f"{other:.12g}")) + suffix for other in values]
    match = re.fullmatch(r"(0[xX][0-9a-fA-F]+|\d+)([uUlLzZ]*)", text)
    if not match:
        return []
    digits, suffix = match.groups()
    value = int(digits, 16 if is_hex else 10)
    write = (lambda other: f"0x{other:X}") if is_hex else str
    values = [value + 1] if value == 0 else [value + 1, value - 1]
    return [write(other) + suffix for other in values]


def char_variants(text):
    prefix, content = re.fullmatch(r"(u8|[LuU])?'(.*)'", text, re.DOTALL).groups()
    prefix = prefix or ""
    if content.startswith("\\"):
        return [prefix + "'x'"]
    other = chr(ord(content) + 1)
    return [prefix + ("'x'" if other in "'\\" else f"'{other}'")]


# Operators that end an operand of + and -, and of * and /.
WEAK = {"+", "-", "<", "<=", ">", ">=", "==", "!=", "<=>", "&&", "||", "&", "|", "^", "<<",
        ">>", "?", ":", "=", "+=", "-=", "*=", "/=", "%="}
STRONG = WEAK | {"*", "/", "%"}


def operand(tokens, place, step, stops):
    """The first and last token of the operand on one side of a binary operator, or None."""
    at = place + step
    last = None
    while 0 <= at < len(tokens):
        token = tokens[at]
        if token.kind == "op":
            if token.text in ("(", "[", "{") if step < 0 else token.text in CLOSING:
                break
            if token.text in (",", ";", "}", "{") or (token.text in stops and token.is_binary):
                break
            if token.partner is not None:
                at = token.partner
        elif token.text in ("return", "case", "throw", "const", "else"):
            break
        last = at
        at += step
    if last is None:
        return None
    return (last, place - 1) if step < 0 else (place + 1, last)


def text_of(text, tokens, span):
    return text[tokens[span[0]].start:tokens[span[1]].end]


def find_operator_mutants(text, tokens, add):
    for place, token in enumerate(tokens):
        if token.frozen or token.kind != "op":
            continue
        if token.text == "!":
            add("logical", token.start, token.end, "")
        elif token.text in ("++", "--"):
            add("arithmetic", token.start, token.end, "--" if token.text == "++" else "++")
        elif token.text == "-" and not token.space_after:
            add("sign", token.start, token.end, "")
        elif not token.is_binary:
            continue
        elif token.text in COMPARISONS:
            for new in COMPARISONS[token.text]:
                add("comparison", token.start, token.end, new)
        elif token.text in LOGICAL:
            add("logical", token.start, token.end, LOGICAL[token.text])
        elif token.text in ARITHMETIC:
            for new in ARITHMETIC[token.text]:
                add("arithmetic", token.start, token.end, new)
            if token.text in ("*", "/"):
                add("sign", token.end, token.end, " -")
            if token.text in ("-", "/", "*"):
                stops = WEAK if token.text == "-" else STRONG
                left = operand(tokens, place, -1, stops)
                right = operand(tokens, place, 1, stops)
                if left and right:
                    a, b = text_of(text, tokens, left), text_of(text, tokens, right)
                    is_frames = FRAME_NAME.search(a) and FRAME_NAME.search(b)
                    if a != b and (token.text != "*" or is_frames):
                        add("order", tokens[left[0]].start, tokens[right[1]].end,
                            f"{b} {token.text} {a}")


def is_declaration(tokens, first, last):
    """Whether an argument is rather a parameter: two names beside each other, or a type alone."""
    at = first
    while at <= last:
        token = tokens[at]
        if token.kind == "name" and token.text in TYPE_WORDS | {"const", "void"}:
            return True
        if token.partner is not None and token.partner > at:
            at = token.partner
        following = tokens[at + 1] if at < last else None
        if following is not None and following.kind == "name" and token.kind == "name":
            return True
        if token.kind == "op" and token.text in ("*", "&", "&&") and (
                not token.space_before and (token.space_after or following is None)):
            return True
        at += 1
    return False


def find_argument_mutants(text, tokens, add):
    for place, token in enumerate(tokens):
        if token.text not in ("(", "{") or token.partner is None or token.frozen or place == 0:
            continue
        before = tokens[place - 1]
        if token.text == "(":
            is_list = (before.kind == "name" and before.text not in KEYWORDS) or (
                before.text == ">" and not before.space_before)
        else:
            is_list = before.text in ("return", "=", "(", ",", "{") or (
                before.kind == "name" and before.text not in KEYWORDS and not token.space_before)
        if not is_list or before.text in SYMMETRIC:
            continue
        arguments, first, at = [], place + 1, place + 1
        while at <= token.partner:
            inner = tokens[at]
            if inner.text in (",", ";") or at == token.partner:
                arguments.append((first, at - 1))
                first = at + 1
            if inner.text == ";" and inner.kind == "op":
                arguments = []
                break
            if inner.partner is not None and inner.partner > at:
                at = inner.partner
            at += 1
        if any(last < first or is_declaration(tokens, first, last) for first, last in arguments):
            continue
        for left, right in zip(arguments, arguments[1:]):
            a, b = text_of(text, tokens, left), text_of(text, tokens, right)
            if a != b:
                between = text[tokens[left[1]].end:tokens[right[0]].start]
                add("order", tokens[left[0]].start, tokens[right[1]].end, b + between + a)


def statement_end(tokens, place):
    while place < len(tokens) and tokens[place].text != ";":
        if tokens[place].text in CLOSING:
            return None
        if tokens[place].partner is not None:
            place = tokens[place].partner
        place += 1
    return place if place < len(tokens) else None


def is_expression(tokens, first, end):
    """Whether a statement does something, rather than declare a name."""
    at = first
    while tokens[at].text in ("*", "(", "++", "--") and at < end:
        if tokens[at].text in ("++", "--"):
            return True
        at = tokens[at].partner + 1 if tokens[at].text == "(" else at + 1
    has_call = False
    while at < end:
        token = tokens[at]
        if token.text in ("(", "["):
            has_call = has_call or token.text == "("
            at = token.partner + 1
        elif token.text in ("::", ".", "->"):
            at += 1
        elif token.text == "<" and not token.space_before:
            while at < end and tokens[at].text != ">":
                at += 1
            at += 1
        elif token.kind == "name" and (
                at == first or tokens[at - 1].text in ("::", ".", "->", "*", "(")):
            at += 1
        else:
            break
    if at == end:
        return has_call
    return tokens[at].kind == "op" and (
        tokens[at].text in ("++", "--") or re.fullmatch(r"(<<|>>|[-+*/%&|^])?=", tokens[at].text))


def find_statement_mutants(text, tokens, add):
    for place, token in enumerate(tokens):
        if token.frozen:
            continue
        if token.text in ("break", "continue"):
            add("statement", token.start, token.end, "")
            continue
        if token.text in ("return", "throw"):
            end = statement_end(tokens, place)
            if end is None or end == place + 1:
                continue
            value = (place + 1, end - 1)
            if token.text == "throw":
                add("statement", token.start, tokens[end - 1].end, "")
            elif text_of(text, tokens, value) not in ("{}", "0", "0U", "false", "true", "nullptr"):
                add("return", tokens[value[0]].start, tokens[value[1]].end, "{}")
            continue
        before = tokens[place - 1] if place else None
        # The colon of a conditional has a blank in front of it, that of a label has none.
        if before is None or before.text not in (";", "{", "}", ":", ")", "else") or (
                before.text == ":" and before.space_before):
            continue
        if token.kind == "name" and (token.text in KEYWORDS - {"this"} or token.text in TYPE_WORDS):
            continue
        if token.kind != "name" and token.text not in ("*", "(", "++", "--"):
            continue
        end = statement_end(tokens, place)
        if end is None or end == place or tokens[end - 1].text in ("default", "delete"):
            continue
        if is_expression(tokens, place, end):
            add("statement", token.start, tokens[end - 1].end, "")


def find_mutants(file, text):
    """All mutants of one source, each change once."""
    tokens = tokenize(text)
    mutants = {}

    def add(kind, start, end, new):
        if text[start:end] != new:
            mutants.setdefault((start, end, new), Mutant(file, kind, start, end, new))

    for place, token in enumerate(tokens):
        if token.frozen:
            continue
        if token.kind == "number":
            has_sign = place > 0 and tokens[place - 1].text == "-"
            for new in number_variants(token.text):
                if not (has_sign and new.startswith("-")):
                    add("constant", token.start, token.end, new)
        elif token.kind == "char":
            for new in char_variants(token.text):
                add("constant", token.start, token.end, new)
        elif token.text in ("true", "false"):
            add("boolean", token.start, token.end, "false" if token.text == "true" else "true")
        elif token.text in ("min", "max") and token.kind == "name":
            add("min-max", token.start, token.end, "max" if token.text == "min" else "min")
    find_operator_mutants(text, tokens, add)
    find_argument_mutants(text, tokens, add)
    find_statement_mutants(text, tokens, add)
    return sorted(mutants.values(), key=lambda m: (m.start, m.end, m.kind, m.new))


def line_places(lines, text):
    """Where whole lines stand in a text."""
    return [match.start() for match in
            re.finditer(rf"^{re.escape(lines)}$", text, re.MULTILINE)]


def describe(mutant, text):
    """What identifies a mutant, and its change as whole lines."""
    first = text.rfind("\n", 0, mutant.start) + 1
    last = text.find("\n", mutant.end)
    before, after = text[first:last], mutant.apply(text)
    return {
        "file": mutant.file,
        "line": text.count("\n", 0, mutant.start) + 1,
        "column": mutant.start - first + 1,
        "kind": mutant.kind,
        "old": text[mutant.start:mutant.end],
        "new": mutant.new,
        "before": before,
        "after": after[first:last + len(after) - len(text)],
        "number": line_places(before, text).index(first),
    }


def identity(record):
    return tuple(record[key] for key in ("file", "line", "column", "kind", "new"))


def read_sources(tree, folders=FOLDERS):
    """The library's sources below a folder, by path."""
    sources = {}
    for folder in folders:
        for path in sorted((tree / folder).rglob("*")):
            if path.suffix in (".cpp", ".h"):
                sources[path.relative_to(tree).as_posix()] = path.read_text(encoding="utf-8")
    return sources


def shuffled_mutants(file, text, seed):
    """A file's mutants in the order in which they are drawn, first one of each place, in random
    order, then a second one of each, and so on; and the number of lines that they are on."""
    source = random.Random(f"{seed} {file}")
    sites = collections.defaultdict(list)
    for mutant in find_mutants(file, text):
        sites[mutant.site].append(mutant)
    order = sorted(sites)
    source.shuffle(order)
    for site in order:
        source.shuffle(sites[site])
    rounds = max((len(each) for each in sites.values()), default=0)
    queue = [sites[site][number] for number in range(rounds) for site in order
             if number < len(sites[site])]
    return queue, len({text.count("\n", 0, start) for start, _, _ in sites})


class Draw:
    """Draws mutants so that each file's share of those counted follows its lines that offer any,
    and that no such file goes without. A longer draw goes on where a shorter one ends."""

    def __init__(self, sources, seed):
        self.queues, self.weights = {}, {}
        for file, text in sources.items():
            queue, line_nb = shuffled_mutants(file, text, seed)
            if queue:
                self.queues[file] = collections.deque(queue)
                self.weights[file] = line_nb
        least = SMALLEST_SHARE * sum(self.weights.values())
        self.weights = {file: max(weight, least) for file, weight in self.weights.items()}
        self.counted = collections.Counter()

    def next(self):
        open_files = [file for file in self.queues if self.queues[file]]
        if not open_files:
            return None
        file = min(open_files, key=lambda f: ((self.counted[f] + 1) / self.weights[f], f))
        return self.queues[file].popleft()

    def count(self, file):
        self.counted[file] += 1


# ---- Building and testing ------------------------------------------------------------------------

def processor_time():
    """The processor time of all programs that were run and waited for, in seconds."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


class Workshop:
    """A copy of the checkout, built once; mutants are compiled beside it."""

    def __init__(self, work, jobs):
        self.work = work.resolve()
        self.tree = self.work / "tree"
        self.build = self.work / "build"
        self.mutant = self.work / "mutant"
        self.overlay = self.mutant / "source"
        self.jobs = jobs
        self.pristine_code = {}
        self.standard = self.work / "precompiled" / "standard.h"

    # Copies what changed, so that only that is built anew.
    def copy_tree(self):
        listed = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "-co", "--exclude-standard"],
                                capture_output=True, check=False)
        if listed.returncode == 0:
            files = {name for name in listed.stdout.decode().split("\0") if name}
        else:
            files = {path.relative_to(ROOT).as_posix() for path in ROOT.rglob("*")
                     if path.is_file() and path.relative_to(ROOT).parts[0] not in ("build", ".git")}
        files = {name for name in files if (ROOT / name).is_file()}
        for name in files:
            target = self.tree / name
            content = (ROOT / name).read_bytes()
            if not target.is_file() or target.read_bytes() != content:
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(ROOT / name, target)
        for path in list(self.tree.rglob("*")):
            if path.is_file() and path.relative_to(self.tree).as_posix() not in files:
                path.unlink()

    def build_tree(self):
        linker = "-fuse-ld=lld" if shutil.which("ld.lld") else ""
        launcher = shutil.which("ccache") or ""
        environment = dict(os.environ, CCACHE_BASEDIR=str(self.tree), CCACHE_NOHASHDIR="1")
        self.run_or_stop(
            ["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
             "-DCMAKE_CXX_FLAGS=-O1 -w", f"-DCMAKE_EXE_LINKER_FLAGS={linker}",
             f"-DCMAKE_CXX_COMPILER_LAUNCHER={launcher}", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
             "-DBUILD_SHARED_LIBS=OFF", "-DORVO_BUILD_TOOLS=OFF"], environment)
        self.tests = self.find_tests()
        self.run_or_stop(["ninja", "-C", self.build, f"-j{self.jobs}", *self.all_tests()],
                         environment)
        self.read_build()

    def run_or_stop(self, command, environment):
        done = subprocess.run([str(part) for part in command], env=environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        if done.returncode != 0:
            sys.exit(f"{done.stdout}\nmutate.py: FAILED: {shlex.join(map(str, command))}")

    def find_tests(self):
        """The test programs of each folder of tests that this build has, as targets."""
        known = set(re.findall(r"^(\w+): phony", self.ninja("-t", "targets", "all"), re.MULTILINE))
        tests = {}
        for folder in TEST_FOLDERS:
            path = self.tree / "tests" / folder / "CMakeLists.txt"
            if path.is_file():
                named = re.findall(r"^\s*orvo_add_test\(\s*(\w+)", path.read_text(), re.MULTILINE)
                tests[folder] = [test for test in named if test in known]
        return tests

    def all_tests(self):
        return [test for tests in self.tests.values() for test in tests]

    def program(self, folder, test):
        return self.build / "tests" / folder / test

    def ninja(self, *arguments):
        return subprocess.run(["ninja", "-C", self.build, *arguments], capture_output=True,
                              text=True, check=True).stdout

    def read_build(self):
        """How each object is compiled, what it is made of, and how each test is linked."""
        self.compile = {}
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            command = shlex.split(entry["command"])
            if "ccache" in os.path.basename(command[0]):
                command = command[1:]
            self.compile[command[command.index("-o") + 1]] = command
        self.precompile()
        self.users = collections.defaultdict(list)
        target = None
        for line in self.ninja("-t", "deps").splitlines():
            if line[:1].strip():
                target = line.split(": #deps")[0]
            elif line.strip():
                path = (self.build / line.strip()).resolve()
                if path.is_relative_to(self.tree):
                    self.users[path.relative_to(self.tree).as_posix()].append(target)
        self.link = {}
        for test in self.all_tests():
            command = self.ninja("-t", "commands", test).strip().splitlines()[-1]
            # Between ": && " and " && :".
            self.link[test] = shlex.split(command.split(" && ")[1])

    # The standard headers are most of what the compiler reads, and they declare no more than names.
    def precompile(self):
        names = set()
        for text in read_sources(self.tree).values():
            names |= set(re.findall(r"^#include <([a-z0-9_]+)>", text, re.MULTILINE))
        folder = self.standard.with_suffix(".h.gch")
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        self.standard.write_text("".join(f"#include <{name}>\n" for name in sorted(names)))
        kinds = set()
        for target, command in self.compile.items():
            if target.split("/")[0] in FOLDERS:
                kinds.add(tuple(command[:command.index("-o")]))
        for number, command in enumerate(sorted(kinds)):
            self.run_or_stop([*command, "-x", "c++-header", self.standard,
                              "-o", folder / f"{number}.gch"], os.environ)

    def affected(self, file):
        """The library's objects that a source goes into, and those of the tests."""
        users = [target for target in self.users[file] if target in self.compile]
        library = [target for target in users if target.split("/")[0] in FOLDERS]
        return library, [target for target in users if target.startswith("tests/")]

    def compiled(self, target, kind, level=None):
        """Compiles one object beside the build, with the sources laid over the tree; null where
        that fails."""
        output = self.mutant / kind / target
        output.parent.mkdir(parents=True, exist_ok=True)
        command = list(self.compile[target])
        source = pathlib.Path(command[command.index("-c") + 1])
        over = self.overlay / source.relative_to(self.tree)
        if over.is_file():
            command[command.index("-c") + 1] = str(over)
        if "-MF" in command:
            command[command.index("-MF") + 1] = str(output) + ".d"
        command[command.index("-o") + 1] = str(output)
        command.insert(1, f"-I{self.overlay}")
        if target.split("/")[0] in FOLDERS and level is None:
            command[1:1] = ["-include", str(self.standard)]
        if level:
            command.append(level)
        done = subprocess.run(command, cwd=self.build, capture_output=True, check=False)
        return output if done.returncode == 0 else None

    def lay_over(self, file, text):
        shutil.rmtree(self.overlay, ignore_errors=True)
        path = self.overlay / file
        path.parent.mkdir(parents=True)
        path.write_text(text, encoding="utf-8")

    def code(self, target, kind, level):
        """The hash of an object's content, null where it does not compile."""
        path = self.compiled(target, kind, level)
        return path and hashlib.sha256(path.read_bytes()).hexdigest()

    def same_code(self, file, text, mutated, level):
        """Whether a mutant compiles to the same machine code at some level of optimization."""
        for target in self.affected(file)[0]:
            key = target, file, level
            if key not in self.pristine_code:
                self.lay_over(file, text)
                self.pristine_code[key] = self.code(target, "pristine", level)
            self.lay_over(file, mutated)
            if self.code(target, "optimized", level) != self.pristine_code[key]:
                return False
        return True

    def run_test(self, test, program, processor_s, clock_s, chosen="*", is_brief=True):
        """Runs one test program; returns the outcome and, for a failure, what failed."""
        scratch = self.work / "scratch"
        shutil.rmtree(scratch, ignore_errors=True)
        scratch.mkdir()
        environment = dict(os.environ, TMPDIR=str(scratch), ORVO_TEST_CASES=CASE_SHARE,
                           GTEST_FAIL_FAST="1", GTEST_BRIEF=str(int(is_brief)), GTEST_COLOR="no",
                           GTEST_FILTER=chosen)

        def limit():
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
            resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_LIMIT, FILE_LIMIT))
            resource.setrlimit(resource.RLIMIT_CPU, (processor_s, processor_s + 1))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        log = self.work / "test.log"
        with open(log, "wb") as output:
            process = subprocess.Popen([str(program)], cwd=scratch, env=environment, stdout=output,
                                       stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                                       preexec_fn=limit, start_new_session=True)
            try:
                status = process.wait(clock_s)
            except subprocess.TimeoutExpired:
                status = None
            finally:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait()
        if status == 0:
            return "passed", None
        failed = re.search(rb"^\[  FAILED  \] (\S+)", log.read_bytes(), re.MULTILINE)
        name = f"status {status}"
        if failed:
            name = failed.group(1).decode("utf-8", "replace").rstrip(",")
        is_late = status in (None, -signal.SIGXCPU)
        return "timeout" if is_late else "killed", f"{test}: {name}"

    def measure_tests(self):
        """Runs every test program as it is: all must pass; how long each takes sets its limits."""
        self.limits, self.choices, log = {}, {}, self.work / "test.log"
        for folder, tests in self.tests.items():
            for test in tests:
                clock, processor = time.monotonic(), processor_time()
                outcome, what = self.run_test(test, self.program(folder, test), 3600, 3600,
                                              is_brief=False)
                if outcome != "passed":
                    sys.exit(f"{log.read_text(errors='replace')}\n"
                             f"mutate.py: FAILED without any mutant: {what}")
                # Most mutants fall to a quick test: the others come last.
                slow = ":".join(name for name, ms in re.findall(
                    r"^\[       OK \] (\S+) \((\d+) ms\)", log.read_text(), re.MULTILINE)
                    if int(ms) >= SLOW_MS)
                self.choices[test] = [f"-{slow}", slow] if slow else ["*"]
                self.limits[test] = (
                    math.ceil(PROCESSOR_GRACE_S + SLOWDOWN * (processor_time() - processor)),
                    CLOCK_GRACE_S + SLOWDOWN * (time.monotonic() - clock))

    def linked(self, test, objects):
        """Links a test with the mutant's objects in front of the archive that holds the others."""
        output = self.mutant / test
        command, replaced = [], {str(target): str(path) for target, path in objects.items()}
        for part in self.link[test]:
            if part.endswith(".a") and not part.startswith("/"):
                command += [path for target, path in replaced.items()
                            if not target.startswith("tests/")]
            command.append(replaced.get(part, part))
        command[command.index("-o") + 1] = str(output)
        done = subprocess.run(command, cwd=self.build, capture_output=True, check=False)
        return output if done.returncode == 0 else None

    def judge(self, mutant, text):
        """Tests one mutant; returns the outcome and the test that decided it."""
        shutil.rmtree(self.mutant, ignore_errors=True)
        mutated = mutant.apply(text)
        self.lay_over(mutant.file, mutated)
        library, of_tests = self.affected(mutant.file)
        objects = {}
        for target in library:
            objects[target] = self.compiled(target, "objects")
            if objects[target] is None:
                return "invalid", None
        # Most equivalents show already here. What tests include may matter to them alone.
        if not of_tests and all(path.read_bytes() == (self.build / target).read_bytes()
                                for target, path in objects.items()):
            return "equivalent", None
        own = mutant.file.split("/")[0]
        for folder in sorted(self.tests, key=lambda name: name != own):
            for test in self.tests[folder]:
                for target in of_tests:
                    if target not in objects and target in self.link[test]:
                        objects[target] = self.compiled(target, "objects")
                        if objects[target] is None:
                            return "invalid", None
                program = self.linked(test, objects)
                if program is None:
                    return "invalid", None
                for chosen in self.choices[test]:
                    outcome, what = self.run_test(test, program, *self.limits[test], chosen)
                    if outcome != "passed":
                        return outcome, what
        if self.same_code(mutant.file, text, mutated, "-O2"):
            return "equivalent", None
        return "survived", None


# ---- Results -------------------------------------------------------------------------------------

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
