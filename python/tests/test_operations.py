"""The functions of the operations: what they hand to the tool, and that they are those of the description and the pages."""
import inspect
import os
import sys
import unittest
from pathlib import Path
from unittest import mock

import gridforge
from gridforge import calls, operations
from tests.support import ScratchTest, cells, grid

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
import make_operations  # noqa: E402


class OperationsTest(ScratchTest):
    def handed(self, function, *arguments, **values):
        with mock.patch.object(calls, "run") as run:
            function(*arguments, **values)
        return run.call_args

    def arguments(self, function, *arguments, **values):
        return self.handed(function, *arguments, **values).args[0]

    def test_they_are_made_of_the_description_and_the_pages(self):
        made = make_operations.module(os.environ["GRIDFORGE_JSON"])
        self.assertEqual(Path(operations.__file__).read_text(), made,
                         "Run `cmake --build BUILD --target gridforge_python_data` and commit what it made.")

    def test_every_flag_that_asks_for_an_operation_has_a_function(self):
        for operation in gridforge.load_description().operations:
            for flag in operation.flags:
                names = [flag.name, operation.name]
                self.assertTrue(any(name in operations.__all__ and hasattr(gridforge, name) for name in names), flag.flag)

    def test_every_option_is_a_keyword(self):
        for operation in gridforge.load_description().operations:
            name = operation.name if operation.name in operations.__all__ else operation.flags[0].name
            taken = inspect.signature(getattr(gridforge, name)).parameters
            for option in operation.options:
                self.assertIn(option.name, taken, operation.name)

    def test_arguments(self):
        g = gridforge
        for made, expected in (
                (self.arguments(g.max, "a.asc", out="m", asc=True, decimal=2), ["-max", "-out", "m", "-decimal2", "-asc", "a.asc"]),
                (self.arguments(g.min, ["a", Path("b")]), ["-min", "a", "b"]),
                (self.arguments(g.cd, ["a"], 0.1), ["-cd0.1", "a"]),
                (self.arguments(g.cd, ["a"], -1e-5), ["-cd-1e-05", "a"]),
                (self.arguments(g.trans_m, "a", c=2), ["-trans_c2.0", "a"]),
                (self.arguments(g.resize, "a", 3, rm_max=True), ["-resize3", "-rm_max", "a"]),
                (self.arguments(g.rf, "storm.rfc"), ["-rf", "storm.rfc"]),
                (self.arguments(g.xs, "a", "s.mif", mat=["m", "n"], default_n=0), ["-xs", "s.mif", "-mat", "m", "-mat", "n",
                                                                                  "-default_n0.0", "a"]),
                (self.arguments(g.xs, "a", "s.mif", mat="m"), ["-xs", "s.mif", "-mat", "m", "a"]),
                (self.arguments(g.stat, ["a", "b"], ["Mean", "Rank12"]), ["-statMean", "-statRank12", "a", "b"]),
                (self.arguments(g.stat, ["a", "b"], "All"), ["-statAll", "a", "b"]),
                (self.arguments(g.nc, "a", nc_shuffle=0, nc_part=True), ["-nc", "-nc_shuffle0", "-nc_part1", "a"])):
            self.assertEqual(made, expected)

    def test_a_switch_counts_in_spite_of_values(self):
        self.assertEqual(self.arguments(gridforge.remap, wl="w", dem="d", fb=0.2, tin=True),
                         ["-remap", "-wl", "w", "-dem", "d", "-fb0.2", "-tin"])

    def test_names_that_look_like_flags(self):
        self.assertEqual(self.arguments(gridforge.fe, ["-max", "/max.asc", b"\x96a"], folder=self.folder)[1:],
                         ["./-max", "../" * (len(self.folder.parts) - 1) + "max.asc", "./\udc96a"])

    def test_further_keywords_are_those_of_run(self):
        self.assertEqual(self.handed(gridforge.fe, "a", stage=True, timeout=5).kwargs, {"stage": True, "timeout": 5})
        self.assertEqual(set(calls.How.__annotations__), set(inspect.signature(gridforge.run).parameters) - {"arguments"})

    def refused(self, function, *arguments, **values):
        with self.assertRaises(gridforge.WrongUse) as raised:
            function(*arguments, **values)
        return str(raised.exception)

    def test_values_that_are_refused(self):
        for message, expected in (
                (self.refused(gridforge.cd, "a", float("nan")), "-cd takes a number, not: nan"),
                (self.refused(gridforge.resize, "a", 2.5), "-resize takes a whole number, not: 2.5"),
                (self.refused(gridforge.resize, "a", True), "-resize takes a whole number, not: True"),
                (self.refused(gridforge.nc, "a", nc_part=2), "-nc_part takes one of 0, 1, not: 2"),
                (self.refused(gridforge.stat, "a", "Most"),
                 "-stat takes one of All, Mean, Median, Min, Max, Frac, Rank<n>, RankAll, not: Most")):
            self.assertEqual(message, expected)

    def test_runs(self):
        self.give("in/-a.asc", grid([1, 2]))
        self.give("in/b.asc", grid([3, 1]))
        record = gridforge.max(["-a.asc", "b.asc"], src=True, out=self.folder / "m", folder="in", stage=True)
        self.assertEqual((record.operation, record.output_names), ("max", ["../m.asc"]))
        self.assertEqual(cells("m.asc"), [3, 2])
        with self.assertRaises(gridforge.RunError) as raised:
            gridforge.dif("in/b.asc")
        self.assertEqual(str(raised.exception), "ERROR - More than one file requried for -dif.")

    def test_docstrings(self):
        for name in operations.__all__:
            text = inspect.getdoc(getattr(gridforge, name))
            self.assertRegex(text, r"(?s)^[A-Z].*\.\n\n[A-Z].*\n\nFurther keywords are those of gridforge\.run\. Page: docs/", name)


if __name__ == "__main__":
    unittest.main()
