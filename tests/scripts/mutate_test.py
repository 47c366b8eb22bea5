"""Asserts which mutants the script makes of short sources, how it draws and finds them again."""

import pathlib
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))

import mutate  # noqa: E402  (the path is set above)
from mutation.draw import Draw  # noqa: E402
from mutation.mutants import describe, find_mutants  # noqa: E402

# A source, and all its mutants: kind, text that goes, text that comes.
SOURCES = [
    ("if (a < b) return;", [
        ("comparison", "<", "<="), ("comparison", "<", ">"), ("comparison", "<", ">=")]),
    ("bool c = a == b && !d;", [
        ("comparison", "==", "!="), ("logical", "&&", "||"), ("logical", "!", "")]),
    ("int n = 0, m = 3U;", [
        ("constant", "0", "1"), ("constant", "3U", "2U"), ("constant", "3U", "4U")]),
    ("double t = 0.01;", [
        ("constant", "0.01", "-0.01"), ("constant", "0.01", "0.001"), ("constant", "0.01", "0.1")]),
    ("double t = -1.0;", [
        ("sign", "-", ""), ("constant", "1.0", "0.0"), ("constant", "1.0", "2.0")]),
    ("float f = 0.0f;", [("constant", "0.0f", "1.0f")]),
    ("unsigned u = 0xFF;", [("constant", "0xFF", "0xFE"), ("constant", "0xFF", "0x100")]),
    ("char c = '<'; char d = '\\0';", [("constant", "'<'", "'='"), ("constant", "'\\0'", "'x'")]),
    ("double d = a - b;", [("arithmetic", "-", "+"), ("order", "a - b", "b - a")]),
    ("double d = a + f(b) * c;", [
        ("arithmetic", "+", "-"), ("arithmetic", "*", "/"), ("sign", "", " -")]),
    ("double d = x * (y - 2.5) - z;", [
        ("arithmetic", "*", "/"), ("sign", "", " -"),
        ("arithmetic", "-", "+"), ("order", "y - 2.5", "2.5 - y"),
        ("arithmetic", "-", "+"), ("order", "x * (y - 2.5) - z", "z - x * (y - 2.5)"),
        ("constant", "2.5", "3.5"), ("constant", "2.5", "1.5")]),
    ("auto m = bFromA * aFromC;", [
        ("arithmetic", "*", "/"), ("sign", "", " -"),
        ("order", "bFromA * aFromC", "aFromC * bFromA")]),
    ("bool b = true;", [("boolean", "true", "false")]),
    ("{ return std::max(a, b); }", [
        ("min-max", "max", "min"), ("return", "std::max(a, b)", "{}")]),
    ("{ return false; }", [("boolean", "false", "true")]),
    ("{ Put(a, b[i]); }", [
        ("order", "a, b[i]", "b[i], a"), ("statement", "Put(a, b[i])", "")]),
    ("void Put(const Item& item, int* place);", []),
    ("Vector v(x, {y, z});", [
        ("order", "x, {y, z}", "{y, z}, x"), ("order", "y, z", "z, y")]),
    ("for (;;) { break; }", [("statement", "break", "")]),
    ("{ a.b()->c = d; ++e; T f = g(); T h(i); *j = k; }", [
        ("statement", "a.b()->c = d", ""), ("statement", "++e", ""), ("arithmetic", "++", "--"),
        ("statement", "*j = k", "")]),
    ("{ throw std::length_error(text); }", [
        ("statement", "throw std::length_error(text)", "")]),
    ("x += y;", [("arithmetic", "+=", "-=")]),
    # What is no code that runs.
    ("// a < b, 3\n/* !c */ #include <x>\n", []),
    ("#if A < 3\n#define B \\\n  4 - c\n#endif\n", []),
    ('auto s = L"a < b - 3"; auto r = R"x(1 + ")" 2)x";', []),
    ("std::vector<int> v; template <typename T, int n = 3> struct S;", []),
    ("std::map<int, std::vector<int>> Get(const M& m, T&& t, U* u);", []),
    ("[[deprecated]] static_assert(sizeof(int) == 4); using A = B<3>;", []),
    ("virtual void Run() = 0; bool operator<(A b) const; A() = default;", []),
]


def mutants_of(text):
    return [(m.kind, text[m.start:m.end], m.new) for m in find_mutants("a.cpp", text)]


def check_sources():
    for text, expected in SOURCES:
        found = mutants_of(text)
        assert sorted(found) == sorted(expected), f"{text}\n  found {found}\n  not   {expected}"


def draw_all(sources, seed, count):
    draw = Draw(sources, seed)
    drawn = []
    while len(drawn) < count:
        mutant = draw.next()
        if mutant is None:
            break
        draw.count(mutant.file)
        drawn.append(mutant)
    return [(m.file, m.start, m.end, m.new) for m in drawn]


def check_draw():
    sources = {
        "a.cpp": "int x = 5;\n" * 600,
        "b.cpp": "int x = 5;\n" * 200,
        "c.cpp": "bool b = true;\n",
        "d.cpp": "// nothing\n",
    }
    drawn = draw_all(sources, 1, 320)
    assert drawn == draw_all(sources, 1, 320), "the same seed draws the same mutants"
    assert drawn[:100] == draw_all(sources, 1, 100), "a longer draw goes on where a shorter ends"
    assert drawn != draw_all(sources, 2, 320), "another seed draws others"
    assert len(set(drawn)) == 320, "no mutant is drawn twice"
    files = [file for file, *_ in drawn]
    a, b, c, d = (files.count(file) for file in sorted(sources))
    assert (c, d) == (1, 0) and abs(a - 3 * b) <= 3, (a, b, c, d)
    # All can be drawn; every place offers its first before any offers its second.
    everything = draw_all({"a.cpp": "int x = 5;\n" * 30}, 1, 1000)
    assert len(everything) == 60 and len({start for _, start, _, _ in everything[:30]}) == 30


def check_find_again():
    before = "int a = 1;\nint b = f(1);\nint c;\nint b = f(1);\n"
    mutant = next(m for m in find_mutants("a.cpp", before) if m.start > 30)
    record = describe(mutant, before)
    assert (record["line"], record["before"]) == (4, "int b = f(1);"), record
    after = "int z;\n" + before
    again = mutate.find_again(record, after)
    assert describe(again, after)["line"] == 5
    assert again.apply(after).count(record["after"]) == 1
    assert mutate.find_again(record, "int a = 1;\n") is None


check_sources()
check_draw()
check_find_again()
