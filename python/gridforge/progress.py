"""How far a run has come, by what the tool writes about it."""
from __future__ import annotations

import json
import os
from dataclasses import dataclass
from pathlib import Path
from typing import Iterable, Optional

MOST = 0.99  # of the inputs, while the run goes on


@dataclass(frozen=True)
class Progress:
    """Bytes of files read and written, and objects of layers read and written, since the run began."""
    seconds: float
    read: int
    written: int
    objects: int
    total: int  # bytes of the inputs that are known; 0 if only a control file knows them

    @property
    def fraction(self) -> Optional[float]:
        """Of the inputs that were read; None if they are not known. It stays below 1: inputs may be read twice, and outputs are
        finished later."""
        return min(self.read / self.total, MOST) if self.total > 0 else None


@dataclass(frozen=True)
class Totals:
    total: int

    def after(self, line: bytes) -> Progress:
        done = json.loads(line)
        return Progress(done["seconds"], done["read"], done["written"], done["objects"], self.total)


def _size(path: Path) -> int:
    try:
        return os.stat(path).st_size
    except OSError:
        return 0


def progress_of(inputs: Iterable[Path]) -> Totals:
    """Of a run that reads these files."""
    return Totals(sum(_size(path) for path in inputs))
