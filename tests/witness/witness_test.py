"""Tests the witness: it must find executables that were changed on purpose, and pass equal ones.

Needs GRIDFORGE_TOOL, the tool, and GRIDFORGE_WITNESS_RUNNER.
"""
import json
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(os.path.dirname(HERE), "support")]

import compare  # noqa: E402  (the modules beside this one)
import damage  # noqa: E402
import inputs  # noqa: E402
import reference  # noqa: E402
import runs  # noqa: E402
import witness  # noqa: E402
from named_pipe import NamedPipe  # noqa: E402

TOOL = os.environ["GRIDFORGE_TOOL"]
RUNNER = os.environ["GRIDFORGE_WITNESS_RUNNER"]
GRID = "ncols 3\r\nnrows 1\r\nxllcorner 0\r\nyllcorner 0\r\ncellsize 10\r\nNODATA_value -999\r\n%s\r\n"
LIMITS = runs.Limits(20, 0)


class WithFolder(unittest.TestCase):
    """Has a scratch folder for each test."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="gridforge-test-")
        self.addCleanup(runs.remove_tree, self.folder)

    def become_plain_user(self):
        """Root may read everything."""
        if os.geteuid() == 0:
            os.chmod(self.folder, 0o777)
            os.seteuid(65534)
            self.addCleanup(os.seteuid, 0)

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def write(self, name, text):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "w", encoding="latin-1", newline="") as target:
            target.write(text)
        return self.path(name)


class WitnessRun(WithFolder):
    """Runs the whole witness on three small inputs, made here."""

    def setUp(self):
        super().setUp()
        self.case("conv", ["-b", "-conv", "a.asc"], {"a.asc": GRID % "1 2 3"})
        self.case("max", ["-b", "-max", "a.asc", "b.asc"], {"a.asc": GRID % "1 5 3", "b.asc": GRID % "4 2 -999"})
        self.case("missing", ["-conv", "missing.asc"], {})

    def case(self, name, words, files):
        self.write("cases/all/%s/case.json" % name, json.dumps({"args": words, "stdin": [""]}))
        for file, text in files.items():
            self.write("cases/all/%s/given/%s" % (name, file), text)

    def changed(self, script):
        """An executable: a script in which "$TOOL" "$@" is the right run."""
        path = self.write("changed", "#!/bin/sh\nTOOL='%s'\n%s\n" % (TOOL, script))
        os.chmod(path, 0o755)
        return path

    def words(self, tool, *options, old=TOOL, first="0"):
        words = [sys.executable, os.path.join(HERE, "witness.py"), *first.split(), "--tool", tool, "--runner", RUNNER, "--seed", "7",
                 "--inputs", self.path("none"), "--cases", self.path("cases"), "--data", self.path("none"), "--jobs", "1",
                 "--memory", "0", "--keep", self.path("kept"), *options]
        if old:
            words += ["--reference-tool", old]
        return words

    def witness(self, tool, *options, **more):
        result = subprocess.run(self.words(tool, *options, **more), capture_output=True, text=True, check=False)
        return result.returncode, result.stdout + result.stderr

    def assert_finds(self, script, kind, *options):
        status, text = self.witness(self.changed(script), *options)
        self.assertEqual(status, 1, text)
        kinds = re.findall(r"^ +\d+ +\d+  (.*)$", text.partition("kinds of differences")[2], re.M)
        self.assertTrue(kinds, text)
        for found in kinds:
            self.assertIn(kind, found, text)  # and nothing else


class FindingTest(WitnessRun):
    """Executables that were changed on purpose."""

    def test_passes_two_runs_of_one_executable(self):
        status, text = self.witness(TOOL, first="--runs 10")
        self.assertEqual(status, 0, text)
        self.assertIn("3 inputs as they are, 7 damaged", text)
        self.assertIn("10 runs: 10 the same, 0 differ, 0 not compared", text)

    def test_passes_inputs_that_are_damaged_from_the_start(self):
        status, text = self.witness(TOOL, "--damaged-only", first="--runs 10")
        self.assertEqual(status, 0, text)
        self.assertIn("0 inputs as they are, 10 damaged", text)
        self.assertIn("10 runs: 10 the same, 0 differ, 0 not compared", text)

    def test_finds_a_letter_of_a_message(self):
        self.assert_finds("\"$TOOL\" \"$@\" | sed 's/^Finished.$/Finishes./'", "console: 'Finished.' | 'Finishes.'")

    def test_finds_a_blank_of_the_console(self):
        self.assert_finds("\"$TOOL\" \"$@\" | sed 's/^Finished.$/& /'", "console: 'Finished.' | 'Finished. '")

    def test_finds_a_missing_line_end(self):
        self.assert_finds("printf %s \"$(\"$TOOL\" \"$@\")\"", "console: '' | <end>")

    def test_finds_standard_error(self):
        self.assert_finds('"$TOOL" "$@"; echo oh >&2', "standard error: '' | 'oh'")

    def test_finds_a_bit_of_a_cell(self):
        # 1 is the bytes 0, 0, 128, 63.
        self.assert_finds("\"$TOOL\" \"$@\"; [ ! -e a.flt ] || printf '\\001' | dd of=a.flt conv=notrunc status=none", "bytes of .flt")

    def test_finds_another_permission(self):
        self.assert_finds('"$TOOL" "$@"; [ ! -e a.flt ] || chmod 600 a.flt', "mode")

    def test_finds_files_that_are_missing_or_added(self):
        self.assert_finds('"$TOOL" "$@"; rm -f a.hdr', "only the reference leaves .hdr")
        self.assert_finds('"$TOOL" "$@"; : > new.txt', "only the new one leaves .txt")
        self.assert_finds('"$TOOL" "$@"; mkdir new', "only the new one leaves a file")
        self.assert_finds('"$TOOL" "$@"; : > ../new.txt', "only the new one leaves .txt")

    def test_finds_a_changed_input(self):
        self.assert_finds('"$TOOL" "$@"; [ ! -e a.asc ] || echo >> a.asc', "bytes of .asc")

    def test_finds_another_end(self):
        self.assert_finds('"$TOOL" "$@"; exit 3', "end: exit 0 | exit 3")
        self.assert_finds('"$TOOL" "$@"; kill -SEGV $$', "end: exit 0 | signal 11")

    def test_finds_a_run_without_end(self):
        self.assert_finds('"$TOOL" "$@"; exec sleep 100', "end: exit 0 | waits", "--only", "missing")
        self.assert_finds('"$TOOL" "$@"; while :; do :; done', "end: exit 0 | overtime", "--only", "missing", "--seconds-a-run", "1")

    @unittest.skipIf(runs.Tool(TOOL).sanitized, "the memory of a sanitized tool is not compared")
    def test_finds_more_memory_than_buffers_need(self):
        runner = runs.Runner(RUNNER)
        self.addCleanup(runner.close)
        scratch = runs.Scratch(self.path("scratch"), runner)
        case = inputs.Case(self.path("cases/all/missing"), "missing")
        peak = scratch.run(runs.Tool(TOOL), case.load(), LIMITS).peak_kb
        size = (peak * 133 // 100 + compare.MEMORY_KB) * 1024
        more = 'head -c %d /dev/zero | tail -c %d > /dev/null' % (size, size)
        self.assert_finds('"$TOOL" "$@"; ' + more, "more memory", "--only", "missing")


@unittest.skipIf(shutil.which("ncgen") is None, "no ncgen (Debian: netcdf-bin)")
class NetcdfTest(WithFolder):
    """NetCDF files are compared by what the library reads of them."""

    def made(self, folder, values, level=1):
        text = """netcdf a {
dimensions:
  x = 3 ;
variables:
  float v(x) ;
    v:_DeflateLevel = %d ;
data:
  v = %s ;
}
""" % (level, values)
        source, target = self.write("%s/a.cdl" % folder, text), self.path(folder, "a.nc")
        subprocess.run(["ncgen", "-k", "nc4", "-o", target, source], check=True)
        return target

    def differences(self, one, other):
        return self.differences_of("a.nc", one, other)

    def differences_of(self, name, one, other):
        return [found.kind for found in compare.compare_bytes(name, one, other)]

    def test_other_bytes_of_the_same_values_do_not_count(self):
        one, other = self.made("one", "1, 2, 3"), self.made("other", "1, 2, 3")
        with open(other, "ab") as target:
            target.write(b"more than the file says that it has")
        self.assertEqual(self.differences(one, other), [])

    def test_nor_do_they_under_a_name_without_the_extension(self):
        one, other = self.made("one", "1, 2, 3"), self.made("other", "1, 2, 3")
        with open(other, "ab") as target:
            target.write(b"more than the file says that it has")
        for name in (".nc", "levels", "levels.n"):
            self.assertEqual(self.differences_of(name, one, other), [], name)
        self.assertEqual(self.differences_of("levels", one, self.made("third", "1, 2, 4")), ["bytes of a file"])

    def test_other_values_count(self):
        self.assertEqual(self.differences(self.made("one", "1, 2, 3"), self.made("other", "1, 2, 3.0000002")), ["bytes of .nc"])
        self.assertEqual(self.differences(self.made("one", "1, 0, 3"), self.made("other", "1, -0., 3")), ["bytes of .nc"])

    def test_another_level_counts(self):
        self.assertEqual(self.differences(self.made("one", "1, 2, 3"), self.made("other", "1, 2, 3", level=2)), ["bytes of .nc"])

    def test_files_that_the_library_cannot_read_are_compared_by_their_bytes(self):
        one, other = self.write("one/a.nc", "not NetCDF"), self.write("other/a.nc", "not NetCDF either")
        self.assertEqual(self.differences(one, other), ["bytes of .nc"])


class OptionsTest(WitnessRun):
    """What else the witness is asked for."""

    def test_each_setting_of_the_environment_is_tried(self):
        script = '"$TOOL" "$@"; [ "$ODD $SECOND" != "1 2" ] || echo odd'
        for settings, status in ((["ODD=0"], 0), (["ODD=0 SECOND=2", "ODD=1 SECOND=2"], 1)):
            options = [word for setting in settings for word in ("--environment", setting)]
            found, text = self.witness(self.changed(script), *options)
            self.assertEqual(found, status, text)
        self.assertIn("(ODD=1 SECOND=2)", text)

    def test_a_reference_that_does_not_agree_with_itself_shows_nothing(self):
        unsteady = self.changed('"$TOOL" "$@"; date +%N')
        status, text = self.witness(unsteady, old=unsteady)
        self.assertEqual(status, 2, text)
        self.assertIn("3 runs not compared in full: two runs of the reference differ", text)
        self.assertIn("3 runs: 0 the same, 0 differ, 3 not compared\n", text)
        self.assertIn("witness: too few runs could be compared: 0 of 3", text)

    def test_no_runs_show_nothing(self):
        status, text = self.witness(TOOL, first="0.000001")
        self.assertEqual(status, 2, text)
        self.assertIn("witness: too few runs could be compared: 0 of 0", text)

    def test_a_reference_that_does_not_end_shows_nothing(self):
        endless = self.changed("while :; do :; done")
        status, text = self.witness(endless, "--only", "missing", "--seconds-a-run", "1", old=endless)
        self.assertEqual(status, 2, text)
        self.assertIn("1 runs not ended by the reference in time", text)

    def test_finds_what_differs_beside_an_unsteady_line(self):
        old = self.changed('date +%N; "$TOOL" "$@"; date +%N > log.txt')
        os.rename(old, self.path("old"))
        new = self.changed("'%s' \"$@\"; echo odd; : > log.txt; echo >> a.asc" % self.path("old"))
        status, text = self.witness(new, old=self.path("old"))
        self.assertEqual(status, 1, text)
        self.assertIn("3 runs: 0 the same, 3 differ, 0 not compared\n", text)
        self.assertRegex(text, r"3 +\d+  console: '' \| 'odd'\n")
        self.assertRegex(text, r"2 +\d+  bytes of .asc\n")
        self.assertRegex(text, r"1 +\d+  only the new one leaves .asc\n")
        self.assertNotIn("bytes of .txt", text)

    def test_a_run_that_differs_is_kept_and_can_be_repeated(self):
        changed = self.changed('"$TOOL" "$@"; [ ! -e "a(maxmax).asc" ] || echo odd')
        status, text = self.witness(changed)
        self.assertEqual(status, 1)
        self.assertIn("3 runs: 2 the same, 1 differ", text)
        number = re.search(r"scripts/witness --seed 7 --run (\d+) ", text).group(1)
        kept = self.path("kept", "7-" + number)
        self.assertEqual(sorted(os.listdir(kept)), ["about", "given", "present", "reference", "run"])
        self.assertTrue(os.path.exists(os.path.join(kept, "reference", "left", "a(maxmax).asc")))
        for first in ("--run " + number, "--again " + kept):
            status, text = self.witness(changed, first=first)
            self.assertEqual(status, 1, text)
            self.assertIn("1 runs: 0 the same, 1 differ", text)

    def test_the_processor_time_of_all_executables_is_summed_up(self):
        busy = self.changed('"$TOOL" "$@"; exec %s -c "import time\nwhile time.process_time() < 0.3: pass"' % sys.executable)
        for old, executables in ((None, 1), (busy, 2)):
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            _, text = self.witness(busy, *([] if old else ["--alone"]), old=old, first="--runs 3")
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            found = float(re.search(r"^processor time of the executables: (\d+\.\d{3}) s$", text, re.M).group(1))
            self.assertGreaterEqual(found, 0.29 * 3 * executables, text)
            self.assertLess(found, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, text)

    def test_alone_looks_for_crashes_reports_and_runs_without_end(self):
        report = "echo '==1==ERROR: AddressSanitizer: heap-use-after-free on address 0x123\n#1 in f() /x/src/a/b.cpp:12:3' >&2; exit 1"
        for script, status, what in (('"$TOOL" "$@"', 0, "3 good, 0 bad"), ("kill -SEGV $$", 1, "end: signal 11"),
                                     (report, 1, "AddressSanitizer: heap-use-after-free on address #' at src/a/b.cpp:12\n"), ("exec sleep 100", 1, "end: waits"),
                                     (report.replace("heap-use-after-free", "allocation-size-too-big"), 0, "no memory holds")):
            found, text = self.witness(self.changed(script), "--alone", old=None)
            self.assertEqual(found, status, text)
            self.assertIn(what, text)

    def test_a_witness_that_is_ended_takes_its_runs_along(self):
        name = self.path("pipe")
        endless = self.changed('exec 9> %s; echo "$$ $PWD" >&9; while :; do :; done' % name)
        for number, status in ((signal.SIGTERM, 128 + signal.SIGTERM), (signal.SIGKILL, -signal.SIGKILL)):
            words = self.words(endless, "--seconds-a-run", "100", first="100")
            with NamedPipe(name) as pipe:
                with subprocess.Popen(words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
                    folder = pipe.read(30).decode().split()[1]
                    process.send_signal(number)
                    self.assertEqual(process.wait(30), status)
                self.assertEqual(pipe.read(30), b"")
            root = os.path.dirname(os.path.dirname(os.path.dirname(folder)))
            self.assertIn("gridforge-witness-", os.path.basename(root))
            self.assertEqual(os.path.exists(root), number == signal.SIGKILL)
            runs.remove_tree(root)

    def test_says_that_a_commit_is_missing(self):
        if not os.path.exists(os.path.join(reference.SOURCE, ".git")):
            self.skipTest("not a clone")
        status, text = self.witness(TOOL, "--reference", "0123456789" * 4, old=None)
        self.assertEqual(status, 2)
        self.assertIn("witness: the commit 0123456789012345678901234567890123456789, which should be compared with, is not in this clone",
                      text)


class RecordingTest(WithFolder):
    """The recording of the command-line tests, by a script in their place."""

    def recorder(self, script):
        path = self.write("tests", "#!/bin/sh\n" + script)
        os.chmod(path, 0o755)
        os.utime(path, (1000, 1000))
        return path

    def test_two_witnesses_record_once(self):
        tests = self.recorder("echo x >> %s; read go < %s$GTEST_SHARD_INDEX; echo > $GRIDFORGE_RECORD/$GTEST_SHARD_INDEX\n"
                              % (self.path("starts"), self.path("go")))
        parts = [self.path("go%d" % part) for part in range(2)]
        for part in parts:
            os.mkfifo(part)
        # Each says that it is about to ask for the lock.
        code = "\n".join(("import fcntl, os, sys", "sys.path.insert(0, %r)" % HERE, "import witness", "lock = fcntl.flock",
                          "fcntl.flock = lambda *given: (os.write(2, b'.'), lock(*given))",
                          "print(witness.record(%r, %r, 2))" % (tests, self.path("recorded"))))
        witnesses = [subprocess.Popen([sys.executable, "-c", code], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
                     for _ in range(2)]
        self.assertEqual([one.stderr.read(1) for one in witnesses], [".", "."])
        for part in parts:
            with open(part, "w", encoding="ascii") as go:
                go.write("go\n")
        texts = sorted(one.communicate()[0] for one in witnesses)
        self.assertEqual(texts, [self.path("recorded") + "\n", "Recording the runs of the command-line tests\n%s\n" % self.path("recorded")])
        self.assertEqual(sorted(os.listdir(self.path("recorded"))), ["0", "1"])
        with open(self.path("starts"), encoding="ascii") as source:
            self.assertEqual(source.read(), "x\nx\n")

    def test_tests_that_fail_are_not_recorded(self):
        with self.assertRaisesRegex(runs.Failure, "oh\n\nthe command-line tests fail, so their runs are not recorded"):
            with mock.patch("builtins.print"):
                witness.record(self.recorder("echo oh; exit 1\n"), self.path("recorded"), 1)
        self.assertFalse(os.path.exists(self.path("recorded")))


class ReferenceTest(WithFolder):
    """The commit that is compared with, in a history made here."""

    def setUp(self):
        super().setUp()
        source = mock.patch.object(reference, "SOURCE", self.path("source"))
        source.start()
        self.addCleanup(source.stop)
        self.write("source/" + reference.MARK, "first\n")
        reference.git("init", "--quiet")
        self.commits = [self.commit("first"), self.commit("second", reference.MARK), self.commit("third", "other")]

    def commit(self, text, file=None):
        if file:
            self.write("source/" + file, text)
        reference.git("add", ".")
        reference.git("-c", "user.name=x", "-c", "user.email=x@x", "commit", "--quiet", "--message", text)
        return reference.git("rev-parse", "HEAD")

    def test_is_the_last_that_changed_the_file(self):
        self.assertEqual(reference.default_commit(), self.commits[1])

    def test_is_found_by_any_name(self):
        self.assertEqual(reference.commit_of("HEAD~2"), self.commits[0])
        self.assertEqual(reference.commit_of(self.commits[2][:8]), self.commits[2])
        with self.assertRaisesRegex(runs.Failure, "--oops, which should be compared with, is not in this clone"):
            reference.commit_of("--oops")

    def test_needs_the_whole_history(self):
        subprocess.run(["git", "clone", "--quiet", "--depth", "1", "file://" + self.path("source"), self.path("shallow")], check=True)
        with mock.patch.object(reference, "SOURCE", self.path("shallow")):
            with self.assertRaisesRegex(runs.Failure, "only a part of the history"):
                reference.default_commit()


class ComparisonTest(WithFolder):
    """What counts as a difference."""

    @staticmethod
    def outcome(peak_kb=10000, end="exit 0", console=b""):
        return compare.Outcome(end, peak_kb, 0, console, b"", None)

    def kinds(self, name, a, b):
        for folder, data in (("a", a), ("b", b)):
            self.write("%s/%s" % (folder, name), data)
        return [one.kind for one in compare.compare_files(self.path("a"), self.path("b"))]

    def test_what_the_reference_does_not_repeat_is_set_aside(self):
        def kinds(a, b, again):
            for folder in "abc":
                os.makedirs(self.path(folder), exist_ok=True)
            outcomes = [compare.Outcome(end, 0, 0, console, error, self.path(folder))
                        for folder, (end, console, error) in zip("abc", (a, b, again))]
            return [one.kind for one in compare.compare(*outcomes)]
        good = ("exit 0", b"a\n1\nc\n", b"")
        self.assertEqual(kinds(good, ("exit 0", b"a\n2\nc\n", b""), ("exit 0", b"a\n3\nc\n", b"")), [])
        self.assertEqual(kinds(good, ("exit 0", b"a\n2\nd\n", b""), ("exit 0", b"a\n3\nc\n", b"")), ["console: 'c' | 'd'"])
        self.assertEqual(kinds(good, ("exit 0", b"b\n2\nc\n", b""), ("exit 0", b"a\n3\nc\n", b"")), ["console: 'a' | 'b'"])
        self.assertEqual(kinds(good, ("exit 0", b"b\n2\n", b""), ("exit 0", b"a\n", b"")), ["console: 'a' | 'b'"])
        self.assertEqual(kinds(good, ("exit 0", b"a\n2\n", b""), ("exit 0", b"a\n3\nc\n", b"")), ["console: 'c' | ''"])
        self.assertEqual(kinds(good, ("exit 0", b"a\n", b""), ("exit 0", b"a\n3\nc\nd\n", b"")), [])
        self.assertEqual(kinds(good, ("exit 3", b"a\n1\nc\n", b"oh"), ("exit 2", b"a\n1\nc\n", b"")), ["standard error: '' | 'oh'"])
        for name, bytes_of in (("x", ("1", "2", "3")), ("y", ("1", "2", "1")), ("z", (None, "1", None)), ("t", ("1", "2", None))):
            for folder, data in zip("abc", bytes_of):
                if data:
                    self.write("%s/%s.%s" % (folder, name, name), data)
        self.assertEqual(kinds(good, good, good), ["only the new one leaves .z", "bytes of .t", "bytes of .y"])

    def test_memory_that_counts_as_more(self):
        for old, new, more in ((13000, 13500, False), (13000, 20900, False), (13000, 23000, True), (13000, 9000, False), (1000000, 1090000, False),
                               (1000000, 1120000, True)):
            self.assertEqual(compare.more_memory(self.outcome(old), self.outcome(new)), more, (old, new))

    def test_memory_of_each_thread_that_a_setting_asks_for(self):
        self.assertEqual([runs.Tool(TOOL, setting).threads for setting in ((), ("A=2", "GRIDFORGE_THREADS=7"))], [0, 7])
        for threads, new, more in ((1, 20900, False), (1, 23000, True), (7, 35000, False), (7, 37000, True)):
            self.assertEqual(compare.more_memory(self.outcome(13000), self.outcome(new), threads), more, (threads, new))

    def test_only_the_date_of_a_dbf_is_set_aside(self):
        self.assertEqual(self.kinds("a.dbf", "\3\x7d\1\1rest", "\3\x7d\2\x1frest"), [])
        self.assertEqual(self.kinds("a.dbf", "\3\x7d\1\1rest", "\3\x7d\1\1Rest"), ["bytes of .dbf"])
        self.assertEqual(self.kinds("a.dbf", "\4\x7d\1\1rest", "\4\x7d\2\1rest"), ["bytes of .dbf"])
        self.assertEqual(self.kinds("a.dbf", "\3\x7d\1\1", "\3\x7d\2\1"), [])
        self.assertEqual(self.kinds("a.dbf", "\3\x7d\1", "\3\x7d\2"), ["bytes of .dbf"])

    def test_the_first_byte_that_differs_is_found(self):
        for at in (0, 1, 500, 999):
            changed = bytearray(1000)
            changed[at] = 1
            self.assertEqual(compare.first_difference(bytes(1000), bytes(changed)), at)
        self.assertEqual(compare.first_difference(b"abc", b"abcd"), 3)

    def test_links_are_compared_by_where_they_lead(self):
        for folder, target in (("a", "/dev/full"), ("b", "/dev/null")):
            os.makedirs(self.path(folder))
            os.symlink(target, self.path(folder, "x"))
        self.assertEqual([one.kind for one in compare.compare_files(self.path("a"), self.path("b"))], ["link"])

    def test_names_of_one_file_are_compared(self):
        for folder in "abc":
            self.write(folder + "/x", "bytes")
        for folder in "ab":
            os.link(self.path(folder, "x"), self.path(folder, "y"))
        self.write("c/y", "bytes")
        self.assertEqual(compare.compare_files(self.path("a"), self.path("b")), [])
        found = compare.compare_files(self.path("a"), self.path("c"))
        self.assertEqual([(one.kind, one.detail) for one in found], [("hard link", "y: x | y")])

    def test_what_cannot_be_read_is_compared_as_far_as_it_can(self):
        self.become_plain_user()
        for folder in "abc":
            self.write(folder + "/closed/x", "bytes")
            self.write(folder + "/secret", "bytes of " + folder)
            os.chmod(self.path(folder, "closed"), 0)
            os.chmod(self.path(folder, "secret"), 0)
        self.assertEqual(compare.compare_files(self.path("a"), self.path("b")), [])
        os.chmod(self.path("c", "closed"), 0o755)
        os.chmod(self.path("c", "secret"), 0o644)
        self.assertEqual([one.kind for one in compare.compare_files(self.path("a"), self.path("c"))],
                         ["only the new one leaves a file", "mode", "mode"])

    def test_runs_stopped_by_the_clock_agree_as_far_as_they_came(self):
        long = self.outcome(end="overtime", console=b"1\n2\n3")
        self.assertEqual(compare.compare(long, self.outcome(end="overtime", console=b"1\n2")), [])
        self.assertEqual(len(compare.compare(long, self.outcome(end="overtime", console=b"1\n9"))), 1)


class RunningTest(WithFolder):
    """The runner and the scratch folder."""

    def setUp(self):
        super().setUp()
        self.runner = runs.Runner(RUNNER)
        self.addCleanup(self.runner.close)
        self.scratch = runs.Scratch(self.path("scratch"), self.runner)

    def shell(self, script, limits=LIMITS, **more):
        return self.scratch.run(runs.Tool("/bin/sh"), inputs.Input("shell", more.pop("files", {}), [b"-c", script.encode()], **more), limits)

    def test_a_run_gets_what_the_input_says(self):
        files = {"sub": inputs.File("folder", 0o755), "sub/a": inputs.File("file", 0o640, data=b"bytes"), "l": inputs.File("link", data=b"sub/a")}
        outcome = self.shell("cat; echo $X; cat ../l; stat -c %a a; pwd", files=files, stdin=b"typed ", work_folder="sub", environment=[b"X=y z"])
        self.assertEqual(outcome.console.decode(), "typed y z\nbytes640\n%s/sub\n" % self.scratch.folder)

    def test_arguments_name_the_folder_of_the_run(self):
        given = inputs.Input("echo", {}, [b"-c", b"echo " + inputs.FOLDER + b"/a"])
        self.assertEqual(self.scratch.run(runs.Tool("/bin/sh"), given, LIMITS).console, os.fsencode(self.scratch.folder) + b"/a\n")

    def test_variables_of_the_input_count_most(self):
        given = inputs.Input("env", {}, [], environment=[b"A=" + inputs.FOLDER, b"LANG=x"])
        console = self.scratch.run(runs.Tool("/usr/bin/env", ["A=other", "B=more"]), given, LIMITS).console.decode()
        self.assertEqual(sorted(console.splitlines()), ["A=" + self.scratch.folder, "B=more", "LANG=x", "PATH=/usr/bin:/bin", "TZ=UTC"])

    def test_ends_are_told_apart(self):
        for script, end in (("exit 0", "exit 0"), ("exit 7", "exit 7"), ("kill -ABRT $$", "signal 6"), ("exec sleep 60", "waits"),
                            ("sleep 1; exit 5", "exit 5")):  # one that sleeps, but not for good
            self.assertEqual(self.shell(script).end, end, script)
        self.assertEqual(self.shell("while :; do :; done", runs.Limits(1, 0)).end, "overtime")

    def test_the_processor_time_of_runs_adds_up(self):
        busy = "i=0; while [ $i -lt 100000 ]; do i=$((i + 1)); done"
        times = [self.shell(script).processor_ms for script in (busy, "exit 0", busy)]
        self.assertGreater(min(times[0], times[2]), times[1])
        self.assertEqual(self.scratch.processor_ms, sum(times))

    def test_limits_hold(self):
        self.assertEqual(self.shell("ulimit -d; ulimit -t; ulimit -f", runs.Limits(3, 700)).console.split(),
                         [b"%d" % (700 * 1024), b"3", b"%d" % (runs.FILE_MB * 2048)])

    def test_peak_memory_is_that_of_the_run(self):
        small = self.shell("exit 0").peak_kb
        large = self.shell("head -c 50000000 /dev/zero | tail -c 50000000 > /dev/null").peak_kb
        self.assertLess(small, 8000)  # less than this process has
        self.assertGreater(large, 50000)

    def test_a_recorded_run_is_read_back(self):
        fields = ["tool=/b/gridforge", "folder=/tmp/x", "work folder=sub", "program=/usr/bin/env", "argument=A=1 2", "argument=/b/gridforge",
                  "argument=-conv", "argument=/tmp/x/a.asc", "environment=B=/tmp/x/b", "input=y\n"]
        self.write("run/run", "".join(field + "\0" for field in fields))
        self.write("run/given/sub/b.asc", "cells")
        given = inputs.Recorded(self.path("run"), "run").load()
        self.assertEqual((given.arguments, given.stdin, given.work_folder, given.environment),
                         ([b"-conv", inputs.FOLDER + b"/a.asc"], b"y\n", "sub", [b"B=" + inputs.FOLDER + b"/b", b"A=1 2"]))
        self.assertEqual(sorted(given.files), ["sub", "sub/b.asc"])
        self.assertEqual(given.files["sub/b.asc"].data, b"cells")

    def test_names_of_one_file_stay_so(self):
        self.write("given/sub/b", "bytes")
        os.link(self.path("given", "sub", "b"), self.path("given", "a"))
        self.write("given/c", "bytes")
        files = inputs.files_below(self.path("given"))
        outcome = self.shell("echo more >> sub/b; stat -c %h a c; cat a c", files=files)
        self.assertEqual(outcome.console.decode(), "2\n1\nbytesmore\nbytes")
        files["a"] = inputs.File("folder", 0o755)  # damaged
        self.assertEqual(self.shell("ls -F; ls sub", files=files).console.decode(), "a/\nc\nsub/\n")
        del files["a"]
        self.assertEqual(self.shell("ls -F; ls sub", files=files).console.decode(), "c\nsub/\n")

    def test_an_input_that_cannot_be_read_is_given_as_it_is(self):
        self.become_plain_user()
        self.write("given/closed/x", "bytes")
        self.write("given/secret", "bytes")
        os.chmod(self.path("given", "closed"), 0)
        os.chmod(self.path("given", "secret"), 0)
        self.scratch.prepare(inputs.Input("all", inputs.files_below(self.path("given")), []), self.path("made"))
        self.assertEqual(sorted(os.listdir(self.path("made"))), ["closed", "secret"])
        for name in ("closed", "secret"):
            self.assertEqual(os.stat(self.path("made", name)).st_mode & 0o777, 0)

    def test_runs_that_cannot_be_repeated_are_counted(self):
        self.write("recorded/a/run", "left out=stopped by its test\0program=x\0")
        self.write("recorded/b/run", "tool=t\0folder=\0work folder=\0program=t\0input=\0")
        found = inputs.Sources()
        found.add_recorded(self.path("recorded"))
        self.assertEqual([one.name for one in found.inputs], ["b"])
        self.assertEqual(found.left_out, {"stopped by its test": 1})


class DamageTest(unittest.TestCase):
    """Damaged inputs."""

    TEXT = b"ncols 3\nnrows 2\r\n1 2.5 -999\n4 5 6e3\nsub/a.asc == \"x y\"\n"

    def given(self):
        files = {"a.asc": inputs.File("file", data=self.TEXT), "b.flt": inputs.File("file", data=bytes(range(256)) * 4),
                 "empty.csv": inputs.File("file", data=b"")}
        return inputs.Input("given", files, [b"-b", b"-conv", b"a.asc", b"-cd0.5"], b"y\nn\n")

    def test_the_same_seed_damages_the_same_way(self):
        def state(number):
            given = self.given()
            done = damage.damage(random.Random("7 %d" % number), given)
            return done, given.arguments, given.stdin, {name: (f.kind, f.mode, f.kind == "file" and f.data) for name, f in given.files.items()}
        states = [state(number) for number in range(200)]
        self.assertEqual(states, [state(number) for number in range(200)])
        self.assertGreater(len({repr(one) for one in states}), 150)  # some find nothing to damage

    def test_all_ways_are_taken(self):
        done = set()
        for number in range(3000):
            done.update(damage.damage(random.Random(number), self.given()))
        ways = {text.rpartition(": ")[2] for text in done}
        for way in damage.TEXT_BYTES + damage.BINARY_BYTES:
            self.assertIn(way.__name__, ways)
        for way in ("removed", "emptied", "a folder", "read-only", "the bytes of b.flt", "changed", "cut", "other lines"):
            self.assertIn(way, ways)

    def test_no_name_leads_out_of_the_folder(self):
        self.assertTrue(damage.leads_out(b"a", b"/a"))
        self.assertTrue(damage.leads_out(b"x == sub/a", b"x == /a"))
        self.assertTrue(damage.leads_out(b"", b"-out=../a"))
        self.assertFalse(damage.leads_out(b"", b"sub/a 1/2"))
        for number in range(3000):
            given = self.given()
            damage.damage(random.Random(number), given)
            for name, file in given.files.items():
                if name != "b.flt" and file.kind == "file" and b"\0" not in file.data:
                    self.assertFalse(damage.leads_out(self.TEXT, file.data), file.data)
            for word in given.arguments:
                self.assertFalse(damage.leads_out(b"", word), word)

    def test_numbers_of_runs_stand_for_the_same_inputs(self):
        class Named:
            def __init__(self, name):
                self.name = name

            def load(self):
                return inputs.Input(self.name, {}, [b"-b"])
        plans = [witness.Plan([Named(str(i)) for i in range(20)], 5) for _ in range(2)]
        for number in range(60):
            (a, done_a), (b, done_b) = (plan.given(number) for plan in plans)
            self.assertEqual((a.name, a.arguments, a.stdin, done_a), (b.name, b.arguments, b.stdin, done_b))
            self.assertEqual(done_a == [], number < 20)
        self.assertEqual(sorted(plans[0].given(number)[0].name for number in range(20)), sorted(str(i) for i in range(20)))


if __name__ == "__main__":
    unittest.main()
