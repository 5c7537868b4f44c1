"""What the tests of the commands share: a scratch folder, runs of the tool and of the commands, small grids and layers."""
from __future__ import annotations

import contextlib
import importlib
import io
import os
import subprocess
import sys
import tempfile
import unittest
from collections.abc import Sequence
from dataclasses import dataclass
from pathlib import Path
from unittest import mock

from gridforge import messages

PACKAGES = Path(__file__).resolve().parents[1]
TIMEOUT = 120


@dataclass
class Ended:
    status: int
    out: str
    error: str


def read(stream: io.TextIOWrapper) -> str:
    stream.flush()
    return stream.buffer.getvalue().decode("utf-8", "surrogateescape")


class ToolCase(unittest.TestCase):
    """Tests in a scratch folder, which is the current one of all runs."""

    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def give(self, name: str, text: str) -> Path:
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text.encode("utf-8", "surrogateescape"))
        return path

    def text(self, name: str) -> str:
        return (self.folder / name).read_bytes().decode("utf-8", "surrogateescape").replace("\r\n", "\n")

    def files(self) -> list[str]:
        return sorted(str(path.relative_to(self.folder)) for path in self.folder.rglob("*") if path.is_file())

    def command(self, module: str, *arguments: str) -> Ended:
        """Runs a command of the package in this process, as if from the scratch folder."""
        out, error = (io.TextIOWrapper(io.BytesIO(), "utf-8", errors="surrogateescape", newline="") for _ in range(2))
        folder = os.getcwd()
        os.chdir(self.folder)
        try:
            with contextlib.redirect_stdout(out), contextlib.redirect_stderr(error):
                status = importlib.import_module(f"gridforge.{module}").main(list(arguments))
        except SystemExit as end:  # wrong use
            status = end.code
        finally:
            os.chdir(folder)
        return Ended(status, *(read(stream) for stream in (out, error)))

    def process(self, module: str, *arguments: str, without: Sequence[str] = ()) -> Ended:
        """The same in a process of its own. Packages named in `without` cannot be imported by it."""
        hide = "".join(f"sys.modules[{name!r}] = None; " for name in without)
        program = f"import sys; {hide}from gridforge import {module}; sys.exit({module}.main(sys.argv[1:]))"
        return self.python(program, *arguments)

    def python(self, program: str, *arguments: str) -> Ended:
        run = subprocess.run([sys.executable, "-c", program, *arguments], cwd=self.folder, capture_output=True, text=True,
                             errors="surrogateescape", timeout=TIMEOUT, stdin=subprocess.DEVNULL,
                             env={**os.environ, "PYTHONPATH": str(PACKAGES), "LC_ALL": "C.UTF-8"})
        return Ended(run.returncode, run.stdout, run.stderr)

    def good(self, module: str, *arguments: str) -> str:
        """What a command prints that must go well and have nothing to complain of."""
        run = self.command(module, *arguments)
        self.assertEqual((run.status, run.error), (0, ""), arguments)
        return run.out

    def fails(self, module: str, message: str, *arguments: str, status: int = 1) -> None:
        """The command must end with exactly this message, and leave the folder as it was."""
        before = {name: (self.folder / name).read_bytes() for name in self.files()}
        run = self.command(module, *arguments)
        apart = ": " if status == 1 or message.startswith("error") else " "  # wrong use of a subcommand names it
        self.assertEqual(run.error.splitlines()[-1:], [f"gridforge-{module}{apart}{message}"], arguments)
        self.assertEqual(run.status, status)
        self.assertEqual({name: (self.folder / name).read_bytes() for name in self.files()}, before)

    def comes_second(self, output: str, module: str, *arguments: str) -> None:
        """Somebody else makes the output while the command works. Theirs must stay, and the command must say so."""
        move = messages.move_all

        def move_later(*given: object) -> None:
            self.give(output, "theirs")
            move(*given)
        before = self.files()
        with mock.patch.object(messages, "move_all", move_later):
            run = self.command(module, *arguments)
        self.assertEqual((run.status, run.error), (1, f"gridforge-{module}: {output} is there already; --overwrite replaces it\n"))
        self.assertEqual((self.text(output), self.files()), ("theirs", sorted([*before, output])))

    def tool(self, *arguments: str, ends_well: bool = True) -> str:
        """The console of a run of the tool, which must reach its end and warn of nothing."""
        run = subprocess.run([os.environ["GRIDFORGE"], "-b", *arguments], cwd=self.folder, stdout=subprocess.PIPE,
                             timeout=TIMEOUT, stdin=subprocess.DEVNULL, check=False)
        console = run.stdout.decode("latin-1").replace("\r\n", "\n")
        if ends_well:
            self.assertEqual(console.splitlines()[-1:], ["Finished."], console)
            self.assertNotRegex(console, r"(?m)^ *(ERROR|WARNING)")
        return console


def asc(rows: Sequence[Sequence[float]], cell: float = 1, west: float = 0, south: float = 0) -> str:
    """A grid with its rows from north to south."""
    head = f"ncols {len(rows[0])}\nnrows {len(rows)}\nxllcorner {west}\nyllcorner {south}\ncellsize {cell}\nNODATA_value -9999\n"
    return head + "".join(" ".join(f"{value:g}" for value in row) + "\n" for row in rows)


def cells(text: str) -> list[list[float]]:
    """The cells of an .asc that the tool wrote, rows from north to south."""
    return [[float(value) for value in line.split()] for line in text.splitlines()[6:]]


MIF = 'Version 300\nCharset "WindowsLatin1"\nDelimiter ","\nCoordSys NonEarth Units "m" Bounds (0, 0) (1000, 1000)\n'


def mif(columns: Sequence[str], objects: str) -> str:
    return MIF + f"Columns {len(columns)}\n" + "".join(f"  {column}\n" for column in columns) + "Data\n\n" + objects
