#!/usr/bin/env python3
"""Tests of scripts/tidy: which files it takes, and what it makes of what clang-tidy says."""
import contextlib
import io
import json
import os
import sys
import tempfile
import unittest
from unittest import mock

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "support"))

from script_module import loaded  # noqa: E402

tidy = loaded("tidy")
FILES = ["bench/run.cpp", "src/core/text.cpp", "tests/unit/core/text_test.cpp"]
FUZZED = "tests/fuzz/readers.cpp"


class ChosenTest(unittest.TestCase):
    def chosen(self, commit, changes):
        """The files chosen where `changes` has what differs from each commit in the clone."""
        with mock.patch.object(tidy, "changed_since", changes.get):
            return tidy.chosen(FILES, commit)

    def test_all_of_src_and_what_changed_since_the_last_full_run(self):
        changes = {"1234": {"tests/unit/core/text_test.cpp", "README.md"}, "HEAD~1": set()}
        self.assertEqual(self.chosen("1234", changes), FILES[1:])
        self.assertEqual(self.chosen("1234", {"1234": set()}), [FILES[1]])

    def test_what_the_last_commit_changed_where_no_full_run_is_known(self):
        changes = {"HEAD~1": {"bench/run.cpp"}}
        for commit in ("", "not in the clone"):
            self.assertEqual(self.chosen(commit, changes), FILES[:2])

    def test_all_where_nobody_knows_what_changed(self):
        self.assertEqual(self.chosen("1234", {}), FILES)

    def test_the_last_full_run_is_the_one_that_is_kept(self):
        with tempfile.TemporaryDirectory() as folder:
            kept = os.path.join(folder, "nightly.json")
            self.assertEqual(tidy.last_full_run(kept), "")
            for record, commit in (({"fuzz": {"commit": "12"}}, ""), ({"tidy": {"commit": "34+"}}, "34")):
                with open(kept, "w") as file:
                    json.dump(record, file)
                self.assertEqual(tidy.last_full_run(kept), commit)

    def test_the_files_are_those_of_the_builds_in_the_tree(self):
        with tempfile.TemporaryDirectory() as folder:
            names = [os.path.join(tidy.ROOT, name) for name in (*FILES, "build/clang/made.cpp", "tests/support/calls.c")]
            for build, files in (("clang", (*names[1:], names[1], "/elsewhere/other.cpp")), ("release", names[:2]),
                                 ("fuzz", [os.path.join(tidy.ROOT, FUZZED), names[2]])):
                os.mkdir(os.path.join(folder, build))
                with open(os.path.join(folder, build, "compile_commands.json"), "w") as file:
                    json.dump([{"file": name} for name in files], file)
            with mock.patch.object(tidy, "BUILDS", {build: os.path.join(folder, build) for build in tidy.BUILDS}):
                self.assertEqual(tidy.built(), [*FILES[:2], FUZZED, FILES[2]])
                self.assertEqual([os.path.basename(tidy.build_of(file)) for file in tidy.built()],
                                 ["release", "clang", "fuzz", "clang"])


class BuildsTest(unittest.TestCase):
    def asked(self, *arguments):
        """What cmake is asked for by a run that finds nothing."""
        with mock.patch.object(tidy, "cmake") as cmake, mock.patch.object(tidy, "built", lambda: FILES), \
                mock.patch.object(tidy, "findings", lambda file: ""), contextlib.redirect_stdout(io.StringIO()):
            self.assertEqual(tidy.main(list(arguments)), 0)
        return [call.args for call in cmake.call_args_list]

    def test_fuzz_targets_are_configured_where_they_may_be_read(self):
        for arguments in ((), ("--all",), (FILES[1], FUZZED)):
            self.assertEqual(self.asked(*arguments), [("--preset", "fuzz")], arguments)
        self.assertEqual(self.asked(FILES[1]), [])

    def test_the_other_builds_are_made_where_that_is_asked_for(self):
        asked = self.asked("--build-all")
        self.assertEqual([words[1] for words in asked if words[0] == "--preset"], ["clang", "release", "fuzz"])
        self.assertEqual([words[-1] for words in asked if words[0] == "--build"], ["clang", "release"])


class FindingsTest(unittest.TestCase):
    def run_on(self, program, *arguments):
        """The status and the console of a run with this program, a script for the shell, in the place of clang-tidy."""
        with tempfile.TemporaryDirectory() as folder, contextlib.redirect_stdout(io.StringIO()) as console:
            path = os.path.join(folder, "clang-tidy")
            with open(path, "w") as file:
                file.write("#!/bin/sh\n" + program)
            os.chmod(path, 0o755)
            with mock.patch.dict(os.environ, {"PATH": folder + ":" + os.environ["PATH"]}), \
                    mock.patch.object(tidy, "built", lambda: FILES), mock.patch.object(tidy, "cmake"):
                status = tidy.main(list(arguments))
        return status, console.getvalue()

    def test_what_is_found_is_shown_and_fails(self):
        program = 'case $5 in src/*) echo "$5:3:1: error: some check"; exit 1;; esac; echo "5 warnings" >&2\n'
        self.assertEqual(self.run_on(program, "--all"), (1, "src/core/text.cpp:3:1: error: some check\n3 files tidied, 1 with findings\n"))
        self.assertEqual(self.run_on(program, "bench/run.cpp"), (0, "1 files tidied, 0 with findings\n"))

    def test_a_file_that_cannot_be_read_is_a_finding(self):
        self.assertEqual(self.run_on("echo no such file >&2; exit 1\n", "a.cpp"), (1, "no such file\n1 files tidied, 1 with findings\n"))


if __name__ == "__main__":
    sys.exit(unittest.main())
