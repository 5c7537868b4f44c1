#!/usr/bin/env python3
"""The terrain cut into tiles for -remap by TIN, and the remapped tiles put together, by GDAL.

Each tile has a header of its own. Its cells lie exactly where they lie in the whole only if no corner and no centre of a cell needs
rounding: that is checked first, and then the result equals that of one run over the whole, bit for bit.
"""
from __future__ import annotations

import argparse
import itertools
import math
import re
import shutil
import struct
import sys
from collections.abc import Callable
from fractions import Fraction
from pathlib import Path

from step import add_record, run_step  # finds the package

from gridforge.grid_files import beside, is_binary  # isort: skip
from gridforge.messages import Failure, Scratch  # isort: skip
from gridforge.prepare_layers import gdal, require_gdal  # isort: skip

KEYWORDS = ("ncols", "nrows", "xllcorner", "yllcorner", "cellsize", "nodata_value")
CELL_BYTES = 4
EXACT_WHOLE_NUMBERS = 2**53
PARTS = re.compile(r"(\d+)_(\d+)")  # row and column of a tile, from the south-west


def header_of(grid: Path) -> dict[str, str]:
    """The values of a header as they stand in it."""
    source = beside(grid, ".hdr") if is_binary(grid) else grid
    values = {}
    with open(source, encoding="latin-1") as file:
        for line in file:
            words = line.replace(",", " ").split()
            if not words or words[0].lower() not in KEYWORDS:
                break
            values[words[0].lower()] = words[1] if len(words) > 1 else ""
    for keyword in KEYWORDS[:5]:
        if keyword not in values:
            raise Failure(f"{source}: {keyword} is missing in the header")
    values.setdefault("nodata_value", "-9999")
    return values


def exact_number(values: dict[str, str], keyword: str, single: bool, grid: Path) -> Fraction:
    """The number in the header, if the tool holds exactly this one: cell sizes in single precision."""
    try:
        said = Fraction(values[keyword])
        held = float(values[keyword])
        held = struct.unpack("f", struct.pack("f", held))[0] if single else held
    except (ValueError, OverflowError):
        raise Failure(f"{grid}: {keyword} is no number: {values[keyword]}") from None
    if said != Fraction(held):
        raise Failure(f"{grid}: {keyword} {values[keyword]} is rounded by the tool, so tiles would not give what the whole gives; "
                      "take one tile")
    return said


class Lattice:
    """The cells of a terrain whose corners and centres are all exact."""

    def __init__(self, grid: Path) -> None:
        self.values = header_of(grid)
        self.columns, self.rows = int(self.values["ncols"]), int(self.values["nrows"])
        self.west = exact_number(self.values, "xllcorner", False, grid)
        self.south = exact_number(self.values, "yllcorner", False, grid)
        self.cell = exact_number(self.values, "cellsize", True, grid)
        ends = (self.west, self.south, self.west + self.columns * self.cell, self.south + self.rows * self.cell)
        unit = math.lcm(self.west.denominator, self.south.denominator, (self.cell / 2).denominator)
        if max(map(abs, ends)) * unit >= EXACT_WHOLE_NUMBERS:
            raise Failure(f"{grid}: corners of cells are rounded by the tool, so tiles would not give what the whole gives; "
                          "take one tile")

    def tile(self, number: int, count: int, cells: int) -> tuple[int, int]:
        """The first cell of a part of a row or a column, and how many it has."""
        first, end = cells * number // count, cells * (number + 1) // count
        return first, end - first

    def header_of_tile(self, row: int, column: int, count: int) -> dict[str, str]:
        """The header of one of `count` tiles to a side; rows are counted from the south."""
        first, columns = self.tile(column, count, self.columns)
        low, rows = self.tile(row, count, self.rows)
        return {**self.values, "ncols": str(columns), "nrows": str(rows), "xllcorner": repr(float(self.west + first * self.cell)),
                "yllcorner": repr(float(self.south + low * self.cell))}


def header_text(values: dict[str, str]) -> str:
    lines = [f"{name} {values[name.lower()]}\r\n" for name in ("ncols", "nrows", "xllcorner", "yllcorner", "cellsize", "NODATA_value")]
    return "".join(lines) + "byteorder LSBFIRST\r\n"


def publish(scratch: Scratch, cells: Path, values: dict[str, str], projection: Path, output: Path) -> list[Path]:
    header = scratch.path / "header"
    header.write_bytes(header_text(values).encode())
    moves = [(header, output.with_suffix(".hdr"))]
    if projection.is_file():
        shutil.copyfile(projection, scratch.path / "projection")
        moves.append((scratch.path / "projection", output.with_suffix(".prj")))
    scratch.publish([*moves, (cells, output)], [output.with_suffix(".prj")])
    return [target for _, target in moves] + [output]


def require_cells(grid: Path, values: dict[str, str]) -> None:
    if is_binary(grid) and grid.stat().st_size < int(values["ncols"]) * int(values["nrows"]) * CELL_BYTES:
        raise Failure(f"{grid} ends before its last cell")


def cut(arguments: argparse.Namespace) -> list[Path]:
    require_gdal()
    ground, output = Path(arguments.grids[0]), Path(arguments.out)
    lattice = Lattice(ground)
    require_cells(ground, lattice.values)
    row, column = map(int, PARTS.fullmatch(arguments.tile).groups())
    first, columns = lattice.tile(column, arguments.count, lattice.columns)
    low, rows = lattice.tile(row, arguments.count, lattice.rows)
    values = lattice.header_of_tile(row, column, arguments.count)
    with Scratch(output, overwrite=True) as scratch:
        cells = scratch.path / "cells.flt"
        gdal.Translate(str(cells), str(ground), format="EHdr", srcWin=[first, lattice.rows - low - rows, columns, rows])
        return publish(scratch, cells, values, beside(ground, ".prj"), output)


def require_tiles(grids: list[str], lattice: Lattice, count: int) -> None:
    """GDAL leaves cells empty that no tile covers, and takes one of two tiles that overlap."""
    places = list(itertools.product(range(count), repeat=2))
    if len(grids) != len(places):
        raise Failure(f"{count} x {count} tiles are {len(places)} grids, not {len(grids)}")
    for grid, (row, column) in zip(grids, places):
        found, wanted = header_of(Path(grid)), lattice.header_of_tile(row, column, count)
        off = [abs(float(found[name]) - float(wanted[name])) for name in ("xllcorner", "yllcorner")]
        if any(int(found[name]) != int(wanted[name]) for name in ("ncols", "nrows")) or max(off) >= lattice.cell / 2:
            raise Failure(f"{grid} is not tile {row}_{column} of {count} x {count} of the terrain; delete it and run again")
        require_cells(Path(grid), found)


def join(arguments: argparse.Namespace) -> list[Path]:
    """The tile in the south-west has the corner of the whole."""
    require_gdal()
    corner, output = Path(arguments.grids[0]), Path(arguments.out)
    lattice = Lattice(Path(arguments.ground))
    require_tiles(arguments.grids, lattice, arguments.count)
    with Scratch(output, overwrite=True) as scratch:
        cells = scratch.path / "cells.flt"
        together = gdal.BuildVRT("", arguments.grids, strict=True)  # no file: one would be written after the folder is gone
        gdal.Translate(str(cells), together, format="EHdr")
        if (together.RasterXSize, together.RasterYSize) != (lattice.columns, lattice.rows):
            raise Failure(f"{output}: the tiles together have {together.RasterXSize} x {together.RasterYSize} cells, the terrain has "
                          f"{lattice.columns} x {lattice.rows}")
        values = {**header_of(corner), "ncols": str(lattice.columns), "nrows": str(lattice.rows)}
        return publish(scratch, cells, values, beside(corner, ".prj"), output)


def by_gdal(work: Callable[[], list[Path]], output: str) -> list[Path]:
    """GDAL's own exceptions become messages too."""
    try:
        return work()
    except RuntimeError as error:
        raise Failure(f"{output}: GDAL: {error}") from None


def main() -> int:
    parser = argparse.ArgumentParser(prog="tiles", description=__doc__.splitlines()[0])
    parser.add_argument("what", choices=("cut", "join"))
    parser.add_argument("grids", nargs="+", help="the terrain; the tiles, that in the south-west first")
    parser.add_argument("--out", required=True, metavar="FLT")
    parser.add_argument("--tile", default="0_0", metavar="ROW_COLUMN", help="from 0_0 in the south-west")
    parser.add_argument("--count", type=int, default=1, help="of tiles to a side")
    parser.add_argument("--ground", metavar="GRID", help="of join: the terrain that was cut")
    add_record(parser)
    arguments = parser.parse_args()
    work = cut if arguments.what == "cut" else join
    return run_step("tiles", arguments.grids, arguments.json, lambda: by_gdal(lambda: work(arguments), arguments.out), sums=False)


if __name__ == "__main__":
    sys.exit(main())
