"""The zip of the plugin."""
import configparser
import json
import os
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

QGIS = Path(__file__).resolve().parent.parent
ROOT = QGIS.parent


class ZipTest(unittest.TestCase):
    def setUp(self):
        self.zip = zipfile.ZipFile(os.environ["GRIDFORGE_QGIS_ZIP"])
        self.addCleanup(self.zip.close)

    def test_it_stands_alone(self):
        names = set(self.zip.namelist())
        for name in ("__init__.py", "metadata.txt", "icon.svg", "gridforge/__init__.py", "gridforge/gridforge.json",
                     "pages/dif.md"):
            self.assertIn(f"gridforge_provider/{name}", names)
        self.assertEqual({name.split("/")[0] for name in names}, {"gridforge_provider"})
        self.assertFalse([name for name in names if "__pycache__" in name])

    def test_what_qgis_asks_of_a_plugin(self):
        metadata = configparser.ConfigParser()
        metadata.read_string(self.zip.read("gridforge_provider/metadata.txt").decode())
        general = metadata["general"]
        for key in ("name", "qgisMinimumVersion", "description", "about", "version", "author", "email"):
            self.assertTrue(general[key], key)
        self.assertEqual(general["hasProcessingProvider"], "yes")
        self.assertEqual(general["qgisMinimumVersion"], "3.22")
        description = json.loads(self.zip.read("gridforge_provider/gridforge/gridforge.json"))
        self.assertEqual(general["version"], description["version"])
        self.assertIn(f"gridforge_provider/{general['icon']}", self.zip.namelist())

    def test_equal_contents_make_an_equal_zip(self):
        with tempfile.TemporaryDirectory() as folder:
            description = Path(folder) / "gridforge.json"
            description.write_bytes(self.zip.read("gridforge_provider/gridforge/gridforge.json"))
            zips = [Path(folder) / name for name in ("a.zip", "b.zip")]
            for target in zips:
                subprocess.run([sys.executable, "-B", QGIS / "make_zip.py", ROOT / "python/gridforge", description,
                                ROOT / "docs/operations", target], check=True)
            self.assertEqual(zips[0].read_bytes(), zips[1].read_bytes())

    def test_wrong_use(self):
        run = subprocess.run([sys.executable, "-B", QGIS / "make_zip.py"], capture_output=True, check=False, encoding="utf-8")
        self.assertEqual(run.returncode, 2)
        self.assertIn("usage: make_zip.py PACKAGE DESCRIPTION PAGES ZIP", run.stderr)


if __name__ == "__main__":
    unittest.main()
