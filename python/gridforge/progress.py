"""How far a run has come, by what the tool writes about it."""
from __future__ import annotations

import json
import os
from dataclasses import dataclass
from pathlib import Path
from typing import Iterable, Optional


@dataclass(frozen=True)
class Progress:
    """Bytes of files read and written, and objects of layers read and written, since the run began."""
    seconds: float
    read: int
    written: int
    objects: int
    total: int  # bytes of the inputs of the command line; those that control files name come on top

    @property
    def fraction(self) -> Optional[float]:
        """Of the inputs that were read; inputs may be read twice. None where there are none."""
        return min(self.read / self.total, 1.0) if self.total > 0 else None


@dataclass(frozen=True)
class Totals:
    total: int

    def after(self, line: bytes) -> Progress:
        told = json.loads(line)
        return Progress(told["seconds"], told["read"], told["written"], told["objects"], self.total)


def _size(path: Path) -> int:
    try:
        return os.stat(path).st_size
    except OSError:
        return 0


def progress_of(inputs: Iterable[Path]) -> Totals:
    """Of a run that reads these files."""
    return Totals(sum(_size(path) for path in inputs))
