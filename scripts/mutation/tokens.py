"""Cuts C++ sources into tokens, and tells which of them a fault may change."""

import re

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
