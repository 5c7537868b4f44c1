"""Runs in place: outcome, status, what is told, the record."""
import hashlib
import os
import platform
import unittest
from pathlib import Path
from unittest import mock

import gridforge
from gridforge import running
from gridforge.console import Console
from tests.support import ScratchTest, cells, grid


class RunTest(ScratchTest):
    def test_record_of_a_good_run(self):
        self.give_grids("a.asc", "b.asc")
        record = gridforge.run(["-max", "a.asc", "b.asc", "-out", "m"])
        self.assertEqual(cells("m.asc"), [2, 20])
        self.assertEqual((record.outcome, record.status, record.error, record.warnings), ("finished", 0, None, []))
        self.assertEqual(record.arguments, ["-max", "a.asc", "b.asc", "-out", "m"])
        self.assertEqual(record.command, ["-b", "-max", "a.asc", "b.asc", "-out", "m"])
        self.assertEqual((record.operation, record.folder, record.staged), ("max", str(self.folder), False))
        self.assertEqual([file.name for file in record.inputs], ["a.asc", "b.asc"])
        self.assertEqual(record.output_names, ["m.asc", "m_src.asc", "m_src_legend.csv"])
        for file in record.inputs + record.outputs:
            content = (self.folder / file.name).read_bytes()
            self.assertEqual((file.size, file.sha256), (len(content), hashlib.sha256(content).hexdigest()))
        self.assertEqual((record.version, record.host), (gridforge.__version__, platform.node()))
        self.assertEqual(record.build, "Build 2020-10-AA")
        self.assertGreater(record.peak_memory, 100_000)
        for moment in (record.started, record.ended):
            self.assertRegex(moment, r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z$")
        self.assertLessEqual(record.started, record.ended)

    def test_the_version_is_that_of_the_tool_that_ran(self):
        self.use_tool("echo Finished.\n")
        description = Path(os.environ.pop("GRIDFORGE_JSON")).read_text()
        self.give("tool/manual/gridforge.json", description.replace(f'"{gridforge.__version__}"', '"99.1"'))
        self.assertEqual(gridforge.run(["-max", "a.asc"]).version, "99.1")

    def test_threads(self):
        self.give_grids("a.asc")
        processors = len(os.sched_getaffinity(0))
        for wanted, threads in (("1", 1), (str(processors + 1), processors), ("none", processors)):
            self.assertEqual(gridforge.run(["-fe", "a.asc"], environment={"GRIDFORGE_THREADS": wanted}).threads, threads)

    def test_another_tool(self):
        tool = self.give("other", "#!/bin/sh\necho Other\necho Finished.\n")
        tool.chmod(0o755)
        record = gridforge.run(["-fe", "a.asc"], environment={"GRIDFORGE": str(tool)})
        self.assertEqual((record.build, record.tool), ("Other", str(tool)))

    def test_another_folder(self):
        self.give_grids("in/a.asc")
        record = gridforge.run(["-fe", "a.asc"], folder=self.folder / "in")
        self.assertEqual(record.output_names, ["a_extent.asc"])
        self.assertEqual(self.files(), ["in/a.asc", "in/a_extent.asc"])
        with self.assertRaises(gridforge.WrongUse) as raised:
            gridforge.run(["-fe", "a.asc"], folder=self.folder / "none")
        self.assertEqual(str(raised.exception), f"No such folder: {self.folder}/none")

    def test_names_from_the_root_and_with_blanks(self):
        self.give_grids("in put/a b.asc", "in put/c.asc")
        self.go_to("work")
        record = gridforge.run(["-max", self.folder / "in put" / "*.asc", "-out", self.folder / "out"])
        self.assertEqual(record.output_names, ["../out.asc", "../out_src.asc", "../out_src_legend.csv"])
        self.assertEqual([file.name for file in record.inputs], ["../in put/a b.asc", "../in put/c.asc"])

    def test_bytes_that_are_no_text(self):
        name = os.fsdecode(b"h\xf6he.asc")
        self.give_grids(name)
        record = gridforge.run([b"-fe", b"h\xf6he.asc"])
        self.assertEqual(record.output_names, [os.fsdecode(b"h\xf6he_extent.asc")])
        self.assertIn('"h\\udcf6he_extent.asc"', record.to_json())
        done = self.command("-fe", name)
        self.assertEqual((done.returncode, done.stdout), (0, f"made h\udcf6he_extent.asc ({record.outputs[0].size} bytes)\n"))

    def test_an_input_that_is_replaced_has_no_sum(self):
        self.give_grids("a.asc", "b.asc")
        record = gridforge.run(["-max", "-src", "a.asc", "b.asc", "-out", "a.asc"])
        self.assertEqual([(file.name, file.sha256 is None) for file in record.inputs], [("a.asc", True), ("b.asc", False)])
        self.assertEqual(record.output_names, ["a.asc"])

    def test_without_sums(self):
        self.give_grids("a.asc")
        record = gridforge.run(["-fe", "a.asc"], sums=False)
        self.assertEqual({file.sha256 for file in record.inputs + record.outputs}, {None})

    def test_files_that_control_files_name_are_inputs(self):
        self.give_grids("a.asc")
        self.give("floods.dmg", "Read GIS Building == houses.mif\nRead Curve House == house.csv\nRead Result % 1 == a.asc\n")
        self.give("house.csv", "Depth,Damage\n0,0\n100,10000\n")
        self.give("Houses.mif", 'Version 300\nCharset "WindowsLatin1"\nDelimiter ","\n'
                  'CoordSys NonEarth Units "m" Bounds (0, 0) (100, 100)\nColumns 4\n  Prop_Type Char(20)\n  Prop_ID Char(20)\n'
                  '  FFL Float\n  Multiplier Float\nData\n\nPoint 0.4 0.4\n    Symbol (35,0,12)\n')
        self.give("Houses.mid", '"House","1",0,1\n')
        record = gridforge.run(["-damages", "floods.dmg", "-out", "d.mif"])
        self.assertEqual({file.name for file in record.inputs}, {"floods.dmg", "houses.mif", "houses.mid", "house.csv", "a.asc"})
        self.assertEqual({file.size is None for file in record.inputs}, {False})
        self.assertEqual(set(record.output_names), {"d.mif", "d.mid", "d.csv"})

    def failed(self, *arguments, **how):
        with self.assertRaises(gridforge.RunError) as raised:
            gridforge.run(arguments, **how)
        return raised.exception

    def test_messages(self):
        self.give_grids("a.asc")
        self.give("b.asc", grid([1, 2, 3]))
        for arguments, message in (
                (["-max", "a.asc", "b.asc"],
                 "ERROR - number of columns for input grids do not match. Columns = 2 and 3\n"
                 "ERROR - dimensions of grids do not match (see above for details)."),
                (["-max", "none.asc"], "ERROR - No valid file found for input: none.asc"),
                (["-max", "-quick", "a.asc"], 'ERROR - Incorrect flag specified: "-quick"'),
                (["-cp", "none.mif", "a.asc"], 'CHECK 0008 - "none.mif" cannot be found'),
                (["-max", "a.asc", "-out", "none/m"],
                 "Can't open: none/m.asc\nAnother application or user maybe using it,\n   or the file's folder does not exist.\n"
                 "If so, close the file or create file path."),
                (["-max", "-dif", "a.asc"], "ERROR - More than one operational flag specified.")):
            error = self.failed(*arguments)
            self.assertEqual((str(error), error.status, error.record.outcome), (message, 1, "failed"), arguments)

    def test_lines_that_begin_with_ERROR_before_the_end_are_warnings(self):
        self.give_grids("a.asc")
        self.give("a.prj", "GEOGCS\n")
        self.go_to(".")
        record = gridforge.run(["-fe", "-grc", "a.asc"])
        self.assertEqual(record.warnings[0], 'WARNING - "-grc" option only used with "classify". Flag ignored.')
        self.assertEqual(record.outcome, "finished")
        self.use_tool("echo 'ERROR - One'\necho ' WARNING - Two'\necho Finished.\n")
        record = gridforge.run(["-fe", "a.asc"])
        self.assertEqual(record.warnings, ["ERROR - One", "WARNING - Two"])

    def test_the_message_of_a_bad_run_is_no_warning(self):
        self.use_tool("echo 'WARNING - One'\necho 'ERROR - Two'\necho\necho 'Press Enter to Close'\n")
        error = self.failed("-fe", "a.asc")
        self.assertEqual((str(error), error.record.warnings), ("ERROR - Two", ["WARNING - One"]))

    def test_no_operation(self):
        self.give_grids("a.asc")
        for arguments in ([], ["a.asc"], ["-b", "-change", "a.asc"], ["-src", "a.asc"]):
            error = self.failed(*arguments)
            self.assertEqual((str(error), error.status, error.record.outcome),
                             ("No operation is asked for.", 3, "nothing"), arguments)
        self.assertEqual(self.files(), ["a.asc"])

    def test_a_tool_that_says_nothing_or_crashes(self):
        self.use_tool("exit 4\n")
        self.assertEqual(str(self.failed("-fe", "a")), "The tool ended with status 4 and said nothing.")
        self.use_tool("echo Finished.\nkill -SEGV $$\n")
        self.assertEqual(str(self.failed("-fe", "a")), "The tool was ended by signal 11.")
        self.use_tool("echo Finished.\nexit 1\n")
        self.assertEqual(self.failed("-fe", "a").status, 1)
        self.give("tool/gridforge", "no program\x00")
        self.assertRegex(str(self.failed("-fe", "a")), "^The tool could not be run: .*Exec format error")

    def test_standard_input_is_closed(self):
        self.use_tool("if read answer; then echo Finished.; else echo 'ERROR - No answer'; fi\n")
        self.assertEqual(str(self.failed("-fe", "a")), "ERROR - No answer")

    def test_search_without_end(self):
        self.give("level.asc", grid(*[[1 if row == column == 3 else -9999 for column in range(7)] for row in range(7)]))
        self.give("dem.asc", grid(*[[0] * 7 for _ in range(7)]))
        error = self.failed("-remap", "-idw_npt12", "-bd2", "-wl", "level.asc", "-dem", "dem.asc", timeout=60)
        self.assertEqual(str(error), "WARNING - Fewer wet cells within reach than IDW points, the search does not end. "
                         "Press Ctrl+C to stop.")
        self.assertEqual(error.status, 1)

    def test_lines_and_log(self):
        self.give_grids("a.asc")
        lines = []
        with open("log", "wb") as log:
            gridforge.run(["-fe", "a.asc"], log=log, on_line=lines.append)
        self.assertEqual((lines[0], lines[-1]), ("Build 2020-10-AA", "Finished."))
        self.assertEqual("".join(line + "\n" for line in lines), (self.folder / "log").read_text())


class ProjectionTest(ScratchTest):
    def test_that_of_an_input_from_another_folder(self):
        self.give_grids("in/a.asc", "in/b.asc")
        self.give("in/b.prj", 'PROJCS["b",\n  1]\n')
        record = gridforge.run(["-max", "in/a.asc", "in/b.asc", "-out", "m"])
        self.assertEqual(record.output_names, ["m.asc", "m_src.asc", "m_src_legend.csv", "m.prj", "m_src.prj"])
        self.assertEqual((self.folder / "m.prj").read_text(), 'PROJCS["b",\n  1]\n')

    def test_one_that_is_there_stays(self):
        self.give_grids("in/a.asc")
        self.give("in/a.prj", "PROJCS a")
        self.give("m.PRJ", "mine")
        gridforge.run(["-max", "-src", "in/a.asc", "-out", "m"])
        self.assertEqual(self.files(), ["in/a.asc", "in/a.prj", "m.PRJ", "m.asc"])
        self.assertEqual((self.folder / "m.PRJ").read_text(), "mine")

    def test_the_tool_finds_that_of_the_current_folder(self):
        self.give_grids("a.asc")
        self.give("a.prj", 'GEOGCS["x"]')
        record = gridforge.run(["-fe", "a.asc", "-out", "m"])
        self.assertEqual(record.output_names, ["m.asc"])  # it takes none without PROJCS, and so do we

    def test_one_that_cannot_be_copied(self):
        self.give_grids("in/a.asc")
        (self.folder / "in/a.prj").mkdir()
        self.assertEqual(gridforge.run(["-fe", "in/a.asc", "-out", "m"]).output_names, ["m.asc"])
        os.rmdir("in/a.prj")
        self.give("in/a.prj", "PROJCS a")
        with mock.patch.object(running, "move_file", side_effect=PermissionError(13, "Permission denied")):
            with self.assertRaises(gridforge.RunError) as raised:
                gridforge.run(["-fe", "in/a.asc", "-out", "m"])
        self.assertEqual(str(raised.exception), "A file could not be read or written: [Errno 13] Permission denied")
        self.assertEqual((raised.exception.status, raised.exception.record.output_names), (1, ["m.asc"]))
        self.assertEqual(self.files(), ["in/a.asc", "in/a.prj", "m.asc"])

    def test_each_of_several_inputs_has_its_own(self):
        self.give_grids("in/a.asc", "in/b.asc")
        self.give("in/a.prj", "PROJCS a")
        self.give("in/b.prj", "PROJCS b")
        gridforge.run(["-conv", "in/a.asc", "in/b.asc"])
        self.assertEqual((self.folder / "in/a.prj").read_text(), "PROJCS a")
        self.assertEqual((self.folder / "in/b.prj").read_text(), "PROJCS b")


class ConsoleTest(unittest.TestCase):
    def test_lines_about_files(self):
        console = Console()
        for line in ("Build", "Trying to open file a.asc...OK.", "Opened File Unit:1001", "Trying to open file b\\c d.asc...OK.",
                     "Trying to open file m.asc...OK.  File Unit:1001", "Trying to open file no.asc...",
                     "Trying to open file no/x.asc...Can't Open", "Opening output netcdf file: a.nc",
                     "      10      20Trying to open file late.csv...OK.  File Unit:1002", "Opening output .nc file: rain.nc",
                     "Trying to open file m.asc...OK.", "Finished."):
            console.take(line.encode() + b"\r")
        self.assertEqual(console.inputs, ["a.asc", "b\\c d.asc", "m.asc"])
        self.assertEqual(console.outputs, ["m.asc", "a.nc", "late.csv", "rain.nc"])
        self.assertTrue(console.finished)
        self.assertEqual(console.build, "Build")

    def test_messages_of_several_lines(self):
        for said, message in ((["ERROR - Reading following line in classes file:", "1,x"], 0), (["ERROR - old", "a", "ERROR - b"], 2),
                              (["WARNING - a", "Netcdf error message: none"], 1), (["ERROR - a", "ERROR - b", "", "c"], 0)):
            console = Console()
            for line in said + ["", "Press Enter to Close"]:
                console.take(line.encode())
            self.assertEqual(console.message(), "\n".join(line for line in said[message:] if line))
        self.assertIsNone(Console().message())


if __name__ == "__main__":
    unittest.main()
