"""What the tests of the workflow share. A test that needs a program that is missing is skipped.

Where the variable GRIDFORGE_NEEDS_WORKFLOWS is set, it fails instead.
"""
from __future__ import annotations

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from typing import NoReturn

ROOT = Path(__file__).resolve().parents[2]
WORKFLOW = ROOT / "workflows/ensemble"
sys.path.insert(0, str(WORKFLOW / "steps"))
sys.path.insert(0, str(ROOT / "python"))

BESIDE_RESULTS = (".snakemake", "records", "logs", "maps", "grids", "report.html")


def leave_out(what: str) -> NoReturn:
    """Ends the test. The words decide: ctest takes those of a skipped test from the output, whatever the status is."""
    if os.environ.get("GRIDFORGE_NEEDS_WORKFLOWS"):
        print(f"GRIDFORGE_NEEDS_WORKFLOWS is set, and {what} is missing")
        sys.exit(1)
    print("Snakemake is not installed")
    sys.exit(0)


def settle_programs() -> None:
    if shutil.which("snakemake") is None:
        leave_out("snakemake")
    import importlib.util
    for package in ("numpy", "matplotlib"):
        if importlib.util.find_spec(package) is None:
            leave_out(f"python3-{package}")


def run_tool(folder: Path, *arguments: str) -> None:
    """A plain run in the folder, which must go well."""
    done = subprocess.run([sys.executable, "-B", str(ROOT / "python/bin/gridforge-run"), "--quiet", *arguments], cwd=folder,
                          capture_output=True, text=True, check=False, stdin=subprocess.DEVNULL)
    if done.returncode != 0:
        raise AssertionError(f"{arguments}: {done.stdout}{done.stderr}")


def snakemake(folder: Path, *arguments: str) -> subprocess.CompletedProcess:
    """The workflow on this machine."""
    return subprocess.run(["snakemake", "--snakefile", str(WORKFLOW / "Snakefile"), "--profile", str(WORKFLOW / "profiles/local"),
                           "--nocolor", *arguments], cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          check=False, stdin=subprocess.DEVNULL)


def make_sample(folder: Path, *arguments: str) -> None:
    subprocess.run([sys.executable, "-B", str(WORKFLOW / "make_sample"), str(folder), *arguments], check=True)


def results(study: Path) -> dict[str, bytes]:
    """All results with their bytes, except pictures, what holds times, and the scratch folders that killed runs leave."""
    found = {}
    for path in study.rglob("*"):
        name = path.relative_to(study)
        if path.is_file() and name.parts[0] not in BESIDE_RESULTS and ".gridforge-run-" not in str(name):
            found[str(name)] = path.read_bytes()
    return found


if __name__ == "__main__" and shutil.which("snakemake") is None:
    print("Snakemake is not installed")


class FolderTest(unittest.TestCase):
    """Each test has a folder."""

    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory(prefix="gridforge-workflow-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
