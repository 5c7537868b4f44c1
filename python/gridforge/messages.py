"""What the commands beside the tool have in common: how they end with a message, and how they write files."""
from __future__ import annotations

import argparse
import os
import sys
import tempfile
from collections.abc import Callable, Sequence
from pathlib import Path
from typing import TextIO

from .moving import Exists, Move, move_all

FAILED, WRONG_USE = 1, 2


class Failure(Exception):
    """Ends a command with a message; nothing has been written under an output's name."""


def missing_package(what: str, package: str) -> Failure:
    """The one line for a library that is not installed."""
    return Failure(f"{what} is not installed (Debian package {package})")


def run_command(name: str, command: Callable[[], None]) -> int:
    """Runs the command and returns the exit status; failures go to standard error in one line."""
    try:
        command()
        sys.stdout.flush()
    except Failure as failure:
        print(f"{name}: {failure}", file=sys.stderr)
        return FAILED
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())  # the reader has gone: nothing is left to say
        return FAILED
    except OSError as error:
        print(f"{name}: {describe(error)}", file=sys.stderr)
        return FAILED
    return 0


def counted(number: int, what: str) -> str:
    return f"{number} {what}" if number == 1 else f"{number} {what}s"


def describe(error: OSError) -> str:
    return f"{error.filename}: {error.strerror}" if error.filename else str(error)


def add_overwrite(parser: argparse.ArgumentParser) -> None:
    parser.add_argument("--overwrite", action="store_true", help="replace outputs that are there already")


def refuse_existing(outputs: Sequence[Path], inputs: Sequence[Path], overwrite: bool) -> None:
    """Outputs never replace an input, and other files only where that is asked for."""
    for output in outputs:
        if not output.parent.is_dir():
            raise Failure(f"the folder of {output} does not exist")
        if not output.exists():
            continue
        if output.is_dir():
            raise Failure(f"{output} is a folder; give the output another name")
        if any(source.exists() and output.samefile(source) for source in inputs):
            raise Failure(f"{output} is an input; give the output another name")
        if not overwrite:
            raise is_there(output)


def is_there(output: Path) -> Failure:
    return Failure(f"{output} is there already; --overwrite replaces it")


class Scratch:
    """A folder beside the output in which files are written; they get their names when all are whole. Without `overwrite` none
    goes over a file, even over one that somebody makes in the meantime.

    Use it with `with`: the folder is gone at the end, whatever happened."""

    def __init__(self, beside: Path, overwrite: bool) -> None:
        self._overwrite = overwrite
        self._folder = tempfile.TemporaryDirectory(prefix=".gridforge-", dir=beside.parent)
        self.path = Path(self._folder.name)

    def __enter__(self) -> Scratch:
        return self

    def __exit__(self, *_: object) -> None:
        self._folder.cleanup()

    def publish(self, moves: Sequence[tuple[Path, Path]], family: Sequence[Path] = ()) -> None:
        """Gives each first file the second name. Files of mkstemp's mode get that of files that are simply created. `family` are
        the names of all files that an earlier output may have; those that this one lacks are removed."""
        mask = os.umask(0)
        os.umask(mask)
        for source, _ in moves:
            os.chmod(source, 0o666 & ~mask)
        targets = {target for _, target in moves}
        try:
            move_all([Move(*move) for move in moves], self._overwrite, [name for name in family if name not in targets])
        except Exists as there:
            raise is_there(there.path) from None


def write_text(output: Path | None, overwrite: bool, write: Callable[[TextIO], None]) -> None:
    """Writes a text to a file, whole or not at all, or to standard output. Bytes that are not UTF-8 stay as they were read."""
    if output is None:
        sys.stdout.reconfigure(errors="surrogateescape", newline="")
        write(sys.stdout)
        return
    with Scratch(output, overwrite) as scratch:
        made = scratch.path / output.name
        with open(made, "w", encoding="utf-8", errors="surrogateescape", newline="") as file:
            write(file)
        scratch.publish([(made, output)])
