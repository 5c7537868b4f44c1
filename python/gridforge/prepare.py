"""gridforge-prepare: makes layers and grids of other programs fit for the tool."""
from __future__ import annotations

import argparse
import sys
from collections.abc import Callable, Sequence
from pathlib import Path

from . import prepare_grids, prepare_layers
from .layer_forms import LINE, OPERATIONS, POINT, REGION, Form, roles
from .messages import Failure, add_overwrite, refuse_existing, run_command
from .prepare_grids import RESAMPLINGS, GridWishes
from .prepare_layers import Wishes

NAME = "gridforge-prepare"


def pair(text: str) -> tuple[str, str]:
    name, equals, value = text.partition("=")
    if not equals or not name:
        raise argparse.ArgumentTypeError(f"COLUMN=... is expected, not {text}")
    return name, value


def positive(text: str) -> float:
    try:
        value = float(text)
    except ValueError:
        value = 0.0
    if not 0 < value < float("inf"):
        raise argparse.ArgumentTypeError(f"a number above 0 is expected, not {text}")
    return value


def count(text: str) -> int:
    if not text.isdigit() or int(text) < 1:
        raise argparse.ArgumentTypeError(f"a whole number above 0 is expected, not {text}")
    return int(text)


def add_form(parser: argparse.ArgumentParser) -> None:
    parser.add_argument("--for", dest="operation", choices=OPERATIONS, required=True, help="the operation that reads the layer")
    parser.add_argument("--role", help="which of its layers; without it the first. "
                        "nbc: sections, branches, losses; xs: sections, branches; rf: points, polygons, triangles")
    parser.add_argument("--kind", choices=(POINT, LINE, REGION), help="only objects of this kind")
    parser.add_argument("--crs", help="the projection, as EPSG:28356: that of a source without one, otherwise the one to go to")


def chosen_form(given: argparse.Namespace) -> Form:
    known = roles(given.operation)
    form = known.get(given.role) if given.role else next(iter(known.values()))
    if form is None:
        raise Failure(f"--role: the layers of -{given.operation} are {', '.join(known)}, not {given.role}")
    if given.kind and given.kind not in form.kinds:
        raise Failure(f"--kind: -{form.operation} wants {' or '.join(form.kinds)}, not {given.kind}")
    return form


def add_layer(parser: argparse.ArgumentParser) -> None:
    parser.add_argument("source", help="any layer that GDAL reads")
    parser.add_argument("output", type=Path, help="a .mif or a .shp")
    add_form(parser)
    parser.add_argument("--layer", help="of a source of several layers")
    parser.add_argument("--where", metavar="SQL", help="only features of which this is true")
    parser.add_argument("--column", type=pair, action="append", default=[], metavar="COLUMN=FIELD", dest="columns",
                        help="the field of the source for a column; without it the field of the same name")
    parser.add_argument("--value", type=pair, action="append", default=[], metavar="COLUMN=VALUE", dest="values",
                        help="a value for a column, where the source has none")
    parser.add_argument("--clip", type=Path, metavar="GRID",
                        help="cut to this grid, with the cells free that the operation needs")
    parser.add_argument("--holes", choices=("cut", "fill"), default="cut",
                        help="join holes to the outline by cuts of no width (the default), or leave them out")
    parser.add_argument("--parts", choices=("apart", "largest"), default="apart",
                        help="each part becomes an object (the default), or the largest alone")
    parser.add_argument("--thin", type=count, metavar="NUMBER", help="at most so many vertices in an object")
    parser.add_argument("--tolerance", type=positive, metavar="DISTANCE", help="leave out vertices that move the line by no more")
    add_overwrite(parser)
    parser.set_defaults(work=work_on_layer)


def work_on_layer(given: argparse.Namespace) -> list[str]:
    form = chosen_form(given)
    inputs = [Path(given.source), *([given.clip] if given.clip else [])]
    refuse_existing(prepare_layers.output_files(given.output), inputs, given.overwrite)
    wishes = Wishes(dict(given.columns), dict(given.values), given.layer, given.where, given.kind, given.crs, given.clip,
                    given.holes, given.parts, given.thin, given.tolerance, given.overwrite)
    return prepare_layers.prepare_layer(form, given.source, given.output, wishes)


def add_template(parser: argparse.ArgumentParser) -> None:
    parser.add_argument("output", type=Path, help="a .mif or a .shp")
    add_form(parser)
    parser.add_argument("--all-columns", action="store_true", help="with the columns that can be left out")
    add_overwrite(parser)
    parser.set_defaults(work=work_on_template)


def work_on_template(given: argparse.Namespace) -> list[str]:
    form = chosen_form(given)
    refuse_existing(prepare_layers.output_files(given.output), [], given.overwrite)
    prepare_layers.make_template(form, given.output, given.crs, given.kind, given.all_columns, given.overwrite)
    lines = [f"an empty layer of {form.role} for -{form.operation} written to {given.output}"]
    if given.output.suffix.lower() == ".shp":
        lines.append("draw into it before a run: the tool refuses a .shp without objects")
    return lines


def add_grid(parser: argparse.ArgumentParser) -> None:
    parser.add_argument("source", help="any grid that GDAL reads; for a .tif one of the tool")
    parser.add_argument("output", type=Path, help="a .flt for the tool, or a .tif for other programs")
    parser.add_argument("--band", type=count, default=1, metavar="NUMBER", help="1 without it")
    parser.add_argument("--crs", help="the projection, as EPSG:28356: that of a source without one, otherwise the one to go to; "
                                      "a .tif stays in its own")
    cells = parser.add_mutually_exclusive_group()
    cells.add_argument("--cell", type=positive, metavar="SIZE", help="onto cells of this size")
    cells.add_argument("--like", type=Path, metavar="GRID", help="onto the cells of this grid")
    parser.add_argument("--resampling", choices=RESAMPLINGS, default="near",
                        help="how cells get their value then; near without it")
    add_overwrite(parser)
    parser.set_defaults(work=work_on_grid)


def work_on_grid(given: argparse.Namespace) -> list[str]:
    convert = prepare_grids.converter(given.output)
    inputs = [Path(given.source), *([given.like] if given.like else [])]
    refuse_existing(prepare_grids.output_files(given.output), inputs, given.overwrite)
    wishes = GridWishes(given.band, given.crs, given.cell, given.like, given.resampling, given.overwrite)
    return convert(given.source, given.output, wishes)


def make_parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog=NAME, description=__doc__.split(": ", 1)[1])
    tasks = parser.add_subparsers(required=True, metavar="layer|template|grid")
    helps: dict[str, tuple[Callable[[argparse.ArgumentParser], None], str]] = {
        "layer": (add_layer, "a layer with the columns and objects that an operation wants"),
        "template": (add_template, "an empty layer with the columns that an operation wants"),
        "grid": (add_grid, "GeoTIFF and the like to .flt, or a grid of the tool to .tif")}
    for task, (add, text) in helps.items():
        add(tasks.add_parser(task, help=text, description=text))
    return parser


def main(arguments: Sequence[str] | None = None) -> int:
    given = make_parser().parse_args(arguments)

    def command() -> None:
        prepare_layers.require_gdal()
        try:
            lines = given.work(given)
        except RuntimeError as error:
            raise Failure(f"GDAL: {error}") from None
        print("\n".join(lines))

    return run_command(NAME, command)


if __name__ == "__main__":
    sys.exit(main())
