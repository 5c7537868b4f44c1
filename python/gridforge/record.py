"""What is kept of a run, for programs."""
from __future__ import annotations

import dataclasses
import datetime
import hashlib
import json
import os
import re
import secrets
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any, Optional

from .moving import flush

SHAPE = 1  # of the record as JSON; a change of its meaning raises it
_PIECE = 1 << 20


@dataclass
class File:
    """A file by its name, seen from the folder of the run. Without a size it is gone; without a sum it was not asked for or, of an
    input, the run has replaced it."""
    name: str
    size: Optional[int] = None
    sha256: Optional[str] = None


@dataclass
class Record:
    """What a run was and did. `outcome` is finished, failed, nothing, timeout or cancelled."""
    version: str
    build: str  # the first line of the console
    tool: str
    arguments: list[str]  # as they were given
    command: list[str]  # as they were handed to the tool, after its name
    operation: Optional[str]
    folder: str
    staged: bool
    host: str
    threads: int
    started: str = ""  # ISO 8601, UTC
    ended: str = ""
    seconds: float = 0.0
    peak_memory: int = 0  # bytes
    outcome: str = ""
    status: int = 1
    inputs: list[File] = field(default_factory=list)
    outputs: list[File] = field(default_factory=list)
    warnings: list[str] = field(default_factory=list)
    error: Optional[str] = None
    scratch: Optional[str] = None  # the folder of a staged run that was kept

    @property
    def output_names(self) -> list[str]:
        return [file.name for file in self.outputs]

    def to_json(self) -> str:
        """Bytes of names that are not UTF-8 are lone surrogates, as os.fsencode takes them."""
        return json.dumps({"shape": SHAPE, **_camel(dataclasses.asdict(self))}, indent=1) + "\n"

    def write(self, path: Path) -> None:
        """The whole record or nothing."""
        near = path.with_name(f".{path.name[:100]}.{secrets.token_hex(6)}.part")
        try:
            near.write_text(self.to_json(), encoding="ascii")
            flush(near)
            os.replace(near, path)
        except BaseException:
            near.unlink(missing_ok=True)
            raise


def _camel(value: Any) -> Any:
    """Names of members as those of the description are written."""
    if isinstance(value, dict):
        return {re.sub(r"_(\w)", lambda match: match[1].upper(), name): _camel(member) for name, member in value.items()}
    return [_camel(member) for member in value] if isinstance(value, list) else value


def time_text(moment: float) -> str:
    return datetime.datetime.fromtimestamp(moment, datetime.timezone.utc).isoformat(timespec="milliseconds").replace("+00:00", "Z")


def sum_of(path: Path) -> str:
    digest = hashlib.sha256()
    with open(path, "rb", buffering=0) as file:
        while piece := file.read(_PIECE):
            digest.update(piece)
    return digest.hexdigest()


def file_record(name: str, path: Path, sums: bool) -> File:
    """A sum is made of plain files only, as to read anything else may wait for ever."""
    try:
        size = path.stat().st_size if path.is_file() else None
        return File(name, size, sum_of(path) if sums and size is not None else None)
    except OSError:
        return File(name)


def threads_of(environment: dict[str, str]) -> int:
    """As many as the tool may use."""
    processors = len(os.sched_getaffinity(0)) if hasattr(os, "sched_getaffinity") else os.cpu_count() or 1
    wanted = environment.get("GRIDFORGE_THREADS", "").strip()
    return min(int(wanted), processors) if wanted.isdecimal() and int(wanted) > 0 else processors
