#!/usr/bin/env python3
"""Tests of scripts/analyze: what counts as a source, a finding and a failure. A stand-in takes the place of clang."""
import contextlib
import io
import os
import shutil
import sys
import tempfile
import unittest
from unittest import mock

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "support"))

from script_module import loaded  # noqa: E402

analyze = loaded("analyze")


class ReportTest(unittest.TestCase):
    def setUp(self):
        self.folder = os.path.realpath(tempfile.mkdtemp(prefix="gridforge-test-"))
        self.addCleanup(shutil.rmtree, self.folder)
        for name, patched in (("ROOT", self.folder), ("EXPLAINED", {("src/known.cpp", "null pointer"): "cannot be null"})):
            patch = mock.patch.object(analyze, name, patched)
            patch.start()
            self.addCleanup(patch.stop)

    def give(self, name, text=""):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w") as file:
            file.write(text)
        return path

    def entry(self, file, says="", status=0):
        """Of compile_commands.json: its compiler says what is given."""
        clang = self.give("bin%d/clang++" % len(os.listdir(self.folder)),
                          "#!/bin/sh\ncat <<'END'\n%s\nEND\nexit %d\n" % (says, status))
        os.chmod(clang, 0o755)
        return {"file": file, "directory": self.folder, "command": "%s -c %s" % (clang, file)}

    def report(self, *entries):
        """The exit status and the last line."""
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            status = analyze.report(list(entries))
        return status, printed.getvalue().splitlines()[-1]

    def test_sources_without_findings_pass(self):
        self.assertEqual(self.report(self.entry(self.give("src/a.cpp")), self.entry(self.give("src/b.cpp"))),
                         (0, "2 sources, 0 findings that are not explained, 0 could not be analyzed"))

    def test_joined_sources_count_each(self):
        joined = self.give("build/unity.cxx", '#include "%s/src/a.cpp"\n#include "%s/src/b.cpp"\n' % (self.folder, self.folder))
        self.assertEqual(self.report(self.entry(joined)),
                         (0, "2 sources, 0 findings that are not explained, 0 could not be analyzed"))

    def test_no_source_is_a_failure(self):
        self.assertEqual(self.report(), (1, "0 sources, 0 findings that are not explained, 0 could not be analyzed"))

    def test_a_finding_is_a_failure(self):
        source = self.give("src/a.cpp")
        self.assertEqual(self.report(self.entry(source, source + ":3:7: warning: Dereference of null pointer [core.Null]")),
                         (1, "1 sources, 1 findings that are not explained, 0 could not be analyzed"))

    def test_what_is_explained_or_of_others_is_none(self):
        source = self.give("src/known.cpp")
        says = source + ":3:7: warning: Dereference of null pointer [core.Null]\n/usr/include/x.h:3:7: warning: Leak [unix.Malloc]"
        self.assertEqual(self.report(self.entry(source, says)),
                         (0, "1 sources, 0 findings that are not explained, 0 could not be analyzed"))

    def test_a_source_that_cannot_be_analyzed_is_a_failure(self):
        self.assertEqual(self.report(self.entry(self.give("src/a.cpp"), "error: no such file", 1)),
                         (1, "1 sources, 0 findings that are not explained, 1 could not be analyzed"))


if __name__ == "__main__":
    unittest.main()
