#!/usr/bin/env python3
"""Draws the figures of docs/conventions.md as SVG files in docs/figures/.

usage: draw-figures.py [--check]

--check compares instead of writing, and fails where a file differs.
"""

import math
import pathlib
import sys

FOLDER = pathlib.Path(__file__).resolve().parent.parent / "docs" / "figures"

BLACK = "#222222"
GRAY = "#8a8a8a"
LIGHT = "#e4e4e4"
RED = "#b3261e"  # X, U
GREEN = "#1b7a3d"  # Y, V
BLUE = "#1f4fa3"  # Z, W
ORANGE = "#b35c00"  # what moves, what is asked for

# Where X, Y and Z of space point on the sheet: seen from the front right, and from above.
PROJECTION = ((0.87, 0.28), (0.72, -0.42), (0.0, -1.0))


def number(value):
    text = f"{value:.2f}".rstrip("0").rstrip(".")
    return "0" if text == "-0" else text


class Sheet:
    """Collects shapes; coordinates on the sheet grow to the right and downwards."""

    def __init__(self, width, height, title):
        self.title = title
        self.width = width
        self.height = height
        self.shapes = []
        self.colors = []

    def marker(self, color):
        if color not in self.colors:
            self.colors.append(color)
        return f"arrow{self.colors.index(color)}"

    def line(self, a, b, color=BLACK, width=1.5, dash="", arrow=False):
        extra = f' stroke-dasharray="{dash}"' if dash else ""
        if arrow:
            extra += f' marker-end="url(#{self.marker(color)})"'
        self.shapes.append(
            f'<line x1="{number(a[0])}" y1="{number(a[1])}" x2="{number(b[0])}" y2="{number(b[1])}"'
            f' stroke="{color}" stroke-width="{number(width)}"{extra}/>')

    def arrow(self, a, b, color=BLACK, width=2.0):
        self.line(a, b, color, width, arrow=True)

    def path(self, points, color=BLACK, width=1.5, fill="none", closed=False, arrow=False, dash=""):
        text = "M" + " L".join(f"{number(x)} {number(y)}" for x, y in points)
        extra = f' marker-end="url(#{self.marker(color)})"' if arrow else ""
        extra += f' stroke-dasharray="{dash}"' if dash else ""
        self.shapes.append(
            f'<path d="{text}{" Z" if closed else ""}" fill="{fill}" stroke="{color}"'
            f' stroke-width="{number(width)}" stroke-linejoin="round"{extra}/>')

    def box(self, x, y, width, height, fill=LIGHT, color=GRAY):
        self.path([(x, y), (x + width, y), (x + width, y + height), (x, y + height)], color, 1.2,
                  fill, closed=True)

    def dot(self, a, color=BLACK, radius=3.5):
        self.shapes.append(f'<circle cx="{number(a[0])}" cy="{number(a[1])}" r="{number(radius)}"'
                           f' fill="{color}"/>')

    def text(self, a, words, color=BLACK, anchor="start", size=15, bold=False):
        weight = ' font-weight="bold"' if bold else ""
        words = words.replace("&", "&amp;").replace("<", "&lt;")
        self.shapes.append(
            f'<text x="{number(a[0])}" y="{number(a[1])}" fill="{color}" font-size="{size}"'
            f' text-anchor="{anchor}"{weight}>{words}</text>')

    def svg(self):
        markers = "".join(
            f'<marker id="arrow{i}" viewBox="0 0 10 10" refX="9" refY="5" markerWidth="7"'
            f' markerHeight="7" markerUnits="userSpaceOnUse" orient="auto">'
            f'<path d="M0 0 L10 5 L0 10 Z" fill="{color}"/></marker>\n'
            for i, color in enumerate(self.colors)).replace('"7"', '"12"')
        return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{self.width}" '
                f'height="{self.height}" viewBox="0 0 {self.width} {self.height}" '
                f'font-family="sans-serif">\n<title>{self.title}</title>\n<defs>\n{markers}</defs>\n'
                f'<rect width="{self.width}" height="{self.height}" fill="#ffffff"/>\n'
                + "\n".join(self.shapes) + "\n</svg>\n")


class Space:
    """Puts points of space on a sheet."""

    def __init__(self, origin, scale):
        self.origin = origin
        self.scale = scale

    def at(self, p):
        return tuple(self.origin[i] + self.scale * sum(p[k] * PROJECTION[k][i] for k in range(3))
                     for i in range(2))


def plus(a, b, factor=1.0):
    return tuple(x + factor * y for x, y in zip(a, b))


def turned(p, axis, degrees):
    """Turns a point about a principal axis, right-handed."""
    i, j = (axis + 1) % 3, (axis + 2) % 3
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    q = list(p)
    q[i], q[j] = c * p[i] - s * p[j], s * p[i] + c * p[j]
    return tuple(q)


def draw_axes(sheet, space, origin, columns, names, length):
    """Draws three arrows from a point of space, each with its name behind its tip."""
    start = space.at(origin)
    for column, name, color in zip(columns, names, (RED, GREEN, BLUE)):
        end = space.at(plus(origin, column, length))
        sheet.arrow(start, end, color)
        away = (end[0] - start[0], end[1] - start[1])
        size = math.hypot(*away) or 1.0
        sheet.text((end[0] + 14 * away[0] / size, end[1] + 14 * away[1] / size + 5), name, color,
                   "middle", bold=True)
    sheet.dot(start)


UNIT = ((1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (0.0, 0.0, 1.0))


def draw_frame():
    sheet = Sheet(640, 350, "A frame: U, V, W and T of a placed system")
    space = Space((90, 250), 90)
    draw_axes(sheet, space, (0, 0, 0), UNIT, ("X", "Y", "Z"), 1.3)
    sheet.text((70, 285), "placing system", GRAY, "middle")
    origin = (2.6, 1.3, 0.7)
    columns = [turned(axis, 1, 20) for axis in UNIT]
    draw_axes(sheet, space, origin, columns, ("U", "V", "W"), 1.2)
    start = space.at(origin)
    sheet.arrow(space.at((0, 0, 0)), plus(start, (-8, 1)), BLACK)
    middle = space.at((1.3, 0.65, 0.35))
    sheet.text((middle[0] + 4, middle[1] - 10), "T", BLACK, "middle", bold=True)
    sheet.text((start[0] - 2, start[1] + 34), "placed system", GRAY, "end")
    along_u = plus(origin, columns[0], 0.85)
    along_v = plus(along_u, columns[1], 0.75)
    point = plus(along_v, columns[2], 0.8)
    sheet.path([space.at(p) for p in (origin, along_u, along_v, point)], ORANGE, 1.5, dash="5 4")
    sheet.dot(space.at(point), ORANGE, 4.5)
    at = space.at(point)
    sheet.text((at[0] + 9, at[1] + 3), "p", ORANGE, bold=True)
    sheet.text((320, 335), "in the placing system p stands at  U p.x + V p.y + W p.z + T", ORANGE,
               "middle")
    return sheet


def draw_rotary():
    sheet = Sheet(640, 270, "The sign of rotary axes")
    for place, axis, name, color in ((110, 0, "A about X", RED), (320, 1, "B about Y", GREEN),
                                     (530, 2, "C about Z", BLUE)):
        space = Space((place - 20, 140), 70)
        draw_axes(sheet, space, (0, 0, 0), UNIT, ("X", "Y", "Z"), 1.25)
        start = turned(UNIT[(axis + 1) % 3], axis, 8)
        arc = [space.at(tuple(0.75 * c for c in turned(start, axis, 3 * i))) for i in range(25)]
        sheet.path(arc, ORANGE, 2.5, arrow=True)
        sheet.text((place, 220), name, color, "middle", bold=True)
    sheet.text((320, 250), "positive values turn right-handed: X to Y, Y to Z, Z to X", ORANGE,
               "middle")
    return sheet


def draw_machine(sheet, x, table_shift, tool_shift):
    """Draws a table with a workpiece and a tool over it, each shifted from where it was at 0."""
    ground = 220
    sheet.line((x - 120, ground), (x + 120, ground), GRAY, 2)
    left = x - 70 + table_shift
    if table_shift:
        sheet.path([(x - 70, ground - 24), (x + 70, ground - 24), (x + 70, ground - 2),
                    (x - 70, ground - 2)], GRAY, 1, closed=True, dash="3 3")
    sheet.box(left, ground - 24, 140, 22)
    sheet.box(left + 35, ground - 64, 70, 40, "#f6ead8", ORANGE)
    if tool_shift:
        sheet.path([(x - 14, 50), (x + 14, 50), (x + 14, 100), (x - 14, 100)], GRAY, 1, closed=True,
                   dash="3 3")
    tool = x + tool_shift
    sheet.box(tool - 14, 50, 28, 50)
    sheet.box(tool - 4, 100, 8, 56, "#cccccc")


def draw_sides():
    sheet = Sheet(720, 330, "The same positive X on the head side and on the table side")
    draw_machine(sheet, 170, 0, 45)
    sheet.text((170, 30), "X on the head side", BLACK, "middle", bold=True)
    sheet.arrow((250, 75), (300, 75), ORANGE, 2.5)
    sheet.text((275, 64), "moves", ORANGE, "middle")
    sheet.text((170, 250), "Dir (1, 0, 0)", RED, "middle", bold=True)
    draw_machine(sheet, 530, -45, 0)
    sheet.text((530, 30), "X on the table side", BLACK, "middle", bold=True)
    sheet.arrow((440, 150), (390, 150), ORANGE, 2.5)
    sheet.text((415, 139), "moves", ORANGE, "middle")
    sheet.text((530, 250), "Dir (-1, 0, 0)", RED, "middle", bold=True)
    sheet.text((360, 285), "Either way a positive X brings the tool to the right over the workpiece.",
               BLACK, "middle")
    sheet.text((360, 308), "A link is written as its element physically moves.", GRAY, "middle")
    sheet.arrow((40, 180), (80, 180), RED)
    sheet.text((90, 185), "X", RED, bold=True)
    sheet.arrow((40, 180), (40, 140), BLUE)
    sheet.text((40, 132), "Z", BLUE, "middle", bold=True)
    sheet.dot((40, 180))
    return sheet


def draw_table_turn():
    sheet = Sheet(720, 330, "The same positive C on the head side and on the table side")
    for x, name, direction, sign in ((180, "C on the head side", "Dir (0, 0, 1)", 1),
                                     (540, "C on the table side", "Dir (0, 0, -1)", -1)):
        sheet.text((x, 30), name + ", from above", BLACK, "middle", bold=True)
        center = (x, 145)
        circle = [(x + 85 * math.cos(math.radians(6 * i)), 145 + 85 * math.sin(math.radians(6 * i)))
                  for i in range(60)]
        sheet.path(circle, GRAY, 1.2, LIGHT, closed=True)
        turn = -25 if sign < 0 else 0
        corners = [(-38, -22), (38, -22), (38, 22), (-38, 22)]
        c, s = math.cos(math.radians(-turn)), math.sin(math.radians(-turn))
        sheet.path([(x + c * a - s * b, 145 + s * a + c * b) for a, b in corners], ORANGE, 1.2,
                   "#f6ead8", closed=True)
        # On the sheet, from above, counterclockwise angles grow upwards.
        at = 25 if sign > 0 else 0
        tool = (x + 60 * math.cos(math.radians(at)), 145 - 60 * math.sin(math.radians(at)))
        sheet.dot(tool, BLACK, 6)
        sheet.text((tool[0] + 11, tool[1] - 8), "tool", BLACK)
        radius = 60 if sign > 0 else 100
        first, last = (30, 110) if sign > 0 else (150, 70)
        arc = [(x + radius * math.cos(math.radians(first + (last - first) * i / 20)),
                145 - radius * math.sin(math.radians(first + (last - first) * i / 20)))
               for i in range(21)]
        sheet.path(arc, ORANGE, 2.5, arrow=True)
        sheet.dot(center)
        sheet.text((x, 268), direction, BLUE, "middle", bold=True)
    sheet.text((360, 300), "Either way a positive C brings the tool counterclockwise around the "
               "workpiece.", BLACK, "middle")
    return sheet


def draw_offset():
    sheet = Sheet(680, 400, "The tool offset")
    # The head, its frame at the gauge face, and the tool below it.
    x = 270
    sheet.box(x - 45, 40, 90, 90)
    sheet.text((x + 58, 60), "head", GRAY)
    gauge = (x, 130)
    sheet.box(x - 7, 130, 14, 130, "#cccccc")
    tip = (x, 260)
    sheet.arrow(gauge, (x, 50), BLUE, 2.5)
    sheet.text((x + 10, 92), "W of the head", BLUE, bold=True)
    sheet.line(gauge, (x - 60, 145), GRAY, 1)
    sheet.text((x - 65, 150), "origin of the head's frame", GRAY, "end")
    sheet.dot(gauge)
    sheet.line((x + 75, 130), (x + 12, 130), GRAY, 1, "3 3")
    sheet.line((x + 75, 260), (x + 12, 260), GRAY, 1, "3 3")
    sheet.line((x + 65, 195), (x + 65, 131), BLACK, 1.2, arrow=True)
    sheet.line((x + 65, 195), (x + 65, 259), BLACK, 1.2, arrow=True)
    sheet.text((x + 76, 200), "L: the offset is (0, 0, L)", BLACK)
    sheet.text((x + 14, 280), "tool point, at minus the offset", ORANGE, bold=True)
    # The workpiece on the table, and the requested direction.
    sheet.box(x - 90, 262, 100, 48, "#f6ead8", ORANGE)
    sheet.dot(tip, ORANGE, 5)
    sheet.box(x - 150, 310, 300, 26)
    sheet.text((x + 160, 329), "table", GRAY)
    sheet.arrow((x - 30, 256), (x - 30, 176), ORANGE, 2.5)
    sheet.text((x - 40, 205), "ijk: from the tip", ORANGE, "end")
    sheet.text((x - 40, 224), "to the spindle", ORANGE, "end")
    sheet.text((340, 380), "the W column of ComputeMcsToToolTcs is the tool direction, its T is the "
               "tool point", BLACK, "middle", 14)
    return sheet


FIGURES = {
    "frame.svg": draw_frame,
    "rotary-sign.svg": draw_rotary,
    "linear-sides.svg": draw_sides,
    "rotary-sides.svg": draw_table_turn,
    "tool-offset.svg": draw_offset,
}


def main():
    check = sys.argv[1:] == ["--check"]
    if sys.argv[1:] and not check:
        sys.exit(__doc__)
    differing = 0
    for name, draw in FIGURES.items():
        file = FOLDER / name
        text = draw().svg()
        if not check:
            FOLDER.mkdir(parents=True, exist_ok=True)
            file.write_text(text, encoding="utf-8")
        elif not file.is_file() or file.read_text(encoding="utf-8") != text:
            differing += 1
            print(f"docs/figures/{name} is not what draw-figures.py draws")
    return 1 if differing else 0


sys.exit(main())
