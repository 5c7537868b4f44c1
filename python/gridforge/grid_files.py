"""Grid files as the tool reads them: the header, and the cells by blocks of rows."""
from __future__ import annotations

from dataclasses import dataclass
from pathlib import Path

from .messages import Failure

DEFAULT_NULL = -9999.0
MOST_HEADER_LINES = 100
KEYWORDS = ("ncols", "nrows", "xllcorner", "yllcorner", "xllcenter", "yllcenter", "cellsize", "nodata_value")


@dataclass(frozen=True)
class Header:
    columns: int
    rows: int
    west: float  # of the lower left corner
    south: float
    cell: float
    null: float
    lines: int  # of the header
    by_centre: bool = False  # the file names the centre of the lower left cell, which the tool places a whole cell south-west

    @property
    def east(self) -> float:
        return self.west + self.columns * self.cell

    @property
    def north(self) -> float:
        return self.south + self.rows * self.cell


def is_binary(path: Path) -> bool:
    return path.suffix.lower() == ".flt"


def beside(path: Path, suffix: str) -> Path:
    """The file of this extension beside another one, in capitals or small letters."""
    wanted = path.with_suffix(suffix)
    if not wanted.exists() and path.parent.is_dir():
        for other in sorted(path.parent.iterdir()):
            if other.name.lower() == wanted.name.lower():
                return other
    return wanted


def _keywords(path: Path) -> tuple[dict[str, str], int]:
    values: dict[str, str] = {}
    with open(path, encoding="latin-1") as file:
        for count, line in enumerate(file):
            words = line.replace(",", " ").split()
            keyword = words[0].lower() if words else ""
            if keyword not in KEYWORDS or len(words) < 2 or count == MOST_HEADER_LINES:
                return values, count
            values[keyword] = words[1]
    return values, len(values)


def read_header(path: Path) -> Header:
    """The header of an .asc, or the .hdr beside a .flt."""
    if not path.exists():
        raise Failure(f"{path}: No such file or directory")
    source = beside(path, ".hdr") if is_binary(path) else path
    values, lines = _keywords(source)
    by_centre = "xllcenter" in values and "xllcorner" not in values
    corner = ("xllcenter", "yllcenter") if by_centre else ("xllcorner", "yllcorner")
    try:
        columns, rows = int(values["ncols"]), int(values["nrows"])
        west, south, cell = (float(values[keyword]) for keyword in (*corner, "cellsize"))
        null = float(values.get("nodata_value", DEFAULT_NULL))
    except (KeyError, ValueError):
        raise Failure(f"{source} does not begin with the header of a grid") from None
    if columns < 1 or rows < 1 or not cell > 0:
        raise Failure(f"{source}: a grid has cells of a size above 0 in one row and column at least")
    shift = cell if by_centre else 0.0
    return Header(columns, rows, west - shift, south - shift, cell, null, lines, by_centre)
