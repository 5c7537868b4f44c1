#!/usr/bin/python3
"""Draws the picture of docs/operations/rf.md: the fourth hour of the example by each method.

usage: rainfall_fields.py FOLDER PICTURE

FOLDER holds the example as scripts/demo leaves it: the grids beside gauges.mif. Needs GDAL for Python
(Debian: python3-gdal).
"""
import re
import sys

import numpy
from osgeo import gdal

gdal.UseExceptions()

METHODS = ("polygons", "tin", "idw")
SCALE = 3  # dots of the picture for a cell
GAP = 12
LEAST_MM = 2  # of rain, where the colours begin; one for each millimetre
COLOURS = "fffdf0 f3f6d3 e4efbd cbe6b8 aedcb6 8bd0b9 66c3bf 48b1c4 349bc2 2a82b8 2767a9 274d95 253679 1c2355".split()
WHITE, BLACK, GREY = 250, 251, 252
FONT = {  # rows of three dots, as binary digits
    "0": (7, 5, 5, 5, 7), "1": (2, 6, 2, 2, 7), "2": (7, 1, 7, 4, 7), "3": (7, 1, 7, 1, 7), "4": (5, 5, 7, 1, 1),
    "5": (7, 4, 7, 1, 7), "6": (7, 4, 7, 5, 7), "7": (7, 1, 1, 1, 1), "8": (7, 5, 7, 5, 7), "9": (7, 5, 7, 1, 7),
}


def gauges(folder):
    with open(folder + "/gauges.mif") as lines:
        return [tuple(map(float, line.split()[1:])) for line in lines if re.match("Point ", line)]


def panel(folder, method):
    """One field with its gauges; null cells are grey."""
    data = gdal.Open("%s/%s_t4..asc" % (folder, method))
    cells = data.ReadAsArray()
    classes = numpy.clip(cells - LEAST_MM, 0, len(COLOURS) - 1).astype(numpy.uint8)
    classes[cells == data.GetRasterBand(1).GetNoDataValue()] = GREY
    dots = numpy.kron(classes, numpy.ones((SCALE, SCALE), numpy.uint8))
    west, cell, _, north, _, _ = data.GetGeoTransform()
    down, across = numpy.ogrid[: dots.shape[0], : dots.shape[1]]
    for x, y in gauges(folder):
        away = numpy.hypot(down - (north - y) / cell * SCALE, across - (x - west) / cell * SCALE)
        dots[away < 6] = WHITE
        dots[away < 4] = BLACK
    return dots


def write(canvas, text, down, across):
    for digit in text:
        for row, bits in enumerate(FONT[digit]):
            for column in range(3):
                if bits >> (2 - column) & 1:
                    canvas[down + 2 * row : down + 2 * row + 2, across + 2 * column : across + 2 * column + 2] = BLACK
        across += 8


def legend(width):
    """A bar of the colours, with the millimetres at which they begin."""
    bar = numpy.full((40, width), WHITE, numpy.uint8)
    step = width // len(COLOURS)
    for i in range(len(COLOURS)):
        bar[8:20, i * step : (i + 1) * step] = i
        write(bar, str(LEAST_MM + i), 26, i * step)
    return bar


def main(folder, picture):
    panels = [panel(folder, method) for method in METHODS]
    height, width = panels[0].shape
    canvas = numpy.full((height + 2 * GAP, len(panels) * (width + GAP) + GAP), WHITE, numpy.uint8)
    for i, dots in enumerate(panels):
        left = GAP + i * (width + GAP)
        canvas[GAP : GAP + height, left : left + width] = dots
    canvas = numpy.vstack([canvas, numpy.pad(legend(canvas.shape[1] - 2 * GAP), ((0, 0), (GAP, GAP)),
                                             constant_values=WHITE)])
    made = gdal.GetDriverByName("MEM").Create("", canvas.shape[1], canvas.shape[0], 1, gdal.GDT_Byte)
    colours = gdal.ColorTable()
    for i, colour in enumerate(COLOURS):
        colours.SetColorEntry(i, tuple(bytes.fromhex(colour)))
    for entry, colour in ((WHITE, "ffffff"), (BLACK, "000000"), (GREY, "d0d0d0")):
        colours.SetColorEntry(entry, tuple(bytes.fromhex(colour)))
    made.GetRasterBand(1).SetColorTable(colours)
    made.GetRasterBand(1).WriteArray(canvas)
    gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")
    gdal.GetDriverByName("PNG").CreateCopy(picture, made).FlushCache()


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
