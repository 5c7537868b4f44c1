"""gridforge-picture: a grid as a PNG for a report, with legend, scale bar and north arrow, over the ground, under layers."""
from __future__ import annotations

import argparse
import math
import re
import sys
from collections.abc import Sequence
from dataclasses import dataclass, field
from pathlib import Path
from typing import TYPE_CHECKING

from . import styles
from .grid_blocks import Thinned, Window, numpy, read_thinned, require_numpy, window_of
from .grid_files import beside, read_header
from .messages import Failure, Scratch, add_overwrite, missing_package, refuse_existing, run_command
from .styles import Style

try:
    import matplotlib
    matplotlib.use("Agg")
    matplotlib.rcParams["text.parse_math"] = False  # two dollars in a title are not a formula
    from matplotlib import pyplot
    from matplotlib.collections import LineCollection
    from matplotlib.patches import Polygon, Rectangle
except ImportError:
    matplotlib = None

try:
    from osgeo import gdal, ogr
    gdal.UseExceptions()
    ogr.UseExceptions()
except ImportError:
    ogr = None

if TYPE_CHECKING:
    from matplotlib.axes import Axes
    from matplotlib.figure import Figure
    from numpy import ndarray

NAME = "gridforge-picture"
CM = 1 / 2.54  # inches
MARGIN, GAP, PANEL = 0.3, 0.35, 4.6  # cm; the panel beside or below the map holds the legend
FLAT = 0.6  # a map of less than this part of the panel's height has the panel below it
TITLE = 0.75  # cm
LINE, PATCH = 0.46, 0.6  # cm: height of a line of the legend, width of its patch
BAR, SHORT_BAR = 4.0, 2.6  # cm: length of a colour bar beside the map and below it
FOOT = 2.3  # cm: north arrow and scale bar
FONT = 7.5  # points
HEADINGS = {"depth": "Depth", "level": "Level", "difference": "Difference", "source": "Source", "wet_dry": "Wet and dry",
            "impact": "Change"}
WITHOUT_UNIT = ("source", "wet_dry")
INKS = ("#202020", "#c2185b", "#1b5e20", "#e65100", "#4a148c")
SUN_AZIMUTH, SUN_HEIGHT = math.radians(315), math.radians(45)
TYPICAL_SLOPE, MOST_EXAGGERATION = 0.35, 12.0  # the steep slopes of a flat ground are raised to this one
SHADE_LOW, SHADE_HIGH = 0.6, 1.0
BAR_SHARE = 0.85  # of the panel that the scale bar takes at most


@dataclass(frozen=True)
class LayerWish:
    path: Path
    label: str


@dataclass(frozen=True)
class Wishes:
    kind: str | None = None
    ground: Path | None = None
    legend: Path | None = None
    layers: tuple[LayerWish, ...] = ()
    title: str = ""
    heading: str = ""
    unit: str = "m"
    window: Window | None = None
    span: tuple[float, float] | None = None  # of a level
    width: float = 16.0  # cm
    dpi: int = 200


@dataclass
class Layer:
    """What is drawn of a layer: points, and lines of vertices."""
    label: str
    ink: str
    points: list[tuple[float, float]] = field(default_factory=list)
    lines: list[list[tuple[float, float]]] = field(default_factory=list)
    regions: bool = False


# --- Colours ---------------------------------------------------------------------------------------------------------


def style_of(grid: Path, values: ndarray, wishes: Wishes) -> Style:
    kind = wishes.kind or styles.kind_of(grid.name)
    if kind is None:
        raise Failure(f"the name of {grid.name} does not show its kind: --kind is one of {', '.join(styles.styles())}")
    style = styles.styles()[kind]
    if kind == "source":
        return style.named(names_of_sources(grid, values, wishes.legend))
    if style.form == "range":
        low, high = wishes.span or (float(numpy.nanmin(values)), float(numpy.nanmax(values)))
        return style.between(low, high if high > low else low + 1)
    return style


def names_of_sources(grid: Path, values: ndarray, legend: Path | None) -> dict[int, str]:
    """From the legend that is given or lies beside the grid; numbers where there is none."""
    present = sorted({int(value) for value in numpy.unique(values[~numpy.isnan(values)]) if value >= 1})
    path = legend or styles.legend_of(grid)
    names = styles.read_legend(path) if path else {}
    return {number: names.get(number, f"source {number}") for number in present}


def coloured(values: ndarray, style: Style) -> ndarray:
    """Red, green, blue and opacity of each cell, 0 to 255; nothing where a cell has no value or no class."""
    colours = numpy.array([c.rgb for c in style.classes], dtype="u1")
    limits = numpy.array([c.value for c in style.classes])
    known = ~numpy.isnan(values)
    cells = numpy.where(known, values, numpy.float32(0))
    image = numpy.zeros((*values.shape, 4), dtype="u1")
    if style.form in ("bands", "values"):
        shift = 0.5 if style.form == "values" else 0.0
        places = numpy.minimum(numpy.searchsorted(limits, cells.astype("f8") - shift), len(limits) - 1)
        image[..., :3] = colours[places]
        if style.form == "values":
            known &= numpy.abs(limits[places] - cells) < 0.5
    else:
        for channel in range(3):
            image[..., channel] = numpy.interp(cells, limits, colours[:, channel]).round()
    image[..., 3] = numpy.where(known, 255, 0)
    return image


def hillshade(ground: Thinned) -> ndarray:
    """Brightness, 0 to 1, of the ground under a sun in the north-west. Flat grounds are raised, so that their forms show."""
    with numpy.errstate(invalid="ignore"):
        down, east = numpy.gradient(ground.values.astype("f8"), ground.cell) if min(ground.values.shape) > 1 else (
            numpy.zeros(ground.values.shape), numpy.zeros(ground.values.shape))
    slopes = numpy.hypot(down, east)
    steep = numpy.nanpercentile(slopes, 90) if numpy.isfinite(slopes).any() else 0.0
    raised = min(max(TYPICAL_SLOPE / steep, 1.0), MOST_EXAGGERATION) if steep > 0 else 1.0
    to_sun = numpy.array([math.sin(SUN_AZIMUTH) * math.cos(SUN_HEIGHT), math.cos(SUN_AZIMUTH) * math.cos(SUN_HEIGHT),
                          math.sin(SUN_HEIGHT)])
    light = (-east * raised * to_sun[0] + down * raised * to_sun[1] + to_sun[2]) / numpy.sqrt(1 + (raised * slopes) ** 2)
    return SHADE_LOW + (SHADE_HIGH - SHADE_LOW) * numpy.clip(light, 0, 1)


# --- Layers ----------------------------------------------------------------------------------------------------------


def read_layer(wish: LayerWish, ink: str, window: Window) -> Layer:
    if ogr is None:
        raise missing_package("GDAL for Python", "python3-gdal")
    try:
        data = gdal.OpenEx(str(wish.path), gdal.OF_VECTOR)
    except RuntimeError as error:
        raise Failure(f"{wish.path}: GDAL cannot read it as a layer: {error}") from None
    drawn = Layer(wish.label, ink)
    for i in range(data.GetLayerCount()):
        source = data.GetLayer(i)
        source.SetSpatialFilterRect(window.west, window.south, window.east, window.north)
        for feature in source:
            if feature.GetGeometryRef() is not None:
                add_shape(drawn, feature.GetGeometryRef().GetLinearGeometry())
    if not drawn.points and not drawn.lines:
        raise Failure(f"{wish.path} has nothing in the window of the picture")
    return drawn


def add_shape(layer: Layer, geometry: ogr.Geometry) -> None:
    name = geometry.GetGeometryName()
    if name == "POINT":
        if not geometry.IsEmpty():
            layer.points.append((geometry.GetX(), geometry.GetY()))
    elif name in ("LINESTRING", "LINEARRING"):
        layer.lines.append([vertex[:2] for vertex in geometry.GetPoints() or []])
        layer.regions |= name == "LINEARRING"
    else:
        for i in range(geometry.GetGeometryCount()):
            add_shape(layer, geometry.GetGeometryRef(i))


def draw_layer(axes: Axes, layer: Layer) -> None:
    if layer.lines:
        axes.add_collection(LineCollection(layer.lines, colors="white", linewidths=1.7, alpha=0.6, capstyle="round"))
        axes.add_collection(LineCollection(layer.lines, colors=layer.ink, linewidths=0.8, capstyle="round"))
    if layer.points:
        axes.scatter(*zip(*layer.points), s=11, color=layer.ink, edgecolors="white", linewidths=0.5, zorder=3)


# --- The panel -------------------------------------------------------------------------------------------------------


@dataclass(frozen=True)
class Key:
    """A line of the legend: a patch of a class, or a sample of a layer."""
    label: str
    colour: str = ""
    layer: Layer | None = None


def keys_of(style: Style, values: ndarray, unit: str) -> list[Key]:
    """The classes: all bands, so that pictures compare, and of values those that occur."""
    if style.form in ("ramp", "range"):
        return []
    present = set(numpy.unique(values[~numpy.isnan(values)]).round().tolist()) if style.form == "values" else None
    return [Key(without_unit(c.label) if unit else c.label, c.colour) for c in style.classes
            if present is None or c.value in present]


def without_unit(label: str) -> str:
    return re.sub(r"(?<=\d) m\b", "", label)


def wrapped(text: str, width: int = 30) -> str:
    """The text on two lines at most; what does not fit loses its middle."""
    if len(text) <= width:
        return text
    at = text.rfind(" ", 0, width) if " " in text[:width] else max(text.rfind("_", 0, width) + 1, 0) or width
    first, second = text[:at], text[at:].strip()
    return first + "\n" + (second if len(second) <= width else second[:width // 2 - 1] + "\u2026" + second[1 - width // 2:])


def height_of(key: Key) -> float:
    return LINE * (1 + 0.7 * wrapped(key.label).count("\n"))


class Panel:
    """Legend, north arrow and scale bar on axes of centimetres, from the top down, in one column or several."""

    def __init__(self, axes: Axes, width: float, height: float) -> None:
        axes.set(xlim=(0, width), ylim=(0, height))
        axes.axis("off")
        self.axes = axes
        self.width, self.height = width, height
        self.left = 0.0
        self.at = height

    def next_column(self, top: float) -> None:
        self.left += PANEL
        self.at = top

    def heading(self, text: str) -> None:
        self.axes.text(self.left, self.at - LINE / 2, text, fontsize=FONT + 1, fontweight="bold", va="center")
        self.at -= LINE * 1.25

    def keys(self, keys: Sequence[Key], rows: int | None = None) -> None:
        """The keys, with so many in a column."""
        top = self.at
        for i, key in enumerate(keys):
            if rows and i and i % rows == 0:
                self.next_column(top)
            self._key(key)

    def _key(self, key: Key) -> None:
        height = height_of(key)
        left, middle = self.left, self.at - height / 2
        if key.layer is None:
            self.axes.add_patch(Rectangle((left, middle - 0.16), PATCH, 0.32, facecolor=key.colour, edgecolor="#555555",
                                          linewidth=0.4))
        else:
            self._sample(key.layer, left, middle)
        self.axes.text(left + PATCH + 0.2, middle, wrapped(key.label), fontsize=FONT, va="center", linespacing=1.05)
        self.at -= height

    def _sample(self, layer: Layer, left: float, middle: float) -> None:
        """An outline or a line, a dot, or both beside each other, as the layer has them."""
        if layer.lines:
            right = left + PATCH * (0.6 if layer.points else 1)
            box = [(left, middle - 0.13), (right, middle - 0.13), (right, middle + 0.13), (left, middle + 0.13)]
            vertices = [*box, box[0]] if layer.regions else [(left, middle), (right, middle)]
            self.axes.plot(*zip(*vertices), color=layer.ink, linewidth=0.9)
        if layer.points:
            self.axes.scatter([left + PATCH * (0.85 if layer.lines else 0.5)], [middle], s=13, color=layer.ink, edgecolors="white",
                              linewidths=0.5)

    def colour_bar(self, style: Style, length: float) -> None:
        values = numpy.array([c.value for c in style.classes])
        left, bottom = self.left, self.at - length - 0.15
        column = numpy.linspace(values[0], values[-1], 256)[::-1, None] if style.kind == "level" else stretched(values)
        self.axes.imshow(coloured(column, style), extent=(left, left + PATCH, bottom, bottom + length), aspect="auto")
        self.axes.add_patch(Rectangle((left, bottom), PATCH, length, fill=False, edgecolor="#555555", linewidth=0.5))
        for share, label in bar_labels(style):
            y = bottom + share * length
            self.axes.plot([left + PATCH, left + PATCH + 0.1], [y, y], color="#555555", linewidth=0.5)
            self.axes.text(left + PATCH + 0.2, y, label, fontsize=FONT, va="center")
        self.at = bottom - 0.3

    def foot(self, left: float, bottom: float, metres_per_cm: float | None) -> None:
        """North arrow and scale bar; no bar where coordinates are degrees."""
        self._north(left + 0.45, bottom + 1.55)
        if metres_per_cm is None:
            return
        length = round_length(metres_per_cm * PANEL * BAR_SHARE * 0.8)
        width = length / metres_per_cm
        for i in range(4):
            self.axes.add_patch(Rectangle((left + 0.1 + i * width / 4, bottom + 0.55), width / 4, 0.14, linewidth=0.5,
                                          edgecolor="#202020", facecolor="#202020" if i % 2 == 0 else "white"))
        unit, scale = ("km", 1000) if length >= 2000 else ("m", 1)
        for share in (0, 0.5, 1):
            self.axes.text(left + 0.1 + share * width, bottom + 0.3, f"{share * length / scale:g}", fontsize=FONT - 0.5,
                           ha="center", va="center")
        self.axes.text(left + 0.25 + width, bottom + 0.62, unit, fontsize=FONT - 0.5, va="center")

    def _north(self, x: float, y: float) -> None:
        for side, colour in ((-0.2, "white"), (0.2, "#202020")):
            self.axes.add_patch(Polygon([(x, y + 0.45), (x + side, y - 0.4), (x, y - 0.22)], facecolor=colour,
                                        edgecolor="#202020", linewidth=0.6))
        self.axes.text(x + 0.36, y + 0.05, "N", fontsize=FONT + 1.5, fontweight="bold", va="center")


def stretched(values: ndarray) -> ndarray:
    """Values for a bar on which the classes of a ramp lie evenly, however far apart they are, from the top down."""
    return numpy.interp(numpy.linspace(len(values) - 1, 0, 256), numpy.arange(len(values)), values)[:, None]


def bar_labels(style: Style) -> list[tuple[float, str]]:
    if style.kind != "level":
        last = len(style.classes) - 1
        return [(i / last, without_unit(c.label)) for i, c in enumerate(style.classes)]
    low, high = style.classes[0].value, style.classes[-1].value
    step = round_length((high - low) / 4)
    first = math.ceil(low / step - 1e-9)
    return [((n * step - low) / (high - low), f"{n * step:.10g}") for n in range(first, math.floor(high / step + 1e-9) + 1)]


def round_length(most: float) -> float:
    """The largest of 1, 2 and 5 times a power of ten that is no longer."""
    power = 10.0 ** math.floor(math.log10(most))
    return max(step * power for step in (1, 2, 5) if step * power <= most * (1 + 1e-9))


# --- The layout ------------------------------------------------------------------------------------------------------


@dataclass(frozen=True)
class Legend:
    """What stands in the panel."""
    heading: str
    style: Style
    keys: Sequence[Key]  # none for a colour bar
    layers: Sequence[Key]

    def beside_height(self) -> float:
        classes = math.fsum(map(height_of, self.keys)) if self.keys else BAR + 0.45
        layers = LINE / 2 + math.fsum(map(height_of, self.layers)) if self.layers else 0
        return LINE * 1.25 + classes + layers + FOOT

    def rows_below(self, columns: int) -> int:
        """Keys in a column where the legend has so many of them, without the last, which is for layers where there are any."""
        return -(-len(self.keys) // max(1, columns - (1 if self.layers else 0)))

    def below_height(self, columns: int) -> float:
        rows = self.rows_below(columns)
        lists = [self.keys[first:first + rows] for first in range(0, len(self.keys), rows or 1)] + [self.layers]
        highest = max(math.fsum(map(height_of, keys)) for keys in lists)
        return max(LINE * 1.25 + (highest if self.keys else max(highest, SHORT_BAR + 0.3)), FOOT)

    def draw_beside(self, panel: Panel, metres_per_cm: float | None) -> None:
        panel.heading(self.heading)
        if self.keys:
            panel.keys(self.keys)
        else:
            panel.colour_bar(self.style, BAR)
        panel.at -= LINE / 2
        panel.keys(self.layers)
        panel.foot(0, 0, metres_per_cm)

    def draw_below(self, panel: Panel, columns: int, metres_per_cm: float | None) -> None:
        panel.heading(self.heading)
        if self.keys:
            panel.keys(self.keys, self.rows_below(columns))
        else:
            panel.colour_bar(self.style, SHORT_BAR)
        if self.layers:
            panel.next_column(panel.height - LINE * 1.25)
            panel.keys(self.layers)
        panel.foot(panel.width - PANEL, panel.height - FOOT, metres_per_cm)


@dataclass(frozen=True)
class Layout:
    """Places on the picture, in cm from its upper left corner: left, top, width, height."""
    width: float
    height: float
    map: tuple[float, float, float, float]
    panel: tuple[float, float, float, float]
    columns: int  # of a panel below the map; 0 for one beside it


def laid_out(legend: Legend, wishes: Wishes, window: Window) -> Layout:
    top = MARGIN + (TITLE if wishes.title else 0)
    beside, shape = legend.beside_height(), window.height / window.width
    inner = wishes.width - 2 * MARGIN
    width = inner - PANEL - GAP
    if width * shape >= FLAT * beside or inner < 2 * PANEL:
        tall = max(width * shape, beside)
        return Layout(wishes.width, top + tall + MARGIN, (MARGIN, top, width, width * shape),
                      (MARGIN + width + GAP, top, PANEL, tall), 0)
    columns = int(inner // PANEL) - 1
    below = legend.below_height(columns)
    return Layout(wishes.width, top + inner * shape + GAP + below + MARGIN, (MARGIN, top, inner, inner * shape),
                  (MARGIN, top + inner * shape + GAP, inner, below), columns)


# --- The picture -----------------------------------------------------------------------------------------------------


def is_projected(grid: Path) -> bool:
    """True unless the .prj says that coordinates are degrees."""
    path = beside(grid, ".prj")
    return not path.exists() or "GEOGCS" not in (text := path.read_text(encoding="latin-1")).upper() or "PROJCS" in text.upper()


def most_cells(wishes: Wishes) -> int:
    """Half as many again as the picture has dots across."""
    return max(16, round(wishes.width * CM * wishes.dpi * 1.5))


def draw(grid: Path, wishes: Wishes) -> Figure:
    kind = wishes.kind or styles.kind_of(grid.name) or ""
    window = wishes.window or window_of(read_header(grid))
    cells = read_thinned(grid, most_cells(wishes), kind in WITHOUT_UNIT, window)
    if numpy.isnan(cells.values).all():
        raise Failure(f"{grid} has no value in the window" if wishes.window else f"{grid} has no value")
    style = style_of(grid, cells.values, wishes)
    layers = [read_layer(wish, INKS[i % len(INKS)], window) for i, wish in enumerate(wishes.layers)]
    unit = "" if style.kind in WITHOUT_UNIT else wishes.unit
    heading = wishes.heading or HEADINGS[style.kind]
    legend = Legend(f"{heading} ({unit})" if unit else heading, style, keys_of(style, cells.values, unit),
                    [Key(layer.label, layer=layer) for layer in layers])
    layout = laid_out(legend, wishes, window)
    figure = pyplot.figure(figsize=(layout.width * CM, layout.height * CM), dpi=wishes.dpi)

    def axes(left: float, top: float, width: float, height: float) -> Axes:
        return figure.add_axes((left / layout.width, 1 - (top + height) / layout.height, width / layout.width,
                                height / layout.height))

    if wishes.title:
        figure.text(MARGIN / layout.width, 1 - (MARGIN + TITLE * 0.3) / layout.height, wishes.title, fontsize=FONT + 3,
                    fontweight="bold", va="center")
    draw_map(axes(*layout.map), cells, style, window, layers, wishes.ground, most_cells(wishes))
    panel = Panel(axes(*layout.panel), *layout.panel[2:])
    metres_per_cm = window.width / layout.map[2] if is_projected(grid) else None
    if layout.columns:
        legend.draw_below(panel, layout.columns, metres_per_cm)
    else:
        legend.draw_beside(panel, metres_per_cm)
    return figure


def draw_map(axes: Axes, cells: Thinned, style: Style, window: Window, layers: Sequence[Layer], ground: Path | None,
             most: int) -> None:
    axes.set(xticks=[], yticks=[])
    for side in axes.spines.values():
        side.set(linewidth=0.6, color="#404040")
    if ground:
        below = read_thinned(ground, most, wanted=window)
        axes.imshow(hillshade(below), cmap="gray", vmin=0, vmax=1, extent=below.extent)
    # Opaque, also over the ground: a depth is read by comparing its colour with the legend.
    axes.imshow(coloured(cells.values, style), extent=cells.extent, interpolation="nearest")
    for layer in layers:
        draw_layer(axes, layer)
    axes.set(xlim=(window.west, window.east), ylim=(window.south, window.north), aspect="auto")


# --- The command -----------------------------------------------------------------------------------------------------


def layer_wish(text: str) -> LayerWish:
    name, equals, label = text.partition("=")
    return LayerWish(Path(name), label if equals else Path(name).stem)


def positive(text: str) -> float:
    try:
        value = float(text)
    except ValueError:
        value = 0.0
    if not 0 < value < math.inf:
        raise argparse.ArgumentTypeError(f"a number above 0 is expected, not {text}")
    return value


def make_parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog=NAME, description=__doc__.split(": ", 1)[1])
    parser.add_argument("grid", type=Path, help="an .asc or a .flt")
    parser.add_argument("output", type=Path, help="the .png")
    parser.add_argument("--kind", choices=tuple(styles.styles()),
                        help="what the cells are; without it the name of the grid decides")
    parser.add_argument("--ground", type=Path, metavar="GRID", help="heights, drawn as a shaded ground below")
    parser.add_argument("--layer", type=layer_wish, action="append", default=[], dest="layers", metavar="FILE[=LABEL]",
                        help="a layer to draw on top; may be given again")
    parser.add_argument("--legend", type=Path, metavar="FILE",
                        help="a _src_legend.csv with the names of sources; that beside the grid is found without it")
    parser.add_argument("--title", default="", help="above the picture")
    parser.add_argument("--heading", default="", help="of the legend, in place of the name of the kind")
    parser.add_argument("--unit", default="m", help="of the cells; m without it")
    parser.add_argument("--window", type=float, nargs=4, metavar=("WEST", "SOUTH", "EAST", "NORTH"),
                        help="only this part of the map")
    parser.add_argument("--range", type=float, nargs=2, metavar=("LOW", "HIGH"),
                        help="where the colours of a level begin and end")
    parser.add_argument("--width", type=positive, default=16.0, metavar="CM", help="of the picture; 16 without it")
    parser.add_argument("--dpi", type=positive, default=200.0, help="dots an inch; 200 without it")
    add_overwrite(parser)
    return parser


def checked(given: argparse.Namespace) -> Wishes:
    if given.output.suffix.lower() != ".png":
        raise Failure(f"{given.output}: a picture ends in .png")
    window = Window(*given.window) if given.window else None
    if window and not (window.width > 0 and window.height > 0):
        raise Failure("--window: west, south, east, north are expected, each smaller than its opposite")
    if given.range and not given.range[0] < given.range[1]:
        raise Failure("--range: the low end must lie below the high end")
    if given.width < PANEL + 3 or given.width * CM * given.dpi > 20000:
        raise Failure("--width and --dpi: the picture is too narrow or too large")
    return Wishes(given.kind, given.ground, given.legend, tuple(given.layers), given.title, given.heading, given.unit, window,
                  tuple(given.range) if given.range else None, given.width, round(given.dpi))


def main(arguments: Sequence[str] | None = None) -> int:
    given = make_parser().parse_args(arguments)

    def command() -> None:
        require_numpy()
        if matplotlib is None:
            raise missing_package("matplotlib", "python3-matplotlib")
        wishes = checked(given)
        inputs = [given.grid, *[path for path in (given.ground, given.legend) if path], *[wish.path for wish in given.layers]]
        refuse_existing([given.output], inputs, given.overwrite)
        figure = draw(given.grid, wishes)
        with Scratch(given.output, given.overwrite) as scratch:
            made = scratch.path / given.output.name
            figure.savefig(made, metadata={"Software": None})
            pyplot.close(figure)
            scratch.publish([(made, given.output)])

    return run_command(NAME, command)


if __name__ == "__main__":
    sys.exit(main())
