"""Compares the virtual operations of the exported classes with the order that programs rely on.

usage: check_virtuals.py DUMP LIST [--update]

DUMP is what abidw says of the shared library. Each line of the list is a class and its virtual
operations by their places in the table; a destructor, which has two places behind them, stands last.
A class of the library that programs derive from must keep its line; a new class adds one.
"""

import sys
import xml.etree.ElementTree


def virtuals_of(dump):
    """The virtual operations of each class of the library, as lines of the list."""
    lines = {}

    def visit(node, names):
        if node.tag == "namespace-decl":
            names = names + [node.get("name")]
        if node.tag == "class-decl" and names[:1] == ["Orvo"]:
            places, has_destructor = {}, False
            for member in node.findall("member-function"):
                if member.get("vtable-offset") is None:
                    continue
                if member.get("destructor") == "yes":
                    has_destructor = True
                else:
                    name = member.find("function-decl").get("name")
                    places.setdefault(int(member.get("vtable-offset")), set()).add(name)
            words = [f"{place} {'/'.join(sorted(places[place]))}" for place in sorted(places)]
            if has_destructor:
                words.append("destructor")
            if words:
                lines["::".join(names + [node.get("name")])] = ", ".join(words)
        for child in node:
            visit(child, names)

    visit(xml.etree.ElementTree.parse(dump).getroot(), [])
    return [f"{name}: {lines[name]}" for name in sorted(lines)]


def main():
    dump, list_file = sys.argv[1:3]
    found = virtuals_of(dump)
    if "--update" in sys.argv[3:]:
        with open(list_file, "w", encoding="ascii") as stream:
            stream.writelines(line + "\n" for line in found)
        return 0
    with open(list_file, encoding="ascii") as stream:
        wanted = stream.read().splitlines()
    for line in sorted(set(wanted) - set(found)):
        print(f"missing: {line}")
    for line in sorted(set(found) - set(wanted)):
        print(f"not in the list: {line}")
    print(f"{len(found)} classes with virtual operations, {len(wanted)} in the list")
    return 0 if found == wanted and found else 1


sys.exit(main())
