"""The inputs of the timed whole runs, made once in the folder of a sitting and always with the same bytes.

An input is known by its name alone, in a folder for each version of what makes the inputs. Grids: KIND_SIZE_EVENT.flt (or .asc) with KIND ground, level or depth, SIZE cells a side, or
SIZExCELL for cells of CELL metres in place of one. Layers: marks_PLACE.mif, houses_PLACE.mif (points), buildings_PLACE.mif or .shp
(polygons), with PLACE all (anywhere on a grid of 4000 metres) or tenth (in a square of a tenth of its area).
"""
import glob
import hashlib
import math
import os
import random
import re
import shutil
import struct
import subprocess

WEST, SOUTH, SIDE = 382000.0, 6354000.0, 4000.0
COORD_SYSTEM = 'NonEarth Units "m" Bounds (0, 0) (10000000, 10000000)'
PROJECTION = 'PROJCS["Plane",GEOGCS["Plane"],UNIT["Metre",1.0]]\n'
POINTS, BUILDINGS = 10000, 20000
MAKING = (os.path.abspath(__file__), os.path.join(os.path.dirname(os.path.abspath(__file__)), "make_grid.cpp"))


def folder_name():
    """Another one for each version of the sources that say what inputs hold."""
    known = hashlib.sha256()
    for source in MAKING:
        with open(source, "rb") as file:
            known.update(file.read())
    return "inputs-" + known.hexdigest()[:12]


def remove_old(folder):
    """Removes the inputs that other versions of the sources have made: they take gigabytes."""
    for old in glob.glob(os.path.join(glob.escape(folder), "inputs-" + 12 * "[0-9a-f]")):
        if os.path.basename(old) != folder_name():
            shutil.rmtree(old)


def companions(name):
    """All files that make up an input, the named one first."""
    stem, extension = os.path.splitext(name)
    others = {".flt": [".hdr"], ".mif": [".mid"], ".shp": [".dbf", ".prj"]}
    return [name] + [stem + other for other in others.get(extension, [])]


def size_on_disk(name):
    """About how many bytes an input will take; layers and tables are small."""
    grid = re.match(r"(?:ground|level|depth)_(\d+)(?:x\d+)?_\d+\.(flt|asc)$", name)
    if grid:
        return int(grid[1]) ** 2 * (4 if grid[2] == "flt" else 10)
    points = re.match(r"points_(\d+)\.xyz$", name)
    return int(points[1]) ** 2 * 28 if points else 5_000_000


def make(name, folder, make_grid):
    """Makes the input unless it is there, and waits for the disk: pages that are not written yet cannot be dropped later."""
    parts = [os.path.join(folder, part) for part in companions(name)]
    if all(os.path.exists(part) for part in parts):
        return
    stem, extension = os.path.splitext(name)
    kind = stem.split("_")[0]
    unfinished = os.path.join(folder, "unfinished" + extension)
    if kind in ("ground", "level", "depth"):
        make_grid_file(stem, unfinished, make_grid)
    else:
        MAKERS[kind](stem, unfinished)
    for part, made in reversed(list(zip(parts, companions(unfinished)))):
        descriptor = os.open(made, os.O_RDONLY)
        os.fsync(descriptor)
        os.close(descriptor)
        os.rename(made, part)


def make_grid_file(stem, path, make_grid):
    kind, size, event = stem.split("_")
    cells, _, cell = size.partition("x")
    subprocess.run([make_grid, kind, cells, cells, cell or "1", event, path], check=True)


# Layers
# ----------------------------------------------------------------------------------------------------------------------


def places(where, count, seed):
    """Places well off the edge: all over the grid, or in a square in its middle with a tenth of the area."""
    source = random.Random(seed)
    half = {"all": SIDE / 2 - 100, "tenth": SIDE / 2 * math.sqrt(0.1)}[where]
    return [(WEST + SIDE / 2 + source.uniform(-half, half), SOUTH + SIDE / 2 + source.uniform(-half, half))
            for _ in range(count)]


def write_mif(path, columns, objects, records):
    with open(path, "w", newline="\n") as file:
        file.write('Version 300\nCharset "WindowsLatin1"\nDelimiter ","\nCoordSys %s\nColumns %d\n%s\nData\n\n%s\n'
                   % (COORD_SYSTEM, len(columns), "\n".join("  " + column for column in columns), "\n".join(objects)))
    with open(path[:-4] + ".mid", "w", newline="\n") as file:
        file.write("\n".join(records) + "\n")


def make_marks(stem, path):
    where = stem.split("_")[1]
    points = places(where, POINTS, 3)
    write_mif(path, ["Observed Float", "Label Char(20)"], ["Point %.3f %.3f" % point for point in points],
              ['%.2f,"M%05d"' % (20 + i % 97 / 50, i) for i in range(len(points))])


def outlines(where):
    """Ragged polygons of six vertices, 7 to 12 metres from their middle; the first vertex again at the end."""
    source = random.Random(4)
    made = []
    for x, y in places(where, BUILDINGS, 5):
        ring = [(x + math.cos(angle) * radius, y - math.sin(angle) * radius)
                for angle, radius in ((math.pi * corner / 3, source.uniform(7, 12)) for corner in range(6))]
        made.append(ring + ring[:1])
    return made


def building_records():
    return [("Home" if i % 5 else "Shop", "B%05d" % i, 20.4 + i % 31 / 50, 1 + i % 7 / 4) for i in range(BUILDINGS)]


BUILDING_COLUMNS = ["Prop_Type Char(20)", "Prop_ID Char(20)", "FFL Float", "Multiplier Float"]
BUILDING_RECORD = '"%s","%s",%.2f,%.2f'


def make_houses(stem, path):
    write_mif(path, BUILDING_COLUMNS, ["Point %.3f %.3f" % point for point in places(stem.split("_")[1], BUILDINGS, 5)],
              [BUILDING_RECORD % record for record in building_records()])


def make_buildings(stem, path):
    rings = outlines(stem.split("_")[1])
    if path.endswith(".shp"):
        write_shp(path, rings)
        write_dbf(path[:-4] + ".dbf", building_records())
        with open(path[:-4] + ".prj", "w") as file:
            file.write(PROJECTION)
        return
    write_mif(path, BUILDING_COLUMNS,
              ["Region 1\n  %d\n%s" % (len(ring), "\n".join("%.3f %.3f" % vertex for vertex in ring)) for ring in rings],
              [BUILDING_RECORD % record for record in building_records()])


def make_region(_stem, path):
    """One region of twelve vertices over half of the grid."""
    ring = [(WEST + SIDE / 2 + 0.4 * SIDE * math.cos(angle), SOUTH + SIDE / 2 - 0.4 * SIDE * math.sin(angle))
            for angle in (math.pi * corner / 6 for corner in range(12))]
    write_mif(path, ["Name Char(20)"],
              ["Region 1\n  %d\n%s" % (len(ring) + 1, "\n".join("%.3f %.3f" % vertex for vertex in ring + ring[:1]))],
              ['"north"'])


def write_shp(path, rings):
    def box(vertices):
        x, y = [vertex[0] for vertex in vertices], [vertex[1] for vertex in vertices]
        return struct.pack("<4d", min(x), min(y), max(x), max(y))

    body = b""
    records = []
    for number, ring in enumerate(rings, 1):
        shape = struct.pack("<i", 5) + box(ring) + struct.pack("<3i", 1, len(ring), 0)
        shape += b"".join(struct.pack("<2d", *vertex) for vertex in ring)
        records.append(struct.pack(">2i", number, len(shape) // 2) + shape)
    body = b"".join(records)
    with open(path, "wb") as file:
        file.write(struct.pack(">7i", 9994, 0, 0, 0, 0, 0, (100 + len(body)) // 2) + struct.pack("<2i", 1000, 5))
        file.write(box([vertex for ring in rings for vertex in ring]) + bytes(32) + body)


def write_dbf(path, records):
    fields = (("Prop_Type", b"C", 20, 0), ("Prop_ID", b"C", 20, 0), ("FFL", b"N", 16, 3), ("Multiplier", b"N", 16, 3))
    width = 1 + sum(field[2] for field in fields)
    with open(path, "wb") as file:
        file.write(struct.pack("<4BIHH20x", 3, 126, 1, 1, len(records), 32 + 32 * len(fields) + 1, width))
        for name, kind, length, decimals in fields:
            file.write(struct.pack("<11sc4xBB14x", name.encode(), kind, length, decimals))
        file.write(b"\r")
        for record in records:
            file.write((" %-20s%-20s%16.3f%16.3f" % record).encode())
        file.write(b"\x1a")


# Tables and control files
# ----------------------------------------------------------------------------------------------------------------------


def write_text(path, text):
    with open(path, "w", newline="\n") as file:
        file.write(text)


def make_bins(stem, path):
    count = int(stem.split("_")[1])
    write_text(path, "Limit,Name\n" + "".join("%.3f,Class%d\n" % (6.0 * (i + 1) / count, i) for i in range(count)))


def make_curve(_stem, path):
    write_text(path, "Depth,Damage\n-0.3,0\n0,15000\n0.5,42000\n1,70000\n2.5,140000\n")


def make_control(stem, path):
    write_text(path, "Maximum Buildings == %d\nRead GIS Buildings == %s\nRead Curve Home == curve.csv\n"
               "Read Curve Shop == curve.csv\nRead Result %% 1 == level.flt\nRegion Inspection Method == Max\n"
               % (BUILDINGS + 1, {"mif": "b.mif", "shp": "b.shp"}[stem.split("_")[1]]))


def make_rain(_stem, path):
    write_text(path, "RF GRID Cell Size == 2\nRF GRID Size (X,Y) == 4000, 4000\nRF GRID Origin == %.0f, %.0f\n"
               "RF Grid Format == FLT\n%sRF Interpolation Method == IDW\nRead GIS RF Points == gauges.mif\nIDW Max Point == 4\n"
               % (WEST, SOUTH, "".join("Rainfall Hyetograph G%d == hyetograph.csv\n" % i for i in range(20))))


def make_gauges(_stem, path):
    write_mif(path, ["Name Char(20)", "F1 Float", "F2 Float"], ["Point %.3f %.3f" % point for point in places("all", 20, 6)],
              ['"G%d",1,%.2f' % (i, 0.5 + i / 20) for i in range(20)])


def make_hyetograph(_stem, path):
    write_text(path, "Time (h),Depth (mm)\n1,1\n2,6\n3,14\n4,8\n")


def make_points(stem, path):
    side = int(stem.split("_")[1])
    source = random.Random(7)
    with open(path, "w", newline="\n") as file:
        for row in range(side):
            file.write("".join("%.2f %.2f %.3f\n" % (WEST + 2 * column, SOUTH + 2 * row, 20 + 5 * source.random())
                               for column in range(side)))


MAKERS = {"marks": make_marks, "buildings": make_buildings, "houses": make_houses, "region": make_region, "bins": make_bins,
          "curve": make_curve, "control": make_control, "rain": make_rain, "gauges": make_gauges, "hyetograph": make_hyetograph,
          "points": make_points}
