"""gridforge-run: its options, what it tells, its exit status, and its end by time and signals."""
import os
import pty
import select
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

import gridforge
from gridforge import command
from gridforge.display import amount, clock, line_of
from gridforge.progress import MOST, Progress, progress_of
from tests.support import PROGRAMS, ScratchTest

SLOW = "echo Build\necho half > half.asc\nexec sleep 60\n"


class CommandTest(ScratchTest):
    def test_what_is_told(self):
        self.give_grids("a.asc", "b.asc")
        gridforge.run(["-max", "-src", "a.asc", "b.asc", "-out", "m"])
        size = os.path.getsize("m.asc")
        self.expect_command(["-max", "-src", "a.asc", "b.asc", "-out", "m"], 0, f"made m.asc ({size} bytes)\n")
        self.expect_command(["-max", "-src", "a.asc", "-grc", "-out", "m"], 0, f"made m.asc ({size} bytes)\n1 warning\n")
        self.expect_command(["--quiet", "-max", "-src", "a.asc", "-grc", "-out", "m"], 0)

    def test_a_bad_run(self):
        self.expect_command(["-max", "none.asc"], 1, error="ERROR - No valid file found for input: none.asc\n")
        self.expect_command(["--quiet", "-max", "none.asc"], 1, error="ERROR - No valid file found for input: none.asc\n")

    def test_nothing_to_do(self):
        self.give_grids("a.asc")
        for arguments in ([], ["a.asc"], ["-b"]):
            self.expect_command(arguments, 3, error="No operation is asked for.\n")

    def test_wrong_use(self):
        self.give_grids("a.asc")
        for arguments, message in (
                (["--quick", "-fe", "a.asc"], "No such option: --quick"),
                (["--quiet=yes", "-fe", "a.asc"], "No such option: --quiet=yes"),
                (["-fe", "a.asc", "--log"], "--log takes a value."),
                (["--timeout", "soon", "-fe", "a.asc"], "--timeout takes a number of seconds above 0, not: soon"),
                (["--timeout=0", "-fe", "a.asc"], "--timeout takes a number of seconds above 0, not: 0"),
                (["--overwrite", "-fe", "a.asc"], "--overwrite goes with --stage."),
                (["--keep", "-fe", "a.asc"], "--keep goes with --stage."),
                (["--input", "a.asc", "-fe", "a.asc"], "--input goes with --stage."),
                (["--stage", "--input", "-fe", "a.asc"], "--input takes one file or more."),
                (["--stage", "--input", "none", "-fe", "a.asc"], "No such input: none"),
                (["-fe", "a.asc "], "The tool takes no name that ends with a blank: 'a.asc '"),
                (["--log", "none/log", "-fe", "a.asc"],
                 "The log cannot be written: [Errno 2] No such file or directory: 'none/log'"),
                (["--json", "none/r.json", "-fe", "a.asc"], "The record cannot be written: none/r.json"),
                (["--json", ".", "-fe", "a.asc"], "The record cannot be written: .")):
            self.expect_command(arguments, 2, error=f"gridforge-run: {message}\n")
        self.assertEqual(self.files(), ["a.asc"])

    def test_no_tool(self):
        os.environ["GRIDFORGE"] = "none"
        self.expect_command(["-fe", "a.asc"], 2, error="gridforge-run: The variable GRIDFORGE names no executable: none\n")

    def test_no_description(self):
        os.environ["GRIDFORGE_JSON"] = str(self.give("bad.json", "[]"))
        done = self.command("-fe", "a.asc")
        self.assertEqual(done.returncode, 2)
        self.assertIn("bad.json is not a description of the tool: ", done.stderr)

    def test_options_anywhere(self):
        options = command.parse(["-max", "a", "--stage", "-dif", "--change", "--input", "x", "y", "-b", "--json=r", "--", "--log"])
        self.assertEqual(options.arguments, ["-max", "a", "-dif", "--change", "-b", "--log"])
        self.assertEqual((options.switches, options.values, options.inputs), ({"--stage"}, {"--json": "r"}, ["x", "y"]))

    def test_help_and_version(self):
        self.assertTrue(self.command("--help").stdout.startswith("usage: gridforge-run [OPTION ...] [--] ARGUMENT ...\n"))
        self.expect_command(["--version"], 0, f"gridforge-run {gridforge.__version__}\n")
        for option in (*command._SWITCHES, *command._WITH_VALUE, "--input"):
            self.assertIn(f"\n  {option} ", command.USAGE)

    def test_as_a_module(self):
        self.give_grids("a.asc")
        done = subprocess.run([sys.executable, "-B", "-m", "gridforge", "--quiet", "-fe", "a.asc"], check=False, timeout=60,
                              env={**os.environ, "PYTHONPATH": str(PROGRAMS.parent)})
        self.assertEqual(done.returncode, 0)
        self.assertEqual(self.files(), ["a.asc", "a_extent.asc"])

    def test_record(self):
        self.give_grids("a.asc")
        self.expect_command(["--quiet", "--json", "record.json", "-fe", "a.asc"], 0)
        record = self.record()
        self.assertEqual((record["shape"], record["outcome"], record["status"]), (1, "finished", 0))
        self.assertEqual((record["peakMemory"] > 0, len(record["outputs"][0]["sha256"])), (True, 64))
        self.expect_command(["--json=record.json", "-fe", "none.asc"], 1, error="ERROR - No valid file found for input: none.asc\n")
        record = self.record()
        self.assertEqual((record["outcome"], record["error"]), ("failed", "ERROR - No valid file found for input: none.asc"))
        self.assertEqual(self.files(), ["a.asc", "a_extent.asc", "record.json"])

    def test_log(self):
        self.give_grids("a.asc")
        self.expect_command(["--quiet", "--log", "log", "-fe", "a.asc"], 0)
        shown = self.command("--quiet", "--log", "-", "-fe", "a.asc").stdout
        self.assertEqual(Path("log").read_text(), shown)
        self.assertTrue(shown.endswith("\nFinished.\n"))

    def test_dry_run(self):
        self.give_grids("in put/a.asc", "in put/b.asc", "c.asc")
        tool = os.environ["GRIDFORGE"]
        size = os.path.getsize("c.asc")
        self.expect_command(["--dry-run", "-max", "in put/?.asc", str(self.folder / "c.asc"), "-out", "m"], 0,
                            f"{tool} -b -max 'in put/?.asc' c.asc -out m\n" +
                            "".join(f"input {name} ({size} bytes)\n" for name in ("in put/a.asc", "in put/b.asc", "c.asc")))
        self.expect_command(["--dry-run", "-max", "none.asc"], 1, f"{tool} -b -max none.asc\nmissing none.asc\n")
        self.expect_command(["--dry-run", "--input", "c.asc", "--", "c.asc"], 3,
                            f"{tool} -b c.asc\n" + 2 * f"input c.asc ({size} bytes)\n")
        self.assertEqual(self.files(), ["c.asc", "in put/a.asc", "in put/b.asc"])

    def test_dry_run_of_an_output_named_after_the_inputs(self):
        self.give_grids("a.asc", "b.asc", "there")
        size = os.path.getsize("a.asc")
        found = f"input a.asc ({size} bytes)\ninput b.asc ({size} bytes)\n"
        tool = os.environ["GRIDFORGE"]
        for row in gridforge.load_description().operations:
            if not row.inputs.then_output_name:
                continue
            flag = "-cd1" if row.name == "cd" else f"-{row.name}"
            for third in ("there", "none"):
                arguments = [flag, "a.asc", "b.asc", third]
                status = self.command("--stage", "--overwrite", *arguments).returncode
                self.expect_command(["--dry-run", *arguments], status, f"{tool} -b {' '.join(arguments)}\n{found}"
                                    f"{'missing' if status else 'output'} {third}\n")
            Path("none.asc").unlink(missing_ok=True)

    def test_stage_told(self):
        self.give_grids("a.asc")
        self.expect_command(["--stage", "--quiet", "-fe", "a.asc"], 0)
        self.expect_command(["--stage", "-fe", "a.asc"], 1,
                            error="A file is there already, so no output was moved to its place: a_extent.asc\n")
        self.expect_command(["--stage", "--overwrite", "--quiet", "-fe", "a.asc"], 0)
        done = self.command("--stage", "--keep", "-fe", "a.asc")
        kept = [name for name in os.listdir(".") if name.startswith(".gridforge-run-")]
        self.assertEqual(done.stderr.splitlines()[1], f"gridforge-run: The scratch folder is kept: {self.folder}/{kept[0]}")

    def test_nobody_reads_what_is_told(self):
        self.give_grids("a.asc")
        read, write = os.pipe()
        os.close(read)
        self.addCleanup(os.close, write)
        program = [sys.executable, "-B", PROGRAMS / "gridforge-run", "--json", "record.json"]
        done = subprocess.run([*program, "-fe", "a.asc"], stdout=write, check=False, stderr=subprocess.PIPE, timeout=60)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(self.files(), ["a.asc", "a_extent.asc", "record.json"])
        self.assertEqual(self.record()["outcome"], "finished")
        done = subprocess.run([*program, "-fe", "none.asc"], stdout=subprocess.PIPE, check=False, stderr=write, timeout=60)
        self.assertEqual((done.returncode, done.stdout, self.record()["outcome"]), (1, b"", "failed"))

    def test_outputs_of_ours_that_are_closed(self):
        self.give_grids("a.asc")
        program = f"'{sys.executable}' -B '{PROGRAMS}/gridforge-run' --json record.json"
        for arguments, status, outcome in (("-fe a.asc >&-", 0, "finished"), ("-fe none.asc 2>&-", 1, "failed")):
            done = subprocess.run(f"{program} {arguments}", shell=True, check=False, capture_output=True, timeout=60)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (status, b"", b""))
            self.assertEqual(self.record()["outcome"], outcome)

    def test_a_full_disk_under_the_log(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("needs /dev/full")
        self.give_grids("a.asc")
        done = self.command("--log", "/dev/full", "-fe", "a.asc")
        self.assertEqual((done.returncode, done.stderr), (1, "A file could not be read or written: [Errno 28] No space left on device\n"))


class EndsTest(ScratchTest):
    """Runs that are ended from outside."""

    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        # A tool holds its end of this pipe for as long as it lives.
        self.pipe = os.path.join(folder.name, "pipe")
        os.mkfifo(self.pipe)

    def from_tool(self):
        """The next byte of a tool at work; none once it has ended."""
        self.assertTrue(select.select([self.end], [], [], 30)[0])
        return os.read(self.end, 1)

    def use_slow_tool(self):
        """One that writes its number to a file and a byte to the pipe when it is at work."""
        self.use_tool(f"echo $$ > '{self.folder}/number'\nexec 9> '{self.pipe}'\n" + SLOW.replace("exec", "printf . >&9\nexec"))

    def begin(self, *arguments):
        """Starts a run and waits until the tool is at work."""
        self.end = os.open(self.pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, self.end)
        process = subprocess.Popen([sys.executable, "-B", PROGRAMS / "gridforge-run", *arguments], stderr=subprocess.PIPE)
        self.addCleanup(process.stderr.close)
        self.assertEqual(self.from_tool(), b".")
        return process

    def test_timeout(self):
        self.give_grids("a.asc")
        self.use_tool(SLOW)
        began = time.monotonic()
        self.expect_command(["--stage", "--timeout", "0.5", "-fe", "a.asc"], 124,
                            error="The run did not end within 0.5 seconds.\n")
        self.assertLess(time.monotonic() - began, 20)
        self.assertEqual(self.files(), ["a.asc", "tool/gridforge"])

    def test_a_tool_that_does_not_want_to_end(self):
        self.use_tool("trap '' TERM\necho Build\nwhile :; do sleep 0.1; done\n")
        from gridforge import process
        self.addCleanup(setattr, process, "TIME_TO_END", process.TIME_TO_END)
        process.TIME_TO_END = 0.3
        with self.assertRaises(gridforge.RunError) as raised:
            gridforge.run(["-fe", "a.asc"], timeout=0.3)
        self.assertEqual(raised.exception.status, 124)

    def test_signals_end_the_run_and_its_scratch_folder(self):
        self.give_grids("a.asc")
        self.use_slow_tool()
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            process = self.begin("--stage", "-fe", "a.asc")
            process.send_signal(number)
            error = process.stderr.read()
            self.assertEqual((process.wait(30), error), (-number, b"The run was ended before it had finished.\n"))
            self.assertEqual(self.files(), ["a.asc", "number", "tool/gridforge"])
            with self.assertRaises(ProcessLookupError):
                os.kill(int(Path("number").read_text()), 0)

    def test_a_run_that_is_killed_leaves_nothing_under_the_name_of_an_output(self):
        self.give_grids("a.asc")
        self.use_slow_tool()
        process = self.begin("--stage", "-fe", "a.asc")
        process.kill()
        process.wait(30)
        self.assertEqual(self.from_tool(), b"")
        self.assertEqual([name for name in self.files() if not name.startswith(".gridforge-run-")],
                         ["a.asc", "number", "tool/gridforge"])

    def test_cancel(self):
        self.use_tool(SLOW)

        class Soon:
            asked = 0

            def is_set(self):
                self.asked += 1
                return self.asked > 2
        with self.assertRaises(gridforge.RunError) as raised:
            gridforge.run(["-fe", "a.asc"], cancel=Soon())
        self.assertEqual((raised.exception.record.outcome, str(raised.exception)),
                         ("cancelled", "The run was ended before it had finished."))


class ProgressTest(ScratchTest):
    LINE = '{"seconds": 61.5, "read": 1500, "written": 2000000, "objects": 7}'

    def test_amounts(self):
        self.assertEqual([amount(size) for size in (0, 999, 1000, 12345, 999_499, 999_500, 3_000_000_000)],
                         ["0 bytes", "999 bytes", "1 kB", "12.3 kB", "999 kB", "1 MB", "3 GB"])
        self.assertEqual([clock(seconds) for seconds in (0.9, 61.5, 3600 + 65)], ["0:00", "1:01", "1:01:05"])

    def test_line(self):
        self.give("a.asc", b"x" * 3000)
        totals = progress_of([self.folder / "a.asc", self.folder / "none"])
        progress = totals.after(self.LINE.encode())
        self.assertEqual(progress, Progress(61.5, 1500, 2_000_000, 7, 3000))
        self.assertEqual(line_of(progress), "1:01  50 % of the inputs  read 1.5 kB, wrote 2 MB  7 objects")
        self.assertEqual(line_of(Progress(2, 5000, 0, 0, 3000)), "0:02  99 % of the inputs  read 5 kB, wrote 0 bytes")
        self.assertEqual(line_of(Progress(2, 5000, 0, 0, 0)), "0:02  read 5 kB, wrote 0 bytes")

    def test_told_to_python(self):
        self.give_grids("a.asc")
        self.use_tool(f"echo '{self.LINE}' >&${{GRIDFORGE_PROGRESS#fd:}}\necho Finished.\n")
        told = []
        gridforge.run(["-fe", "a.asc"], on_progress=told.append)
        self.assertEqual([progress.read for progress in told], [1500])

    def totals(self, *arguments, **how):
        """What a run whose tool writes one line about its progress is measured by."""
        self.use_tool(f"echo '{self.LINE}' >&${{GRIDFORGE_PROGRESS#fd:}}\necho Finished.\n")
        told = []
        gridforge.run(arguments, on_progress=told.append, **how)
        return [(progress.total, progress.fraction) for progress in told]

    def test_what_belongs_to_the_inputs_counts(self):
        for name, size in (("a.flt", 1000), ("a.hdr", 200), ("p.mif", 30), ("p.mid", 4), ("other.asc", 5000)):
            self.give(name, b"x" * size)
        self.assertEqual(self.totals("-cp", "p.mif", "a.flt"), [(1234, MOST)])
        self.assertEqual(self.totals("-max", "a.flt", "a.flt", "other.asc"), [(6200, 1500 / 6200)])

    def test_inputs_that_only_control_files_name(self):
        for name, size in (("storm.rfc", 100), ("rain/p.csv", 2900)):
            self.give(name, b"x" * size)
        self.assertEqual(self.totals("-rf", "storm.rfc"), [(0, None)])
        self.assertEqual(self.totals("-rf", "storm.rfc", stage=True, named_inputs=["rain/*"]), [(3000, 0.5)])

    def test_the_tool_tells_it(self):
        self.give_grids("a.asc")
        told = []
        record = gridforge.run(["-fe", "a.asc"], on_progress=told.append)
        self.assertEqual(told[-1].total, os.path.getsize("a.asc"))
        self.assertGreaterEqual(told[-1].read, told[-1].total)
        self.assertGreaterEqual(told[-1].written, record.outputs[0].size)

    def test_somebody_else_has_asked_for_it(self):
        self.give_grids("a.asc")
        read, write = os.pipe()
        os.set_inheritable(write, True)
        closed = ("fd:987", "fd:", "fd:" + "9" * 30, "987")
        for place, told in ((f"fd:{write}", True), (str(write), True), *((place, False) for place in closed)):
            os.environ["GRIDFORGE_PROGRESS"] = place
            self.assertEqual(gridforge.run(["-fe", "a.asc"]).outcome, "finished")
            os.write(write, b"\n")
            self.assertEqual(b"read" in os.read(read, 10000), told, place)
        os.close(read)
        os.close(write)

    def test_on_a_terminal(self):
        self.give_grids("a.asc")
        self.use_tool(f"echo '{self.LINE}' >&${{GRIDFORGE_PROGRESS#fd:}}\necho Finished.\n")
        ours, theirs = pty.openpty()
        process = subprocess.Popen([sys.executable, "-B", PROGRAMS / "gridforge-run", "--progress", "-fe", "a.asc"], stderr=theirs)
        os.close(theirs)
        self.assertEqual(process.wait(60), 0)
        shown = os.read(ours, 10000).decode()
        os.close(ours)
        self.assertEqual(shown, "\r\x1b[K1:01  99 % of the inputs  read 1.5 kB, wrote 2 MB  7 objects\r\x1b[K")

    def test_nothing_is_shown_where_there_is_no_terminal(self):
        self.give_grids("a.asc")
        self.use_tool("echo \"${GRIDFORGE_PROGRESS:-none}\"\necho Finished.\n")
        self.assertEqual(self.command("--progress", "--log", "-", "-fe", "a.asc").stdout, "none\nFinished.\n")


if __name__ == "__main__":
    unittest.main()
