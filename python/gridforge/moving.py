"""Finished files to their places: each at once, whole, and on the disk; none over an existing file unless that is wanted."""
from __future__ import annotations

import ctypes
import errno
import os
import secrets
import shutil
import sys
from collections import Counter
from dataclasses import dataclass, field
from pathlib import Path
from typing import Iterable, Optional

from .families import family_of

# Where the system or the file system has no such call, or not between these places.
_CANNOT = (errno.ENOSYS, errno.EINVAL, errno.EPERM, errno.ENOTSUP, errno.EMLINK)


class Exists(Exception):
    """A file stands where another one was to go."""

    def __init__(self, path: Path):
        super().__init__(str(path))
        self.path = path


@dataclass(frozen=True)
class Move:
    source: Path
    target: Path


def flush(path: Path) -> None:
    """Has the system write a file or folder to the disk. Windows flushes no folders."""
    if os.name == "nt" and path.is_dir():
        return
    descriptor = os.open(path, os.O_RDONLY)
    try:
        os.fsync(descriptor)
    except OSError as error:
        if error.errno not in (errno.EINVAL, errno.ENOTSUP, errno.EBADF):  # not every file system flushes folders
            raise
    finally:
        os.close(descriptor)


# --- One file ------------------------------------------------------------------------------------------------------------

def _rename_if_free(source: Path, target: Path) -> bool:
    """By the one call that does it at once. False where the system has none."""
    if not sys.platform.startswith("linux"):
        return False
    library = ctypes.CDLL(None, use_errno=True)
    if not hasattr(library, "renameat2"):
        return False
    current_folder, no_replace = -100, 1
    if library.renameat2(current_folder, os.fsencode(source), current_folder, os.fsencode(target), no_replace) == 0:
        return True
    number = ctypes.get_errno()
    if number in _CANNOT:
        return False
    raise OSError(number, os.strerror(number), str(source), None, str(target))


def _link_if_free(source: Path, target: Path) -> bool:
    """By a second name, which replaces no file. False where the file system has none."""
    try:
        os.link(source, target)
    except OSError as error:
        if error.errno in _CANNOT:
            return False
        raise
    os.unlink(source)
    return True


def _move_if_free(source: Path, target: Path) -> None:
    try:
        if _rename_if_free(source, target) or _link_if_free(source, target):
            return
        if os.path.lexists(target):
            raise Exists(target)
        os.rename(source, target)
    except FileExistsError as error:
        raise Exists(target) from error


def _brought_near(source: Path, target: Path) -> Path:
    """A copy in the folder of the target, flushed, under a name that nobody looks for."""
    near = target.with_name(f".{target.name[:100]}.{secrets.token_hex(6)}.part")
    try:
        shutil.copy2(source, near)
        flush(near)
    except BaseException:
        near.unlink(missing_ok=True)
        raise
    return near


def move_file(source: Path, target: Path, overwrite: bool) -> None:
    """On one file system. At no moment is there a part of the file under the target's name."""
    if overwrite:
        os.replace(source, target)
    else:
        _move_if_free(source, target)


# --- All files of a run --------------------------------------------------------------------------------------------------

@dataclass
class _Moved:
    """What was done, to be taken back if a later file cannot be moved."""
    done: list[Move] = field(default_factory=list)
    kept: list[tuple[Path, Path]] = field(default_factory=list)  # an old file, and where it waits

    def take_back(self) -> None:
        for move in reversed(self.done):
            os.replace(move.target, move.source)
        for old, place in reversed(self.kept):
            os.replace(place, old)
            place.unlink(missing_ok=True)  # two names of one file are left as they are


def _first_there(moves: Iterable[Move]) -> Optional[Path]:
    return next((move.target for move in moves if os.path.lexists(move.target)), None)


def _waiting_name(old: Path) -> Path:
    return old.with_name(f".{old.name[:100]}.{secrets.token_hex(6)}.old")


def _set_aside(old: Path, moved: _Moved) -> None:
    place = _waiting_name(old)
    os.rename(old, place)
    moved.kept.append((old, place))


def _keep(old: Path, moved: _Moved) -> None:
    """Under a second name, until all is done. Where the file system has none the old file cannot come back."""
    place = _waiting_name(old)
    try:
        os.link(old, place)
    except OSError:
        return
    moved.kept.append((old, place))


def _make_way(moves: list[Move], gone: Iterable[Path], moved: _Moved) -> None:
    for old in gone:
        if old.is_file():
            _set_aside(old, moved)
    sizes = Counter(family_of(str(move.target))[0] for move in moves)
    for move in moves:
        if move.target.is_file():
            several = sizes[family_of(str(move.target))[0]] > 1
            (_set_aside if several else _keep)(move.target, moved)


def _all_near(moves: list[Move]) -> list[Move]:
    """Each file flushed, and on the file system that it goes to."""
    near: list[Move] = []
    try:
        for move in moves:
            flush(move.source)
            same = os.stat(move.source).st_dev == os.stat(move.target.parent).st_dev
            near.append(move if same else Move(_brought_near(move.source, move.target), move.target))
    except BaseException:
        _forget_copies(near, moves)
        raise
    return near


def _forget_copies(near: list[Move], moves: list[Move]) -> None:
    for copy, move in zip(near, moves):
        if copy.source != move.source:
            copy.source.unlink(missing_ok=True)


def move_all(moves: list[Move], overwrite: bool, gone: Iterable[Path] = ()) -> None:
    """Moves all files, or none where one cannot be moved. Of a set of files, as .flt and .hdr, the old ones are away before the
    first new one comes, so that nobody reads cells of one by the header of the other. `gone` are names of the old set that the
    new one does not have: with `overwrite` these files are removed."""
    if not overwrite:
        there = _first_there(moves)
        if there is not None:
            raise Exists(there)
    near = _all_near(moves)
    moved = _Moved()
    try:
        if overwrite:
            _make_way(near, gone, moved)
        for move in near:
            move_file(move.source, move.target, overwrite)
            moved.done.append(move)
        for folder in {move.target.parent for move in moves}:
            flush(folder)
    except BaseException:
        moved.take_back()
        raise
    finally:
        _forget_copies(near, moves)
    for _, place in moved.kept:
        place.unlink()
