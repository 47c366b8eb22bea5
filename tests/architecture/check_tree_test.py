"""Plants one fault of each kind in a small tree and asserts that the checker finds exactly those."""

import pathlib
import sys
import tempfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

import check_tree  # noqa: E402  (the path is set above)

REMINDER = "TO" "DO"

# A file's text, and what each rule must find in it: the line numbers.
FILES = {
    "include/Orvo/Good.h": ("#include <Orvo/Simd128.h>\n#include <Orvo/Made.h>\n#include <vector>\n",
                            {}),
    "include/Orvo/Made.h.in": ("#define ORVO_MADE @MADE@\n", {}),
    "include/Orvo/Simd128.h": ("#include <emmintrin.h>\n", {}),
    "include/Orvo/Bad.h": (
        '#include "geometry/Kernel.h"\n#include <Orvo/Gone.h>\n#include <emmintrin.h>\n'
        "#include <tinyxml2.h>\n",
        {"include-directions": [1, 2, 3, 4]}),
    "geometry/Kernel.h": ("#include <Orvo/Good.h>\n", {}),
    "geometry/Kernel.cpp": (
        '#include "geometry/Kernel.h"\n#include "model/Words.h"\n#include "geometry/Gone.h"\n'
        "#include <utf8.h>\n",
        {"include-directions": [2, 3, 4]}),
    "model/Words.h": (
        '#include "geometry/Kernel.h"\n// #include "io/Codec.h"\n#include "io/Codec.h"\n'
        '#include "compute/Chain.h"\n#include <tinyxml2.h>\n',
        {"include-directions": [3, 4, 5]}),
    "compute/Chain.h": (
        '#include "model/Words.h"\n#include "io/Codec.h"\n#include "tests/support/Near.h"\n',
        {"include-directions": [2, 3]}),
    "io/Codec.h": (
        '#include "model/Words.h"\n#include <tinyxml2.h>\n#include <utf8.h>\n#include <cstdio>\n'
        '#include "compute/Chain.h"\n#include <CLI/CLI.hpp>\n',
        {"include-directions": [5, 6]}),
    "tools/orvo/Main.cpp": (
        '#include <Orvo/Good.h>\n#include "Beside.h"\n#include <CLI/CLI.hpp>\n'
        '#include "geometry/Kernel.h"\n#include <geometry/Kernel.h>\n#include <Orvo/Gone.h>\n'
        '#include <Orvo/Made.h>\n',
        {"include-directions": [4, 5, 6]}),
    "tools/orvo/Beside.h": ("#include <iostream>\n", {}),
    "tests/interface/CallTest.cpp": (
        '#include "support/Near.h"\n#include <gtest/gtest.h>\n#include "model/Words.h"\n',
        {"include-directions": [3]}),
    "model/Quiet.cpp": (
        '// printf("in a comment"); abort();\nconst char* a = "stderr \\" exit(1)";\n'
        "static_assert(true);\nint b = snprintf(text, 3, \"%d\", 1'000);\n/* puts(\n */\n", {}),
    "model/Loud.cpp": (
        "#include <iostream>\nvoid F() {\n  printf(\"x\");\n  std::cerr << 1;\n  fputs(t, stderr);\n"
        "  std::abort();\n  exit(1);\n  assert(t);\n}\n",
        {"output": [1, 3, 4, 5, 6, 7, 8]}),
    "path/include/Orvo/Path/Open.h": (
        '#include <Orvo/Good.h>\n#include <string>\n#include <nlohmann/json.hpp>\n'
        '#include "path/Close.h"\n',
        {"include-directions": [3, 4]}),
    "path/Close.h": (
        '#include <Orvo/Path/Open.h>\n#include <nlohmann/json.hpp>\n#include <tinyxml2.h>\n'
        '#include "geometry/Kernel.h"\n#include "path/Close.h"\n#include <Orvo/Path/Gone.h>\n'
        "int c = printf(text);\n",
        {"include-directions": [3, 4, 6], "output": [7]}),
    "exchange/include/Orvo/Exchange/Door.h": ("#include <Orvo/Good.h>\n", {}),
    "exchange/Beside.cpp": (
        '#include <Orvo/Exchange/Door.h>\n#include <nlohmann/json.hpp>\n#include <Orvo/Path/Open.h>\n'
        '#include "path/Close.h"\n#include <fmt/format.h>\n',
        {"include-directions": [3, 4, 5]}),
    "model/Upward.cpp": ("#include <Orvo/Path/Open.h>\n#include <fmt/format.h>\n",
                         {"include-directions": [1, 2]}),
    "io/Text.cpp": ("// plain\n// gr\u00fcn\n", {"ascii": [2]}),
    "scripts/do.sh": (f"# {REMINDER} later\ncd /" "home/somebody\n", {"words": [1, 2]}),
    "examples/use/home/a.cpp": ("// see docs/home/page and autoTODOs\n", {}),
}


def main():
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name, (text, _) in FILES.items():
            path = root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        for rule, check in check_tree.RULES.items():
            found = {}
            for file, line, _ in check(root):
                found.setdefault(file, []).append(line)
            found = {file: sorted(lines) for file, lines in found.items()}
            wanted = {name: lines[rule] for name, (_, lines) in FILES.items() if rule in lines}
            if found != wanted:
                failures += 1
                print(f"{rule}: found {found}, wanted {wanted}")
    return 1 if failures else 0


sys.exit(main())
