#!/usr/bin/python3
"""Draws the picture of docs/operations/nbc.md: the example's branches and sections, and the ground along three sections.

usage: network_sections.py FOLDER PICTURE

FOLDER is what scripts/demo leaves: ground.asc, and network/ with the layers and tables. Needs GDAL for Python
(Debian: python3-gdal).
"""
import csv
import sys

import numpy
from osgeo import gdal, ogr

gdal.UseExceptions()
ogr.UseExceptions()

SECTIONS = ("csv\\River_441.286.csv", "csv\\River_1523.000.csv", "csv\\Brook_395.423.csv")  # west to east, south
ROWS = slice(80, 310)  # of the ground: the valley floor and its sides
GAP = 12
CHART_WIDTH = 250
METRES = 20  # of height in a chart
GROUNDS = 16
WHITE, BLACK, GREY, BRANCH, SECTION, FIRST, SECOND, THIRD = range(GROUNDS, GROUNDS + 8)
INKS = (FIRST, SECOND, THIRD)
COLOURS = {WHITE: "ffffff", BLACK: "202020", GREY: "d0d0d0", BRANCH: "1c4fa0", SECTION: "ffffff", FIRST: "c62828",
           SECOND: "8e24aa", THIRD: "ef6c00"}


def line(canvas, start, end, ink, thick=1):
    """A stroke between two places (down, across)."""
    steps = int(max(abs(end[0] - start[0]), abs(end[1] - start[1]), 1)) * 2
    for t in numpy.linspace(0, 1, steps + 1):
        down = int(round(start[0] + (end[0] - start[0]) * t))
        across = int(round(start[1] + (end[1] - start[1]) * t))
        canvas[max(down - thick // 2, 0) : down + (thick + 1) // 2, max(across - thick // 2, 0) : across + (thick + 1) // 2] = ink


def features(name):
    """The objects of a layer: attributes and vertices."""
    layers = ogr.Open(name)  # which must outlive its layer
    return [(f.items(), f.GetGeometryRef().GetPoints()) for f in layers.GetLayer()]


def plan(folder):
    """The ground in shades, with the network lines and the sections."""
    data = gdal.Open(folder + "/ground.asc")
    cells = data.ReadAsArray()
    west, cell, _, north, _, _ = data.GetGeoTransform()
    fall_down, fall_across = numpy.gradient(cells, cell)
    shade = 0.75 + 1.5 * (fall_down + fall_across)
    canvas = numpy.clip(shade * GROUNDS * 0.7, 0, GROUNDS - 1).astype(numpy.uint8)

    def place(vertex):
        return (north - vertex[1]) / cell, (vertex[0] - west) / cell

    def draw(vertices, ink, thick):
        for start, end in zip(vertices, vertices[1:]):
            line(canvas, place(start), place(end), ink, thick)

    for record, vertices in features(folder + "/network/1d_nwk_valley.mif"):
        draw(vertices, BRANCH, 2)
        down, across = (int(round(v)) for v in place(vertices[0]))
        canvas[down - 3 : down + 3, across - 3 : across + 3] = BRANCH
    for record, vertices in features(folder + "/network/1d_xs_valley.mif"):
        chosen = record["Source"] in SECTIONS
        draw(vertices, INKS[SECTIONS.index(record["Source"])] if chosen else SECTION, 3 if chosen else 2)
    return canvas[ROWS]


def chart(folder, source, ink, height):
    """The ground along a section; rules every 5 m of height and 20 m of chainage."""
    with open(folder + "/network/" + source.replace("\\", "/"), newline="") as table:
        rows = [(float(row["Chainage"]), float(row["Z"])) for row in csv.DictReader(table)]
    canvas = numpy.full((height, CHART_WIDTH), WHITE, numpy.uint8)
    lowest = 5 * (min(z for _, z in rows) // 5)

    def place(chainage, z):
        return (height - 1) * (1 - (z - lowest) / METRES), chainage * (CHART_WIDTH - 1) / 125

    for z in range(0, METRES, 5):
        line(canvas, place(0, lowest + z), place(125, lowest + z), GREY)
    for chainage in range(0, 125, 20):
        line(canvas, place(chainage, lowest), place(chainage, lowest + METRES), GREY)
    for start, end in zip(rows, rows[1:]):
        line(canvas, place(*start), place(*end), ink, 2)
    for row in rows:
        down, across = (int(round(v)) for v in place(*row))
        canvas[max(down - 2, 0) : down + 3, max(across - 2, 0) : across + 3] = ink
    line(canvas, place(0, lowest), place(125, lowest), BLACK)
    line(canvas, place(0, lowest), place(0, lowest + METRES), BLACK)
    return canvas


def main(folder, picture):
    ground = plan(folder)
    height = (ground.shape[0] - (len(SECTIONS) - 1) * GAP) // len(SECTIONS)
    canvas = numpy.full((ground.shape[0] + 2 * GAP, ground.shape[1] + CHART_WIDTH + 3 * GAP), WHITE, numpy.uint8)
    canvas[GAP:-GAP, GAP : GAP + ground.shape[1]] = ground
    for i, source in enumerate(SECTIONS):
        top = GAP + i * (height + GAP)
        canvas[top : top + height, -GAP - CHART_WIDTH : -GAP] = chart(folder, source, INKS[i], height)
    made = gdal.GetDriverByName("MEM").Create("", canvas.shape[1], canvas.shape[0], 1, gdal.GDT_Byte)
    colours = gdal.ColorTable()
    for i in range(GROUNDS):
        bright = 0.35 + 0.65 * i / GROUNDS
        colours.SetColorEntry(i, (int(190 * bright), int(205 * bright), int(160 * bright)))
    for entry, colour in COLOURS.items():
        colours.SetColorEntry(entry, tuple(bytes.fromhex(colour)))
    made.GetRasterBand(1).SetColorTable(colours)
    made.GetRasterBand(1).WriteArray(canvas)
    gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")
    gdal.GetDriverByName("PNG").CreateCopy(picture, made, options=["ZLEVEL=9"]).FlushCache()


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
