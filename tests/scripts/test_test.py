#!/usr/bin/env python3
"""Tests of scripts/test in a tree whose steps do what a test asks for."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


class TestTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = folder.name
        os.makedirs(os.path.join(self.tree, "scripts"))
        os.makedirs(os.path.join(self.tree, "build", "release", "test-results"))
        shutil.copy(os.path.join(ROOT, "scripts", "test"), os.path.join(self.tree, "scripts"))
        self.program("build/release/test-results/times.txt", "")

    def program(self, name, text):
        path = os.path.join(self.tree, name)
        with open(path, "w") as file:
            file.write("#!/bin/sh\n%s\n" % text if text else "")
        os.chmod(path, 0o755)

    def run_test(self, setup, cmake, cases, mode=("--quick",)):
        """The exit status, the console and its last line of a run, a quick one at first, whose steps end with these commands."""
        self.program("scripts/setup", setup)
        self.program("scripts/run-cases", cases)
        self.program("cmake", cmake)
        done = subprocess.run([os.path.join(self.tree, "scripts", "test"), *mode], check=False, stdout=subprocess.PIPE,
                              env={**os.environ, "PATH": self.tree + ":" + os.environ["PATH"]}, stderr=subprocess.STDOUT, text=True)
        return done.returncode, done.stdout, done.stdout.splitlines()[-1]

    def test_all_went_well(self):
        status, console, last = self.run_test("exit 0", "exit 0", "echo '12 passed, 0 failed, 1 skipped'")
        self.assertEqual((status, last), (0, "12 passed, 0 failed"))
        self.assertIn("\n1 skipped\n", console)

    def test_a_failed_step_without_cases_counts_as_one(self):
        status, console, last = self.run_test("exit 0", "exit 1", "echo '12 passed, 0 failed, 0 skipped'")
        self.assertEqual((status, last), (1, "0 passed, 1 failed"))
        self.assertIn("failed step: release build\n", console)

    def test_failed_cases_are_counted_once(self):
        status, console, last = self.run_test("exit 0", "exit 0", "echo '10 passed, 2 failed, 0 skipped'; exit 1")
        self.assertEqual((status, last), (1, "10 passed, 2 failed"))
        self.assertIn("failed step: release tests\n", console)

    def test_cases_that_say_nothing_count_as_one(self):
        self.assertEqual(self.run_test("exit 0", "exit 0", "echo nothing; exit 1")[::2], (1, "0 passed, 1 failed"))

    def test_without_its_needs_it_fails(self):
        self.assertEqual(self.run_test("exit 1", "exit 0", "exit 0")[::2], (1, "0 passed, 1 failed"))

    def test_it_says_that_qgis_or_snakemake_are_missing(self):
        os.makedirs(os.path.join(self.tree, "build", "release", "tests"))
        # What ctest reports goes to the file that the seventh argument names.
        self.program("ctest", """echo '<testsuite tests="5" failures="0" disabled="0" skipped="2">' > "$7\"""")
        notes = {"qgis/tests/with_qgis.py":
                 "QGIS is not installed, so its plugin was not tested in it; scripts/setup --qgis installs it\n",
                 "workflows/tests/with_workflow.py":
                 "Snakemake is not installed, so the workflow for ensembles was not tested; scripts/setup --workflows installs it\n"}
        for missing in ([], *([name] for name in notes), list(notes)):
            for name in notes:
                os.makedirs(os.path.join(self.tree, os.path.dirname(name)), exist_ok=True)
                with open(os.path.join(self.tree, name), "w") as file:
                    file.write("print('it is not installed')" if name in missing else "")
            status, console, last = self.run_test("exit 0", "exit 0", "echo '1 passed, 0 failed, 0 skipped'", mode=())
            self.assertEqual((status, last), (0, "4 passed, 0 failed"))
            self.assertIn("\n2 skipped\n", console)
            self.assertEqual([name for name, note in notes.items() if note in console], missing)


if __name__ == "__main__":
    sys.exit(unittest.main())
