"""Finds the mutants of a source, and the words that describe one."""

import re

from mutation.tokens import CLOSING, KEYWORDS, TYPE_WORDS, tokenize


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
