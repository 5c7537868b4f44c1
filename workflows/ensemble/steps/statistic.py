#!/usr/bin/env python3
"""The median, the mean or a rank of each cell over more grids than the tool takes, and the grid that it came from.

Order and rules are those of the tool's -stat, to the last bit: of equal values the earlier grid stands first, nulls take part in
ranks by their number, sums are in single precision, in the order of the grids. The median of n values is that of rank n / 2 + 1.
"""
from __future__ import annotations

import argparse
import re
import sys
from dataclasses import dataclass
from pathlib import Path

import numpy

from flt import blocks, header_text, legend_text, projection_text, read_headers
from gridforge.messages import Failure, Scratch
from step import add_record, run_step

PICKED = numpy.float32(9.0e29)  # the mark of the plain sort: larger values, and what is not a number, upset its order
DRY_DEPTH = numpy.float32(0.01)
NOT_A_NUMBER = numpy.float32(numpy.nan)
RANK = re.compile(r"rank([1-9]\d*)")


@dataclass(frozen=True)
class Statistic:
    name: str  # in the names of the outputs
    rank: int  # 0 is the mean


def statistic_of(text: str, grids: int) -> Statistic:
    if text == "median":
        return Statistic("Median", grids // 2 + 1)
    if text == "mean":
        return Statistic("Mean", 0)
    found = RANK.fullmatch(text)
    if not found or int(found[1]) > grids:
        raise Failure(f"{text} of {grids} grids cannot be taken")
    return Statistic(f"Rank{found[1]}", int(found[1]))


def sorted_plainly(values: numpy.ndarray) -> list[tuple[numpy.float32, int]]:
    """The values of a cell and their sources as a sort by picking the smallest has them, whatever the values are."""
    left = list(values)
    order = []
    for _ in left:
        smallest = 0
        for j, value in enumerate(left):
            if value < left[smallest]:
                smallest = j
        order.append((left[smallest], smallest + 1))
        left[smallest] = PICKED
    return order


def odd_cells(cells: numpy.ndarray) -> numpy.ndarray:
    """The columns whose values only the plain sort orders as the tool does."""
    return numpy.flatnonzero(~(cells < PICKED).all(axis=0))


def take_rank(cells: numpy.ndarray, null: numpy.float32, rank: int) -> tuple[numpy.ndarray, numpy.ndarray]:
    limit = null + DRY_DEPTH
    place = numpy.argsort(cells, axis=0, kind="stable")[rank - 1]
    values = numpy.take_along_axis(cells, place[numpy.newaxis], axis=0)[0]
    sources = (place + 1).astype("f4")
    blank = ~(cells > limit).any(axis=0)
    for i in odd_cells(cells):
        blank[i] = blank[i] and (cells[:, i] <= limit).any()
        values[i], sources[i] = sorted_plainly(cells[:, i])[rank - 1]
    values[blank] = null
    sources[blank] = null
    return values, sources


def take_mean(cells: numpy.ndarray, null: numpy.float32) -> tuple[numpy.ndarray, numpy.ndarray]:
    """The mean, and the lowest value that reaches it: of that only the source is written."""
    mean = numpy.zeros(cells.shape[1], "f4")
    for grid in cells:
        mean += grid
    mean /= numpy.float32(len(cells))
    mean[numpy.isnan(mean)] = NOT_A_NUMBER
    lowest = numpy.full(cells.shape[1], PICKED)
    sources = numpy.zeros(cells.shape[1], "f4")
    for number, grid in enumerate(cells, 1):
        enters = (grid >= mean) & (grid < lowest)
        lowest[enters] = grid[enters]
        sources[enters] = number
    for i in odd_cells(cells):
        sources[i] = next((source for value, source in sorted_plainly(cells[:, i]) if value >= mean[i]), 0)
    dry = (cells <= null + DRY_DEPTH).any(axis=0)
    mean[dry] = null
    sources[dry | (sources == 0)] = null
    return mean, sources


def take_statistic(arguments: argparse.Namespace) -> list[Path]:
    grids = [Path(name) for name in arguments.grids]
    headers = read_headers(grids)
    null = numpy.float32(headers[0].null)
    for path, header in zip(grids, headers):
        if abs(numpy.float32(header.null) - null) > DRY_DEPTH:
            raise Failure(f"{path} has another null than {grids[0]}")
    statistic = statistic_of(arguments.statistic, len(grids))
    base = Path(arguments.out)
    with Scratch(base, overwrite=True) as scratch:
        made = [scratch.path / f"{base.name}_{statistic.name}_{what}.flt" for what in ("Val", "Src")]
        with open(made[0], "wb") as values_file, open(made[1], "wb") as sources_file, \
                numpy.errstate(over="ignore", invalid="ignore"):
            for cells in blocks(grids, headers[0].columns * headers[0].rows):
                values, sources = take_mean(cells, null) if statistic.rank == 0 else take_rank(cells, null, statistic.rank)
                values.astype("<f4").tofile(values_file)
                sources.astype("<f4").tofile(sources_file)
        projection = projection_text(grids[-1])
        for path in made:
            path.with_suffix(".hdr").write_bytes(header_text(headers[0]).encode())
            if projection is not None:
                path.with_suffix(".prj").write_bytes(projection.encode("latin-1"))
        legend = scratch.path / f"{base.name}_Src_legend.csv"
        legend.write_bytes(legend_text(arguments.names or arguments.grids).encode("utf-8", "surrogateescape"))
        family = [base.parent / path.with_suffix(".prj").name for path in made]
        files = sorted(scratch.path.iterdir())
        scratch.publish([(file, base.parent / file.name) for file in files], family)
        return [base.parent / file.name for file in files]


def main() -> int:
    parser = argparse.ArgumentParser(prog="statistic", description=__doc__.splitlines()[0])
    parser.add_argument("statistic", help="median, mean or a rank such as rank3")
    parser.add_argument("--out", required=True, metavar="NAME", help="what the names of the outputs begin with")
    parser.add_argument("--names", nargs="+", metavar="NAME", help="of the grids in the legend, in place of their own")
    parser.add_argument("--grids", nargs="+", required=True, metavar="GRID", help=".flt grids")
    add_record(parser)
    arguments = parser.parse_args()
    return run_step("statistic", arguments.grids, arguments.json, lambda: take_statistic(arguments))


if __name__ == "__main__":
    sys.exit(main())
