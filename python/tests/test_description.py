"""The description as records, the places where it and the tool are looked for, and the copy in the package."""
import json
import os
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import gridforge
from gridforge import tool


class Scratch(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        patched = mock.patch.dict(os.environ)
        patched.start()
        self.addCleanup(patched.stop)

    def executable(self, name):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("#!/bin/sh\n")
        path.chmod(0o755)
        return path.resolve()


class FindToolTest(Scratch):
    def setUp(self):
        super().setUp()
        os.environ.pop("GRIDFORGE", None)
        os.environ["PATH"] = str(self.folder / "path")
        package = mock.patch.object(tool, "PACKAGE", self.folder / "prefix/lib/python3/dist-packages/gridforge")
        package.start()
        self.addCleanup(package.stop)

    def test_the_variable_comes_first(self):
        self.executable("prefix/bin/gridforge")
        os.environ["GRIDFORGE"] = str(self.executable("mine"))
        self.assertEqual(gridforge.find_tool(), (self.folder / "mine").resolve())

    def test_a_variable_that_names_no_executable_is_an_error(self):
        os.environ["GRIDFORGE"] = "/none/gridforge"
        with self.assertRaises(gridforge.ToolNotFound) as raised:
            gridforge.find_tool()
        self.assertEqual(str(raised.exception), "The variable GRIDFORGE names no executable: /none/gridforge")

    def test_then_the_installation_that_the_package_belongs_to(self):
        self.executable("path/gridforge")
        self.executable("prefix/bin/gridforge")
        self.assertEqual(gridforge.find_tool(), self.folder / "prefix/bin/gridforge")

    def test_then_the_path(self):
        found = self.executable("path/gridforge")
        self.assertEqual(gridforge.find_tool(), found)

    def test_none_is_an_error(self):
        with self.assertRaises(gridforge.ToolNotFound) as raised:
            gridforge.find_tool()
        self.assertEqual(str(raised.exception),
                         "The tool gridforge is not installed. Put it into PATH, or name it in the variable GRIDFORGE.")


class DescriptionTest(Scratch):
    def test_places(self):
        os.environ.pop("GRIDFORGE_JSON", None)
        with mock.patch.object(tool, "PACKAGE", self.folder / "prefix/lib/python3/dist-packages/gridforge"):
            self.assertEqual(gridforge.find_description(), tool.PACKAGE / "gridforge.json")
            installed = self.folder / "prefix/share/gridforge/gridforge.json"
            installed.parent.mkdir(parents=True)
            installed.write_text("{}")
            self.assertEqual(gridforge.find_description(), installed)
            mine = self.executable("other/bin/gridforge")
            self.assertEqual(gridforge.find_description(mine), installed)
            for place in ("other/bin/manual/gridforge.json", "other/share/gridforge/gridforge.json"):
                beside = self.folder / place
                beside.parent.mkdir(parents=True)
                beside.write_text("{}")
                self.assertEqual(gridforge.find_description(mine), beside.resolve())
            self.assertEqual(gridforge.find_description(), installed)
            os.environ["GRIDFORGE_JSON"] = "other.json"
            self.assertEqual(gridforge.find_description(mine), Path("other.json"))
            self.assertEqual(gridforge.find_description(), Path("other.json"))

    def test_records(self):
        description = gridforge.load_description()
        cutoff = description.operation("cd")
        self.assertEqual(cutoff.inputs, gridforge.InputRule("grid", 1, 2, "refused", True, True))
        self.assertEqual(cutoff.outputs[0].name, "{first}_cd{value}")
        flag = cutoff.option("-cd")
        self.assertEqual((flag.name, flag.kind, flag.glued, flag.takes_next, flag.default), ("cd", "number", True, False, 0))
        self.assertTrue(cutoff.option("-out").takes_next)
        self.assertIsNone(cutoff.option("-wl"))
        self.assertEqual(description.flags["-b"], description.common_options[0])

    def test_a_later_shape_is_refused(self):
        later = self.folder / "later.json"
        later.write_text('{"shape": 2}')
        with self.assertRaises(gridforge.DescriptionError) as raised:
            gridforge.load_description(later)
        self.assertEqual(str(raised.exception), f"{later} is of a later version of the tool than this package.")

    def test_what_is_no_description_is_refused(self):
        for text in ("", "[]", "{}", '{"shape": 1}'):
            bad = self.folder / "bad.json"
            bad.write_text(text)
            with self.assertRaisesRegex(gridforge.DescriptionError, r"bad\.json is not a description of the tool: "):
                gridforge.load_description(bad)
        with self.assertRaisesRegex(gridforge.DescriptionError, r"none\.json is not a description of the tool: .*No such file"):
            gridforge.load_description(self.folder / "none.json")

    def test_the_copy_in_the_package_is_that_of_the_build(self):
        built = Path(os.environ["GRIDFORGE_JSON"]).read_text()
        self.assertEqual(json.loads((tool.PACKAGE / "gridforge.json").read_text()), json.loads(built),
                         "Run `cmake --build BUILD --target gridforge_python_data` and commit the copy.")

    def test_the_version_is_that_of_the_tool(self):
        self.assertEqual(gridforge.__version__, gridforge.load_description().version)


if __name__ == "__main__":
    unittest.main()
