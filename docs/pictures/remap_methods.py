#!/usr/bin/python3
"""Draws the picture of docs/operations/remap.md: a coarse flood, the fine ground, and the depths by TIN and by IDW.

usage: remap_methods.py FOLDER PICTURE

FOLDER holds the grids of the commands on that page. Needs GDAL for Python (Debian: python3-gdal).
"""
import sys

import numpy
from osgeo import gdal

gdal.UseExceptions()

WEST, NORTH = 294700, 6178900  # corner of what is drawn, metres
WIDE, HIGH = 600, 450
CELL = 5  # of the fine ground
SCALE = 3  # dots of the picture for a fine cell
GAP = 12
SHADES = 24  # of the ground, from dark to light
DEPTHS = "c6e6f5 9fd3ec 74bde0 4aa5d2 2b8bc2 1a71ab 125891 0c4077".split()
DEPTH_STEP = 0.4  # metres, of each colour
LEVELS = "e8f6d0 cdebbd a9dcb2 7fcbb4 57b6bb 3b99b8 2f78ab 2a5798".split()
WHITE = 250


def read(folder, name):
    """The cells of what is drawn, one for each fine cell, and which of them hold a value."""
    data = gdal.Open("%s/%s.flt" % (folder, name))
    west, size, _, north, _, _ = data.GetGeoTransform()
    part = data.ReadAsArray(round((WEST - west) / size), round((north - NORTH) / size), round(WIDE / size),
                            round(HIGH / size))
    cells = numpy.kron(part, numpy.ones((round(size / CELL),) * 2, numpy.float32))
    return cells, cells != numpy.float32(data.GetRasterBand(1).GetNoDataValue())


def shaded(ground):
    """The ground in the light of a low sun in the north-west."""
    north, east = numpy.gradient(ground, CELL)
    slope = numpy.hypot(3 * north, 3 * east)
    light = (1 + 3 * (north + east) / numpy.sqrt(2)) / numpy.sqrt(2 * (1 + slope**2))
    return numpy.clip(light * SHADES * 0.9, 0, SHADES - 1).astype(numpy.uint8)


def coloured(dots, values, there, classes, start, step, first):
    """Lays classes of the values that are there over the dots; their entries in the colour table begin at `first`."""
    number = numpy.clip((values - start) / step, 0, classes - 1).astype(numpy.uint8)
    return numpy.where(there, number + numpy.uint8(first), dots)


def panels(folder):
    ground, _ = read(folder, "ground")
    shades = shaded(ground)
    level, wet = read(folder, "level_1pct_6h_coarse")
    lowest, highest = level[wet].min(), level[wet].max()
    first = SHADES + len(DEPTHS)
    coarse = coloured(numpy.full_like(shades, WHITE), level, wet, len(LEVELS), lowest,
                      (highest - lowest) / len(LEVELS), first)
    depths = [coloured(shades, *read(folder, name + "_remap_d"), len(DEPTHS), 0, DEPTH_STEP, SHADES)
              for name in ("level_1pct_6h_coarse", "idw")]
    return [[coarse, shades], depths]


def main(folder, picture):
    big = [[numpy.pad(numpy.kron(dots, numpy.ones((SCALE, SCALE), numpy.uint8)), GAP // 2, constant_values=WHITE)
            for dots in line] for line in panels(folder)]
    canvas = numpy.block(big)
    colours = gdal.ColorTable()
    for i in range(SHADES):
        tone = 70 + 175 * i // (SHADES - 1)
        colours.SetColorEntry(i, (tone, tone, tone * 15 // 16))
    for i, colour in enumerate(DEPTHS + LEVELS):
        colours.SetColorEntry(SHADES + i, tuple(bytes.fromhex(colour)))
    colours.SetColorEntry(WHITE, (255, 255, 255))
    made = gdal.GetDriverByName("MEM").Create("", canvas.shape[1], canvas.shape[0], 1, gdal.GDT_Byte)
    made.GetRasterBand(1).SetColorTable(colours)
    made.GetRasterBand(1).WriteArray(canvas)
    gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")
    gdal.GetDriverByName("PNG").CreateCopy(picture, made, options=["ZLEVEL=9"]).FlushCache()


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
