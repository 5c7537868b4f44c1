#!/usr/bin/env python3
"""Tests of scripts/fuzz: how it shares the time, what it takes from the words of a fuzzer and how it adds up; when a planted fault
counts as found, and that the places of all are in the sources."""
import contextlib
import io
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "support"))

from script_module import loaded  # noqa: E402

fuzz = loaded("fuzz")

ENDED = """#5137\tDONE   cov: 1665 ft: 3897
Done 5137 runs in 5 second(s)
stat::number_of_executed_units: 5137
stat::average_exec_per_sec:     1027
"""
CRASHED = """#8 NEW
src/grid/reader.cpp:31:7: runtime error: signed integer overflow
SUMMARY: UndefinedBehaviorSanitizer: undefined-behavior src/grid/reader.cpp:31:7 in
stat::number_of_executed_units: 12
"""
WITNESSED = """Recording the runs of the command-line tests
seed 3, 60 inputs as they are, 60 damaged; 240 s, 1 runs a second
processor time of the executables: 70.987 s
%d runs: %d good, %d bad
"""


class TimeTest(unittest.TestCase):
    def test_the_kinds_share_the_time(self):
        fuzz.CORES = 2
        self.assertEqual(fuzz.seconds_each(60, 20), 6)
        self.assertEqual(fuzz.seconds_each(60, 1), 60)

    def test_each_gets_a_second(self):
        fuzz.CORES = 2
        self.assertEqual(fuzz.seconds_each(1, 20), 1)

    def test_processor_time_of_children_counts(self):
        before = fuzz.processor_seconds()
        subprocess.run([sys.executable, "-c", "import time\nwhile time.process_time() < 0.3: pass"], check=True)
        self.assertGreaterEqual(fuzz.processor_seconds() - before, 0.3)


class WordsTest(unittest.TestCase):
    def test_runs_are_counted(self):
        self.assertEqual(fuzz.runs_in(ENDED), 5137)
        self.assertEqual(fuzz.runs_in("killed"), 0)

    def test_the_first_finding_is_shown(self):
        self.assertEqual(fuzz.finding_in(CRASHED), "src/grid/reader.cpp:31:7: runtime error: signed integer overflow")
        self.assertEqual(fuzz.finding_in(ENDED), "see the log")

    def test_damaged_runs_are_counted(self):
        self.assertEqual(fuzz.damaged_result(WITNESSED % (120, 118, 2), 1), {"runs": 120, "seconds": 70, "findings": 2})
        self.assertEqual(fuzz.damaged_result(WITNESSED % (120, 120, 0), 0), {"runs": 120, "seconds": 70, "findings": 0})

    def test_a_bad_end_of_the_witness_is_a_finding(self):
        self.assertEqual(fuzz.damaged_result(WITNESSED % (7, 7, 0), 1)["findings"], 1)

    def test_the_time_of_damaged_runs_is_that_of_the_tool(self):
        started = []

        def start(command, **how):
            started.append(command)
            return popen([sys.executable, "-c", "print(%r, end='')" % text], **how)

        popen, text, printed = subprocess.Popen, WITNESSED % (9, 9, 0), io.StringIO()
        with mock.patch.object(fuzz.subprocess, "Popen", start), contextlib.redirect_stdout(printed):
            self.assertEqual(fuzz.run_damaged(240), {"runs": 9, "seconds": 70, "findings": 0})
        self.assertEqual(started[0][1:6], ["240", "--alone", "--damaged-only", "--preset", "clang"])
        self.assertEqual(printed.getvalue(), text)

    def test_a_failed_witness_counts_nothing(self):
        for said, status in (("witness: no inputs\n", 2), ("", 0), (WITNESSED % (7, 7, 0), 2), ("7 runs: 7 good, 0 bad\n", 0),
                             (WITNESSED % (7, 7, 0) + "more\n", 0)):
            with self.assertRaises(SystemExit):
                fuzz.damaged_result(said, status)


class StandInBuild:
    """Its fuzzer ends with one status after the other, and says the same each time."""

    def __init__(self, folder, statuses, says):
        self.folder = folder
        self.seeds = os.path.join(folder, "seeds")
        self.statuses = list(statuses)
        self.says = says
        self.asked = []

    def fuzz(self, kind, log, options, folders, plant=""):
        with open(log, "w") as output:
            output.write(self.says)
        self.asked.append((kind, plant, options[0], folders))
        return self.statuses.pop(0)


class SearchTest(unittest.TestCase):
    """Looking for a planted fault: first by the seeds alone, then at random."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="gridforge-test-")
        self.addCleanup(shutil.rmtree, self.folder)

    def search(self, statuses, says=ENDED):
        """What find_plant returns and prints, with a clock on which it takes 12.5 seconds; and its fuzzer."""
        build = StandInBuild(self.folder, statuses, says)
        printed = io.StringIO()
        with mock.patch.object(fuzz.time, "monotonic", side_effect=[100, 112.5]), contextlib.redirect_stdout(printed):
            found = fuzz.find_plant(build, "mif")
        self.assertEqual(build.statuses, [])
        return found, printed.getvalue(), build

    def test_a_fault_is_found(self):
        found, printed, build = self.search([0, 77], CRASHED)
        self.assertIs(found, True)
        self.assertEqual(printed, "mif           found after 12.5 s, 12 runs\n")
        seeds = os.path.join(self.folder, "seeds", "mif")
        learnt = os.path.join(self.folder, "learnt", "mif")
        self.assertEqual(build.asked, [("mif", "mif", "-runs=0", [seeds]), ("mif", "mif", "-max_total_time=30", [learnt, seeds])])

    def test_a_fault_is_not_found(self):
        for status in (0, "not ended"):
            found, printed, _ = self.search([0, status])
            self.assertIs(found, False)
            self.assertEqual(printed, "mif           NOT FOUND after 12.5 s, 5137 runs\n")

    def test_a_seed_that_meets_the_fault_is_no_find(self):
        found, printed, build = self.search([77], CRASHED)
        self.assertIs(found, False)
        self.assertEqual(printed, "mif           its seeds alone come to the fault (%s)\n" % os.path.join(self.folder, "mif-planted.log"))
        self.assertEqual(len(build.asked), 1)

    def test_what_an_earlier_search_has_learnt_is_gone(self):
        learnt = os.path.join(self.folder, "learnt", "mif")
        os.makedirs(learnt)
        with open(os.path.join(learnt, "input"), "w"):
            pass
        self.search([0, 77])
        self.assertEqual(os.listdir(learnt), [])


class MergingBuild(StandInBuild):
    """Its fuzzer puts all that was learnt beside the seeds."""

    def fuzz(self, kind, log, options, folders, plant=""):
        for name in os.listdir(folders[1]):
            shutil.copy(os.path.join(folders[1], name), folders[0])
        return super().fuzz(kind, log, options, folders)


class KeepTest(unittest.TestCase):
    """A small corpus stays in the tree."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="gridforge-test-")
        self.addCleanup(shutil.rmtree, self.folder)
        os.mkdir(self.path("kept"))

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def give(self, folder, **inputs):
        os.makedirs(self.path(folder), exist_ok=True)
        for name, data in inputs.items():
            with open(self.path(folder, name), "wb") as file:
                file.write(data)

    def keep(self, statuses, most):
        build = MergingBuild(self.folder, statuses, ENDED)
        with mock.patch.object(fuzz, "KEPT", self.path("kept")), mock.patch.object(fuzz, "KEPT_BYTES", most), \
                contextlib.redirect_stdout(io.StringIO()):
            found = fuzz.keep_kind(build, "mif")
            fuzz.unpack(fuzz.archive_of("mif"), self.path("unpacked"))
        self.assertEqual(build.asked[0][2], "-merge=1")
        return found, {path.name: path.read_bytes() for path in pathlib.Path(self.path("unpacked")).iterdir()}

    def test_small_inputs_beside_the_seeds_come_back_as_they_were(self):
        self.give("seeds/mif", sound=b"Region 1")
        self.give("corpus/mif", a=b"\0\xff\r\n", b=b"Region", c=b"x" * 100)
        self.assertEqual(self.keep([0], 1000), (3, {"000": b"\0\xff\r\n", "001": b"Region", "002": b"x" * 100}))
        self.assertEqual(self.keep([0], 11), (2, {"000": b"\0\xff\r\n", "001": b"Region"}))

    def test_a_fuzzer_that_fails_chooses_nothing(self):
        self.give("seeds/mif", sound=b"Region 1")
        self.assertEqual(self.keep([77], 1000), (None, {}))

    def test_the_same_inputs_are_the_same_archive(self):
        fuzz.pack({"b": b"2", "a": b"1"}, self.path("x"))
        fuzz.pack({"a": b"1", "b": b"2"}, self.path("y"))
        with open(self.path("x"), "rb") as x, open(self.path("y"), "rb") as y:
            self.assertEqual(x.read(), y.read())


class RecordTest(unittest.TestCase):
    def test_results_add_up(self):
        record = fuzz.add_results({}, {"mif": {"runs": 10, "seconds": 2, "findings": 0}}, "2026-01-01")
        record = fuzz.add_results(record, {"mif": {"runs": 5, "seconds": 3, "findings": 1}}, "2026-01-02")
        self.assertEqual(record, {"mif": {"runs": 15, "seconds": 5, "findings": 1, "last": "2026-01-02"}})


class PlantTest(unittest.TestCase):
    PLANT = {"kind": "k", "file": "f", "at": "{ <HERE>end(); }", "when": "a < b"}

    def test_a_fault_goes_to_its_place(self):
        self.assertEqual(fuzz.planted("x { end(); } y", self.PLANT), 'x { PLANT("k", a < b); end(); } y')

    def test_a_place_is_there_once(self):
        self.assertIsNone(fuzz.planted("x", self.PLANT))
        self.assertIsNone(fuzz.planted("{ end(); } { end(); }", self.PLANT))

    def test_all_places_are_in_the_sources(self):
        for plant in fuzz.plants():
            with open(os.path.join(fuzz.ROOT, plant["file"])) as file:
                self.assertIsNotNone(fuzz.planted(file.read(), plant), plant)

    def test_each_kind_has_a_fault(self):
        kinds = set()
        for name in ("readers.cpp", "operations.cpp"):
            with open(os.path.join(fuzz.ROOT, "tests", "fuzz", name)) as file:
                kinds.update(fuzz.re.findall(r'\{"(\w+)", [a-z]\w+\}', file.read()))
        self.assertGreater(len(kinds), 15)
        self.assertEqual(kinds, {plant["kind"] for plant in fuzz.plants()})


if __name__ == "__main__":
    unittest.main()
