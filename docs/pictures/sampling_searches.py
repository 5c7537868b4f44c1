#!/usr/bin/python3
"""Draws the pictures of docs/operations/cp.md, lp.md, brkline.md and na.md: what the tool searches and finds in the sample valley.

usage: sampling_searches.py TOOL FOLDER PICTURES

TOOL is the built gridforge, FOLDER what scripts/demo leaves: ground.asc, river.mif, marks.mif and level_1pct_remap_h.asc. The
pictures cp.png, lp.png, brkline.png and na.png go to the folder PICTURES. Needs GDAL for Python (Debian: python3-gdal).
"""
import csv
import os
import shutil
import subprocess
import sys
import tempfile

import numpy
from osgeo import gdal, ogr

gdal.UseExceptions()
ogr.UseExceptions()

GROUNDS = 16
INKS = {"white": "ffffff", "black": "202020", "grey": "d0d0d0", "blue": "1c4fa0", "red": "c62828", "orange": "ef6c00",
        "violet": "8e24aa", "water": "7fb2d9"}
INK = {name: GROUNDS + i for i, name in enumerate(INKS)}


class Plan:
    """The ground in shades, a few pixels to a cell, to draw on in map coordinates."""

    def __init__(self, grid, west, south, east, north, scale):
        data = gdal.Open(grid)
        left, self.cell, _, top, _, _ = data.GetGeoTransform()
        columns = slice(round((west - left) / self.cell), round((east - left) / self.cell))
        rows = slice(round((top - north) / self.cell), round((top - south) / self.cell))
        cells = data.ReadAsArray()
        down, across = numpy.gradient(cells, self.cell)
        shade = numpy.clip((0.75 + 2.0 * (down + across)) * GROUNDS * 0.7, 0, GROUNDS - 1).astype(numpy.uint8)
        self.west = left + columns.start * self.cell
        self.north = top - rows.start * self.cell
        self.scale = scale
        self.columns, self.rows = columns, rows
        self.canvas = numpy.kron(shade[rows, columns], numpy.ones((scale, scale), numpy.uint8))

    def place(self, x, y):
        return (self.north - y) / self.cell * self.scale, (x - self.west) / self.cell * self.scale

    def dot(self, x, y, ink, size=5):
        down, across = (int(round(v)) for v in self.place(x, y))
        half = size // 2
        if min(down, across) >= half:
            self.canvas[down - half : down + half + 1, across - half : across + half + 1] = INK[ink]

    def lines(self, vertices, ink, thick=1):
        for start, end in zip(vertices, vertices[1:]):
            a, b = numpy.array(self.place(*start[:2])), numpy.array(self.place(*end[:2]))
            steps = int(max(abs(b - a).max(), 1)) * 2
            for t in numpy.linspace(0, 1, steps + 1):
                down, across = (int(round(v)) for v in a + (b - a) * t)
                if min(down, across) >= 0:
                    self.canvas[down : down + thick, across : across + thick] = INK[ink]

    def tint(self, mask, ink):
        """Every other pixel of the cells of a mask of the whole grid."""
        wide = numpy.kron(mask[self.rows, self.columns], numpy.ones((self.scale, self.scale), bool))
        wide[:, ::2] &= False
        self.canvas[wide] = INK[ink]


def features(name):
    """The objects of a layer: attributes and vertices."""
    layers = ogr.Open(name)  # which must outlive its layer
    made = []
    for feature in layers.GetLayer():
        shape = feature.GetGeometryRef()
        ring = shape.GetGeometryRef(0) if shape.GetGeometryType() == ogr.wkbPolygon else shape
        made.append((feature.items(), ring.GetPoints()))
    return made


def shapefile(name, kind, columns, objects):
    """A layer of `objects`, each the values of the columns and the vertices."""
    layers = ogr.GetDriverByName("ESRI Shapefile").CreateDataSource(name)
    layer = layers.CreateLayer(os.path.splitext(os.path.basename(name))[0], geom_type=kind)
    for column, of in columns:
        layer.CreateField(ogr.FieldDefn(column, of))
    for values, vertices in objects:
        line = ogr.Geometry(ogr.wkbLinearRing if kind == ogr.wkbPolygon else ogr.wkbLineString)
        for x, y in vertices:
            line.AddPoint_2D(x, y)
        shape = line
        if kind == ogr.wkbPolygon:
            shape = ogr.Geometry(ogr.wkbPolygon)
            shape.AddGeometry(line)
        feature = ogr.Feature(layer.GetLayerDefn())
        for i, value in enumerate(values):
            feature.SetField(i, value)
        feature.SetGeometry(shape)
        layer.CreateFeature(feature)
    layers = None
    shutil.copy("ground.prj", os.path.splitext(name)[0] + ".prj")


def run(tool, *arguments):
    console = subprocess.run([tool, "-b", *arguments], stdin=subprocess.DEVNULL, capture_output=True, text=True).stdout
    if "Finished." not in console:
        sys.exit(console)


def save(canvas, picture):
    made = gdal.GetDriverByName("MEM").Create("", canvas.shape[1], canvas.shape[0], 1, gdal.GDT_Byte)
    colours = gdal.ColorTable()
    for i in range(GROUNDS):
        bright = 0.35 + 0.65 * i / GROUNDS
        colours.SetColorEntry(i, (int(190 * bright), int(205 * bright), int(160 * bright)))
    for name, colour in INKS.items():
        colours.SetColorEntry(INK[name], tuple(bytes.fromhex(colour)))
    made.GetRasterBand(1).SetColorTable(colours)
    made.GetRasterBand(1).WriteArray(canvas)
    gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")
    gdal.GetDriverByName("PNG").CreateCopy(picture, made, options=["ZLEVEL=9"]).FlushCache()


def draw_cp(tool, picture):
    """Marks by the edge of the water, the wet cells that they took, and the polygons searched."""
    x, y, *_ = features("marks.mif")[1][1][0]
    marks = [(x - 61.6, y + 48.3), (x - 13.2, y + 56.7), (x + 27.4, y + 21.1), (x + 72.3, y + 52.4)]
    with open("marks.mif", encoding="ascii") as layer:
        head = layer.read().split("Data")[0]
    with open("edge.mif", "w", encoding="ascii") as layer:
        layer.write(head + "Data\n\n" + "".join(f"Point {px} {py}\n" for px, py in marks))
    with open("edge.mid", "w", encoding="ascii") as records:
        records.writelines(f'9.0,"mark {i}"\n' for i in range(len(marks)))
    run(tool, "-cp", "edge.mif", "-cpsd50", "level_1pct_remap_h.asc")
    plan = Plan("ground.asc", x - 110, y - 10, x + 110, y + 100, 15)
    plan.tint(gdal.Open("level_1pct_remap_h.asc").ReadAsArray() > -999, "water")
    for px, py in marks:
        angles = numpy.radians(numpy.arange(0, 361, 30))
        plan.lines([(px + 25 * numpy.cos(a), py + 25 * numpy.sin(a)) for a in angles], "black", 2)
    for record, vertices in features("edge_Cn.mif"):
        if record["distance"] < 99999:
            plan.lines(vertices, "red", 3)
            plan.dot(*vertices[0][:2], "blue", 9)
    for mark in marks:
        plan.dot(*mark, "red", 9)
    save(plan.canvas, picture)


def draw_lp(tool, picture):
    """Search lines across the river, the inverts and the banks."""
    run(tool, "-lp", "river.mif", "ground.asc", "-lpmd50", "-cpsd100", "-check")
    plan = Plan("ground.asc", 293200, 6178900, 293750, 6179180, 5)
    plan.lines(features("river.mif")[0][1], "blue", 2)
    inks = {"Invert": ("white", "blue"), "Left Bank": ("grey", "red"), "Right Bank": ("grey", "orange")}
    for record, vertices in features("river_LP_check.mif"):
        if len(vertices) == 2:
            plan.lines(vertices, inks[record["Type"]][0], 1)
    for record, vertices in features("river_LP_check.mif"):
        if len(vertices) == 1:
            plan.dot(*vertices[0][:2], inks[record["Type"]][1], 7)
    save(plan.canvas, picture)


def draw_brkline(tool, picture):
    """A levee by circles and a drain by searches across it."""
    columns = [("Z", ogr.OFTReal), ("dZ", ogr.OFTReal), ("Width", ogr.OFTReal), ("Options", ogr.OFTString)]
    river = features("river.mif")[0][1]
    beside = [(x, y + 60) for x, y, *_ in river[2:7]]
    shapefile("lines.shp", ogr.wkbLineString, columns,
              [((0, 40, 50, "Max"), beside), ((0, 30, 80, "Perp Min"), [v[:2] for v in river[2:7]])])
    run(tool, "-brkline", "lines.shp", "ground.asc", "-check")
    plan = Plan("ground.asc", 293200, 6178900, 293750, 6179210, 5)
    for _, vertices in features("lines_check_R.shp"):
        plan.lines(vertices, "black")
    for _, vertices in features("lines_check_L.shp"):
        plan.lines(vertices, "white")
    for record, vertices in features("lines_brkline_L.shp"):
        plan.lines(vertices, "red" if record["Options"] == "Max" else "blue", 2)
        for vertex in vertices:
            plan.dot(*vertex[:2], "red" if record["Options"] == "Max" else "blue", 5)
    for record, vertices in features("lines_check_P.shp"):
        plan.dot(*vertices[0][:2], "violet" if record["Options"] == "Max" else "orange", 7)
    save(plan.canvas, picture)


def curve(rows, height):
    """Height over area as a stepped line."""
    width = 300
    canvas = numpy.full((height, width), INK["white"], numpy.uint8)
    low, high = rows[0][0], rows[-1][0]
    most = rows[-1][1]
    chart = Plan.__new__(Plan)
    chart.canvas, chart.cell, chart.scale, chart.west, chart.north = canvas, 1, 1, 0, height - 1

    def place(level, area):
        return 10 + area / most * (width - 20), 10 + (level - low) / (high - low) * (height - 20)

    for level in range(int(low) + 1, int(high) + 1):
        chart.lines([place(level, 0), place(level, most)], "grey")
    chart.lines([place(low, 0), place(high, 0)], "black")
    chart.lines([place(low, 0), place(low, most)], "black")
    chart.lines([place(*row) for row in rows], "blue", 2)
    for row in rows:
        chart.dot(*place(*row), "blue", 5)
    return canvas


def draw_na(tool, picture):
    """A region, the cells whose corners it holds, and its table."""
    ring = [(293690, 6178470), (293800, 6178350), (293960, 6178420), (294010, 6178600), (293840, 6178640), (293690, 6178470)]
    texts = [(name, ogr.OFTString) for name in ("ID", "A", "B", "C", "D", "E", "F", "G", "H")]
    reals = [(name, ogr.OFTReal) for name in ("I", "J", "Skew")]
    shapefile("node.shp", ogr.wkbPolygon, texts + reals, [(["node.csv"] + list("abcdefgh") + [0, 0, 0], ring)])
    run(tool, "-na", "node.shp", "ground.asc")
    plan = Plan("ground.asc", 293650, 6178320, 294050, 6178680, 5)
    plan.lines(ring, "red", 2)
    outline = ogr.Geometry(ogr.wkbLinearRing)
    for x, y in ring:
        outline.AddPoint_2D(x, y)
    polygon = ogr.Geometry(ogr.wkbPolygon)
    polygon.AddGeometry(outline)
    for x in numpy.arange(293655, 294050, plan.cell):
        for y in numpy.arange(6178325, 6178680, plan.cell):
            point = ogr.Geometry(ogr.wkbPoint)
            point.AddPoint_2D(x, y)
            if polygon.Contains(point):
                plan.dot(x, y, "white", 1)
    with open("node.csv", newline="") as table:
        rows = [(float(row["Height"]), float(row["Area"])) for row in csv.DictReader(table)]
    gap = numpy.full((plan.canvas.shape[0], 12), INK["white"], numpy.uint8)
    save(numpy.hstack([plan.canvas, gap, curve(rows, plan.canvas.shape[0])]), picture)


def main(tool, folder, pictures):
    tool, pictures = os.path.abspath(tool), os.path.abspath(pictures)
    with tempfile.TemporaryDirectory() as scratch:
        for name in ("ground.asc", "ground.prj", "level_1pct_remap_h.asc", "river.mif", "river.mid", "marks.mif", "marks.mid"):
            shutil.copy(os.path.join(folder, name), scratch)
        os.chdir(scratch)
        for name, draw in (("cp", draw_cp), ("lp", draw_lp), ("brkline", draw_brkline), ("na", draw_na)):
            draw(tool, os.path.join(pictures, name + ".png"))


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
