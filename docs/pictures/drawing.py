"""What the scripts of the pictures share: the sample valley, in which they run the tool, and maps of its grids and layers.

Each script is used as `SCRIPT TOOL VALLEY PICTURES`: the built gridforge; a folder with the grids of gridforge_make_catchment and
the cases of examples/, as scripts/demo leaves it; and the folder for the pictures. Needs the Debian packages python3-matplotlib
and python3-gdal.
"""
import csv
import math
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "python"))

import numpy  # noqa: E402
from gridforge import styles  # noqa: E402
from gridforge.grid_blocks import Window, read_thinned, window_of  # noqa: E402
from gridforge.grid_files import read_header  # noqa: E402
from gridforge.picture import coloured, hillshade, round_length  # noqa: E402
from matplotlib import pyplot  # noqa: E402
from matplotlib.lines import Line2D  # noqa: E402
from matplotlib.patches import Patch, Rectangle  # noqa: E402
from osgeo import ogr  # noqa: E402
from PIL import Image  # noqa: E402

ogr.UseExceptions()
WIDE = 10  # inches; a hundred dots each
INK, RED, BLUE, ORANGE, VIOLET, GREEN = "#202020", "#c62828", "#1c4fa0", "#ef6c00", "#8e24aa", "#2e7d32"
FINEST = 2000  # cells on a side of what is drawn
VALLEY = 293000, 6178250, 295400, 6179450  # the part of the sample valley with the river
pyplot.rcParams.update({"font.size": 12, "axes.titlesize": 13, "axes.titlelocation": "left", "axes.grid": False,
                        "legend.fontsize": 11, "legend.framealpha": 1, "hatch.linewidth": 0.6})


# --- The valley ------------------------------------------------------------------------------------------------------

def run(*arguments):
    """Runs the tool in the current folder."""
    console = subprocess.run([os.environ["GRIDFORGE"], "-b", *map(str, arguments)], stdin=subprocess.DEVNULL,
                             capture_output=True, text=True, check=False).stdout
    if not console.endswith("Finished.\n"):
        sys.exit(f"gridforge {' '.join(map(str, arguments))}\n{console}")


def main(draw):
    """Calls draw(PICTURES) in a copy of the valley."""
    if len(sys.argv) != 4:
        sys.exit(f"usage: {sys.argv[0]} TOOL VALLEY PICTURES")
    tool, valley, pictures = (Path(name).resolve() for name in sys.argv[1:])
    os.environ["GRIDFORGE"] = str(tool)
    with tempfile.TemporaryDirectory() as scratch:
        shutil.copytree(valley, scratch, dirs_exist_ok=True)
        os.chdir(scratch)
        draw(pictures)
        os.chdir("/")


def features(name):
    """The objects of a layer: attributes and vertices, those of the outline of a region."""
    layers = ogr.Open(name)  # which must outlive its layer
    made = []
    for feature in layers.GetLayer():
        shape = feature.GetGeometryRef()
        ring = shape.GetGeometryRef(0) if shape.GetGeometryName() == "POLYGON" else shape
        made.append((feature.items(), numpy.array(ring.GetPoints())[:, :2]))
    return made


def write_layer(name, kind, columns, objects):
    """A .mif with its .mid in the projection of the valley: each object its record, as text, and its vertices."""
    head = Path("river.mif").read_text(encoding="ascii").split("Columns")[0]
    counts = {"Point": lambda n: "", "Pline": lambda n: f"{n}\n", "Region": lambda n: f"1\n  {n}\n"}
    shapes = [f"{kind} {counts[kind](len(vertices))}" + "\n".join(f"{x} {y}" for x, y in vertices) for _, vertices in objects]
    Path(name).write_text(f"{head}Columns {len(columns)}\n" + "".join(f"  {column}\n" for column in columns) + "Data\n\n"
                          + "\n".join(shapes) + "\n", encoding="ascii")
    Path(name).with_suffix(".mid").write_text("".join(record + "\n" for record, _ in objects), encoding="ascii")


def table(name):
    with open(name, newline="", encoding="ascii") as file:
        return list(csv.DictReader(file))


def cells_of(name, window=None):
    """The cells of a grid, NaN where they are null, and where they lie: west, east, south, north."""
    part = read_thinned(Path(name), FINEST, wanted=Window(*window) if window else None)
    return part.values, part.extent


# --- Maps ------------------------------------------------------------------------------------------------------------

def figure(height, rows=1, columns=1, **further):
    made, axes = pyplot.subplots(rows, columns, figsize=(WIDE, height), dpi=100, layout="constrained", **further)
    return made, axes


def whole(name):
    window = window_of(read_header(Path(name)))
    return window.west, window.south, window.east, window.north


def map_of(axes, window, title, scale=True, ground="ground.asc"):
    """A map of a window (west, south, east, north), with the ground in the light of a sun in the north-west."""
    west, south, east, north = window
    axes.set(xlim=(west, east), ylim=(south, north), xticks=[], yticks=[], aspect="equal")
    axes.set_title(title)
    if ground:
        below = read_thinned(Path(ground), FINEST, wanted=Window(*window))
        axes.imshow(hillshade(below), cmap="gray", vmin=0.2, vmax=1, extent=below.extent, interpolation="bilinear")
    if scale:
        scale_bar(axes, window)


def scale_bar(axes, window, corner="south-west"):
    west, south, east, north = window
    length = round_length((east - west) / 4)
    unit = (east - west) / 100
    left, bottom = (west + 2 * unit, south + 2 * unit) if corner == "south-west" else (east - length - 2 * unit, north - 6.5 * unit)
    axes.add_patch(Rectangle((left - unit, bottom - unit), length + 2 * unit, 6.5 * unit, color="white", alpha=0.85, zorder=8))
    for i in range(4):
        axes.add_patch(Rectangle((left + i * length / 4, bottom), length / 4, unit, linewidth=0.8, edgecolor=INK, zorder=9,
                                 facecolor=INK if i % 2 == 0 else "white"))
    axes.text(left + length / 2, bottom + 1.8 * unit, f"{length:g} m", ha="center", va="bottom", fontsize=11, zorder=9)


def show(axes, name, style, window=None):
    """A grid in the colours of its style, opaque as those of the legend are."""
    cells, extent = cells_of(name, window)
    axes.imshow(coloured(cells, style), extent=extent, interpolation="nearest")


def ramp_of(name, window=None):
    """The style of levels from the lowest to the highest cell of a grid."""
    cells, _ = cells_of(name, window)
    return styles.styles()["level"].between(math.floor(numpy.nanmin(cells)), math.ceil(numpy.nanmax(cells)))


def lines(axes, objects, colour, width=1.5, halo=True, **further):
    for vertices in objects:
        if halo:
            axes.plot(*zip(*vertices), color="white", linewidth=width + 1.6, alpha=0.7, zorder=4)
        axes.plot(*zip(*vertices), color=colour, linewidth=width, zorder=5, **further)


def dots(axes, points, colour, size=40, **further):
    axes.scatter(*zip(*points), s=size, color=colour, edgecolors="white", linewidths=0.9, zorder=6, **further)


def key_beside(axes, handles, **further):
    axes.legend(handles=handles, loc="center left", bbox_to_anchor=(1.01, 0.5), frameon=False, **further)


def key_below(axes, handles, **further):
    axes.legend(handles=handles, loc="upper center", bbox_to_anchor=(0.5, -0.02), frameon=False, **further)


def heading(text):
    """A line in a legend that names what follows."""
    return Patch(alpha=0, label=text)


def class_keys(style, values=None):
    """Legend entries of the classes, those that occur where the values are given."""
    return [Patch(facecolor=one.colour, edgecolor="#555555", label=one.label) for one in style.classes
            if values is None or numpy.any(numpy.abs(values - one.value) < 0.5)]


def line_key(colour, label, width=2.0, **further):
    return Line2D([], [], color=colour, linewidth=width, label=label, **further)


def dot_key(colour, label, size=8, marker="o"):
    return Line2D([], [], color=colour, marker=marker, markersize=size, linewidth=0, markeredgecolor="white", label=label)


def colour_bar(made, axes, style, label, **further):
    """A bar of a ramp beside the axes, or where `location` says."""
    from matplotlib.cm import ScalarMappable
    from matplotlib.colors import LinearSegmentedColormap, Normalize
    values = [one.value for one in style.classes]
    low, high = values[0], values[-1]
    ramp = LinearSegmentedColormap.from_list("ramp", [((v - low) / (high - low), one.colour)
                                                      for v, one in zip(values, style.classes)])
    made.colorbar(ScalarMappable(Normalize(low, high), ramp), ax=axes, label=label, shrink=0.85, aspect=28, **further)


def chart(axes, title, across, up):
    axes.set_title(title)
    axes.set(xlabel=across, ylabel=up)
    axes.grid(color="#d8d8d8", linewidth=0.8)
    axes.set_axisbelow(True)
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)


def save(made, path):
    """A .png of 256 colours, which is a third of the size; rare ones count as much as others."""
    made.savefig(path, metadata={"Software": None}, facecolor="white")
    pyplot.close(made)
    with Image.open(path) as picture:
        few = picture.convert("RGB").quantize(256, method=Image.Quantize.MAXCOVERAGE, kmeans=1, dither=Image.Dither.NONE)
        few.save(path, optimize=True)
