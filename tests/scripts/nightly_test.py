#!/usr/bin/env python3
"""Tests of scripts/nightly: which steps run, for how long, and which results are kept."""
import json
import os
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "support"))

from script_module import loaded  # noqa: E402

nightly = loaded("nightly")
nightly.commit = lambda: "0123456789"


class ChosenTest(unittest.TestCase):
    def chosen(self, *words):
        return [(step.name, seconds) for step, seconds in nightly.chosen(words)]

    def test_all_steps_have_their_seconds(self):
        self.assertEqual(self.chosen(), [(step.name, step.seconds) for step in nightly.STEPS])

    def test_named_steps_come_in_their_order(self):
        self.assertEqual([name for name, _ in self.chosen("bench", "witness")], ["witness", "bench"])

    def test_other_seconds_are_of_one_step(self):
        self.assertEqual(self.chosen("fuzz=7", "faults"), [("fuzz", 7), ("faults", 0)])

    def test_what_no_step_takes_ends_it(self):
        for word, message in (("sleep", "nightly: no step is named sleep (--list shows all)"),
                              ("faults=5", "nightly: faults does not take 5 seconds"),
                              ("fuzz=long", "nightly: fuzz does not take long seconds")):
            with self.assertRaises(SystemExit) as ended:
                nightly.chosen([word])
            self.assertEqual(ended.exception.code, message)

    def test_a_folder_may_have_blanks(self):
        step = nightly.Step("some", "make {folder}/grids --seconds {seconds} --json {json}", 9, 5)
        self.assertEqual(nightly.words(step, 5, "/a b", "/a b/some.json"),
                         ["make", "/a b/grids", "--seconds", "5", "--json", "/a b/some.json"])

    def test_a_word_in_quotes_may_have_blanks(self):
        step = nightly.Step("some", "make --environment 'A=1 B=2'", 9)
        self.assertEqual(nightly.words(step, 0, "/a", ""), ["make", "--environment", "A=1 B=2"])


class KeptTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        nightly.KEPT = os.path.join(folder.name, "nightly.json")

    def kept(self):
        with open(nightly.KEPT) as file:
            return json.load(file)

    def test_other_steps_stay(self):
        nightly.keep("fuzz", {"passed": True})
        nightly.keep("bench", {"passed": False})
        self.assertEqual(self.kept(), {"bench": {"passed": False}, "fuzz": {"passed": True}})

    def test_a_short_result_does_not_replace_a_full_one(self):
        nightly.keep("fuzz", {"seconds": 5, "short": True})
        nightly.keep("fuzz", {"seconds": 6, "short": True})
        self.assertEqual(self.kept(), {"fuzz": {"seconds": 6, "short": True}})
        nightly.keep("fuzz", {"seconds": 300})
        nightly.keep("fuzz", {"seconds": 7, "short": True})
        self.assertEqual(self.kept(), {"fuzz": {"seconds": 300}})

    def test_of_the_bench_the_ratios_are_kept(self):
        figures = {"runs": {"max": {"warm": {"ratio": 1.5, "ms": 80}, "peak_mb": 12}}, "worse": ["max, warm"], "broken": [],
                   "not_run": ["cp"], "load": 0.1}
        self.assertEqual(nightly.brief(figures), {"ratios": {"max": 1.5}, "worse": ["max, warm"], "broken": [], "not_run": ["cp"]})


class RunTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="a night")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.left = os.path.join(self.folder, "left")

    def result(self, text, limit=60, seconds=0, usual=0):
        """The result of a step that is a script for the shell, its console and whether a stopped one cleared up after itself."""
        script = os.path.join(self.folder, "step")
        with open(script, "w") as file:
            file.write(text)
        return nightly.run_step(nightly.Step("some", "sh {folder}/step {json}", limit, usual), seconds, self.folder)

    def test_the_last_line_and_the_figures_are_kept(self):
        result = self.result("echo first; echo '3 runs, all well'; echo; echo '{\"lines\": 4}' > \"$1\"")
        self.assertEqual((result["passed"], result["ended"], result["figures"]), (True, "3 runs, all well", {"lines": 4}))
        self.assertNotIn("short", result)

    def test_a_failed_step_has_not_passed(self):
        self.assertFalse(self.result("exit 1")["passed"])
        self.assertEqual(self.result("exit 7")["status"], 7)

    def test_fewer_seconds_are_a_short_run(self):
        self.assertTrue(self.result("exit 0", seconds=5, usual=9)["short"])

    def test_a_step_that_takes_too_long_can_clear_up(self):
        result = self.result("trap 'rm \"%s\"; exit' TERM; : > \"%s\"; while :; do sleep 0.1; done" % (self.left, self.left), limit=2)
        self.assertEqual((result["passed"], result["status"]), (False, "stopped after 2 s"))
        self.assertFalse(os.path.exists(self.left))

    def test_a_step_that_does_not_end_is_killed(self):
        nightly.GRACE = 1
        result = self.result("trap '' TERM; : > \"%s\"; while :; do sleep 0.1; done" % self.left, limit=2)
        self.assertEqual((result["passed"], result["status"]), (False, "stopped after 2 s"))
        self.assertTrue(os.path.exists(self.left))


if __name__ == "__main__":
    sys.exit(unittest.main())
