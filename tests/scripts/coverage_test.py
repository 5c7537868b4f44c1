#!/usr/bin/env python3
"""Tests of scripts/coverage on a made-up report: which routines and lines it says were not reached."""
import json
import os
import sys
import tempfile
import time
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "support"))

from script_module import loaded  # noqa: E402

coverage = loaded("coverage")


class LimitTest(unittest.TestCase):
    def test_a_command_that_does_not_end_is_stopped(self):
        began = time.monotonic()
        self.assertIsNone(coverage.status_within(0.2, ["sleep", "100"]))
        self.assertLess(time.monotonic() - began, 50)
        self.assertEqual(coverage.status_within(100, ["sh", "-c", "exit 3"]), 3)


class CoverageTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(setattr, coverage, "ROOT", coverage.ROOT)
        coverage.ROOT = os.path.realpath(folder.name)
        os.makedirs(os.path.join(coverage.ROOT, "src", "grid"))
        for name in ("src/grid/a.cpp", "src/grid/other_system.cpp"):
            with open(os.path.join(coverage.ROOT, name), "w") as file:
                file.writelines("  line %d of %s\n" % (i, os.path.basename(name)) for i in range(1, 21))

    def unreached(self, *lines):
        return coverage.unreached("\n".join(["SF:" + os.path.join(coverage.ROOT, "src/grid/a.cpp"), *lines, "end_of_record"]))

    def test_lines_that_follow_each_other_are_one_entry(self):
        self.assertEqual(self.unreached("DA:3,0", "DA:4,0", "DA:5,7", "DA:6,0", "DA:9,0", "DA:10,0"),
                         ["src/grid/a.cpp:3-4: line 3 of a.cpp", "src/grid/a.cpp:6: line 6 of a.cpp",
                          "src/grid/a.cpp:9-10: line 9 of a.cpp"])

    def test_code_after_an_assert_is_reached_with_it(self):
        with open(os.path.join(coverage.ROOT, "src/grid/a.cpp"), "w") as file:
            file.write("{\n  assert(a ==\n         b);\n  assert(c);\n\n  d(e,\n    f);\n  g();\n}\n{\n  assert(h);\n  i();\n}\n")
        self.assertEqual(self.unreached("DA:2,5", "DA:3,5", "DA:4,0", "DA:6,0", "DA:7,0", "DA:8,0", "DA:11,0", "DA:12,0"),
                         ["src/grid/a.cpp:8: g();", "src/grid/a.cpp:11-12: assert(h);"])

    def test_routines_that_never_ran(self):
        self.assertEqual(self.unreached("FN:5,_ZN4grid4readEi", "FN:9,_ZN4grid5writeEi", "FNDA:0,_ZN4grid4readEi",
                                        "FNDA:2,_ZN4grid5writeEi"), ["src/grid/a.cpp:5: never run: grid::read"])

    def test_a_template_has_run_where_one_copy_has(self):
        self.assertEqual(self.unreached("FN:5,_ZN1f1gIiEEvv", "FN:5,_ZN1f1gIfEEvv", "FNDA:0,_ZN1f1gIiEEvv", "FNDA:1,_ZN1f1gIfEEvv"),
                         [])

    def test_a_file_does_not_take_on_what_another_has(self):
        again = "SF:" + os.path.join(coverage.ROOT, "src/grid/other_system.cpp")
        self.assertEqual(self.unreached("DA:1,0", "end_of_record", again, "DA:2,0"),
                         ["src/grid/a.cpp:1: line 1 of a.cpp", "src/grid/other_system.cpp:2: line 2 of other_system.cpp"])

    def test_each_place_has_its_reason_below(self):
        found = ["src/grid/a.cpp:3-4: throw x;", "src/grid/a.cpp:9: never run: grid::read", "src/grid/b.cpp: not compiled",
                 "src/grid/b.cpp:3: throw x;"]
        known = {("src/grid/a.cpp", "throw x;"): "cannot be had", ("src/grid/a.cpp", "never run: grid::read"): "only for callers",
                 ("src/grid/b.cpp", "not compiled"): "another system"}
        self.assertEqual(coverage.explained(found, known),
                         ([found[0], "    cannot be had", found[1], "    only for callers", found[2], "    another system",
                           found[3], "    NO REASON GIVEN"], 1))

    def test_reasons_are_of_files_that_exist(self):
        root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
        coverage.ROOT = root
        for (source, text), why in coverage.reasons().items():
            self.assertTrue(os.path.exists(os.path.join(root, source)), source)
            self.assertTrue(text and why, source)

    def test_shares_and_sources_that_are_not_compiled(self):
        totals = {key: {"count": 3, "covered": 2, "percent": 66.6667} for key, _ in coverage.KINDS}
        summary = {"data": [{"files": [{"filename": os.path.join(coverage.ROOT, "src/grid/a.cpp")}], "totals": totals}]}
        figures, left_out = coverage.reached(json.dumps(summary))
        self.assertEqual(figures, {name: {"count": 3, "reached": 2, "percent": 66.67} for _, name in coverage.KINDS})
        self.assertEqual(left_out, ["src/grid/other_system.cpp"])


if __name__ == "__main__":
    sys.exit(unittest.main())
