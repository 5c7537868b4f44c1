"""The statistic over many grids, and sources that are put together, against the tool, bit for bit."""
import contextlib
import importlib
import io
import json
import os
import random
import struct
import sys
import unittest
from unittest import mock

import with_workflow
from with_workflow import FolderTest, run_tool

with_workflow.settle_programs()

COLUMNS, ROWS = 23, 31
NULL = -9999.0
PROJECTION = 'PROJCS["made up",GEOGCS["made up"]]\n'


def single(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


class GridsTest(FolderTest):
    def give(self, name, cells, null=NULL, cell="0.1", columns=COLUMNS):
        (self.folder / f"{name}.flt").write_bytes(struct.pack(f"<{len(cells)}f", *cells))
        (self.folder / f"{name}.hdr").write_text(
            f"ncols {columns}\nnrows {len(cells) // columns}\nxllcorner 1000.25\nyllcorner -3\ncellsize {cell}\n"
            f"NODATA_value {null}\nbyteorder LSBFIRST\n")
        return f"{name}.flt"

    def give_many(self, count, draw):
        chance = random.Random(count)
        return [self.give(f"g{number}", [draw(chance) for _ in range(COLUMNS * ROWS)]) for number in range(1, count + 1)]

    def script(self, name, *arguments):
        """Runs a script of the workflow in this process; its exit status and what it printed to standard error."""
        error, here = io.StringIO(), os.getcwd()
        os.chdir(self.folder)
        try:
            with contextlib.redirect_stderr(error), mock.patch.object(sys, "argv", [f"{name}.py", *arguments]):
                status = importlib.import_module(name).main()
        finally:
            os.chdir(here)
        return status, error.getvalue()

    def bytes_of(self, base):
        return {path.name[len(base):]: path.read_bytes() for path in sorted(self.folder.glob(f"{base}_*"))}

    def bytes_at(self, base):
        return {path.name[len(base):]: path.read_bytes() for path in sorted(self.folder.glob(f"{base}*"))}


def plain(chance):
    return chance.choice([NULL, chance.uniform(0, 20), round(chance.uniform(0, 3))])  # with equal values


def hard(chance):
    return chance.choice([NULL, NULL + 0.005, 0.0, -0.0, -12000.0, 1e30, 9e29, float("nan"), float("inf"), -float("inf"), 3e38,
                          round(chance.uniform(0, 2)), chance.uniform(0, 1)])


class StatisticTest(GridsTest):
    def agrees(self, grids, statistics):
        run_tool(self.folder, *(f"-stat{statistic.title()}" for statistic in statistics), "-flt", *grids, "-out", "tool")
        for statistic in statistics:
            self.assertEqual(self.script("statistic", statistic, "--out", "script", "--grids", *grids), (0, ""))
        self.assertEqual(self.bytes_of("script"), self.bytes_of("tool"))
        self.assertEqual(len(self.bytes_of("tool")), 1 + len(statistics) * (6 if (self.folder / "g1.prj").exists() else 4))
        for path in [*self.folder.glob("script_*"), *self.folder.glob("tool_*")]:
            path.unlink()

    def test_each_number_of_grids(self):
        for count in range(2, 11):
            with self.subTest(count=count):
                self.agrees(self.give_many(count, plain), ["median", "mean", f"rank{(count + 2) // 3}"])

    def test_values_that_upset_the_order(self):
        for count in (2, 3, 7, 10):
            with self.subTest(count=count):
                self.agrees(self.give_many(count, hard), ["median", "mean", "rank1"])

    def test_projection_and_headers_are_those_of_the_tool(self):
        grids = self.give_many(3, plain)
        for grid in grids:
            (self.folder / grid).with_suffix(".prj").write_text(PROJECTION)
        self.agrees(grids, ["median"])

    def test_a_null_above_the_data(self):
        grids = [self.give(f"g{n}", [9999.0, n, 9999.0, 5 - n], null=9999, cell="25", columns=2) for n in range(1, 4)]
        self.agrees(grids, ["median", "mean"])

    def test_more_than_the_tool_takes(self):
        cells = [[single(number * 7 % 12 + place / 8) for place in range(4)] for number in range(12)]  # 0 to 11, each once
        grids = [self.give(f"g{n:02}", row, columns=2) for n, row in enumerate(cells)]
        self.assertEqual(self.script("statistic", "median", "--out", "m", "--grids", *grids, "--json", "r.json"), (0, ""))
        self.assertEqual(struct.unpack("<4f", (self.folder / "m_Median_Val.flt").read_bytes()),
                         tuple(6 + place / 8 for place in range(4)))  # the seventh of twelve
        self.assertEqual(struct.unpack("<4f", (self.folder / "m_Median_Src.flt").read_bytes()), (7, 7, 7, 7))  # 6 * 7 % 12 = 6
        record = json.loads((self.folder / "r.json").read_text())
        self.assertEqual((record["outcome"], len(record["inputs"]), len(record["outputs"])), ("finished", 12, 5))

    def fails(self, message, *arguments):
        self.assertEqual(self.script("statistic", *arguments, "--out", "m", "--json", "r.json"), (1, f"statistic: {message}\n"))
        self.assertEqual(json.loads((self.folder / "r.json").read_text())["error"], message)
        self.assertEqual(list(self.folder.glob("m_*")), [])

    def test_grids_that_do_not_fit(self):
        self.give("a", [1, 2, 3, 4], columns=2)
        self.give("b", [1, 2, 3, 4], columns=4)
        self.give("c", [1, 2, 3, 4], columns=2, null=-999)
        self.give("d", [1, 2, 3, 4], columns=2)
        (self.folder / "d.flt").write_bytes(b"0123456789")
        (self.folder / "e.asc").write_text("ncols 1\n")
        self.fails("b.flt does not lie on the cells of a.flt", "median", "--grids", "a.flt", "b.flt")
        self.fails("c.flt has another null than a.flt", "median", "--grids", "a.flt", "c.flt")
        self.fails("d.flt ends before its last cell", "median", "--grids", "a.flt", "d.flt")
        self.fails("e.asc is no .flt", "median", "--grids", "a.flt", "e.asc")
        self.fails("none.flt: No such file or directory", "median", "--grids", "a.flt", "none.flt")
        for statistic in ("rank3", "rank0", "most"):
            self.fails(f"{statistic} of 2 grids cannot be taken", statistic, "--grids", "a.flt", "a.flt")


class JoinSourcesTest(GridsTest):
    def join(self, grids, size):
        parts = [grids[at:at + size] for at in range(0, len(grids), size)]
        for number, part in enumerate(parts, 1):
            run_tool(self.folder, "-max", "-flt", *part, "-out", f"part{number}")
        names = [f"part{number}.flt" for number, _ in enumerate(parts, 1)]
        run_tool(self.folder, "-max", "-flt", *names, "-out", "all")
        return self.script("join_sources", "all.flt", *names, "--out", "joined")

    def test_parts_give_what_one_run_gives(self):
        for count, size in ((7, 2), (9, 3), (5, 4)):
            with self.subTest(count=count, size=size):
                grids = self.give_many(count, plain)
                self.assertEqual(self.join(grids, size), (0, ""))
                run_tool(self.folder, "-max", "-flt", *grids, "-out", "tool")
                self.assertEqual(self.bytes_at("joined"), self.bytes_at("tool"))

    def test_parts_with_several_nulls(self):
        grids = [self.give("g1", [1, 2], columns=2), self.give("g2", [1, 2], columns=2, null=-99999)]
        self.assertEqual(self.join(grids, 1), (1, "join_sources: part2.flt has another null than part1.flt\n"))
        self.assertEqual(self.bytes_at("joined"), {})


if __name__ == "__main__":
    sys.exit(unittest.main())
