#!/usr/bin/env python3
"""The scripts of docs/pictures run and make their pictures, in the size of those in the tree, and pages show what is there.

GRIDFORGE_TOOL and GRIDFORGE_MAKE_CATCHMENT name the programs.
"""
import ast
import csv
import glob
import os
import re
import shutil
import struct
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PICTURES = os.path.join(ROOT, "docs", "pictures")
PYTHON = "/usr/bin/python3"  # that for which Debian installs numpy, matplotlib and GDAL
OF_QGIS = {"qgis_dialog.png", "qgis_results.png"}  # by qgis_windows.py, which needs a screen
# Classes that cover much of a map, and the dots that have their colour at least; a swatch of a legend has fewer than 1000.
ON_THE_MAP = {"damages.png": ("depth", "3 to 5 m", "1 to 2 m", "0.5 to 1 m"),
              "dif.png": ("impact", "rises by 0.05 to 0.2 m", "rises by more than 0.5 m"),
              "flood.png": ("depth", "3 to 5 m", "1 to 2 m", "0.5 to 1 m"),
              "remap.png": ("depth", "3 to 5 m", "1 to 2 m", "0.5 to 1 m"),
              "trim.png": ("depth", "3 to 5 m", "1 to 2 m", "0.5 to 1 m")}
DOTS = 5000
# A picture of few colours may have one that is next to that of the class.
COUNT_DOTS = """
import sys
import numpy
from PIL import Image
dots = numpy.asarray(Image.open(sys.argv[1]).convert("RGB")).astype(int)
for colour in sys.argv[2:]:
    print((abs(dots - tuple(bytes.fromhex(colour[1:]))) <= 3).all(axis=2).sum())
"""
LINK = re.compile(r"!\[[^\]]+\]\(([^)]+)\)")


def made_by(script):
    """What the script says in PICTURES, without running it."""
    with open(script, encoding="utf-8") as file:
        for part in ast.parse(file.read()).body:
            if isinstance(part, ast.Assign) and ast.unparse(part.targets[0]) == "PICTURES" and isinstance(part.value, ast.Tuple):
                return ast.literal_eval(part.value)
    return ()


def size_of(picture):
    """Columns and rows of dots."""
    with open(picture, "rb") as file:
        head = file.read(1000)
    if picture.endswith(".svg"):
        return tuple(int(number) for number in re.search(rb'width="(\d+)" height="(\d+)"', head).groups())
    if head[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError(f"{picture} is no PNG")
    return struct.unpack(">2I", head[16:24])


def colours_of(kind, labels):
    with open(os.path.join(ROOT, "python", "gridforge", "classes.csv"), newline="", encoding="utf-8") as file:
        found = {row["label"]: row["colour"] for row in csv.DictReader(file) if row["kind"] == kind}
    return [found[label] for label in labels]


def dots_of(picture, colours):
    """How many dots have each of the colours."""
    counts = subprocess.run([PYTHON, "-c", COUNT_DOTS, picture, *colours], stdout=subprocess.PIPE, text=True, check=True).stdout
    return [int(count) for count in counts.split()]


def links():
    """Page and picture of each link."""
    pages = [os.path.join(ROOT, "README.md"), *glob.glob(os.path.join(ROOT, "docs", "**", "*.md"), recursive=True)]
    for page in pages:
        with open(page, encoding="utf-8") as file:
            for target in LINK.findall(file.read()):
                yield os.path.relpath(page, ROOT), os.path.normpath(os.path.join(os.path.dirname(page), target))


class Pictures(unittest.TestCase):
    def test_pages_show_pictures_that_are_there(self):
        for page, picture in links():
            with self.subTest(page=page):
                self.assertTrue(os.path.isfile(picture), picture)

    def test_every_picture_is_shown_and_has_a_script(self):
        there = {name for name in os.listdir(PICTURES) if name.endswith((".png", ".svg"))}
        made = [name for script in glob.glob(os.path.join(PICTURES, "*.py")) for name in made_by(script)]
        self.assertEqual(sorted(there), sorted([*made, *OF_QGIS]))
        self.assertEqual({os.path.basename(picture) for _, picture in links()}, there)

    def test_maps_have_the_colours_of_their_legends(self):
        for name in ON_THE_MAP:
            self.check_colours(os.path.join(PICTURES, name))

    def check_colours(self, picture):
        kind, *labels = ON_THE_MAP[os.path.basename(picture)]
        for label, dots in zip(labels, dots_of(picture, colours_of(kind, labels))):
            with self.subTest(picture=picture, label=label):
                self.assertGreater(dots, DOTS)

    def test_scripts_make_their_pictures(self):
        with tempfile.TemporaryDirectory(prefix="gridforge-pictures-") as scratch:
            valley, out = os.path.join(scratch, "valley"), os.path.join(scratch, "out")
            os.makedirs(out)
            subprocess.run([os.environ["GRIDFORGE_MAKE_CATCHMENT"], "--out", valley, "--format", "asc"], check=True,
                           stdout=subprocess.DEVNULL)
            for case in ("valley", "damages"):
                shutil.copytree(os.path.join(ROOT, "examples", case), valley, dirs_exist_ok=True)
            for case in ("rainfall", "network"):
                shutil.copytree(os.path.join(ROOT, "examples", case), os.path.join(valley, case))
            for script in sorted(glob.glob(os.path.join(PICTURES, "*.py"))):
                if made_by(script):
                    with self.subTest(os.path.basename(script)):
                        self.check(script, valley, out)

    def check(self, script, valley, out):
        done = subprocess.run([PYTHON, "-B", script, os.environ["GRIDFORGE_TOOL"], valley, out], stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=300, check=False)
        self.assertEqual(done.returncode, 0, done.stdout[-3000:])
        for name in made_by(script):
            self.assertEqual(size_of(os.path.join(out, name)), size_of(os.path.join(PICTURES, name)), name)
            self.assertGreaterEqual(size_of(os.path.join(out, name))[0], 800, name)
            if name in ON_THE_MAP:
                self.check_colours(os.path.join(out, name))


if __name__ == "__main__":
    unittest.main()
