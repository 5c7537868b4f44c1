"""Each operation, in place and in a scratch folder: the record names all files that were read and made, and both ways make the same."""
import importlib.util
import os
import shutil
import subprocess
import unittest
from pathlib import Path
from unittest import mock

import gridforge
from tests.support import ScratchTest


def sample_runs():
    """The runs of the test of the description, with their files."""
    path = Path(__file__).resolve().parents[2] / "tests" / "scripts" / "description_test.py"
    spec = importlib.util.spec_from_file_location("description_test", path)
    module = importlib.util.module_from_spec(spec)
    manual = os.path.dirname(os.environ["GRIDFORGE_JSON"])
    with mock.patch.dict(os.environ, GRIDFORGE_MANUAL_DIR=manual, GRIDFORGE_TOOL=os.environ["GRIDFORGE"]):
        spec.loader.exec_module(module)
    return module


RUNS = sample_runs()


def without_date(name, content):
    """A .dbf holds the date of the run."""
    return content[4:] if name.endswith(".dbf") else content


class EveryOperationTest(ScratchTest):
    def begin(self, place, files):
        self.go_to(place)
        for name, text in files.items():
            self.give(f"{place}/{name}", text)

    def made(self, place, given):
        return {name: without_date(name, (self.folder / place / name).read_bytes())
                for name in self.files(place) if name not in given}

    def expect_same_both_ways(self, operation, arguments, files):
        named = [name for name in files if not name.startswith(".")]
        records = {}
        for place in ("in place", "staged"):
            self.begin(f"{operation} {place}", files)
            records[place] = gridforge.run(arguments, stage=place == "staged", named_inputs=named)
            self.assertEqual(set(records[place].output_names), set(self.made(f"{operation} {place}", files)), operation)
            for file in records[place].inputs:
                self.assertEqual(file.size, os.path.getsize(file.name), file.name)
        self.assertEqual(self.made(f"{operation} in place", files), self.made(f"{operation} staged", files), operation)
        self.assertEqual(records["in place"].output_names, records["staged"].output_names)
        self.assertEqual(records["in place"].inputs, records["staged"].inputs)
        return records["staged"]

    def test_all(self):
        for operation in gridforge.load_description().operations:
            for more in ([], ["-flt"], ["-check"]):
                arguments = RUNS.ASKED[operation.name].split() + more + RUNS.inputs_of(operation.name, operation.inputs.least)
                record = self.expect_same_both_ways("".join([operation.name, *more]), arguments, RUNS.FILES)
                self.assertTrue(record.inputs and record.outputs, operation.name)
                self.assertEqual(record.operation, operation.name)

    def test_no_output_goes_over_an_existing_file(self):
        for row in gridforge.load_description().operations:
            for more in ([], ["-flt"]) if row.inputs.then_output_name else ([],):
                inputs = RUNS.inputs_of(row.name, row.inputs.most if more else row.inputs.least)
                arguments = RUNS.ASKED[row.name].split() + more + inputs
                self.expect_kept(arguments, RUNS.FILES)
                if row.inputs.then_output_name:
                    inputs = RUNS.inputs_of(row.name, row.inputs.most)
                    self.expect_kept(RUNS.ASKED[row.name].split() + more + inputs + ["third"], {**RUNS.FILES, "third": "mine"})

    def expect_kept(self, arguments, files):
        """Each output in turn is there already, with the content that an earlier run gave it."""
        shutil.rmtree(self.folder / "kept", ignore_errors=True)
        self.begin("kept", files)
        named = [name for name in files if not name.startswith(".")]
        first = gridforge.run(arguments, stage=True, named_inputs=named)
        made = {name: Path(name).read_bytes() for name in first.output_names}
        for name, content in made.items():
            self.begin("kept", files)
            for other in set(made) - {name} - set(files):
                Path(other).unlink(missing_ok=True)
            Path(name).write_bytes(content + b" ")
            with self.assertRaises(gridforge.RunError) as raised:
                gridforge.run(arguments, stage=True, named_inputs=named)
            self.assertEqual(str(raised.exception),
                             f"A file is there already, so no output was moved to its place: {name}", arguments)
            self.assertEqual(Path(name).read_bytes(), content + b" ", name)
            self.assertEqual(set(self.files("kept")), {*files, name}, arguments)

    def test_shapefiles(self):
        if shutil.which("ogr2ogr") is None:
            self.skipTest("needs ogr2ogr")
        self.begin("made", RUNS.FILES)
        for name, arguments, beside in (("points", ["-cp", "points.shp", "a.asc"], {"points.dbf", "points.shp"}),
                                        ("breaks", ["-brkline", "breaks.shp", "a.asc"], {"breaks.dbf", "breaks.shp"})):
            os.chdir(self.folder / "made")
            subprocess.run(["ogr2ogr", "-f", "ESRI Shapefile", f"{name}.shp", f"{name}.mif"], check=True, capture_output=True)
            files = {name + ending: Path(name + ending).read_bytes() for ending in (".shp", ".shx", ".dbf")}
            files[name + ".prj"] = b'PROJCS["flat"]'
            record = self.expect_same_both_ways(name, arguments, {**files, "a.asc": RUNS.FILES["a.asc"]})
            self.assertTrue(any(output.endswith(".shx") for output in record.output_names), record.output_names)
            self.assertLessEqual(beside, {file.name for file in record.inputs})


if __name__ == "__main__":
    unittest.main()
