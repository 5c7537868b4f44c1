"""Grids thinned while they are read: some rows at a time, so that a grid of any size takes little memory. Needs numpy."""
from __future__ import annotations

from collections.abc import Iterator
from dataclasses import dataclass
from pathlib import Path
from typing import TYPE_CHECKING

from .grid_files import Header, is_binary, read_header
from .messages import Failure, missing_package

try:
    import numpy
except ImportError:
    numpy = None

if TYPE_CHECKING:
    from numpy import ndarray

CELL_BYTES = 4


def require_numpy() -> None:
    if numpy is None:
        raise missing_package("numpy", "python3-numpy")


@dataclass(frozen=True)
class Window:
    """A part of the map."""
    west: float
    south: float
    east: float
    north: float

    @property
    def width(self) -> float:
        return self.east - self.west

    @property
    def height(self) -> float:
        return self.north - self.south


@dataclass(frozen=True)
class Thinned:
    """Cells of a window, rows from north to south; NaN where a cell has no value."""
    values: ndarray
    window: Window
    cell: float
    factor: int  # cells of the file on a side of a cell here

    @property
    def extent(self) -> tuple[float, float, float, float]:
        return self.window.west, self.window.east, self.window.south, self.window.north


def window_of(header: Header) -> Window:
    return Window(header.west, header.south, header.east, header.north)


# --- Rows of the file ------------------------------------------------------------------------------------------------


def binary_rows(path: Path, header: Header, first: int, last: int) -> Iterator[ndarray]:
    with open(path, "rb") as file:
        file.seek(first * header.columns * CELL_BYTES)
        for row in range(first, last):
            cells = numpy.fromfile(file, "<f4", header.columns)
            if len(cells) < header.columns:
                raise Failure(f"{path} ends in row {row + 1} of {header.rows}")
            yield cells


def text_rows(path: Path, header: Header, first: int, last: int) -> Iterator[ndarray]:
    """A row begins on a line of its own and may go on over several lines."""
    with open(path, encoding="latin-1") as file:
        for _ in range(header.lines):
            next(file)
        for row in range(last):
            words: list[str] = []
            while len(words) < header.columns:
                line = file.readline()
                if not line:
                    raise Failure(f"{path} ends in row {row + 1} of {header.rows}")
                words += line.replace(",", " ").split()
            if row >= first:
                try:
                    yield numpy.array(words[:header.columns], dtype="f4")
                except ValueError:
                    raise Failure(f"{path}: row {row + 1} from the north holds what is not a number") from None


# --- Thinning --------------------------------------------------------------------------------------------------------


def thinned_rows(rows: ndarray, factor: int, classes: bool) -> ndarray:
    """One row of blocks out of `factor` rows or fewer: the mean of their cells, null where less than half of them have a value;
    of classes the cell in the middle."""
    if factor == 1:
        return rows[0]
    columns = rows.shape[1]
    if classes:
        return rows[len(rows) // 2, numpy.minimum(numpy.arange(factor // 2, columns + factor // 2, factor), columns - 1)]
    starts = numpy.arange(0, columns, factor)
    known = ~numpy.isnan(rows)
    counts = numpy.add.reduceat(known.sum(axis=0), starts)
    sums = numpy.add.reduceat(numpy.where(known, rows, 0).sum(axis=0, dtype="f8"), starts)
    sizes = len(rows) * numpy.diff(numpy.append(starts, columns))
    with numpy.errstate(invalid="ignore", divide="ignore"):
        return numpy.where(2 * counts >= sizes, sums / counts, numpy.nan).astype("f4")


def read_thinned(path: Path, most: int, classes: bool = False, wanted: Window | None = None) -> Thinned:
    """The grid, or the part of it that lies in a window, with at most `most` cells on a side."""
    require_numpy()
    header = read_header(path)
    columns, rows = part_of(header, wanted, path)
    factor = -(-max(columns[1] - columns[0], rows[1] - rows[0]) // most)
    read = binary_rows if is_binary(path) else text_rows
    lines, block = [], []
    null = numpy.float32(header.null)
    for number, cells in enumerate(read(path, header, *rows), rows[0] + 1):
        part = cells[columns[0]:columns[1]]
        block.append(numpy.where((part == null) | ~numpy.isfinite(part), numpy.float32(numpy.nan), part))
        if len(block) == factor or number == rows[1]:
            lines.append(thinned_rows(numpy.array(block), factor, classes))
            block = []
    values = numpy.array(lines)
    west = header.west + columns[0] * header.cell
    north = header.north - rows[0] * header.cell
    cell = header.cell * factor
    # Blocks at the east and the south may reach over the edge, as those of the picture do.
    place = Window(west, north - len(lines) * cell, west + values.shape[1] * cell, north)
    return Thinned(values, place, cell, factor)


def part_of(header: Header, wanted: Window | None, path: Path) -> tuple[tuple[int, int], tuple[int, int]]:
    """The first column and the one past the last, and the same of rows from the north, that touch the window."""
    if wanted is None:
        return (0, header.columns), (0, header.rows)
    west = max(0, int((wanted.west - header.west) // header.cell))
    east = min(header.columns, -int((header.west - wanted.east) // header.cell))
    north = max(0, int((header.north - wanted.north) // header.cell))
    south = min(header.rows, -int((wanted.south - header.north) // header.cell))
    if west >= east or north >= south:
        raise Failure(f"{path} has no cell in the window")
    return (west, east), (north, south)
