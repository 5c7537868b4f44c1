"""Runs in a scratch folder: what is linked, what is moved, and what is left where something goes wrong."""
import os
import shutil
import threading
import unittest
from pathlib import Path
from unittest import mock

import gridforge
from gridforge import moving, staging
from gridforge.staging import simple_name
from tests.support import ScratchTest, cells, grid


class StageTest(ScratchTest):
    def failed(self, *arguments, **how):
        with self.assertRaises(gridforge.RunError) as raised:
            gridforge.run(arguments, stage=True, **how)
        self.assertEqual([name for name in self.files() if staging.PREFIX in name], [])
        return str(raised.exception)

    def test_outputs_come_to_their_places(self):
        self.give_grids("in/a.asc", "in/b.asc")
        self.give("in/b.prj", "PROJCS b")
        self.go_to("work")
        (self.folder / "out").mkdir()
        record = gridforge.run(["-max", "../in/*.asc", "-out", "../out/m"], stage=True)
        self.assertEqual(record.output_names, ["../out/m.asc", "../out/m_src.asc", "../out/m_src_legend.csv", "../out/m.prj",
                                               "../out/m_src.prj"])
        self.assertEqual(self.files("out"), ["m.asc", "m.prj", "m_src.asc", "m_src.prj", "m_src_legend.csv"])
        self.assertEqual(self.files("in"), ["a.asc", "b.asc", "b.prj"])
        self.assertEqual(self.files("work"), [])
        self.assertEqual(cells("../out/m.asc"), [2, 20])
        self.assertTrue(record.staged)

    def test_the_same_files_as_in_place(self):
        for place in ("one", "two"):
            self.give_grids(f"{place}/in/a.asc", f"{place}/in/b.asc")
            self.give(f"{place}/in/a.prj", "PROJCS a")
            self.go_to(place)
            for arguments in (["-max", "in/*.asc"], ["-dif", "in/a.asc", "in/b.asc", "../" + place + "/d"],
                              ["-statAll", "in/a.asc", "in/b.asc", "-flt"], ["-nc", "in/a.asc"], ["-conv", "in/b.asc"]):
                gridforge.run(arguments, stage=place == "two")
        self.assertEqual(self.files("one"), self.files("two"))
        for name in self.files("one"):
            self.assertEqual((self.folder / "one" / name).read_bytes().replace(b"one", b"two"),
                             (self.folder / "two" / name).read_bytes(), name)

    def test_never_over_an_existing_file(self):
        self.give_grids("a.asc")
        self.give("a_extent.asc", "mine")
        self.assertEqual(self.failed("-fe", "a.asc"),
                         "A file is there already, so no output was moved to its place: a_extent.asc")
        self.assertEqual(self.files(), ["a.asc", "a_extent.asc"])
        self.assertEqual(Path("a_extent.asc").read_text(), "mine")

    def test_one_existing_file_keeps_all_others_away(self):
        self.give_grids("a.asc", "b.asc")
        self.give("m_src_legend.csv", "mine")
        self.assertEqual(self.failed("-max", "a.asc", "b.asc", "-out", "m"),
                         "A file is there already, so no output was moved to its place: m_src_legend.csv")
        self.assertEqual(self.files(), ["a.asc", "b.asc", "m_src_legend.csv"])

    def test_overwrite(self):
        self.give_grids("a.asc")
        self.give("m.flt", "old cells")
        self.give("m.hdr", "old header")
        gridforge.run(["-fe", "a.asc", "-out", "m.flt"], stage=True, overwrite=True)
        self.assertEqual(self.files(), ["a.asc", "m.flt", "m.hdr"])
        self.assertEqual((self.folder / "m.flt").stat().st_size, 8)

    def test_an_output_named_after_the_inputs(self):
        for mine in (["d.asc"], ["d.flt", "d.hdr"], ["d_wd.asc"], ["d.asc", "d_wd.asc"]):
            shutil.rmtree(self.folder / "in", ignore_errors=True)
            self.give_grids("in/a.asc", "in/b.asc")
            for name in mine:
                self.give("in/" + name, "mine")
            third = "in/d.flt" if "d.flt" in mine else "in/d.asc"
            there = "in/" + ("d.hdr" if "d.flt" in mine else mine[0])
            self.assertEqual(self.failed("-dif", "in/b.asc", "in/a.asc", third),
                             f"A file is there already, so no output was moved to its place: {there}")
            self.assertEqual(self.files("in"), sorted(["a.asc", "b.asc", *mine]))
            self.assertEqual({(self.folder / "in" / name).read_bytes() for name in mine}, {b"mine"})
            record = gridforge.dif(["in/b.asc", "in/a.asc", third], stage=True, overwrite=True)
            self.assertEqual({name for name in record.output_names if b"mine" in Path(name).read_bytes()}, set())
            self.assertEqual(sorted({"in/" + name for name in mine} - set(record.output_names)), [])

    def test_an_output_named_after_the_inputs_that_is_one_of_them(self):
        for third, result in (("a.asc", "a.asc"), ("b", "b.asc"), ("d.asc", "d_wd.asc")):
            self.give_grids("a.asc", "b.asc", "d_wd.asc")
            arguments = ["-dif", "a.asc", "d_wd.asc" if third == "d.asc" else "b.asc", third]
            before = Path(result).read_bytes()
            self.assertEqual(self.failed(*arguments), f"A file is there already, so no output was moved to its place: {result}")
            self.assertEqual(Path(result).read_bytes(), before)
            gridforge.run(arguments, stage=True, overwrite=True)
            self.assertNotEqual(Path(result).read_bytes(), before)
            for name in ("d.asc", "a_wd.asc", "b_wd.asc"):
                Path(name).unlink(missing_ok=True)

    def test_an_output_that_a_wildcard_matches_after_the_inputs(self):
        self.give_grids("a.asc", "x1.asc", "x2.asc")
        before = Path("x2.asc").read_bytes()
        self.assertEqual(self.failed("-dif", "a.asc", "x?.asc"),
                         "A file is there already, so no output was moved to its place: x2.asc")
        self.assertEqual(Path("x2.asc").read_bytes(), before)
        gridforge.run(["-dif", "a.asc", "x?.asc"], stage=True, overwrite=True)
        self.assertEqual(cells("x2.asc"), [-1, -10])

    def test_a_name_of_an_output_that_has_to_be_there(self):
        self.give_grids("a.asc", "b.asc")
        self.give("q", "mine")
        self.give("c.asc", "mine")
        self.give("c.asc.asc", "old")
        for arguments in (["-cd1", "a.asc", "b.asc"], ["-multiply", "a.asc", "b.asc"]):
            self.assertEqual(gridforge.run([*arguments, "q"], stage=True, overwrite=True).output_names, ["q.asc"])
            self.assertEqual(self.failed(*arguments, "c.asc"),
                             "A file is there already, so no output was moved to its place: c.asc.asc")
            self.assertEqual([Path(name).read_text() for name in ("q", "c.asc", "c.asc.asc")], ["mine", "mine", "old"])
            self.assertEqual(self.failed(*arguments, "none"), "ERROR - No valid file found for input: none")

    def test_an_output_that_is_an_input(self):
        self.give_grids("a.asc", "b.asc")
        self.assertEqual(self.failed("-max", "-src", "a.asc", "b.asc", "-out", "a"),
                         "A file is there already, so no output was moved to its place: a.asc")
        self.assertEqual(cells("a.asc"), [1, 10])
        gridforge.run(["-max", "-src", "a.asc", "b.asc", "-out", "a"], stage=True, overwrite=True)
        self.assertEqual(cells("a.asc"), [2, 20])

    def test_outputs_of_an_earlier_run_that_a_wildcard_finds(self):
        self.give_grids("a.asc", "b.asc")
        gridforge.run(["-max", "-src", "*.asc"], stage=True)
        self.assertEqual(self.files(), ["a(maxmax).asc", "a.asc", "b.asc"])
        made = (self.folder / "a(maxmax).asc").read_bytes()
        self.give("b.asc", grid([7, 7]))
        self.assertEqual(self.failed("-max", "-src", "a.asc", "a(max*", "b.asc"),
                         "A file is there already, so no output was moved to its place: a(maxmax).asc")
        self.assertEqual((self.folder / "a(maxmax).asc").read_bytes(), made)

    def test_the_prj_of_an_input_stays_as_it_is(self):
        self.give_grids("a.asc")
        self.give("a.prj", 'PROJCS["a",\n  1]\n')
        gridforge.run(["-conv", "a.asc"], stage=True)
        self.assertEqual(self.files(), ["a.asc", "a.flt", "a.hdr", "a.prj"])
        self.assertEqual(Path("a.prj").read_text(), 'PROJCS["a",\n  1]\n')

    def test_links_in_names(self):
        self.give_grids("far/away/in/a.asc")
        self.go_to("work")
        os.symlink("../far/away/in", "in")
        gridforge.run(["-fe", "in/../in/a.asc"], stage=True)
        self.assertEqual(self.files(), ["far/away/in/a.asc", "far/away/in/a_extent.asc"])

    def test_simple_names(self):
        (self.folder / "deep/er").mkdir(parents=True)
        os.symlink("deep/er", "link")
        for name, simple in (("a.asc", "a.asc"), ("../x/a*.asc", "../x/a*.asc"), ("./a", "./a"), ("link/../a", "deep/a"),
                             ("d\\a", "d/a"), ("../" * 50 + "a", "../" * (len(self.folder.parts) - 1) + "a")):
            self.assertEqual(simple_name(name, self.folder), simple)

    def test_a_missing_folder_of_the_output(self):
        self.give_grids("a.asc")
        self.assertEqual(self.failed("-fe", "a.asc", "-out", "none/at/all/m").splitlines()[0], "Can't open: none/at/all/m.asc")
        self.assertEqual(self.files(), ["a.asc"])

    def test_the_scratch_folder_stands_beside_the_outputs(self):
        self.give_grids("in/a.asc")
        (self.folder / "out").mkdir()
        self.use_tool("pwd -P\necho 'ERROR - No'\n")
        for operation, out, beside in (("-fe", ["-out", "out/m"], "out"), ("-fe", [], "in"), ("-fe", ["-out", "none/m"], "."),
                                       ("-dif", ["in/a.asc", "out/d"], "out")):
            lines = []
            with self.assertRaises(gridforge.RunError):
                gridforge.run([operation, "in/a.asc", *out], stage=True, on_line=lines.append)
            self.assertEqual(Path(lines[0].split(staging.PREFIX)[0]), (self.folder / beside).resolve())

    def test_files_that_variables_name_are_those_of_the_caller(self):
        self.give_grids("work/a.asc")
        (self.folder / "wait").mkdir()
        for how in ({"stage": True}, {}):
            os.environ["GRIDFORGE_PROGRESS"] = "progress.json"
            record = gridforge.run(["-fe", "a.asc"], folder=self.folder / "work",
                                   environment={"GRIDFORGE_SCRATCH": "wait"}, **how)
            self.assertEqual(record.output_names, ["a_extent.asc"])
            self.assertEqual(self.files(), ["progress.json", "work/a.asc", "work/a_extent.asc"])
            self.assertIn(b'"read"', Path("progress.json").read_bytes())
            Path("progress.json").unlink()
            Path("work/a_extent.asc").unlink()
        self.use_tool('echo "$GRIDFORGE_PROGRESS $GRIDFORGE_SCRATCH"\necho Finished.\n')
        lines = []
        gridforge.run(["-fe", "a.asc"], folder="work", stage=True, on_line=lines.append,
                      environment={"GRIDFORGE_SCRATCH": "wait"})
        self.assertEqual(lines[0], f"{self.folder}/progress.json {self.folder}/wait")

    def test_the_scratch_folder_is_kept_if_asked(self):
        self.give_grids("a.asc")
        self.use_tool("echo half > part.asc\necho 'ERROR - No'\n")
        with self.assertRaises(gridforge.RunError) as raised:
            gridforge.run(["-fe", "a.asc"], stage=True, keep=True)
        scratch = Path(raised.exception.record.scratch)
        self.assertEqual(scratch.parent, self.folder)
        self.assertEqual(sorted(os.listdir(scratch / self.folder.relative_to("/"))), ["a.asc", "part.asc"])

    def test_inputs_that_control_files_name(self):
        self.give("storm.rfc", "RF GRID Cell Size == 10\nRF GRID Size (X,Y) == 20, 30\nRainfall Hyetograph p == rain/p.csv\n"
                  "Rainfall Hyetograph q == rain/p.csv\nRF Interpolation Method == IDW\nRead GIS RF Points == rain/gauges.mif\n")
        self.give("rain/p.csv", "Time,Depth\n0,2\n0.5,4\n")
        self.give("rain/gauges.mif", 'Version 300\nCharset "WindowsLatin1"\nDelimiter ","\nCoordSys NonEarth Units "m" Bounds '
                  '(0, 0) (100, 100)\nColumns 3\n  Name Char(40)\n  F1 Float\n  F2 Float\nData\n\nPoint 5 5\n'
                  '    Symbol (35,0,12)\n')
        self.give("rain/gauges.mid", '"p",1,1\n')
        self.assertEqual(self.failed("-rf", "storm.rfc"), 'CHECK 0008 - "rain/p.csv" cannot be found')
        record = gridforge.run(["-rf", "storm.rfc"], stage=True, named_inputs=["rain/p.csv", self.folder / "rain/*.mif"])
        self.assertEqual(set(record.output_names), {"storm_index.csv", "storm_t0..asc", "storm_t0.5.asc", "storm_total.asc"})
        self.assertEqual({file.name for file in record.inputs},
                         {"storm.rfc", "rain/p.csv", "rain/gauges.mif", "rain/gauges.mid"})
        self.assertEqual({file.size is None for file in record.inputs}, {False})
        with self.assertRaises(gridforge.WrongUse) as raised:
            gridforge.run(["-rf", "storm.rfc"], stage=True, named_inputs=["rain/q.csv"])
        self.assertEqual(str(raised.exception), "No such input: rain/q.csv")

    def test_tables_whose_folder_an_attribute_names(self):
        self.give("in/a.asc", grid(*[range(row, row + 9) for row in range(9)]))
        (self.folder / "csv").mkdir()
        self.give("in/nodes.mif", 'Version 300\nCharset "WindowsLatin1"\nDelimiter ","\nCoordSys NonEarth Units "m" Bounds '
                  '(0, 0) (100, 100)\nColumns 12\n  ID Char(50)\n  A Char(2)\n  B Char(8)\n' +
                  "".join(f"  {name} Char(20)\n" for name in "CDEFGH") + "  I Float\n  J Float\n  Skew Float\nData\n\n"
                  "Region 1\n5\n1.5 1.5\n4.5 1.5\n4.5 4.5\n1.5 4.5\n1.5 1.5\n    Pen (1,2,0)\n")
        self.give("in/nodes.mid", '"csv/pond.csv","S","Node","a","b","c","d","e","f",1.5,2.5,0\n')
        record = gridforge.run(["-na", "in/nodes.mif", "in/a.asc"], stage=True)
        self.assertEqual(record.output_names, ["csv/pond.csv"])
        self.assertEqual(self.files("csv"), ["pond.csv"])

    def test_names_that_a_control_file_alone_knows_lead_nowhere_else(self):
        self.give_grids("deep/er/a.asc")
        self.go_to("deep/er")
        self.use_tool("mkdir -p ../../out\necho cells > ../../out/x.asc\necho cells > '" + str(self.folder / "from root.asc") + "'\n"
                      "echo Trying to open file '" + str(self.folder / "from root.asc") + "...OK.  File Unit:1001'\n"
                      "echo Finished.\n")
        (self.folder / "out").mkdir()
        record = gridforge.run(["-fe", "a.asc"], stage=True)
        self.assertEqual(record.output_names, ["../../out/x.asc", f"{self.folder}/from root.asc"])
        self.assertEqual(self.files("out"), ["x.asc"])

    def test_an_input_that_changes_during_the_run(self):
        source = self.give("a.asc", grid([1, 2]))
        self.use_tool(f"echo more >> '{source}'\necho new > m.asc\necho Finished.\n")
        self.assertEqual(self.failed("-fe", "a.asc"), "An input was changed during the run: a.asc")
        self.assertEqual(self.files(), ["a.asc", "tool/gridforge"])

    def test_a_shapefile_comes_with_all_its_files(self):
        for name in ("P.SHP", "p.shx", "p.dbf", "p.prj"):
            self.give("in/" + name, name)
        self.give_grids("a.asc")
        self.use_tool("ls in\ncat in/P.SHP\necho\necho Finished.\n")
        lines = []
        gridforge.run(["-cp", "in/p.shp", "a.asc"], stage=True, on_line=lines.append)
        self.assertEqual(lines, ["P.SHP", "p.dbf", "p.prj", "p.shx", "P.SHP", "Finished."])

    def test_two_tries_of_one_job_do_not_meet(self):
        self.give_grids("a.asc")
        ends = []

        def one():
            try:
                gridforge.run(["-fe", "a.asc"], stage=True)
                ends.append("finished")
            except gridforge.RunError as error:
                ends.append(str(error))
        threads = [threading.Thread(target=one) for _ in range(6)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(ends.count("finished"), 1, ends)
        self.assertEqual(set(ends) - {"finished"},
                         {"A file is there already, so no output was moved to its place: a_extent.asc"})
        self.assertEqual(self.files(), ["a.asc", "a_extent.asc"])

    def test_a_file_system_without_links(self):
        self.give_grids("a.asc", "b.asc")
        with mock.patch.object(staging.os, "symlink", side_effect=PermissionError(1, "Operation not permitted")):
            record = gridforge.run(["-max", "-src", "a.asc", "b.asc", "-out", "m"], stage=True)
        self.assertEqual((record.output_names, self.files()), (["m.asc"], ["a.asc", "b.asc", "m.asc"]))

    def test_no_scratch_folder(self):
        self.give_grids("a.asc")
        with mock.patch.object(staging.tempfile, "mkdtemp", side_effect=PermissionError(13, "Permission denied")):
            self.assertEqual(self.failed("-fe", "a.asc"),
                             "The scratch folder could not be set up: [Errno 13] Permission denied")

    def test_outputs_that_cannot_be_moved(self):
        self.give_grids("a.asc")
        with mock.patch.object(moving, "move_file", side_effect=OSError(28, "No space left on device")):
            self.assertEqual(self.failed("-fe", "a.asc"),
                             "The outputs could not be moved to their places: [Errno 28] No space left on device")
        self.assertEqual(self.files(), ["a.asc"])


if __name__ == "__main__":
    unittest.main()
