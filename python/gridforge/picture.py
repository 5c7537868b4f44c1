"""gridforge-picture: a grid as a picture for a report, with legend, scale bar and north arrow, over the ground, under layers."""
from __future__ import annotations

import argparse
import math
import re
import sys
import unicodedata
from collections.abc import Callable, Sequence
from dataclasses import dataclass, field
from pathlib import Path
from typing import TYPE_CHECKING

from . import styles
from .canvas import INCH, Canvas, Place
from .grid_blocks import Thinned, Window, numpy, read_thinned, require_numpy, window_of
from .grid_files import beside, read_header
from .messages import Failure, Scratch, add_overwrite, missing_package, refuse_existing, run_command
from .styles import Style
from .svg_canvas import SvgCanvas

try:
    from osgeo import gdal, ogr
    gdal.UseExceptions()
    ogr.UseExceptions()
except ImportError:
    ogr = None

if TYPE_CHECKING:
    from numpy import ndarray

NAME = "gridforge-picture"
MARGIN, GAP, PANEL = 0.3, 0.35, 4.6  # cm; the panel beside or below the map holds the legend
FLAT = 0.6  # a map of less than this part of the panel's height has the panel below it
TITLE, NEXT_TITLE = 0.75, 0.4  # cm: height of a title, and of each further line of it
LINE, PATCH = 0.46, 0.6  # cm: height of a line of the legend, width of its patch
BAR, SHORT_BAR = 4.0, 2.6  # cm: length of a colour bar beside the map and below it
FOOT = 2.3  # cm: north arrow and scale bar
FONT = 7.5  # points
WIDTHS = {letter: width for letters, width in (("ijlI.,' ", 0.32), ("frt|:;!()[]/-", 0.42), ("csz_", 0.56), ("w", 0.82),
                                               ("mMW@%&+=<>#~", 1.0)) for letter in letters}  # in parts of the size
ELLIPSIS = "\u2026"
HEADINGS = {"depth": "Depth", "level": "Level", "difference": "Difference", "source": "Source", "wet_dry": "Wet and dry",
            "impact": "Change"}
WITHOUT_UNIT = ("source", "wet_dry")
DARK, EDGE, FRAME, WHITE = "#202020", "#555555", "#404040", "#ffffff"
INKS = (DARK, "#c2185b", "#1b5e20", "#e65100", "#4a148c")
SUN_AZIMUTH, SUN_HEIGHT = math.radians(315), math.radians(45)
TYPICAL_SLOPE, MOST_EXAGGERATION = 0.35, 12.0  # the steep slopes of a flat ground are raised to this one
SHADE_LOW, SHADE_HIGH = 0.6, 1.0
DOT, DOT_OF_KEY = 3.3, 3.6  # points
BAR_SHARE = 0.85  # of the panel that the scale bar takes at most
LEAST_DPI, MOST_DOTS = 20, 20000  # letters of fewer dots cannot be drawn; of the longer side


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


def kind_of(grid: Path, wishes: Wishes) -> str:
    """The kind that the wishes or the name say, checked before a large grid is read."""
    kind = wishes.kind or styles.kind_of(grid.name)
    if kind is None:
        raise Failure(f"the name of {grid.name} does not show its kind: --kind is one of {', '.join(styles.styles())}")
    if wishes.span and kind != "level":
        raise Failure(f"--range is for levels, not for the kind {kind}")
    if wishes.legend and kind != "source":
        raise Failure(f"--legend is for sources, not for the kind {kind}")
    return kind


def style_of(kind: str, grid: Path, values: ndarray, wishes: Wishes) -> Style:
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


def grey(light: ndarray) -> ndarray:
    """Red, green, blue and opacity of each cell, 0 to 255, of a brightness from 0 to 1; nothing where that is missing."""
    known = ~numpy.isnan(light)
    image = numpy.zeros((*light.shape, 4), dtype="u1")
    image[..., :3] = numpy.where(known, light * 255, 0).round()[..., None]
    image[..., 3] = numpy.where(known, 255, 0)
    return image


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


def finite(geometry: ogr.Geometry) -> list[tuple[float, float]]:
    """The vertices, without those that are no numbers. GDAL gives an empty point a vertex."""
    vertices = [] if geometry.IsEmpty() else geometry.GetPoints()
    return [vertex[:2] for vertex in vertices if all(map(math.isfinite, vertex[:2]))]


def add_shape(layer: Layer, geometry: ogr.Geometry) -> None:
    name = geometry.GetGeometryName()
    if name == "POINT":
        layer.points += finite(geometry)
    elif name in ("LINESTRING", "LINEARRING"):
        if line := finite(geometry):
            layer.lines.append(line)
            layer.regions |= name == "LINEARRING"
    else:
        for i in range(geometry.GetGeometryCount()):
            add_shape(layer, geometry.GetGeometryRef(i))


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


def width_of(text: str, size: float, bold: bool = False) -> float:
    """About how wide letters of so many points are, in cm; rather too wide."""
    def width(letter: str) -> float:
        if unicodedata.east_asian_width(letter) in ("W", "F"):
            return 1.0
        return WIDTHS.get(letter, 0.78 if letter.isupper() else 0.64)

    return math.fsum(map(width, text)) * size * (1.12 if bold else 1.0) * INCH / 72


def wrapped(text: str, width: float, size: float = FONT, bold: bool = False, most: int = 3) -> str:
    """The text on lines of this width in cm, and as many as allowed; what does not fit loses its middle."""
    def fitting(part: str, room: float) -> int:
        return next((n for n in range(len(part)) if width_of(part[:n + 1], size, bold) > room), len(part))

    lines: list[str] = []
    for rest in text.split("\n"):
        while (fit := fitting(rest, width)) < len(rest) and len(lines) < most - 1:
            at = rest.rfind(" ", 0, fit + 1) + 1 or rest.rfind("_", 0, fit) + 1 or max(fit, 1)
            lines.append(rest[:at].rstrip())
            rest = rest[at:].lstrip()
        if fit < len(rest):
            half = (width - width_of(ELLIPSIS, size, bold)) / 2
            rest = rest[:fitting(rest, half)] + ELLIPSIS + rest[len(rest) - fitting(rest[::-1], half):]
        lines.append(rest)
    return "\n".join(lines[:most])


def wrapped_heading(text: str) -> str:
    return wrapped(text, PANEL, FONT + 1, bold=True)


def height_of_heading(text: str) -> float:
    return LINE * (1.25 + 0.75 * wrapped_heading(text).count("\n"))


def label_of(key: Key) -> str:
    return wrapped(key.label, PANEL - PATCH - 0.2)


def height_of(key: Key) -> float:
    return LINE * (1 + 0.7 * label_of(key).count("\n"))


class Panel:
    """Legend, north arrow and scale bar, from the top down, in one column or several."""

    def __init__(self, canvas: Canvas, place: Place) -> None:
        self.canvas = canvas
        self.place = place
        self.left, self.at = place.left, place.top

    def next_column(self, top: float) -> None:
        self.left += PANEL
        self.at = top

    def heading(self, text: str) -> None:
        height = height_of_heading(text)
        self.canvas.text(self.left, self.at + (height - LINE / 4) / 2, wrapped_heading(text), FONT + 1, bold=True)
        self.at += height

    def keys(self, keys: Sequence[Key], rows: int | None = None) -> None:
        """The keys, with so many in a column."""
        top = self.at
        for i, key in enumerate(keys):
            if rows and i and i % rows == 0:
                self.next_column(top)
            self._key(key)

    def _key(self, key: Key) -> None:
        height = height_of(key)
        left, middle = self.left, self.at + height / 2
        if key.layer is None:
            self.canvas.box(Place(left, middle - 0.16, PATCH, 0.32), key.colour, EDGE, 0.4)
        else:
            self._sample(key.layer, left, middle)
        self.canvas.text(left + PATCH + 0.2, middle, label_of(key), FONT)
        self.at += height

    def _sample(self, layer: Layer, left: float, middle: float) -> None:
        """An outline or a line, a dot, or both beside each other, as the layer has them."""
        if layer.lines:
            width = PATCH * (0.6 if layer.points else 1)
            if layer.regions:
                self.canvas.box(Place(left, middle - 0.13, width, 0.26), "", layer.ink, 0.9)
            else:
                self.canvas.lines([[(left, middle), (left + width, middle)]], layer.ink, 0.9)
        if layer.points:
            self.canvas.dots([(left + PATCH * (0.85 if layer.lines else 0.5), middle)], layer.ink, DOT_OF_KEY)

    def colour_bar(self, style: Style, length: float) -> None:
        values = numpy.array([c.value for c in style.classes])
        bar = Place(self.left, self.at + 0.15, PATCH, length)
        column = numpy.linspace(values[0], values[-1], 256)[::-1, None] if style.kind == "level" else stretched(values)
        self.canvas.image(coloured(column, style), bar, smooth=True)
        self.canvas.box(bar, "", EDGE, 0.5)
        for share, label in bar_labels(style):
            y = bar.bottom - share * length
            self.canvas.lines([[(bar.right, y), (bar.right + 0.1, y)]], EDGE, 0.5)
            self.canvas.text(bar.right + 0.2, y, label, FONT)
        self.at = bar.bottom + 0.3

    def foot(self, left: float, bottom: float, metres_per_cm: float | None) -> None:
        """North arrow and scale bar; no bar where coordinates are degrees."""
        self._north(left + 0.45, bottom - 1.55)
        if metres_per_cm is None:
            return
        length = round_length(metres_per_cm * PANEL * BAR_SHARE * 0.8)
        width = length / metres_per_cm
        for i in range(4):
            quarter = Place(left + 0.1 + i * width / 4, bottom - 0.69, width / 4, 0.14)
            self.canvas.box(quarter, DARK if i % 2 == 0 else WHITE, DARK, 0.5)
        unit, scale = ("km", 1000) if length >= 2000 else ("m", 1)
        for share in (0, 0.5, 1):
            self.canvas.text(left + 0.1 + share * width, bottom - 0.3, f"{share * length / scale:g}", FONT - 0.5, centred=True)
        self.canvas.text(left + 0.25 + width, bottom - 0.62, unit, FONT - 0.5)

    def _north(self, x: float, y: float) -> None:
        for side, colour in ((-0.2, WHITE), (0.2, DARK)):
            self.canvas.polygon([(x, y - 0.45), (x + side, y + 0.4), (x, y + 0.22)], colour, DARK, 0.6)
        self.canvas.text(x + 0.36, y - 0.05, "N", FONT + 1.5, bold=True)


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
        return height_of_heading(self.heading) + classes + layers + FOOT

    def rows_below(self, columns: int) -> int:
        """Keys in a column where the legend has so many of them, without the last, which is for layers where there are any."""
        return -(-len(self.keys) // max(1, columns - (1 if self.layers else 0)))

    def below_height(self, columns: int) -> float:
        rows = self.rows_below(columns)
        lists = [self.keys[first:first + rows] for first in range(0, len(self.keys), rows or 1)] + [self.layers]
        highest = max(math.fsum(map(height_of, keys)) for keys in lists)
        return max(height_of_heading(self.heading) + (highest if self.keys else max(highest, SHORT_BAR + 0.3)), FOOT)

    def draw_beside(self, panel: Panel, metres_per_cm: float | None) -> None:
        panel.heading(self.heading)
        if self.keys:
            panel.keys(self.keys)
        else:
            panel.colour_bar(self.style, BAR)
        panel.at += LINE / 2
        panel.keys(self.layers)
        panel.foot(panel.place.left, panel.place.bottom, metres_per_cm)

    def draw_below(self, panel: Panel, columns: int, metres_per_cm: float | None) -> None:
        panel.heading(self.heading)
        if self.keys:
            panel.keys(self.keys, self.rows_below(columns))
        else:
            panel.colour_bar(self.style, SHORT_BAR)
        if self.layers:
            panel.next_column(panel.place.top + height_of_heading(self.heading))
            panel.keys(self.layers)
        panel.foot(panel.place.right - PANEL, panel.place.top + FOOT, metres_per_cm)


@dataclass(frozen=True)
class Layout:
    """Places on the picture, which has this width and height in cm."""
    width: float
    height: float
    map: Place
    panel: Place
    columns: int  # of a panel below the map; 0 for one beside it


def wrapped_title(title: str, width: float) -> str:
    """The title on a picture of this width."""
    return wrapped(title, width - 2 * MARGIN, FONT + 3, bold=True)


def laid_out(legend: Legend, wishes: Wishes, window: Window) -> Layout:
    top = MARGIN + (TITLE + NEXT_TITLE * wrapped_title(wishes.title, wishes.width).count("\n") if wishes.title else 0)
    beside, shape = legend.beside_height(), window.height / window.width
    inner = wishes.width - 2 * MARGIN
    width = inner - PANEL - GAP
    if width * shape >= FLAT * beside or inner < 2 * PANEL:
        tall = max(width * shape, beside)
        return Layout(wishes.width, top + tall + MARGIN, Place(MARGIN, top, width, width * shape),
                      Place(MARGIN + width + GAP, top, PANEL, tall), 0)
    columns = int(inner // PANEL) - 1
    below = legend.below_height(columns)
    return Layout(wishes.width, top + inner * shape + GAP + below + MARGIN, Place(MARGIN, top, inner, inner * shape),
                  Place(MARGIN, top + inner * shape + GAP, inner, below), columns)


# --- The picture -----------------------------------------------------------------------------------------------------


def is_projected(grid: Path) -> bool:
    """True unless the .prj says that coordinates are degrees."""
    path = beside(grid, ".prj")
    return not path.exists() or "GEOGCS" not in (text := path.read_text(encoding="latin-1")).upper() or "PROJCS" in text.upper()


def most_cells(wishes: Wishes) -> int:
    """Half as many again as the picture has dots across."""
    return max(16, round(wishes.width / INCH * wishes.dpi * 1.5))


@dataclass(frozen=True)
class Raster:
    pixels: ndarray  # see Canvas.image
    window: Window
    smooth: bool = False


@dataclass(frozen=True)
class Picture:
    """All that is drawn, and where."""
    title: str
    window: Window
    rasters: Sequence[Raster]  # the lowest first
    layers: Sequence[Layer]
    legend: Legend
    layout: Layout
    metres_per_cm: float | None  # of the map; None where coordinates are degrees

    @property
    def name(self) -> str:
        return self.title or self.legend.heading


def composed(grid: Path, wishes: Wishes) -> Picture:
    header = read_header(grid)
    kind = kind_of(grid, wishes)
    window = wishes.window or window_of(header)
    cells = read_thinned(grid, most_cells(wishes), kind in WITHOUT_UNIT, window)
    if numpy.isnan(cells.values).all():
        raise Failure(f"{grid} has no value in the window" if wishes.window else f"{grid} has no value")
    style = style_of(kind, grid, cells.values, wishes)
    layers = [read_layer(wish, INKS[i % len(INKS)], window) for i, wish in enumerate(wishes.layers)]
    unit = "" if style.kind in WITHOUT_UNIT else wishes.unit
    heading = wishes.heading or HEADINGS[style.kind]
    legend = Legend(f"{heading} ({unit})" if unit else heading, style, keys_of(style, cells.values, unit),
                    [Key(layer.label, layer=layer) for layer in layers])
    layout = laid_out(legend, wishes, window)
    if layout.height / INCH * wishes.dpi > MOST_DOTS:
        raise Failure(f"the picture would be {layout.height:.0f} cm high, which is too large: "
                      "a smaller --width or --dpi, or a --window")
    rasters = []
    if wishes.ground:
        ground = read_thinned(wishes.ground, most_cells(wishes), wanted=window)
        rasters.append(Raster(grey(hillshade(ground)), ground.window, smooth=True))
    # Opaque, also over the ground: a depth is read by comparing its colour with the legend.
    rasters.append(Raster(coloured(cells.values, style), cells.window))
    return Picture(wishes.title, window, rasters, layers, legend, layout,
                   window.width / layout.map.width if is_projected(grid) else None)


def draw(picture: Picture, canvas: Canvas) -> None:
    layout, legend = picture.layout, picture.legend
    if picture.title:
        title = wrapped_title(picture.title, layout.width)
        canvas.text(MARGIN, MARGIN + TITLE * 0.3 + NEXT_TITLE * title.count("\n") / 2, title, FONT + 3, bold=True)
    draw_map(picture, canvas)
    panel = Panel(canvas, layout.panel)
    if layout.columns:
        legend.draw_below(panel, layout.columns, picture.metres_per_cm)
    else:
        legend.draw_beside(panel, picture.metres_per_cm)


def draw_map(picture: Picture, canvas: Canvas) -> None:
    window, place = picture.window, picture.layout.map

    def at(x: float, y: float) -> tuple[float, float]:
        return (place.left + (x - window.west) / window.width * place.width,
                place.top + (window.north - y) / window.height * place.height)

    with canvas.within(place):
        for raster in picture.rasters:
            left, top = at(raster.window.west, raster.window.north)
            right, bottom = at(raster.window.east, raster.window.south)
            canvas.image(raster.pixels, Place(left, top, right - left, bottom - top), raster.smooth)
        for layer in picture.layers:
            if layer.lines:
                lines = [[at(*vertex) for vertex in line] for line in layer.lines]
                canvas.lines(lines, WHITE, 1.7, opacity=0.6)
                canvas.lines(lines, layer.ink, 0.8)
        for layer in picture.layers:  # no line hides a point
            if layer.points:
                canvas.dots([at(*point) for point in layer.points], layer.ink, DOT)
    canvas.box(place, "", FRAME, 0.6)


# --- The command -----------------------------------------------------------------------------------------------------


def layer_wish(text: str) -> LayerWish:
    """Of names that hold = themselves the longest that is a file is taken."""
    parts = text.split("=")
    splits = [("=".join(parts[:n]), "=".join(parts[n:])) for n in range(len(parts), 0, -1)]
    name, label = next((split for split in splits if Path(split[0]).is_file()), (parts[0], "=".join(parts[1:])))
    if not name:
        raise argparse.ArgumentTypeError(f"a file is expected, not {text!r}")
    return LayerWish(Path(name), label if len(name) < len(text) else Path(name).stem)


def number(text: str) -> float:
    try:
        value = float(text)
    except ValueError:
        value = math.nan
    if not math.isfinite(value):
        raise argparse.ArgumentTypeError(f"a number is expected, not {text}")
    return value


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
    parser.add_argument("output", type=Path, help="the .png or .svg")
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
    parser.add_argument("--window", type=number, nargs=4, metavar=("WEST", "SOUTH", "EAST", "NORTH"),
                        help="only this part of the map")
    parser.add_argument("--range", type=number, nargs=2, metavar=("LOW", "HIGH"),
                        help="where the colours of a level begin and end")
    parser.add_argument("--width", type=positive, default=16.0, metavar="CM", help="of the picture; 16 without it")
    parser.add_argument("--dpi", type=positive, default=200.0,
                        help="dots an inch; 200 without it; in an .svg they only limit how fine the map is")
    add_overwrite(parser)
    return parser


def checked(given: argparse.Namespace) -> Wishes:
    if given.output.suffix.lower() not in (".png", ".svg"):
        raise Failure(f"{given.output}: a picture ends in .png or .svg")
    window = Window(*given.window) if given.window else None
    if window and not (window.width > 0 and window.height > 0):
        raise Failure("--window: west, south, east, north are expected, each smaller than its opposite")
    if given.range and not given.range[0] < given.range[1]:
        raise Failure("--range: the low end must lie below the high end")
    if given.dpi < LEAST_DPI:
        raise Failure(f"--dpi: letters need {LEAST_DPI} dots an inch")
    if given.width < PANEL + 3 or given.width / INCH * given.dpi > MOST_DOTS:
        raise Failure("--width and --dpi: the picture is too narrow or too large")
    return Wishes(given.kind, given.ground, given.legend, tuple(given.layers), given.title, given.heading, given.unit, window,
                  tuple(given.range) if given.range else None, given.width, round(given.dpi))


def canvas_of(output: Path, dpi: float) -> Callable[[Picture], Canvas]:
    """Makes the canvas. Only that of a .png needs matplotlib, and loads it."""
    if output.suffix.lower() == ".svg":
        return lambda picture: SvgCanvas(picture.layout.width, picture.layout.height, picture.name)
    try:
        from .matplotlib_canvas import MatplotlibCanvas
    except ImportError:
        raise missing_package("matplotlib", "python3-matplotlib") from None
    return lambda picture: MatplotlibCanvas(picture.layout.width, picture.layout.height, dpi)


def main(arguments: Sequence[str] | None = None) -> int:
    given = make_parser().parse_args(arguments)

    def command() -> None:
        require_numpy()
        wishes = checked(given)
        make_canvas = canvas_of(given.output, wishes.dpi)
        inputs = [given.grid, *[path for path in (given.ground, given.legend) if path], *[wish.path for wish in given.layers]]
        refuse_existing([given.output], inputs, given.overwrite)
        picture = composed(given.grid, wishes)
        canvas = make_canvas(picture)
        draw(picture, canvas)
        with Scratch(given.output, given.overwrite) as scratch:
            made = scratch.path / given.output.name
            canvas.save(made)
            scratch.publish([(made, given.output)])

    return run_command(NAME, command)


if __name__ == "__main__":
    sys.exit(main())
