#!/usr/bin/python3
"""Draws cells.svg of docs/cells.md: which cells the tool takes for a region, and which cell for a point.

usage: cell_rules.py TOOL VALLEY PICTURES

TOOL is the built gridforge, which is run for what is drawn. The valley is not needed; PICTURES is the folder of the picture.
"""
import os
import subprocess
import sys
import tempfile

PICTURES = ("cells.svg",)
COLUMNS, ROWS, CELL = 6, 5, 10
REGION = [(13, 12), (36, 7), (56, 19), (46, 43), (27, 38), (13, 28)]
POINTS = [(24, 34), (37.5, 27), (41, 12)]
SCALE = 6  # of the picture for a map unit
LEFT, TOP, GAP, FOOT = 20, 50, 60, 90  # points
HEADER = 'Version 300\nCharset "WindowsLatin1"\nDelimiter ","\nCoordSys NonEarth Units "m"\n'
CUT_LINE = ("Name Char(20)", "Distance Float", "Split_TF Char(1)", "Extract_TF Char(1)", "Extraction_Method Char(8)",
            "Buffer_Method Char(8)", "Buffer_Dist Float")
OUTLINE, TAKEN, INK, RULE = "#c62828", "#bcd7ea", "#202020", "#9a9a9a"
FILLED, HOLLOW = f'fill="{INK}" stroke="{INK}"', f'fill="white" stroke="{INK}"'
PLACES = f'fill="none" stroke="{OUTLINE}" stroke-dasharray="5 4" stroke-width="1.5"'


def write(name, text):
    with open(name, "w", encoding="ascii") as file:
        file.write(text)


def layer(name, columns, objects):
    """A .mif with its .mid: objects are pairs of what the two files hold of them."""
    head = HEADER + f"Columns {len(columns)}\n" + "".join(f"  {column}\n" for column in columns) + "Data\n\n"
    write(name + ".mif", head + "".join(shape for shape, _ in objects))
    write(name + ".mid", "".join(record + "\n" for _, record in objects))


def run(tool, *arguments):
    console = subprocess.run([tool, "-b", *arguments], stdin=subprocess.DEVNULL, capture_output=True, text=True).stdout
    if console.splitlines()[-1] != "Finished.":
        sys.exit(console)


def number(row, column):
    return 100 * row + column


def cells_of_region(tool):
    """The cells (row, column) that -trim keeps."""
    ring = REGION + REGION[:1]
    shape = f"Region 1\n  {len(ring)}\n" + "".join(f"{x} {y}\n" for x, y in ring)
    layer("region", ("Name Char(8)",), [(shape, '"kept"')])
    run(tool, "-trim", "region.mif", "cells.asc", "-decimal0")
    with open("kept_cells.asc", encoding="ascii") as grid:
        values = [float(value) for line in grid.readlines()[6:] for value in line.split()]
    return {divmod(int(value), 100) for value in values if value > 0}


def cell_of_point(tool, x, y):
    """The cell (row, column) that -xs takes for the first vertex of a section."""
    layer("1d_cut_p", CUT_LINE, [(f"Pline 2\n{x} {y}\n{x + 0.01} {y}\n", '"point.csv",-1,"T","T","","",0')])
    run(tool, "-xs", "1d_cut_p.mif", "cells.asc")
    with open("point.csv", encoding="ascii") as table:
        return divmod(int(float(table.readlines()[1].split(",")[1])), 100)


class Panel:
    """The lattice, to draw on in map coordinates."""

    def __init__(self, left, title):
        self.left = left
        self.lines = []
        self.text(0, ROWS * CELL + 3, title, 'font-size="15" font-weight="bold"')

    def at(self, x, y):
        return f"{self.left + x * SCALE:.1f}", f"{TOP + (ROWS * CELL - y) * SCALE:.1f}"

    def add(self, line):
        self.lines.append(line)

    def box(self, x, y, size, style):
        left, top = self.at(x, y + size)
        self.add(f'<rect x="{left}" y="{top}" width="{size * SCALE}" height="{size * SCALE}" {style}/>')

    def cell(self, row, column, style):
        self.box((column - 1) * CELL, (row - 1) * CELL, CELL, style)

    def lattice(self):
        for row in range(1, ROWS + 1):
            for column in range(1, COLUMNS + 1):
                self.cell(row, column, f'fill="none" stroke="{RULE}"')

    def dot(self, x, y, radius, style):
        across, down = self.at(x, y)
        self.add(f'<circle cx="{across}" cy="{down}" r="{radius}" {style}/>')

    def cross(self, x, y):
        across, down = (float(place) for place in self.at(x, y))
        self.add(f'<path d="M{across - 4} {down}h8M{across} {down - 4}v8" stroke="{INK}"/>')

    def path(self, vertices, style):
        places = " ".join(",".join(self.at(x, y)) for x, y in vertices)
        self.add(f'<polyline points="{places}" {style}/>')

    def text(self, x, y, words, style):
        across, down = self.at(x, y)
        self.add(f'<text x="{across}" y="{down}" {style}>{words}</text>')

    def key(self, line, draw, words):
        """A line of the legend below the lattice: what draw(x, y) draws, and its meaning."""
        down = -4 - 4 * line
        draw(2, down)
        self.text(5, down - 0.8, words, 'font-size="13"')


def draw_region(tool):
    panel = Panel(LEFT, "Region: the north-east corner lies inside")
    taken = cells_of_region(tool)
    for row, column in taken:
        panel.cell(row, column, f'fill="{TAKEN}"')
    panel.lattice()
    panel.path(REGION + REGION[:1], f'fill="none" stroke="{OUTLINE}" stroke-width="2.5"')
    for row in range(1, ROWS + 1):
        for column in range(1, COLUMNS + 1):
            panel.cross((column - 0.5) * CELL, (row - 0.5) * CELL)
            inside = (row, column) in taken
            panel.dot(column * CELL, row * CELL, 4, FILLED if inside else HOLLOW)
    panel.key(0, lambda x, y: panel.box(x - 1.5, y - 1.5, 3, f'fill="{TAKEN}"'), "a cell that is taken")
    panel.key(1, lambda x, y: panel.dot(x, y, 4, FILLED), "north-east corner inside, hollow outside")
    panel.key(2, panel.cross, "centre of a cell, which does not count")
    return panel


def draw_points(tool):
    panel = Panel(LEFT + COLUMNS * CELL * SCALE + GAP, "Point: the nearest north-east corner")
    taken = [cell_of_point(tool, x, y) for x, y in POINTS]
    for row, column in taken:
        panel.cell(row, column, f'fill="{TAKEN}"')
    panel.lattice()
    for (row, column), (x, y) in zip(taken, POINTS):
        panel.box((column - 0.5) * CELL, (row - 0.5) * CELL, CELL, PLACES)
        panel.path([(x, y), (column * CELL, row * CELL)], f'fill="none" stroke="{OUTLINE}" stroke-width="2"')
        panel.dot(column * CELL, row * CELL, 4, FILLED)
        panel.dot(x, y, 5, f'fill="{OUTLINE}"')
        panel.cross((column - 0.5) * CELL, (row - 0.5) * CELL)
    panel.key(0, lambda x, y: panel.dot(x, y, 5, f'fill="{OUTLINE}"'), "a point, tied to the corner that it takes")
    panel.key(1, lambda x, y: panel.box(x - 1.5, y - 1.5, 3, PLACES), "all places that take the shaded cell")
    return panel


def main(tool, pictures):
    tool, picture = os.path.abspath(tool), os.path.abspath(os.path.join(pictures, PICTURES[0]))
    with tempfile.TemporaryDirectory() as scratch:
        os.chdir(scratch)
        write("cells.asc", f"ncols {COLUMNS}\nnrows {ROWS}\nxllcorner 0\nyllcorner 0\ncellsize {CELL}\n" +
              "".join(" ".join(str(number(row, column)) for column in range(1, COLUMNS + 1)) + "\n"
                      for row in range(ROWS, 0, -1)))
        panels = [draw_region(tool), draw_points(tool)]
        os.chdir("/")
    width = 2 * LEFT + 2 * COLUMNS * CELL * SCALE + GAP
    height = TOP + ROWS * CELL * SCALE + FOOT
    write(picture, f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
          f'viewBox="0 0 {width} {height}" font-family="sans-serif">\n'
          f'<rect width="{width}" height="{height}" fill="white"/>\n' +
          "\n".join(line for panel in panels for line in panel.lines) + "\n</svg>\n")


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[3])
