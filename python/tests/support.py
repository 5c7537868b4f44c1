"""What the tests share: a scratch folder with grids, runs of gridforge-run, and tools that do as a test wants."""
import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

PROGRAMS = Path(__file__).resolve().parents[1] / "bin"


def grid(*rows):
    """A grid of cells of 1; the first row is the northern one."""
    head = f"ncols {len(rows[0])}\nnrows {len(rows)}\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n"
    return head + "".join(" ".join(map(str, row)) + "\n" for row in rows)


def cells(path):
    """The cells of a written .asc."""
    return [float(word) for line in Path(path).read_text().splitlines()[6:] for word in line.split()]


class ScratchTest(unittest.TestCase):
    """Each test runs in a folder of its own, which is the current one."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="gridforge test ")
        self.addCleanup(folder.cleanup)
        self.folder = Path(os.path.realpath(folder.name))
        self.addCleanup(os.chdir, os.getcwd())
        self.go_to(".")
        environment = mock.patch.dict(os.environ)
        environment.start()
        self.addCleanup(environment.stop)

    def go_to(self, name):
        place = self.folder / name
        place.mkdir(parents=True, exist_ok=True)
        os.chdir(place)

    def give(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return path

    def give_grids(self, *names):
        """Grids of two cells: 1 10, 2 20 and so on."""
        for number, name in enumerate(names, 1):
            self.give(name, grid([number, 10 * number]))

    def files(self, name="."):
        """All files below a folder, hidden ones too."""
        place = self.folder / name
        return sorted(os.path.relpath(os.path.join(at, file), place) for at, _, files in os.walk(place) for file in files)

    def use_tool(self, script):
        """A tool that is a script of the shell."""
        path = self.give("tool/gridforge", "#!/bin/sh\n" + script)
        path.chmod(0o755)
        os.environ["GRIDFORGE"] = str(path)

    def command(self, *arguments, program="gridforge-run", **how):
        """Runs a program of ours to its end."""
        return subprocess.run([sys.executable, "-B", str(PROGRAMS / program), *arguments], check=False, timeout=120,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8",
                              errors="surrogateescape", **how)

    def expect_command(self, arguments, status, output="", error=""):
        done = self.command(*arguments)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (status, output, error))

    def record(self, name="record.json"):
        return json.loads((self.folder / name).read_text())
