"""Compares what the shared library exports with the list of what it is meant to export.

usage: check_symbols.py NM LIBRARY LIST [--update]

The list holds the demangled names of the functions that the library defines and of the virtual
tables and type information of its classes, so it is the same for every compiler and every kind of
build. Instantiations of standard templates are exported as weak symbols by the compilers' own
headers and are no part of it. With --update, the list is written anew.
"""

import re
import subprocess
import sys

OWN = re.compile(r"((vtable|typeinfo|typeinfo name|VTT|guard variable) for )?Orvo::")
# A weak function that is a member of the library, and no template of the standard library that has
# a type of the library as its result.
OWN_FUNCTION = re.compile(r"Orvo::([\w:~]|\[abi:\w+\])+(\(|$)|Orvo::[\w:]+::operator")


def exported_symbols(nm, library):
    """Splits the exported symbols into the names meant for the list and everything else."""
    output = subprocess.run([nm, "-D", "-C", "--defined-only", library], check=True, text=True,
                            stdout=subprocess.PIPE).stdout
    own, foreign = set(), set()
    for line in output.splitlines():
        match = re.match(r"[0-9a-f]* +([A-Za-z]) (.*)", line)
        kind, name = match.groups()
        if (OWN_FUNCTION if kind == "W" else OWN).match(name):
            own.add(name)
        elif kind not in "WVu":
            foreign.add(name)
    return own, foreign


def main():
    nm, library, list_file = sys.argv[1:4]
    own, foreign = exported_symbols(nm, library)
    if "--update" in sys.argv[4:]:
        with open(list_file, "w", encoding="ascii") as stream:
            stream.writelines(name + "\n" for name in sorted(own))
        return 0
    with open(list_file, encoding="ascii") as stream:
        wanted = {line.rstrip("\n") for line in stream}
    for name in sorted(wanted - own):
        print(f"missing: {name}")
    for name in sorted(own - wanted):
        print(f"exported, but not in the list: {name}")
    for name in sorted(foreign):
        print(f"exported, but not the library's own: {name}")
    print(f"{len(own)} symbols of the library, {len(wanted)} in the list")
    return 0 if own == wanted and not foreign else 1


sys.exit(main())
