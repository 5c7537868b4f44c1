"""gridforge-aad: average annual damage from the table that `-damages` writes.

The average annual damage is the area under the curve of damage over probability. Between the probabilities of the table it is
taken by trapezoids. What lies outside the smallest and the largest probability is no part of the table: options say what is
assumed there, and each line of the output states it.
"""
from __future__ import annotations

import argparse
import csv
import math
import re
import sys
from collections.abc import Sequence
from dataclasses import dataclass
from pathlib import Path
from typing import TextIO

from .messages import Failure, add_overwrite, refuse_existing, run_command, write_text

NAME = "gridforge-aad"
PERCENT = 100.0
BEFORE_DAMAGES = ("Property Type", "Property ID", " Floor Level", " Multiplier")
AFTER_DAMAGES = "Average Annual Damage"
DAMAGES = re.compile(r"Damages\s*(\S+) AEP \(%\)")
LINE_LIMIT = 1000  # where the tool cuts the lines of its tables
HEADING = ("Property Type", "Property ID", "Floor Level", "Multiplier", "AAD", "AAD Between", "AAD Rarer", "AAD More Frequent",
           "Assumed")


@dataclass(frozen=True)
class Outside:
    """What is assumed outside the probabilities of the table."""
    rarer: str = "none"  # or "hold": the damage of the rarest flood down to probability 0
    frequent: str = "none"  # or "hold" up to 100 %, or "zero": falls evenly to no damage at `zero_at`
    zero_at: float = PERCENT  # per cent
    equal: str = "max"  # or "mean": which damage counts where floods have one probability

    def stated(self, least: float, most: float, any_equal: bool) -> str:
        rarer = {"none": "not counted", "hold": "as at %s %%" % number(least)}[self.rarer]
        frequent = {"none": "not counted", "hold": "as at %s %%" % number(most),
                    "zero": "falling to 0 at %s %%" % number(self.zero_at)}[self.frequent]
        text = "rarer than %s %%: %s; more frequent than %s %%: %s" % (number(least), rarer, number(most), frequent)
        return text + ("; equal probabilities: %s" % {"max": "highest", "mean": "mean"}[self.equal] if any_equal else "")


@dataclass(frozen=True)
class Average:
    """The average annual damage and the parts that it is the sum of."""
    between: float
    rarer: float
    frequent: float

    @property
    def total(self) -> float:
        return self.between + self.rarer + self.frequent


@dataclass(frozen=True)
class Building:
    about: tuple[str, str, str, str]  # type, identifier, floor level, multiplier, as the table has them
    damages: tuple[float, ...]


@dataclass(frozen=True)
class Table:
    probabilities: tuple[float, ...]  # per cent, in the order of the columns
    buildings: tuple[Building, ...]


def number(value: float) -> str:
    return f"{value:.10g}"


# --- The table -------------------------------------------------------------------------------------------------------


def read_number(text: str, what: str) -> float:
    try:
        value = float(text)
    except ValueError:
        value = math.nan
    if not math.isfinite(value):
        raise Failure(f"{what} is not a number: {text}")
    return value


def checked_probability(value: float, where: str) -> float:
    if value == 0:
        raise Failure(f"{where} is 0: the heading has three decimals, so give the probabilities with --aep")
    if not 0 < value <= PERCENT:
        raise Failure(f"{where} is not between 0 and 100 %: {number(value)}")
    return value


def heading_probabilities(heading: Sequence[str], path: Path) -> tuple[float, ...]:
    probabilities = []
    for column, title in enumerate(heading[len(BEFORE_DAMAGES):-1], len(BEFORE_DAMAGES) + 1):
        found = DAMAGES.fullmatch(title.strip())
        if not found:
            raise Failure(f"{path}: column {column} is not one of damages: {title}")
        where = f"{path}: the probability of column {column}"
        probabilities.append(checked_probability(read_number(found[1], where), where))
    return tuple(probabilities)


def read_building(fields: Sequence[str], floods: int, where: str) -> Building:
    first = len(BEFORE_DAMAGES)
    if len(fields) != first + floods + 1:
        raise Failure(f"{where}: {len(fields)} values where {first + floods + 1} are expected; "
                      f"the tool cuts lines at {LINE_LIMIT} characters")
    damages = tuple(read_number(text, f"{where}: the value of column {column}")
                    for column, text in enumerate(fields[first:first + floods], first + 1))
    return Building(tuple(fields[:first]), damages)


def read_table(path: Path, given: Sequence[float] | None = None) -> Table:
    """The table at `path`. Probabilities in per cent that are given stand for those of its heading, which has three decimals."""
    with open(path, encoding="utf-8-sig", errors="surrogateescape", newline="") as file:
        heading_line = file.readline().rstrip("\r\n")
        heading = heading_line.split(",")
        if tuple(heading[:len(BEFORE_DAMAGES)]) != BEFORE_DAMAGES:
            raise Failure(f"{path} is not a table of -damages: its heading does not begin with {','.join(BEFORE_DAMAGES)}")
        rows = [(line, fields) for line, fields in enumerate(csv.reader(file), 2) if fields]
    if given is not None:
        probabilities = tuple(checked_probability(value, f"--aep: the probability {position}")
                              for position, value in enumerate(given, 1))
    elif heading[-1] != AFTER_DAMAGES:
        raise Failure(f"{path}: the heading does not end with {AFTER_DAMAGES}; the tool cuts lines at {LINE_LIMIT} characters, "
                      f"so give the probabilities of all columns with --aep")
    else:
        probabilities = heading_probabilities(heading, path)
    if heading[-1] == AFTER_DAMAGES and len(heading) != len(BEFORE_DAMAGES) + len(probabilities) + 1:
        raise Failure(f"--aep: {len(probabilities)} probabilities for "
                      f"{len(heading) - len(BEFORE_DAMAGES) - 1} columns of damages in {path}")
    if not probabilities:
        raise Failure(f"{path} has no column of damages")
    if not rows:
        raise Failure(f"{path} has no building")
    return Table(probabilities,
                 tuple(read_building(fields, len(probabilities), f"{path}: line {line}") for line, fields in rows))


# --- The average -----------------------------------------------------------------------------------------------------


def curve(probabilities: Sequence[float], damages: Sequence[float], equal: str) -> list[tuple[float, float]]:
    """Probability and damage, from the rarest flood on, with one damage for each probability."""
    floods: dict[float, list[float]] = {}
    for probability, damage in zip(probabilities, damages):
        floods.setdefault(probability, []).append(damage)
    chosen = max if equal == "max" else lambda values: math.fsum(values) / len(values)
    return [(probability, chosen(floods[probability])) for probability in sorted(floods)]


def average(probabilities: Sequence[float], damages: Sequence[float], outside: Outside = Outside()) -> Average:
    """The average annual damage of floods with these probabilities (per cent, in any order) and damages."""
    points = curve(probabilities, damages, outside.equal)
    between = math.fsum((right - left) * (low + high) / 2 for (left, low), (right, high) in zip(points, points[1:]))
    (least, rarest), (most, commonest) = points[0], points[-1]
    rarer = least * rarest if outside.rarer == "hold" else 0.0
    frequent = {"none": 0.0, "hold": (PERCENT - most) * commonest, "zero": (outside.zero_at - most) * commonest / 2}
    return Average(between / PERCENT, rarer / PERCENT, frequent[outside.frequent] / PERCENT)


def averages(table: Table, outside: Outside) -> list[Average]:
    most = max(table.probabilities)
    if outside.frequent == "zero" and outside.zero_at < most:
        raise Failure(f"--frequent: no damage at {number(outside.zero_at)} %, but the table has a flood of {number(most)} %")
    if len(set(table.probabilities)) == 1 and outside.rarer == outside.frequent == "none":
        raise Failure("all floods have one probability, so nothing lies between: choose --rarer or --frequent")
    return [average(table.probabilities, building.damages, outside) for building in table.buildings]


# --- The output ------------------------------------------------------------------------------------------------------


def money(value: float) -> str:
    return f"{value:.2f}"


def write_averages(file: TextIO, table: Table, results: Sequence[Average], outside: Outside) -> None:
    floods = table.probabilities
    assumed = outside.stated(min(floods), max(floods), len(set(floods)) < len(floods))
    writer = csv.writer(file, lineterminator="\n")
    writer.writerow(HEADING)
    for building, result in zip(table.buildings, results):
        parts = (result.total, result.between, result.rarer, result.frequent)
        writer.writerow([*building.about, *map(money, parts), assumed])
    sums = [math.fsum(getattr(result, part) for result in results) for part in ("total", "between", "rarer", "frequent")]
    writer.writerow(["All", "", "", "", *map(money, sums), assumed])


# --- The command -----------------------------------------------------------------------------------------------------


def frequent_rule(text: str) -> tuple[str, float]:
    word, _, at = text.partition(":")
    if text in ("none", "hold"):
        return text, PERCENT
    try:
        zero_at = float(at)
    except ValueError:
        zero_at = math.nan
    if word != "zero" or not 0 < zero_at <= PERCENT:
        raise argparse.ArgumentTypeError(f"none, hold or zero:PERCENT is expected, not {text}")
    return word, zero_at


def number_list(text: str) -> list[float]:
    try:
        return [float(part) for part in text.split(",")]
    except ValueError:
        raise argparse.ArgumentTypeError(f"numbers with commas between are expected, not {text}") from None


def make_parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog=NAME, description="Average annual damage of each building and of all, from the table that -damages writes.")
    parser.add_argument("table", type=Path, help="the .csv of a run of -damages")
    parser.add_argument("--out", type=Path, metavar="FILE", help="the table to write; standard output without it")
    parser.add_argument("--rarer", choices=("none", "hold"), default="none",
                        help="what floods rarer than the rarest of the table add: none (the default), or hold its damage")
    parser.add_argument("--frequent", type=frequent_rule, default=("none", PERCENT), metavar="none|hold|zero:PERCENT",
                        help="what floods more frequent than those of the table add: none (the default), hold the damage of the "
                             "most frequent one up to 100 %%, or let it fall evenly to nothing at a probability")
    parser.add_argument("--equal", choices=("max", "mean"), default="max",
                        help="of floods of one probability the highest damage counts (the default), or the mean")
    parser.add_argument("--aep", type=number_list, metavar="PERCENT,...",
                        help="the probabilities of the columns, where the three decimals of the heading are too few")
    add_overwrite(parser)
    return parser


def main(arguments: Sequence[str] | None = None) -> int:
    given = make_parser().parse_args(arguments)

    def command() -> None:
        if given.out:
            refuse_existing([given.out], [given.table], given.overwrite)
        table = read_table(given.table, given.aep)
        outside = Outside(given.rarer, *given.frequent, given.equal)
        results = averages(table, outside)
        write_text(given.out, given.overwrite, lambda file: write_averages(file, table, results, outside))

    return run_command(NAME, command)


if __name__ == "__main__":
    sys.exit(main())
