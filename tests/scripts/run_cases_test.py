#!/usr/bin/env python3
"""Tests of scripts/run-cases on the sample program, whose folder is SAMPLE_BUILD."""
import os
import signal
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

from named_pipe import NamedPipe  # noqa: E402


def setUpModule():
    program = os.path.join(os.environ["SAMPLE_BUILD"], "tests", "sample_tests")
    if not os.path.exists(program):
        raise AssertionError(program + " is not built: build the target gridforge_sample_tests")


class RunCasesTest(unittest.TestCase):
    def run_cases(self, sample, *options):
        """The exit status, the console and its last line."""
        done = subprocess.run([os.path.join(ROOT, "scripts", "run-cases"), *options, os.environ["SAMPLE_BUILD"]], check=False,
                              env={**os.environ, "SAMPLE": sample}, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        return done.returncode, done.stdout, done.stdout.splitlines()[-1]

    def test_no_case_is_lost(self):
        self.assertEqual(self.run_cases("nothing"), (0, "26 passed, 0 failed, 2 skipped\n", "26 passed, 0 failed, 2 skipped"))
        with open(os.path.join(os.environ["SAMPLE_BUILD"], "test-results", "times.txt")) as file:
            names = sorted(line.split()[-1] for line in file)
        self.assertEqual(names, sorted(["Some/Numbers.Case/%d" % i for i in range(20)] + ["Sample." + name for name in (
            "Skipped", "DISABLED_Case", "Talks", "Fails", "Crashes", "Exits", "Waits", "ComplainsAtTheEnd")]))

    def test_a_program_that_is_not_built_is_named(self):
        with tempfile.TemporaryDirectory() as build:
            for kinds, missing in (([], "*_tests"), (["unit"], "unit_tests")):
                done = subprocess.run([os.path.join(ROOT, "scripts", "run-cases"), build, *kinds], check=False, text=True,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                self.assertEqual((done.returncode, done.stdout),
                                 (1, f"run-cases: {build}/tests/{missing} is not built\n"))
                self.assertEqual(os.listdir(build), [])

    def test_a_failed_case_is_shown(self):
        status, console, last = self.run_cases("fail")
        self.assertEqual((status, last), (1, "25 passed, 1 failed, 2 skipped"))
        self.assertIn("[  FAILED  ] Sample.Fails", console)
        self.assertIn("other bytes", console)
        self.assertNotIn("Sample.Talks", console)

    def test_a_crash_names_its_case(self):
        for sample, end in (("crash", "ended with status -6 in Sample.Crashes"), ("exit", "ended with status 0 in Sample.Exits")):
            status, console, last = self.run_cases(sample)
            self.assertEqual(status, 1)
            self.assertIn(end, console)
            known = sum(int(word) for word in last.split() if word.isdecimal()) - 1
            self.assertIn("nothing is known of %d cases: " % (28 - known), console)
            self.assertIn(" 1 failed", last)

    def test_a_case_that_waits_is_stopped_and_named(self):
        status, console, last = self.run_cases("wait", "--seconds", "2")
        self.assertEqual(status, 1)
        self.assertIn("ended by being stopped after 2 s in Sample.Waits", console)
        self.assertIn(" 1 failed", last)

    def test_what_a_program_finds_at_its_end_counts(self):
        status, console, last = self.run_cases("end")
        self.assertEqual((status, last), (1, "26 passed, 1 failed, 2 skipped"))
        self.assertIn("something was left", console)
        self.assertIn("ended with status 23", console)

    def test_a_signal_stops_the_programs_too(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            with tempfile.TemporaryDirectory() as folder, NamedPipe(os.path.join(folder, "pipe")) as pipe:
                with subprocess.Popen([os.path.join(ROOT, "scripts", "run-cases"), os.environ["SAMPLE_BUILD"]],
                                      stderr=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                      env={**os.environ, "SAMPLE": "wait", "SAMPLE_PIPE": pipe.name}) as process:
                    self.assertEqual(pipe.read(30), b".")
                    process.send_signal(number)
                    _, console = process.communicate(timeout=30)
                self.assertEqual((process.returncode, console), (128 + number, b"run-cases: stopped\n"))
                self.assertEqual(pipe.read(10), b"")


if __name__ == "__main__":
    sys.exit(unittest.main())
