"""What a step needs of memory, minutes and threads, by the number of cells of its grids."""
from __future__ import annotations

from collections.abc import Callable, Iterable
from pathlib import Path

import step  # noqa: F401 # finds the package
from gridforge.grid_files import read_header
from gridforge.messages import Failure

MEGABYTE = 1_000_000
PROGRAMS = 300  # MB: the tool and the Python that runs it, with some pieces of grids for each thread
MANY = 600  # MB: numpy with a block of all grids
CELLS_A_THREAD = 5_000_000  # fewer do not keep a thread busy
MOST_THREADS = 8
CELLS_A_MINUTE = 20_000_000  # read from a slow disk, written as well
LEAST_MINUTES = 10


def cells_of(name: str) -> int:
    """None of a grid that cannot be read: the step that needs it fails and says so."""
    try:
        header = read_header(Path(name))
    except (Failure, OSError):
        return 0
    return header.columns * header.rows


class Needs:
    def __init__(self, levels: Iterable[str], ground: str, method: str) -> None:
        self._coarse, self._fine = max(map(cells_of, levels)), cells_of(ground)
        # By TIN the fine cells go in pieces, by IDW whole grids are in memory.
        remap = 10 * self._coarse if method == "tin" else 15 * self._coarse + 13 * self._fine
        self._bytes = {"statistic": 0, "difference": 0, "remap": 2 * remap, "many": 0}

    def memory(self, what: str) -> Callable:
        """MB. A second try gets twice as much."""
        base = MANY if what == "many" else PROGRAMS
        return lambda wildcards, attempt: (base + self._bytes[what] // MEGABYTE) * attempt

    def minutes(self, wildcards, input, attempt) -> int:
        return (LEAST_MINUTES + len(input) * max(self._coarse, self._fine) // CELLS_A_MINUTE) * attempt

    def minutes_of_whole(self, wildcards, attempt) -> int:
        """Of a step that reads the fine terrain and writes one grid, in however many files."""
        return (LEAST_MINUTES + 2 * self._fine // CELLS_A_MINUTE) * attempt

    @staticmethod
    def few_minutes(wildcards, attempt) -> int:
        return LEAST_MINUTES * attempt

    @staticmethod
    def fixed(megabytes: int) -> Callable:
        """MB of a step that does not depend on the size of grids. A second try gets twice as much."""
        return lambda wildcards, attempt: megabytes * attempt

    def _threads(self, cells: int) -> int:
        return min(MOST_THREADS, 1 + cells // CELLS_A_THREAD)

    @property
    def threads(self) -> int:
        return self._threads(self._coarse)

    @property
    def fine_threads(self) -> int:
        return self._threads(self._fine)
