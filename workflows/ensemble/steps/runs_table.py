"""The table of runs: which grids there are of each scenario, probability, duration and temporal pattern."""
from __future__ import annotations

import csv
import re
from dataclasses import dataclass
from decimal import Decimal, InvalidOperation
from pathlib import Path

COLUMNS = ("scenario", "probability", "duration", "pattern", "depth", "level")
NAME = re.compile(r"[A-Za-z0-9+-]+")  # a part of file names: an underscore stands between two of them, a point before an extension
NOT_RUN = "none"  # in the column of the pattern: this duration was left out on purpose


class TableError(Exception):
    """A table that cannot be worked on; nothing has been run."""


@dataclass(frozen=True)
class Run:
    scenario: str
    probability: Decimal  # per cent
    duration: str
    pattern: str
    depth: str
    level: str
    line: int  # of the table

    @property
    def was_run(self) -> bool:
        return self.pattern != NOT_RUN

    @property
    def storm(self) -> str:
        return storm_name(self.probability)

    @property
    def key(self) -> tuple[str, Decimal, str, str]:
        return self.scenario, self.probability, self.duration, self.pattern


def storm_name(probability: Decimal) -> str:
    """1 is 1pct, 0.2 is 0p2pct: a point in a name would begin its extension."""
    return f"{probability:f}".replace(".", "p") + "pct"


def _probability(text: str, place: str) -> Decimal:
    try:
        number = Decimal(text)
    except InvalidOperation:
        number = Decimal(0)
    if not (number.is_finite() and 0 < number <= 100):
        raise TableError(f"{place}: the probability is a number of per cent above 0 and at most 100, not: {text}")
    whole = number == number.to_integral_value()
    return number.quantize(Decimal(1)) if whole else number.normalize()


def _run_of(row: dict[str, str], line: int, place: str) -> Run:
    values = {name: (row.get(name) or "").strip() for name in COLUMNS}
    for name in ("scenario", "duration", "pattern"):
        if not NAME.fullmatch(values[name]):
            raise TableError(f"{place}: the {name} is a name of letters, digits, + and -, not: {values[name]}")
    run = Run(values["scenario"], _probability(values["probability"], place), values["duration"], values["pattern"],
              values["depth"], values["level"], line)
    if run.was_run and not (run.depth and run.level):
        raise TableError(f"{place}: a run has a depth grid and a level grid")
    return run


def read_runs(path: Path) -> list[Run]:
    try:
        with open(path, newline="", encoding="utf-8-sig") as file:
            rows = csv.DictReader(file)
            missing = [name for name in COLUMNS if name not in (rows.fieldnames or ())]
            if missing:
                raise TableError(f"{path}: the first line has no column {missing[0]}")
            runs = [_run_of(row, rows.line_num, f"{path}, line {rows.line_num}") for row in rows]
    except UnicodeDecodeError:
        raise TableError(f"{path} is not in UTF-8; save it anew with that encoding") from None
    if not any(run.was_run for run in runs):
        raise TableError(f"{path} has no runs")
    _refuse_repeated(path, runs)
    _refuse_repeated_grids(path, runs)
    _refuse_missing(path, runs)
    return runs


def _refuse_repeated(path: Path, runs: list[Run]) -> None:
    seen: dict[tuple[str, Decimal, str, str], int] = {}
    for run in runs:
        if run.key in seen:
            raise TableError(f"{path}, line {run.line}: the same run as in line {seen[run.key]}")
        seen[run.key] = run.line
    for run in runs:
        if not run.was_run and any(other.was_run and other.key[:3] == run.key[:3] for other in runs):
            raise TableError(f"{path}, line {run.line}: there are runs of what this line leaves out")


def _refuse_repeated_grids(path: Path, runs: list[Run]) -> None:
    """A slip of copying: of two durations with one grid, one would vanish from the maximum."""
    seen: dict[str, int] = {}
    for run in runs:
        for name in (run.depth, run.level) if run.was_run else ():
            if name in seen:
                raise TableError(f"{path}, line {run.line}: the grid {name} is named in line {seen[name]} already")
            seen[name] = run.line


def _refuse_missing(path: Path, runs: list[Run]) -> None:
    """Of each scenario and probability all durations must be there, or a line must say that one was not run."""
    known = {run.key[:3] for run in runs}
    durations = in_order(run.duration for run in runs)
    for scenario in in_order(run.scenario for run in runs):
        for probability in in_order(run.probability for run in runs):
            for duration in durations:
                if (scenario, probability, duration) not in known:
                    raise TableError(
                        f"{path}: {scenario} has no run of {probability:f} % and {duration}; if that is meant, add the line "
                        f"{scenario},{probability:f},{duration},{NOT_RUN},,")


def in_order(names):
    """Each once, in the order of the table."""
    return list(dict.fromkeys(names))
