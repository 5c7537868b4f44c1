"""The progress of a run in one line of a terminal."""
from __future__ import annotations

from types import TracebackType
from typing import IO, Optional, Type

from .progress import Progress

_UNITS = ("bytes", "kB", "MB", "GB", "TB")
CLEAR = "\r\x1b[K"


def amount(size: int) -> str:
    number, unit = float(size), 0
    while number >= 999.5 and unit + 1 < len(_UNITS):
        number, unit = number / 1000, unit + 1
    return f"{number:.3g} {_UNITS[unit]}"


def clock(seconds: float) -> str:
    whole = int(seconds)
    hours, minutes = divmod(whole // 60, 60)
    return (f"{hours}:{minutes:02}:" if hours else f"{minutes}:") + f"{whole % 60:02}"


def line_of(progress: Progress) -> str:
    parts = [clock(progress.seconds)]
    if progress.fraction is not None:
        parts.append(f"{int(100 * progress.fraction)} % of the inputs")
    parts.append(f"read {amount(progress.read)}, wrote {amount(progress.written)}")
    if progress.objects > 0:
        parts.append(f"{progress.objects} objects")
    return "  ".join(parts)


class ProgressDisplay:
    """Leaves no line behind."""

    def __init__(self, terminal: IO[str]):
        self._terminal = terminal

    def show(self, progress: Progress) -> None:
        self._terminal.write(CLEAR + line_of(progress))
        self._terminal.flush()

    def __enter__(self) -> "ProgressDisplay":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], value: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self._terminal.write(CLEAR)
        self._terminal.flush()
