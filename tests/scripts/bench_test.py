#!/usr/bin/env python3
"""Tests of scripts/bench on made-up figures: what counts as worse, and what the page says."""
import argparse
import contextlib
import io
import json
import os
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "support"))

from script_module import SCRIPTS, loaded  # noqa: E402

bench = loaded("bench")
import inputs  # noqa: E402  bench shows where
import page  # noqa: E402
from runs import AtLeast, Run  # noqa: E402

MACHINE = {"processor": "Some CPU", "cores": 2, "memory_gb": 8, "kernel": "6.1", "files": "ext4"}
MAX = Run("max", "`-max` of 2", {"d1.flt": "depth_100_1.flt"}, "-max d1.flt -out o.flt", {"o.flt": 400, "o.csv": AtLeast(40)})
CD = Run("cd", "`-cd`", {"d1.flt": "depth_100_1.flt"}, "-cd1 d1.flt -out o.flt", {"o.flt": 400})


def state(ratio, low, high):
    return {"ratio": ratio, "low": low, "high": high, "ms": 80.4, "processor_ms": 90.0, "plain_ms": 40.0, "turns": 5}


def figures(warm, cold=None, peak=100.0):
    return {"warm": state(*warm), **({"cold": state(*cold)} if cold else {}), "peak_mb": peak, "written_mb": 0.4}


def record(commit, **runs):
    return {"commit": commit, "date": "2000-01-02", "machine": MACHINE, "load": 0.1, "settings": {}, "runs": runs}


class WorseTest(unittest.TestCase):
    def worse(self, now, before):
        return bench.worse("max", now, before)

    def test_quartiles_apart_are_worse(self):
        self.assertEqual(self.worse(figures((2.0, 1.8, 2.2)), figures((1.5, 1.4, 1.6))),
                         ["max, warm: 2.00 (1.80-2.20), was 1.50 (1.40-1.60)"])

    def test_quartiles_that_overlap_are_not(self):
        self.assertEqual(self.worse(figures((2.0, 1.6, 2.2)), figures((1.5, 1.4, 1.6))), [])

    def test_better_is_not_worse(self):
        self.assertEqual(self.worse(figures((1.0, 0.9, 1.1)), figures((1.5, 1.4, 1.6))), [])

    def test_cold_turns_count_for_themselves(self):
        before = figures((1.5, 1.4, 1.6), (1.5, 1.4, 1.6))
        self.assertEqual(self.worse(figures((1.5, 1.4, 1.6), (1.8, 1.7, 1.9)), before),
                         ["max, cold: 1.80 (1.70-1.90), was 1.50 (1.40-1.60)"])
        self.assertEqual(self.worse(figures((1.5, 1.4, 1.6)), before), [])

    def test_memory_has_its_own_measure(self):
        before = figures((1.5, 1.4, 1.6), peak=100.0)
        self.assertEqual(self.worse(figures((1.5, 1.4, 1.6), peak=103.1), before), ["max, peak memory: 103.1 MB, was 100.0 MB"])
        self.assertEqual(self.worse(figures((1.5, 1.4, 1.6), peak=102.9), before), [])


class FiguresTest(unittest.TestCase):
    def test_quartiles(self):
        self.assertEqual(bench.quartiles([5, 1, 4, 2, 3]), (2, 4))
        self.assertEqual(bench.quartiles([1, 2, 3, 4]), (1.75, 3.25))
        self.assertEqual(bench.quartiles([1, 3]), (1.5, 2.5))
        self.assertEqual(bench.quartiles([7]), (7, 7))

    def test_the_ratio_is_that_of_the_medians(self):
        tool = [{"ms": ms, "processor_ms": 10} for ms in (30, 40, 900)]
        plain = [{"ms": ms, "processor_ms": 5} for ms in (10, 20, 30)]
        found = bench.summary(tool, plain)
        self.assertEqual(found, {"ratio": 2.0, "low": 2.5, "high": 16.5, "ms": 40, "processor_ms": 10, "plain_ms": 20, "turns": 3})


class OutputsTest(unittest.TestCase):
    def test_outputs_that_are_not_those_expected(self):
        good = {"o.flt": 400, "o.hdr": 120, "o.csv": 41}
        self.assertEqual(bench.unexpected(MAX, good), "")
        self.assertEqual(bench.unexpected(MAX, {**good, "o.flt": 399}), "o.flt has 399 bytes, not 400")
        self.assertIn("o.csv has 39 bytes", bench.unexpected(MAX, {**good, "o.csv": 39}))
        self.assertIn("wrote ['o.flt', 'o.hdr'], not", bench.unexpected(MAX, {"o.flt": 400, "o.hdr": 120}))
        self.assertIn("'rest.tmp'", bench.unexpected(MAX, {**good, "rest.tmp": 1}))


class SittingTest(unittest.TestCase):
    def all_runs(self, seconds, now, records):
        """What two runs bring whose figures are `now`, or that break without any; and the console."""
        def measure(_sitting, run, _options):
            if now[run.name] is None:
                raise bench.Broken("ended with 1")
            return now[run.name]

        before, bench.measure = bench.measure, measure
        self.addCleanup(setattr, bench, "measure", before)
        made = record("new")
        with contextlib.redirect_stdout(io.StringIO()) as console:
            found = bench.all_runs([MAX, CD], None, argparse.Namespace(seconds=seconds), made, records)
        return found, sorted(made["runs"]), console.getvalue()

    def test_says_what_got_worse_and_what_broke(self):
        found, timed, console = self.all_runs(0, {"max": figures((2, 1.9, 2.1)), "cd": None},
                                              [record("old", max=figures((1, 0.9, 1.1)))])
        self.assertEqual(found, (["max, warm: 2.00 (1.90-2.10), was 1.00 (0.90-1.10)"], ["cd: ended with 1"], []))
        self.assertEqual(timed, ["max"])
        self.assertRegex(console, r"\nmax +2\.00 \(1\.90-2\.10\) .* \| 1\.00 \(0\.90-1\.10\) ")

    def test_names_the_runs_that_are_left(self):
        found, timed, _ = self.all_runs(-1, {}, [])
        self.assertEqual((found, timed), (([], [], ["max", "cd"]), []))


class PageTest(unittest.TestCase):
    RECORDS = [record("aaa", max=figures((1.5, 1.4, 1.6), (1.2, 1.1, 1.3)), cd=figures((1.1, 1.0, 1.2))),
               record("bbb", max=figures((1.25, 1.2, 1.3), peak=64.4))]

    def test_each_run_has_its_last_figures(self):
        rows = page.table(self.RECORDS, [MAX, CD]).split("\n")
        self.assertIn("| `-max` of 2 | 1.25 (1.20 to 1.30) | 80 | | | 64 | bbb |", rows)
        self.assertIn("| `-cd` | 1.10 (1.00 to 1.20) | 80 | | | 100 | aaa |", rows)
        self.assertIn("- bbb, 2000-01-02: Some CPU, 2 cores, 8 GB, Linux 6.1, files on ext4, load 0.1.", rows)

    def test_records_without_a_last_figure_are_left_out(self):
        self.assertNotIn("aaa", page.table(self.RECORDS, [MAX]))
        self.assertEqual(bench.compared_with(self.RECORDS, [MAX]), self.RECORDS[1:])
        self.assertEqual(bench.compared_with(self.RECORDS, [MAX, CD]), self.RECORDS)

    def test_only_the_table_of_the_page_changes(self):
        text = "before\n" + page.BEGIN + "old\n" + page.END + "after\n"
        self.assertEqual(page.with_table(text, [], [MAX]), text.replace("old\n", "\nNothing is recorded yet.\n\n"))
        with self.assertRaises(ValueError):
            page.with_table("no place", [], [MAX])

    def test_a_page_that_differs_from_the_records_is_found(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        for name in ("RECORDS", "PAGE", "RUNS"):
            self.addCleanup(setattr, bench, name, getattr(bench, name))
        bench.RECORDS, bench.PAGE = os.path.join(folder.name, "recorded.json"), os.path.join(folder.name, "page.md")
        bench.RUNS = [MAX, CD]
        with open(bench.PAGE, "w") as file:
            file.write("before\n" + page.BEGIN + page.END + "after\n")
        with contextlib.redirect_stdout(io.StringIO()) as console:
            self.assertFalse(bench.page_is_true())
            for one in self.RECORDS:
                bench.keep(one)
            self.assertTrue(bench.page_is_true())
            with open(bench.RECORDS) as file:
                self.assertEqual(json.load(file), self.RECORDS)
            with open(bench.RECORDS, "w") as file:
                file.write(bench.text_of(self.RECORDS[:1]))
            self.assertFalse(bench.page_is_true())
        self.assertEqual(console.getvalue(), 2 * "bench: the table of docs/performance.md is not that of bench/recorded.json\n")


class ArgumentsTest(unittest.TestCase):
    def test_the_help_is_what_stands_at_the_top(self):
        done = subprocess.run([os.path.join(SCRIPTS, "bench"), "--help"], check=True, stdout=subprocess.PIPE, text=True)
        self.assertIn(bench.__doc__, done.stdout)

    def test_names_may_follow_options(self):
        self.addCleanup(setattr, sys, "argv", sys.argv)
        sys.argv = ["bench", "folder", "--turns", "2", "max", "cd"]
        options = bench.arguments()
        self.assertEqual((options.folder, options.turns, options.names), ("folder", 2, ["max", "cd"]))


class InputsTest(unittest.TestCase):
    def test_another_maker_makes_other_inputs(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(setattr, inputs, "MAKING", inputs.MAKING)
        maker = os.path.join(folder.name, "maker")
        inputs.MAKING = (maker,)
        names = []
        for text in ("one", "two", "one"):
            with open(maker, "w") as file:
                file.write(text)
            names.append(inputs.folder_name())
        self.assertEqual(names[0], names[2])
        self.assertNotEqual(names[0], names[1])
        for name in (*names[:2], "inputs-of-mine"):
            os.mkdir(os.path.join(folder.name, name))
        inputs.remove_old(folder.name)
        self.assertEqual(sorted(os.listdir(folder.name)), sorted([names[0], "inputs-of-mine", "maker"]))

    def test_the_disk_that_points_need(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "points_20.xyz")
            inputs.make_points("points_20", path)
            self.assertEqual(inputs.size_on_disk("points_20.xyz"), os.path.getsize(path))


if __name__ == "__main__":
    sys.exit(unittest.main())
