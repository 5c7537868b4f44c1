"""The console of a run: the files it opened, its warnings, and how it ended."""
from __future__ import annotations

import os
import re
from dataclasses import dataclass, field
from typing import Optional

FINISHED = "Finished."
# The search that this announces has no end, so the run is ended there.
ENDLESS = "WARNING - Fewer wet cells within reach than IDW points, the search does not end."

_WARNING = re.compile(r"\s*(WARNING|ERROR)\b", re.IGNORECASE)
_MESSAGE = re.compile(r"\s*(ERROR|CHECK \d|UNSTABLE|Can't open: )")
# What the tool says when it waits for somebody, after a message.
_PROMPT = re.compile(r"Press Enter to (Close|Continue)|Enter command<CR> or <CR> to continue\.|"
                     r"Check file exists and press enter or enter another file name: *|.* is already open, close it\? *")
_OUTPUT = (re.compile(r"Trying to open file (.*)\.\.\.OK\.  File Unit: *\d+$"),
           re.compile(r"^Opening output (?:netcdf|\.nc) file: (.*)$"))
_INPUT = re.compile(r"Trying to open file (.*)\.\.\.OK\.$")
LONGEST_MESSAGE = 8  # lines, without prompts and blank ones


@dataclass
class Console:
    """Takes a console line by line."""
    build: str = ""  # the first line
    lines: int = 0
    endless: bool = False
    _inputs: dict[str, None] = field(default_factory=dict)
    _outputs: dict[str, None] = field(default_factory=dict)
    _warnings: list[str] = field(default_factory=list)
    _tail: list[str] = field(default_factory=list)

    def take(self, raw: bytes) -> str:
        """Takes a line without its end and returns it as text. Bytes that are not UTF-8 become what os.fsdecode makes of them."""
        line = os.fsdecode(raw.rstrip(b"\r"))
        if self.lines == 0:
            self.build = line
        self.lines += 1
        self._take_files(line)
        if _WARNING.match(line):
            self._warnings.append(line.strip())
        self.endless = self.endless or line.startswith(ENDLESS)
        if line.strip() and not _PROMPT.fullmatch(line):
            self._tail = self._tail[-LONGEST_MESSAGE + 1:] + [line]
        return line

    def _take_files(self, line: str) -> None:
        for expression in _OUTPUT:
            found = expression.search(line)
            if found:
                self._outputs[found[1]] = None
        opened = _INPUT.search(line)
        if opened:
            self._inputs[opened[1]] = None

    @property
    def inputs(self) -> list[str]:
        """Files that were opened to be read, in the order in which each was opened first; seen from the folder of the run."""
        return list(self._inputs)

    @property
    def outputs(self) -> list[str]:
        """Files that were opened to be written."""
        return list(self._outputs)

    @property
    def finished(self) -> bool:
        """The rule of a good run: this is its last line. What was said before is a warning, even if it begins with ERROR."""
        return bool(self._tail) and self._tail[-1] == FINISHED

    def message(self) -> Optional[str]:
        """What a bad run ended with: from the last lines that begin a message, the last line where none does. None if the run said
        nothing."""
        begins = [_MESSAGE.match(line) is not None for line in self._tail]
        start = len(begins) - 1
        if any(begins):
            start -= begins[::-1].index(True)
            while start > 0 and begins[start - 1]:
                start -= 1
        return "\n".join(self._tail[start:]).strip() if self._tail else None

    def warnings(self) -> list[str]:
        """Without the message that a bad run ended with."""
        if self.finished:
            return self._warnings
        message = self.message() or ""
        return [warning for warning in self._warnings if warning not in message]
