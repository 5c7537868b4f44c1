"""A run in a folder of its own: links to its inputs under the names that it knows them by, and its outputs moved to their places
when they are finished."""
from __future__ import annotations

import os
import shutil
import tempfile
from dataclasses import dataclass, field
from pathlib import Path
from typing import Iterable, Iterator, Optional

from .arguments import Argument, input_patterns, output_names, value_of
from .description import Operation
from .families import PROJECTION, Look, family_of, split_name
from .moving import Move, move_all
from .outputs import OutputNames

PREFIX = ".gridforge-run-"
MOST_FOLDERS = 10_000  # of a tree that is made again because outputs may go into any of them


class InputChanged(Exception):
    """The run has written to one of its inputs."""


@dataclass(frozen=True)
class _State:
    """What a file is known again by."""
    device: int
    number: int
    size: int
    changed: int

    @staticmethod
    def of(path: Path) -> "_State":
        status = os.stat(path)
        return _State(status.st_dev, status.st_ino, status.st_size, status.st_mtime_ns)


def _link(source: Path, place: Path) -> bool:
    """False on a file system without links, as those of memory cards and of some shares are."""
    try:
        os.symlink(source, place)
    except OSError:
        return False
    return True


def _nearest_folder(path: Path) -> Path:
    while not path.is_dir():
        path = path.parent
    return path


def _target_folder(folder: Path, scanned: list[Argument], operation: Optional[Operation]) -> Path:
    """Where the main output goes: to the folder of its name, else to that of the first input."""
    names = [*output_names(scanned, operation, Look(folder)), value_of(scanned, "-out"), *input_patterns(scanned)]
    first = next((name for name in names if name), "")
    return _nearest_folder(Path(os.path.realpath(folder / split_name(first)[0])))


def simple_name(name: str, folder: Path) -> str:
    """The same file by a name that goes up at its beginning only, and never above the root."""
    name = name.replace("\\", "/")
    parts = name.split("/")
    up = next((at for at, part in enumerate(parts) if part not in ("..", ".")), len(parts))
    if not os.path.isabs(name) and ".." not in parts[up:] and parts.count("..") < len(folder.parts):
        return name
    head, tail = os.path.split(os.path.join(folder, name))
    return os.path.relpath(os.path.join(os.path.realpath(head), tail), folder)


@dataclass
class Stage:
    """The scratch folder holds a tree that stands for that of all files, as names may go up by any number of folders. The tool runs
    in `folder` of it."""
    real: Path  # the current folder
    scratch: Path
    _linked: dict[Path, tuple[Path, _State]] = field(default_factory=dict)  # by places in the scratch folder
    _copied: dict[Path, _State] = field(default_factory=dict)

    @property
    def folder(self) -> Path:
        return self._place(self.real)

    def _place(self, real: Path) -> Path:
        return self.scratch / real.relative_to(real.anchor)

    def _real(self, place: Path) -> Path:
        return Path(self.real.anchor) / place.relative_to(self.scratch)

    def _named(self, name: str) -> Path:
        """The place in the scratch folder that a name, seen from the current folder, stands for."""
        return Path(os.path.normpath(self.folder / name.replace("\\", "/")))

    # --- Before the run

    def _make_folder(self, place: Path) -> None:
        if self._real(place).is_dir():
            place.mkdir(parents=True, exist_ok=True)

    def add(self, name: str, copied: bool = False) -> None:
        """A link to an input or, if the run may write under its name, a copy of it."""
        place = self._named(name)
        if os.path.lexists(place):
            return
        self._make_folder(place.parent)
        source = Path(os.path.realpath(self.real / name))
        if source.is_file() and (copied or place.suffix.lower() == PROJECTION or not _link(source, place)):
            shutil.copy2(source, place)
            self._copied[place] = _State.of(place)
        elif source.is_file():
            self._linked[place] = (self._real(place), _State.of(source))
        else:
            _link(source, place)

    def add_stand_in(self, name: str) -> None:
        """An empty file for one that is to be there before the run writes beside it or over it."""
        place = self._named(name)
        if not os.path.lexists(place) and (self.real / name).is_file():
            self._make_folder(place.parent)
            place.touch()
            self._copied[place] = _State.of(place)

    def add_folder_of(self, name: str) -> None:
        self._make_folder(self._named(name).parent)

    def add_folders_below(self, folder: str) -> None:
        """All of them, as outputs may go into any."""
        made = 0
        for at, folders, _ in os.walk(self._real(self._named(folder))):
            folders[:] = [folder for folder in folders if not folder.startswith(PREFIX)]
            for folder in folders:
                self._make_folder(self._place(Path(at, folder)))
            made += len(folders)
            if made > MOST_FOLDERS:
                return

    # --- After the run

    def _made(self) -> Iterator[Path]:
        for at, _, files in os.walk(self.scratch):
            for name in files:
                place = Path(at, name)
                if place.is_symlink():
                    continue
                if place in self._copied and (place.suffix.lower() == PROJECTION or _State.of(place) == self._copied[place]):
                    continue  # the input's own .prj stays as it is, of which the tool would keep one line
                yield place

    def made(self) -> dict[str, Path]:
        """The files of the run, by their names seen from the current folder; each in the scratch folder."""
        return {os.path.relpath(self._real(place), self.real): place for place in sorted(self._made())}

    def check_inputs(self) -> None:
        for place, (real, state) in self._linked.items():
            if place.is_symlink() and (not real.exists() or _State.of(real) != state):
                raise InputChanged(f"An input was changed during the run: {os.path.relpath(real, self.real)}")

    def publish(self, names: Iterable[str], overwrite: bool) -> None:
        """Moves files of `made` to their places: all of them, or none."""
        made = self.made()
        move_all([Move(made[name], self._real(made[name])) for name in names], overwrite)

    def remove(self) -> None:
        shutil.rmtree(self.scratch, ignore_errors=True)


def _add_all(stage: Stage, scanned: list[Argument], operation: Optional[Operation], named: Iterable[str]) -> None:
    look = Look(stage.real)
    written = OutputNames(operation, scanned, look)
    patterns = input_patterns(scanned)
    for pattern in (*patterns, *named):
        stage.add_folder_of(pattern)
        for name in look.found(pattern):
            for file in (name, *look.companions(name)):
                stage.add(file, written.may_be(file))
            here = look.in_any_case(family_of(split_name(name)[1])[0] + PROJECTION)  # the tool looks for that of a grid here
            if here is not None:
                stage.add(here)
    for argument in scanned:
        if argument.role in ("value", "output"):
            stage.add_folder_of(argument.text)
        if argument.role == "output":
            stage.add_stand_in(argument.text)
    if written.anywhere:
        for folder in {".", *(split_name(pattern)[0] or "." for pattern in patterns)}:
            stage.add_folders_below(folder)


def set_stage(folder: Path, scanned: list[Argument], operation: Optional[Operation], named: Iterable[str]) -> Stage:
    """For a run with these arguments, and inputs that only control files name. All names are simple ones."""
    scratch = Path(tempfile.mkdtemp(prefix=PREFIX, dir=_target_folder(folder, scanned, operation)))
    stage = Stage(folder, scratch)
    try:
        stage.folder.mkdir(parents=True, exist_ok=True)
        _add_all(stage, scanned, operation, named)
    except BaseException:
        stage.remove()
        raise
    return stage
