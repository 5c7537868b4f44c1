#!/usr/bin/env python3
"""Makes the maximum over parts of a list of grids that over the whole list: its sources get the numbers of the list.

The highest value of each cell over the parts is that over all grids already, and its source is the part. The part's own source
grid has the number within the part.
"""
from __future__ import annotations

import argparse
import csv
import shutil
import sys
from pathlib import Path

import numpy

from flt import blocks, legend_text, read_headers
from gridforge.grid_files import Header
from gridforge.messages import Failure, Scratch
from step import add_record, run_step


def names_of(legend: Path) -> list[str]:
    with open(legend, newline="", encoding="utf-8", errors="surrogateescape") as file:
        return [",".join(row[1:]) for row in list(csv.reader(file, quoting=csv.QUOTE_NONE))[1:]]


def require_one_null(parts: list[Path], headers: list[Header]) -> None:
    """Which values enter a maximum depends on the null that it starts from."""
    for path, header in zip(parts, headers):
        if header.null != headers[0].null:
            raise Failure(f"{path} has another null than {parts[0]}")


def joined(cells: numpy.ndarray, offsets: list[int], null: numpy.float32) -> numpy.ndarray:
    """The first row has the numbers of the parts, the others those within each part."""
    numbers = numpy.full(cells.shape[1], null, "<f4")
    for part, offset in enumerate(offsets, 1):
        here = cells[0] == numpy.float32(part)
        numbers[here] = cells[part][here] + numpy.float32(offset)
    return numbers


def join_sources(arguments: argparse.Namespace) -> list[Path]:
    together, base = Path(arguments.together), Path(arguments.out)
    parts = [Path(name) for name in arguments.parts]
    sources = [path.with_name(path.stem + "_src.flt") for path in (together, *parts)]
    headers = read_headers(sources)
    require_one_null(parts, headers[1:])
    names, offsets = [], []
    for source in sources[1:]:
        offsets.append(len(names))
        names += names_of(source.with_name(source.stem + "_legend.csv"))
    with Scratch(base, overwrite=True) as scratch:
        values, numbers = scratch.path / base.name, scratch.path / (base.name + "_src")
        with open(f"{numbers}.flt", "wb") as file:
            for cells in blocks(sources, headers[0].columns * headers[0].rows):
                joined(cells, offsets, numpy.float32(headers[0].null)).tofile(file)
        shutil.copyfile(together, f"{values}.flt")
        for suffix in (".hdr", ".prj"):
            for place in (values, numbers):
                if together.with_suffix(suffix).exists():
                    shutil.copyfile(together.with_suffix(suffix), f"{place}{suffix}")
        Path(f"{numbers}_legend.csv").write_bytes(legend_text(names).encode("utf-8", "surrogateescape"))
        files = sorted(scratch.path.iterdir())
        family = [base.parent / (place.name + ".prj") for place in (values, numbers)]
        scratch.publish([(file, base.parent / file.name) for file in files], family)
        return [base.parent / file.name for file in files]


def main() -> int:
    parser = argparse.ArgumentParser(prog="join_sources", description=__doc__.splitlines()[0])
    parser.add_argument("together", help="the maximum over the parts, a .flt")
    parser.add_argument("parts", nargs="+", help="the maxima of the parts, .flt grids in the order of the list")
    parser.add_argument("--out", required=True, metavar="NAME", help="of the result, without .flt")
    add_record(parser)
    arguments = parser.parse_args()
    return run_step("join_sources", [arguments.together, *arguments.parts], arguments.json, lambda: join_sources(arguments))


if __name__ == "__main__":
    sys.exit(main())
