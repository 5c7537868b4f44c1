"""What the package holds and declares."""
import ast
import importlib.util
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PYTHON = Path(__file__).resolve().parents[1]


def declared(section):
    """The lines of a section of pyproject.toml as pairs; Debian's Python may be older than its reader of TOML."""
    text = (PYTHON / "pyproject.toml").read_text()
    body = text.split(f"[{section}]\n")[1].split("\n[")[0]
    return dict(line.split(" = ", 1) for line in body.splitlines() if " = " in line)


class PackageTest(unittest.TestCase):
    def test_every_program_is_installed_by_pip_as_well(self):
        programs = {path.name: path for path in (PYTHON / "bin").iterdir() if path.is_file()}
        scripts = declared("project.scripts")
        self.assertEqual(set(scripts), set(programs))
        for name, path in programs.items():
            module = ast.literal_eval(scripts[name]).removesuffix(":main")
            self.assertIn(f"\nfrom {module} import main  # noqa: E402\n", path.read_text())
            self.assertTrue(os.access(path, os.X_OK), name)

    def test_it_needs_only_what_older_interpreters_have(self):
        self.assertEqual(declared("project")["requires-python"], '">=3.9"')
        for path in (PYTHON / "gridforge").glob("*.py"):
            ast.parse(path.read_text(), str(path), feature_version=(3, 9))
            self.assertIn("from __future__ import annotations", path.read_text() if path.name != "__main__.py" else
                          "from __future__ import annotations", path.name)

    def test_data_files_are_declared(self):
        patterns = ast.literal_eval(declared("tool.setuptools")["package-data"].replace("gridforge =", '"gridforge":'))
        for path in (PYTHON / "gridforge").iterdir():
            if path.suffix != ".py" and path.name != "__pycache__":
                self.assertTrue(any(path.match(pattern) for pattern in patterns["gridforge"]), path.name)

    @unittest.skipUnless(all(map(importlib.util.find_spec, ("pip", "setuptools", "wheel"))), "needs pip, setuptools and wheel")
    def test_pip_installs_it_from_the_folder(self):
        with tempfile.TemporaryDirectory() as scratch:
            source, target = Path(scratch, "source"), Path(scratch, "target")
            shutil.copytree(PYTHON, source)  # setuptools leaves files in it
            subprocess.run([sys.executable, "-m", "pip", "install", "--quiet", "--no-build-isolation", "--no-deps", "--no-index",
                            "--target", target, source], check=True, capture_output=True)
            installed = {path.name for path in (target / "gridforge").iterdir()} - {"__pycache__"}
            self.assertEqual(installed, {path.name for path in (PYTHON / "gridforge").iterdir()} - {"__pycache__"})
            for name in declared("project.scripts"):
                run = subprocess.run([sys.executable, target / "bin" / name, "--help"], cwd=scratch, capture_output=True, text=True,
                                     env={**os.environ, "PYTHONPATH": str(target)}, check=False)
                self.assertRegex(run.stdout, f"^usage: {name} ", run.stderr)


if __name__ == "__main__":
    unittest.main()
