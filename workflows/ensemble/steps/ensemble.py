"""What is made of the runs of a table: the names of all grids, and which are made of which."""
from __future__ import annotations

import hashlib
import os
import re
from collections.abc import Iterable, Mapping
from dataclasses import dataclass
from decimal import Decimal
from pathlib import Path

import step  # noqa: F401 # finds the package
from gridforge.families import COMPANIONS
from gridforge.grid_files import beside
from gridforge.messages import counted
from runs_table import Run, TableError, in_order, read_runs

KINDS = ("depth", "level")
STATISTICS = {"median": ("-statMedian", "_Median"), "mean": ("-statMean", "_Mean")}
RANK = re.compile(r"rank([1-9]\d*)")
SETTINGS = ("runs", "ground", "statistic", "cutoff", "remap.method", "most_grids", "most_patterns")
FLT = (".flt", ".hdr")


def grid(base: str) -> list[str]:
    """The files that every binary grid has; a .prj may come with them."""
    return [base + extension for extension in FLT]


@dataclass(frozen=True)
class Statistic:
    """What is taken over the temporal patterns, with the flag of the tool and the part of names that it adds."""
    name: str
    flag: str
    suffix: str

    @property
    def is_maximum(self) -> bool:
        return self.name == "max"

    @property
    def rank(self) -> int:
        found = RANK.fullmatch(self.name)
        return int(found[1]) if found else 0


def statistic_of(name: str) -> Statistic:
    if name == "max":
        return Statistic(name, "-max", "")
    if name in STATISTICS:
        return Statistic(name, *STATISTICS[name])
    found = RANK.fullmatch(name)
    if not found:
        raise TableError(f"statistic is median, mean, max or a rank such as rank3, not: {name}")
    return Statistic(name, f"-statRank{found[1]}", f"_Rank{found[1]}")


def require_snakemake(version: str) -> None:
    """Later versions refuse the profile for Slurm, as they have no `cluster` any more."""
    if version.split(".")[0] != "7":
        raise TableError(f"the workflow is for Snakemake 7; this is {version}")


def require_settings(config: Mapping) -> None:
    """Those without which nothing can be laid out; `damages.control` and `remap.method` by the names of their parts."""
    for name in SETTINGS:
        found: object = config
        for part in name.split("."):
            found = found.get(part) if isinstance(found, Mapping) else None
        if found is None:
            raise TableError(f"config.yaml: {name} is missing")
    if config.get("damages") and not (isinstance(config["damages"], Mapping) and config["damages"].get("control")):
        raise TableError("config.yaml: damages.control is missing")


class Ensemble:
    """All grids by their names, from the folder of the study."""

    def __init__(self, config: Mapping) -> None:
        self.runs = [run for run in read_runs(Path(config["runs"])) if run.was_run]
        self.statistic = statistic_of(str(config["statistic"]))
        self.most_grids = int(config["most_grids"])
        self.most_patterns = int(config["most_patterns"])
        self.differences = [tuple(pair) for pair in config.get("differences") or ()]
        self.scenarios = in_order(run.scenario for run in self.runs)
        self._given = {name for run in self.runs for name in (run.depth, run.level)}
        self._patterns: dict[str, list[str]] = {}  # the grids of a set, by its name
        self._durations: dict[str, list[str]] = {}  # the grids over the durations, by the name of the peak
        self._lay_out()
        self._check()

    def _lay_out(self) -> None:
        for run in self.runs:
            for kind in KINDS:
                name = f"patterns/{run.scenario}/{run.storm}_{run.duration}_{kind}"
                self._patterns.setdefault(name, []).append(getattr(run, kind))
        for run in self.runs:
            for kind in KINDS:
                peak = self._durations.setdefault(f"peaks/{run.scenario}/{run.storm}_{kind}", [])
                one = self.over_patterns(f"patterns/{run.scenario}/{run.storm}_{run.duration}_{kind}")
                if one not in peak:
                    peak.append(one)

    def _check(self) -> None:
        for first, second in self.differences:
            for scenario in (first, second):
                if scenario not in self.scenarios:
                    raise TableError(f"differences: the table has no scenario {scenario}")
        for name, grids in self._patterns.items():
            if self.statistic.rank > len(grids):
                raise TableError(f"{self.statistic.name}: {name} has {len(grids)} patterns only")

    def state_of_given(self, names: Iterable[str]) -> str:
        """That of the grids of the table among these: for what the workflow makes its time is enough."""
        return state_of(name for name in names if name in self._given)

    def uneven(self) -> list[str]:
        """A line for each set with fewer patterns than the largest one: a run may have been lost."""
        most = max(map(len, self._patterns.values()))
        return [f"{name.removesuffix('_level')} has {counted(len(grids), 'pattern')}, others have up to {most}"
                for name, grids in self._patterns.items() if name.endswith("_level") and len(grids) < most]

    def first_levels(self) -> list[str]:
        """A level grid of each scenario; the scenarios may be of different sizes."""
        return [next(run.level for run in self.runs if run.scenario == scenario) for scenario in self.scenarios]

    # --- Over the patterns

    def over_patterns(self, name: str) -> str:
        """The grid of the statistic; of a single pattern that is its own grid."""
        grids = self._patterns[name]
        return grids[0] if len(grids) == 1 else f"{name}{self._value_suffix}.flt"

    @property
    def _value_suffix(self) -> str:
        return "" if self.statistic.is_maximum else f"{self.statistic.suffix}_Val"

    def patterns(self, name: str) -> list[str]:
        return self._patterns[name]

    def statistics(self, many: bool) -> list[str]:
        """The sets that the tool, or the script for many patterns, takes the statistic of."""
        if self.statistic.is_maximum:
            return []
        return [name for name, grids in self._patterns.items()
                if len(grids) > 1 and (len(grids) > self.most_patterns) == many]

    # --- Maxima

    @property
    def _all_maxima(self) -> dict[str, list[str]]:
        over_patterns = {name: grids for name, grids in self._patterns.items() if len(grids) > 1}
        return {**self._durations, **(over_patterns if self.statistic.is_maximum else {})}

    def maxima(self, in_parts: bool) -> list[str]:
        return [name for name, grids in self._all_maxima.items() if (len(grids) > self.most_grids) == in_parts]

    def maximum_of(self, name: str) -> list[str]:
        return self._all_maxima[name]

    def parts(self, name: str) -> list[list[str]]:
        """The grids of a maximum by groups of at most `most_grids`."""
        grids = self.maximum_of(name)
        return [grids[at:at + self.most_grids] for at in range(0, len(grids), self.most_grids)]

    # --- Results

    def storms(self, scenario: str) -> list[str]:
        return in_order(run.storm for run in self.runs if run.scenario == scenario)

    def probability(self, storm: str) -> str:
        return next(f"{run.probability:f}" for run in self.runs if run.storm == storm)

    def columns(self, scenario: str) -> list[str]:
        """The probabilities in the order of the columns of a table of damages, from the most frequent."""
        return sorted((self.probability(storm) for storm in self.storms(scenario)), key=Decimal, reverse=True)

    def results(self) -> list[tuple[str, str]]:
        return [(scenario, storm) for scenario in self.scenarios for storm in self.storms(scenario)]

    def compared(self) -> list[tuple[str, str, str]]:
        """Both scenarios and the storm of each difference: storms that only one of them has are left out."""
        return [(first, second, storm) for first, second in self.differences for storm in self.storms(first)
                if storm in self.storms(second)]


def any_of(names: Iterable[str]) -> str:
    """A pattern for exactly these names; of none a pattern that nothing matches."""
    return "|".join(re.escape(name) for name in names) or "(?!)"


def files_of_control(path: Path) -> list[str]:
    """The layers and curves that a control file of damages names."""
    names = []
    with open(path, encoding="latin-1") as file:
        for line in file:
            command, _, value = re.split("[#!]", line, maxsplit=1)[0].partition("==")
            if re.search(r"read\s+(gis|mi)\s+building|read\s+curve", command, re.IGNORECASE):
                names.append(value.strip())
    return names


def with_companions(names: Iterable[str]) -> list[str]:
    """Files and those beside them that belong to them, such as the header of a grid and the attributes of a layer."""
    found = []
    for path in map(Path, names):
        others = (beside(path, end) for end in COMPANIONS.get(path.suffix.lower(), ()))
        found += [str(path), *(str(other) for other in others if other.is_file())]
    return found


def state_of(names: Iterable[str]) -> str:
    """A sum over the sizes and times of files and those that belong to them.

    As a parameter of a step it shows any change of its inputs, also one by a file that is older than the results."""
    digest = hashlib.sha256()
    for name in with_companions(names):
        try:
            status = os.stat(name)
            digest.update(f"{name} {status.st_size} {status.st_mtime_ns}\n".encode("utf-8", "surrogateescape"))
        except OSError:
            digest.update(f"{name} is missing\n".encode("utf-8", "surrogateescape"))
    return digest.hexdigest()
