"""Styles of the tool's grids, made from the class table `classes.csv`: `.qml` of QGIS and colour tables of GDAL.

usage: python3 -m gridforge.styles FOLDER                  writes the styles of all kinds
       python3 -m gridforge.styles FOLDER --legend FILE    and `FILE`.qml, a style of sources by their names
       ... --overwrite                                     over files that are there already

`bands` are classes up to and with a value, `values` stand for themselves, colours of a `ramp` lie at values and those of a
`range` at parts of the way from the lowest cell to the highest; between them they blend.
"""
from __future__ import annotations

import argparse
import csv
import functools
import math
import re
import struct
import sys
from collections.abc import Mapping, Sequence
from dataclasses import dataclass, replace
from pathlib import Path
from xml.sax.saxutils import quoteattr

from .messages import Failure, Scratch, add_overwrite, refuse_existing, run_command

NAME = "gridforge-styles"
ABOVE = "above"  # the band without an end
JUST_PAST = 1e-9  # part of a value by which the next band of a colour table begins after it
LEGEND_HEADING = ["Value in Grid", "Source Grid File"]
SINGLE_DIGITS = 24  # binary ones of a single-precision number
QGIS = "3.22.0"


@dataclass(frozen=True)
class Class:
    value: float
    colour: str  # #rrggbb
    label: str

    @property
    def rgb(self) -> tuple[int, int, int]:
        return int(self.colour[1:3], 16), int(self.colour[3:5], 16), int(self.colour[5:7], 16)


@dataclass(frozen=True)
class Style:
    kind: str
    form: str  # bands, values, ramp or range
    classes: tuple[Class, ...]

    def between(self, low: float, high: float) -> Style:
        """A range with its colours at the values of a grid that goes from `low` to `high`."""
        at = tuple(replace(c, value=low + c.value * (high - low), label=f"{low + c.value * (high - low):.6g}")
                   for c in self.classes)
        return Style(self.kind, "ramp", at)

    def named(self, names: Mapping[int, str]) -> Style:
        """Values with the given names. Where there are more of them than colours, the colours begin again."""
        count = len(self.classes)
        named = (Class(value, self.classes[(value - 1) % count].colour, names[value]) for value in sorted(names))
        return Style(self.kind, "values", tuple(named))


def past_cell(value: float) -> float:
    """Half way from the cell that holds this value to the next single-precision number: that cell belongs to the band that ends
    here, whatever a program does about equal numbers."""
    cell = struct.unpack("f", struct.pack("f", value))[0]
    ulp = 2.0 ** (math.frexp(cell)[1] - SINGLE_DIGITS)
    return cell + ulp / 4  # below a power of two the next number is half as far


@functools.cache
def styles() -> dict[str, Style]:
    """The styles by their kind: depth, level, difference, source, wet_dry, impact."""
    forms: dict[str, str] = {}
    classes: dict[str, list[Class]] = {}
    with open(Path(__file__).with_name("classes.csv"), encoding="utf-8", newline="") as file:
        for row in csv.DictReader(file):
            value = math.inf if row["value"] == ABOVE else float(row["value"])
            forms[row["kind"]] = row["form"]
            if row["form"] == "bands":
                value = past_cell(value)
            classes.setdefault(row["kind"], []).append(Class(value, row["colour"], row["label"]))
    return {kind: Style(kind, form, tuple(classes[kind])) for kind, form in forms.items()}


# Ends of the names that the tool gives to its outputs.
NAMED = ((r"_src|_(Min|Max|Mean|Median|Rank\d+)_Src", "source"), (r"_wd|_extent", "wet_dry"), (r".* - .*", "difference"),
         (r"_remap_d|_d|_d_.*|depth.*", "depth"), (r"_remap_h|_h|_h_.*|level.*", "level"))


def kind_of(name: str) -> str | None:
    """The kind of a grid by its name, where that shows it: `a_src.asc` holds sources."""
    stem = Path(name).stem
    return next((kind for pattern, kind in NAMED if re.fullmatch(f"(.*?)({pattern})", stem, re.IGNORECASE)), None)


def legend_of(grid: Path) -> Path | None:
    """The legend that the tool wrote beside a grid of sources, if it is there."""
    stem = re.sub(r"_(Min|Max|Mean|Median|Rank\d+)_Src$", "_Src", grid.stem)
    path = grid.with_name(f"{stem}_legend.csv")
    return path if path.is_file() else None


def read_legend(path: Path) -> dict[int, str]:
    """The names of sources by their number, from a `_src_legend.csv` of the tool: names of files without folder and extension."""
    with open(path, encoding="utf-8-sig", errors="replace", newline="") as file:
        rows = [row for row in csv.reader(file, skipinitialspace=True) if row]
    if not rows or [text.strip() for text in rows[0]] != LEGEND_HEADING:
        raise Failure(f"{path} is not a legend: its first line is not {','.join(LEGEND_HEADING)}")
    names = {}
    for line, row in enumerate(rows[1:], 2):
        if len(row) != 2 or not row[0].strip().isdigit() or int(row[0]) < 1:
            raise Failure(f"{path}: line {line} is not a number and a name")
        names[int(row[0])] = re.sub(r"\.(asc|flt)$", "", re.split(r"[\\/]", row[1].strip())[-1], flags=re.IGNORECASE)
    return names


# --- QGIS ------------------------------------------------------------------------------------------------------------


def text(value: float) -> str:
    return repr(value).removesuffix(".0")


def palette(style: Style) -> str:
    entries = "".join(f'        <paletteEntry value="{text(c.value)}" color="{c.colour}" alpha="255"'
                      f' label={quoteattr(c.label)}/>\n' for c in style.classes)
    return (f'    <rasterrenderer type="paletted" band="1" opacity="1" alphaBand="-1" nodataColor="">\n'
            f'      <rasterTransparency/>\n      <colorPalette>\n{entries}      </colorPalette>\n    </rasterrenderer>\n')


def ramp_stops(classes: Sequence[Class]) -> tuple[str, str, str]:
    """First and last colour, and the stops between, as QGIS writes them."""
    colours = ["%d,%d,%d,255" % c.rgb for c in classes]
    low, high = classes[0].value, classes[-1].value
    stops = ":".join(f"{(c.value - low) / (high - low):.6g};{colour}" for c, colour in zip(classes[1:-1], colours[1:-1]))
    return colours[0], colours[-1], stops


def shader(style: Style) -> str:
    """Bands or a ramp. A range follows the cells on the screen."""
    bands, follows = style.form == "bands", style.form == "range"
    ends = [c.value for c in style.classes if math.isfinite(c.value)]
    limits = "MinMax" if follows else "None"
    extent = "UpdatedCanvas" if follows else "WholeRaster"
    items = "".join(f'          <item value="{text(c.value)}" color="{c.colour}" alpha="255" label={quoteattr(c.label)}/>\n'
                    for c in style.classes)
    ramp = ""
    if not bands:
        first, last, stops = ramp_stops(style.classes)
        options = (("color1", first), ("color2", last), ("discrete", "0"), ("rampType", "gradient"), ("stops", stops))
        ramp = '          <colorramp type="gradient" name="[source]">\n            <Option type="Map">\n' + "".join(
            f'              <Option type="QString" name="{name}" value="{value}"/>\n' for name, value in options
        ) + "            </Option>\n          </colorramp>\n"
    return (f'    <rasterrenderer type="singlebandpseudocolor" band="1" opacity="1" alphaBand="-1" nodataColor=""'
            f' classificationMin="{text(min(ends))}" classificationMax="{text(max(ends))}">\n      <rasterTransparency/>\n'
            f'      <minMaxOrigin>\n        <limits>{limits}</limits>\n        <extent>{extent}</extent>\n'
            f'        <statAccuracy>Estimated</statAccuracy>\n        <cumulativeCutLower>0.02</cumulativeCutLower>\n'
            f'        <cumulativeCutUpper>0.98</cumulativeCutUpper>\n        <stdDevFactor>2</stdDevFactor>\n'
            f'      </minMaxOrigin>\n'
            f'      <rastershader>\n        <colorrampshader colorRampType="{"DISCRETE" if bands else "INTERPOLATED"}"'
            f' classificationMode="1" clip="0" minimumValue="{text(min(ends))}" maximumValue="{text(max(ends))}"'
            f' labelPrecision="4">\n{ramp}{items}        </colorrampshader>\n      </rastershader>\n    </rasterrenderer>\n')


def qml(style: Style) -> str:
    renderer = palette(style) if style.form == "values" else shader(style)
    return (f"<!DOCTYPE qgis PUBLIC 'http://mrcc.com/qgis.dtd' 'SYSTEM'>\n"
            f'<qgis version="{QGIS}" styleCategories="Symbology">\n  <pipe>\n    <provider>\n'
            f'      <resampling enabled="false" maxOversampling="2" zoomedInResamplingMethod="nearestNeighbour"'
            f' zoomedOutResamplingMethod="nearestNeighbour"/>\n    </provider>\n{renderer}'
            f'    <brightnesscontrast brightness="0" contrast="0" gamma="1"/>\n'
            f'    <huesaturation colorizeOn="0" grayscaleMode="0" saturation="0" invertColors="0"/>\n'
            f'    <rasterresampler maxOversampling="2"/>\n    <resamplingStage>resamplingFilter</resamplingStage>\n'
            f'  </pipe>\n  <blendMode>0</blendMode>\n</qgis>\n')


# --- GDAL ------------------------------------------------------------------------------------------------------------


def colour_table(style: Style) -> str:
    """As `gdaldem color-relief -alpha` reads it. Nulls and, of values, the cells between them are transparent."""
    lines = [f"# {style.kind}", "nv 0 0 0 0"]

    def line(value: str, c: Class, alpha: int = 255) -> None:
        lines.append("%s %d %d %d %d" % (value, *c.rgb, alpha))

    if style.form == "bands":
        begins = -1e30
        for c in style.classes:
            ends = 1e30 if math.isinf(c.value) else c.value
            line(text(begins), c)
            line(text(ends), c)
            begins = ends + abs(ends) * JUST_PAST
    elif style.form == "values":
        for c in style.classes:
            line(f"{c.value - 0.5:.15g}", c, 0)
            line(f"{c.value - 0.499:.15g}", c)
            line(f"{c.value + 0.499:.15g}", c)
            line(f"{c.value + 0.5:.15g}", c, 0)
    else:
        for c in style.classes:
            line(f"{100 * c.value:.6g}%" if style.form == "range" else text(c.value), c)
    return "\n".join(lines) + "\n"


# --- The command -----------------------------------------------------------------------------------------------------


def write_styles(folder: Path, named: Mapping[str, Style], overwrite: bool) -> None:
    """Both files of each style, under its name: all of them or none."""
    folder.mkdir(parents=True, exist_ok=True)
    texts = {folder / f"{name}.{ending}": write(style)
             for name, style in named.items() for ending, write in (("qml", qml), ("txt", colour_table))}
    refuse_existing(list(texts), [], overwrite)
    with Scratch(next(iter(texts)), overwrite) as scratch:
        for output, content in texts.items():
            (scratch.path / output.name).write_text(content, encoding="utf-8")
        scratch.publish([(scratch.path / output.name, output) for output in texts])


def main(arguments: Sequence[str] | None = None) -> int:
    parser = argparse.ArgumentParser(prog=NAME, description="Writes styles for QGIS (.qml) and colour tables for GDAL (.txt).")
    parser.add_argument("folder", type=Path)
    parser.add_argument("--legend", type=Path, metavar="FILE",
                        help="a _src_legend.csv: also a style with the names of its sources")
    add_overwrite(parser)
    given = parser.parse_args(arguments)

    def command() -> None:
        wanted = dict(styles())
        if given.legend:
            wanted[given.legend.stem] = styles()["source"].named(read_legend(given.legend))
        write_styles(given.folder, wanted, given.overwrite)

    return run_command(NAME, command)


if __name__ == "__main__":
    sys.exit(main())
