#!/usr/bin/env python3
"""Tests of scripts/mutants: which changes it makes, which of them tests catch, and what it keeps of them."""
import argparse
import collections
import contextlib
import dataclasses
import io
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "support"))

from script_module import loaded  # noqa: E402

mutants = loaded("mutants")


def shown(source):
    return [change.shown for change in mutants.changes_of("src/grid/a.cpp", source)]


class ChangesTest(unittest.TestCase):
    def test_operators_of_two_sides(self):
        self.assertEqual(shown("c = a < b;\n"), ["< -> <=", "< -> >="])
        self.assertEqual(shown("if (a && b ||\n    c != d) {\n"), ["&& -> ||", "|| -> &&", "!= -> =="])
        self.assertEqual(shown("c += a * b - d;\n"), ["+= -> -=", "* -> /", "- -> +"])

    def test_operators_of_one_side(self):
        self.assertEqual(shown("if (!done) {\n"), ["without !"])
        self.assertEqual(shown("for (; p != q; ++p) {\n"), ["!= -> ==", "++ -> --"])

    def test_constants(self):
        self.assertEqual(shown("n = 12;\n"), ["12 -> 11", "12 -> 13"])
        self.assertEqual(shown("n = 0U;\n"), ["0 -> 1"])
        self.assertEqual(shown("r = 0.5F;\nq = 1.0e-3;\n"), ["0.5F -> (0.5F + 1.0F)", "1.0e-3 -> (1.0e-3 + 1.0)"])
        self.assertEqual(shown("f = true;\n"), ["true -> false"])

    def test_calls(self):
        self.assertEqual(shown("{\n    file.close(a, b(c));\n}\n"), ["without file.close(a, b(c))"])
        self.assertEqual(shown("m = std::min(a, b);\n"), ["std::min -> std::max"])
        self.assertEqual(shown("m = p.x;\n"), [".x -> .y"])
        self.assertEqual(shown("    if (isLast(a)) {\n"), ["with !"])

    def test_what_is_no_code_stays(self):
        for source in ("// a < b\n", "/* a + b\n   1 */\n", 's = "a < 1";\n', "c = '1';\n", "#if A > 1\n", "assert(a < f(1));\n",
                       "static_assert(sizeof(a) == 4, \"a < b\");\n", "std::vector<int*> v;\n", "std::int32_t n;\n", "auto&& v = w;\n",
                       "    return close(a);\n", "std::string name(a);\n", "mask = 0x1F;\n", "mode = 0777;\n", "big = 1'000;\n", 'r = R"(1 + 2)";\n'):
            self.assertEqual(shown(source), [], source)

    def test_the_place_in_the_file(self):
        source = "// 1\n    a = 7; b = \"<\" < 8;\n"
        change = next(change for change in mutants.changes_of("src/grid/a.cpp", source) if change.shown == "8 -> 9")
        self.assertEqual((change.line, change.column, change.text), (2, 17, 'a = 7; b = "<" < 8;'))
        self.assertEqual(source[change.at:change.at + change.length], "8")


class OrderTest(unittest.TestCase):
    SUITES = {"unit": {"tests/unit/core/text_test.cpp": ["Text"], "tests/unit/grid/asc_test.cpp": ["Asc"],
                       "tests/unit/grid/flt_test.cpp": ["Flt", "Large"], "tests/unit/both_ways/grids_test.cpp": ["Ways"]},
              "cli": {"tests/cli/ops/conv_test.cpp": ["Conv", "Limits"]}}

    def stages(self, seconds, again):
        return [(stage.program, stage.suites) for stage in mutants.stages_for("src/grid/asc.cpp", self.SUITES, seconds, again)]

    def test_the_nearest_tests_come_first_and_slow_ones_last(self):
        slow = {("unit", "Large"): 30, ("unit", "Ways"): 30, ("cli", "Limits"): 30, ("unit", "Flt"): 1}
        self.assertEqual(self.stages(slow, True), [("unit", ["Asc"]), ("unit", ["Flt"]), ("unit", ["Large", "Ways"]),
                                                   ("unit", ["Text"]), ("cli", ["Conv"]), ("cli", ["Limits"])])

    def test_far_ones_wait_for_changes_that_have_survived(self):
        self.assertEqual(self.stages({("cli", "Limits"): 30}, False),
                         [("unit", ["Asc"]), ("unit", ["Flt", "Large", "Ways"]), ("cli", ["Conv"])])
        suites = {"unit": {}, "cli": {**self.SUITES["cli"], "tests/cli/grid/asc_test.cpp": ["Own"]}}
        self.assertEqual([stage.suites for stage in mutants.stages_for("src/grid/flt.cpp", suites, {})], [["Own"]])


class RecordTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = folder.name
        os.mkdir(os.path.join(self.root, "tests"))

    def explain(self, *reasons):
        with open(os.path.join(self.root, "tests", "mutants_explained.json"), "w") as file:
            json.dump(reasons, file)

    def record(self, source):
        return mutants.Record(self.root, mutants.changes_of("src/a.cpp", source))

    def test_parts_add_up(self):
        source = "a = 7;\nb = 8;\n"
        changes = mutants.changes_of("src/a.cpp", source)
        for change, by in zip(changes, ("Some.Test", "", "Some.Test")):
            record = self.record(source)
            record.add(change, by, 1)
            record.not_counted["same code"] += 1
            record.write()
        record = self.record(source)
        self.assertEqual(record.summary(), {"changes": 3, "caught": 2, "survived": 1, "explained": 0, "percent": 66.7})
        self.assertEqual(record.not_counted, {"same code": 3})
        self.assertEqual([change.shown for change in mutants.chosen(argparse.Namespace(again=False, seed=1), changes, record)[0]],
                         ["8 -> 9"])
        self.assertEqual([change.shown for change in mutants.chosen(argparse.Namespace(again=True), changes, record)[0]], ["7 -> 8"])

    def test_a_second_outcome_replaces_the_first(self):
        record = self.record("a = 0;\n")
        change = mutants.changes_of("src/a.cpp", "a = 0;\n")[0]
        record.add(change, "", 1)
        record.add(change, "Some.Test", 2)
        self.assertEqual(record.summary(), {"changes": 1, "caught": 1, "survived": 0, "explained": 0, "percent": 100.0})

    def test_lines_move_and_go(self):
        record = self.record("a = 0;\nb = 0;\n")
        for change in mutants.changes_of("src/a.cpp", "a = 0;\nb = 0;\n"):
            record.add(change, "", 1)
        record.write()
        self.assertEqual([(entry["line"], entry["text"]) for entry in self.record("//\n\n    b = 0;\n").entries], [(3, "b = 0;")])

    def test_the_page_has_the_figures(self):
        os.mkdir(os.path.join(self.root, "docs"))
        page = os.path.join(self.root, "docs", "reliability.md")
        with open(page, "w") as file:
            file.write("| at first 3 changes, of which 2 change nothing; 1.0 % of the others are caught |\n")
        record = self.record("a = 7;\n")
        for change, by in zip(mutants.changes_of("src/a.cpp", "a = 7;\n"), ("Some.Test", "")):
            record.add(change, by, 1)
        record.write()
        with open(page) as file:
            self.assertEqual(file.read(), "| at first 2 changes, of which 0 change nothing; 50.0 % of the others are caught |\n")

    def test_the_page_of_the_tree_has_them_as_well(self):
        with open(os.path.join(mutants.ROOT, "tests", "mutants.json")) as file:
            figures = mutants.figures(json.load(file)["in_all"])
        with open(os.path.join(mutants.ROOT, "docs", "reliability.md")) as file:
            self.assertIn(figures, file.read())

    def test_files_move(self):
        for new, others, left in (("src/b/a.cpp", [], 1), ("src/b/b.cpp", [], 1), ("src/b/a.cpp", ["src/c/b.cpp"], 1),
                                  ("src/b/b.cpp", ["src/c/c.cpp"], 0)):
            self.explain()
            record = self.record("a = 0;\n")
            record.entries = []
            record.add(mutants.changes_of("src/a.cpp", "a = 0;\n")[0], "", 1)
            record.write()
            self.explain({"file": "src/a.cpp", "text": "a = 0;", "why": "nobody asks"})
            changes = [change for file in [new, *others] for change in mutants.changes_of(file, "a = 0;\n")]
            record = mutants.Record(self.root, changes)
            self.assertEqual([entry["file"] for entry in record.entries], [new] * left, (new, others))
            self.assertEqual(record.open_survivors(), [], new)

    def test_explained_survivors_do_not_count(self):
        source = "a = 7;\n"
        for reason, left in (({"text": "a = 7;"}, 0), ({"text": "a = 7;", "change": "7 -> 6"}, 1), ({"text": "a = 8;"}, 2)):
            self.explain({"file": "src/a.cpp", "why": "nobody asks", **reason})
            record = self.record(source)
            for change in mutants.changes_of("src/a.cpp", source):
                record.add(change, "", 1)
            self.assertEqual(len(record.open_survivors()), left, reason)


# A tree of one source. Of it, the sign and the sum are tested; nothing asks for the value of `spare`; the loop can be made endless.
SOURCE = """int spare = 7;
int sign(int a)
{
    return a < 0 ? -1 : 1;
}
int sum(int n)
{
    int all = 0;
    for (int i = 0; i != n; ++i) {
        all += i;
    }
    return all;
}
int twice(int a)
{
    return a * 2 + 0 * a;
}
"""
UNIT_TEST = """#include <gtest/gtest.h>
int sign(int a);
int sum(int n);
int twice(int a);
TEST(Sums, Sign) { EXPECT_EQ(sign(-5), -1); EXPECT_EQ(sign(0), 1); }
TEST(Sums, Sum) { EXPECT_EQ(sum(4), 0 + 1 + 2 + 3); }
TEST(Sums, Twice) { EXPECT_EQ(twice(3), 3 + 3); }
"""
CLI_TEST = """#include <gtest/gtest.h>
TEST(Cli, Nothing) {}
"""
BUILD = """cmake_minimum_required(VERSION 3.22)
project(sample LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
find_package(GTest REQUIRED)
add_library(gridforge_grid STATIC src/grid/sums.cpp)
add_executable(gridforge src/main.cpp)
target_link_libraries(gridforge PRIVATE gridforge_grid)
foreach(kind IN ITEMS unit cli)
  add_executable(${kind}_tests tests/${kind}/sums_test.cpp)
  set_target_properties(${kind}_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/tests)
  target_link_libraries(${kind}_tests PRIVATE gridforge_grid GTest::gtest_main)
endforeach()
"""


class HelpTest(unittest.TestCase):
    def test_is_what_stands_at_the_top(self):
        done = subprocess.run([sys.executable, "-B", mutants.__file__, "--help"], check=True, stdout=subprocess.PIPE, text=True)
        self.assertIn(mutants.__doc__, done.stdout)


class SampleTreeTest(unittest.TestCase):
    """A tiny tree with a known survivor."""

    @classmethod
    def setUpClass(cls):
        cls.root, cls.folder = tempfile.mkdtemp(), tempfile.mkdtemp()
        for name, text in (("src/grid/sums.cpp", SOURCE), ("src/main.cpp", "int sum(int n);\nint main() { return sum(0); }\n"),
                           ("tests/unit/sums_test.cpp", UNIT_TEST), ("tests/cli/sums_test.cpp", CLI_TEST), ("CMakeLists.txt", BUILD)):
            os.makedirs(os.path.dirname(os.path.join(cls.root, name)), exist_ok=True)
            with open(os.path.join(cls.root, name), "w") as file:
                file.write(text)
        subprocess.run(["git", "init", "--quiet", cls.root], check=True)
        copy = os.path.join(cls.folder, "tree")
        os.mkdir(copy)
        mutants.copy_tree(cls.root, copy)
        cls.build = mutants.Build(copy)
        cls.tests = mutants.Tests(cls.build, cls.folder)
        cls.tests.time_all()
        cls.tests.limit = lambda _stage: 3

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.root)
        shutil.rmtree(cls.folder)

    def outcome(self, wanted):
        change = next(change for change in mutants.all_changes(self.root) if "%s | %s" % (change.shown, change.text) == wanted)
        made = os.path.join(self.build.folder, self.build.object_of(change.file))
        before = self.build.bytes_of(made)
        outcome = mutants.try_change(self.build, self.tests, change)
        self.assertEqual(self.build.bytes_of(made), before)
        with open(os.path.join(self.build.copy, change.file)) as file:
            self.assertEqual(file.read(), SOURCE)
        return outcome

    def ended_by(self, script):
        """What the command-line tests are said to have failed by, where their program is this script of a shell."""
        program = os.path.join(self.build.folder, mutants.PROGRAMS["cli"])
        os.replace(program, program + ".kept")
        self.addCleanup(os.replace, program + ".kept", program)
        with open(program, "w") as file:
            file.write("#!/bin/sh\n" + script)
        os.chmod(program, 0o755)
        return self.tests.run("cli", "*", 100)

    def test_what_a_test_asks_for_is_caught(self):
        self.assertEqual(self.outcome("< -> <= | return a < 0 ? -1 : 1;"), ("caught", "Sums.Sign"))
        self.assertEqual(self.outcome("+= -> -= | all += i;"), ("caught", "Sums.Sum"))

    def test_a_program_that_ends_within_a_test_has_failed(self):
        self.assertEqual(self.ended_by("echo '[ RUN      ] Cli.Nothing'\n"), "Cli.Nothing")

    def test_what_no_test_asks_for_survives(self):
        self.assertEqual(self.outcome("7 -> 8 | int spare = 7;"), ("survived", ""))

    def test_a_run_without_end_is_caught(self):
        outcome, by = self.outcome("++ -> -- | for (int i = 0; i != n; ++i) {")
        self.assertEqual((outcome, by), ("caught", "Sums.Sum (not ended after 3 s)"))

    def test_a_run_that_waits_for_ever_is_caught(self):
        kept = mutants.IDLE_LIMIT
        self.addCleanup(setattr, mutants, "IDLE_LIMIT", kept)
        mutants.IDLE_LIMIT = 2
        self.assertEqual(self.ended_by("echo '[ RUN      ] Cli.Nothing'\nsleep 60\n"), "Cli.Nothing (waits for ever)")

    def test_the_same_code_does_not_count(self):
        self.assertEqual(self.outcome("+ -> - | return a * 2 + 0 * a;"), ("same code", ""))

    def test_what_does_not_compile_does_not_count(self):
        change = next(iter(mutants.all_changes(self.root)))
        broken = mutants.Change(change.file, change.at, change.length, ")", change.line, change.column, change.text, "broken")
        self.assertEqual(mutants.try_change(self.build, self.tests, broken), ("does not compile", ""))

    def test_tests_that_fail_without_a_change_end_the_work(self):
        self.build.link(mutants.PROGRAMS["unit"])  # that of the last change is still there
        program = os.path.join(self.build.folder, mutants.PROGRAMS["cli"])
        os.replace(program, program + ".kept")
        self.addCleanup(os.replace, program + ".kept", program)
        with open(program, "w") as file:
            file.write("#!/bin/sh\necho '[  FAILED  ] Cli.Nothing (0 ms)'\nexit 1\n")
        os.chmod(program, 0o755)
        tests = mutants.Tests(self.build, self.folder)
        tests.time_all()  # known from an earlier part
        os.remove(os.path.join(self.folder, "times.json"))
        with self.assertRaises(SystemExit) as ended:
            tests.time_all()
        self.assertEqual(ended.exception.code, "mutants: without a change Cli.Nothing fails; see " + self.folder)

    def test_a_part_is_counted(self):
        path = os.path.join(self.root, "tests", "mutants.json")
        self.addCleanup(lambda: os.remove(path))
        changes = [change for change in mutants.all_changes(self.root) if change.text == "int spare = 7;"]
        not_built = dataclasses.replace(changes[0], file="src/grid/sums_without_library.cpp")
        self.addCleanup(setattr, mutants, "ROOT", mutants.ROOT)
        mutants.ROOT = self.root
        options = argparse.Namespace(folder=self.folder, count=2, seconds=0, not_kept=False, again=False, cmake=[])
        with contextlib.redirect_stdout(io.StringIO()):
            counts, _ = mutants.work(options, mutants.Record(self.root, changes), [not_built, *changes], 5)
        self.assertEqual(counts, collections.Counter(survived=2))
        with open(path) as file:
            self.assertEqual([(entry["change"], entry["outcome"], entry["seed"]) for entry in json.load(file)["changes"]],
                             [("7 -> 6", "survived", 5), ("7 -> 8", "survived", 5)])


if __name__ == "__main__":
    sys.exit(unittest.main())
