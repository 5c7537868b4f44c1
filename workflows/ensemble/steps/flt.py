"""Binary grids by blocks of cells, and their files as the tool writes them. Needs numpy."""
from __future__ import annotations

from collections.abc import Iterator, Sequence
from pathlib import Path

import numpy

import step  # noqa: F401 # finds the package
from gridforge.grid_files import Header, beside, is_binary, read_header
from gridforge.messages import Failure

CELL_BYTES = 4
BLOCK_CELLS = 16_000_000  # of all grids together
APART = 0.01  # what corners and cell sizes of grids of one step may differ by


def read_headers(paths: Sequence[Path]) -> list[Header]:
    """The headers of grids, which must lie on the same cells."""
    headers = []
    for path in paths:
        if not is_binary(path):
            raise Failure(f"{path} is no .flt")
        header = read_header(path)
        if path.stat().st_size < header.columns * header.rows * CELL_BYTES:
            raise Failure(f"{path} ends before its last cell")
        headers.append(header)
    first = headers[0]
    for path, header in zip(paths, headers):
        same = (header.columns, header.rows) == (first.columns, first.rows) and all(
            abs(a - b) <= APART for a, b in ((header.west, first.west), (header.south, first.south), (header.cell, first.cell)))
        if not same:
            raise Failure(f"{path} does not lie on the cells of {paths[0]}")
    return headers


def blocks(paths: Sequence[Path], cells: int) -> Iterator[numpy.ndarray]:
    """The cells of all grids, a row for each, piece by piece."""
    size = max(1, BLOCK_CELLS // len(paths))
    for first in range(0, cells, size):
        count = min(size, cells - first)
        block = numpy.empty((len(paths), count), "<f4")
        for row, path in zip(block, paths):
            row[:] = numpy.fromfile(path, "<f4", count, offset=first * CELL_BYTES)
        yield block


def _by_size(value: float) -> str:
    """With as many decimals as the size of the number leaves room for."""
    decimals = 10 - next((i for i in range(10) if abs(value) < 10**i), 10)
    text = f"{value:.{decimals}f}"
    return text.rstrip("0") if "." in text else text + "."


def header_text(header: Header) -> str:
    cell = float(numpy.float32(header.cell))
    return (f"ncols {header.columns}\r\nnrows {header.rows}\r\nxllcorner {_by_size(header.west)}\r\n"
            f"yllcorner {_by_size(header.south)}\r\ncellsize {_by_size(cell)}\r\n"
            f"NODATA_value {numpy.float32(header.null):.1f}\r\nbyteorder LSBFIRST\r\n")


def projection_text(path: Path) -> str | None:
    """The line that the tool takes from the .prj of a grid."""
    projection = beside(path, ".prj")
    if not projection.is_file():
        return None
    with open(projection, encoding="latin-1") as file:
        return next((line.strip() + "\r\n" for line in file if "PROJCS" in line.upper()), None)


def legend_text(names: Sequence[str]) -> str:
    """The names of sources by their numbers."""
    lines = ['"Value in Grid","Source Grid File"', *(f"{number},{name}" for number, name in enumerate(names, 1))]
    return "".join(line + "\r\n" for line in lines)
