"""What steps ask for of memory and minutes, by the sizes of grids and on a second try."""
import sys
import unittest

import with_workflow
from with_workflow import FolderTest

import sizes  # isort: skip

assert with_workflow.WORKFLOW.is_dir()


class NeedsTest(FolderTest):
    def give(self, name, columns, rows):
        path = self.folder / f"{name}.asc"
        path.write_text(f"ncols {columns}\nnrows {rows}\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n")
        return str(path)

    def needs(self, method="tin", coarse=(10_000, 1_000), fine=(20_000, 10_000)):
        return sizes.Needs([self.give("small", 10, 10), self.give("level", *coarse)], self.give("ground", *fine), method)

    def test_a_remap_asks_by_its_cells(self):
        self.assertEqual(self.needs().memory("remap")({}, 1), 300 + 2 * 10 * 10)  # millions of cells
        self.assertEqual(self.needs("idw").memory("remap")({}, 1), 300 + 2 * (15 * 10 + 13 * 200))

    def test_minutes_follow_from_what_is_read(self):
        self.assertEqual(self.needs().minutes({}, ["a"] * 6, 1), 10 + 6 * 200 // 20)
        self.assertEqual(self.needs().minutes_of_whole({}, 1), 10 + 2 * 200 // 20)

    def test_a_second_try_gets_twice_as_much(self):
        need = self.needs()
        for ask in (need.memory("statistic"), need.memory("remap"), need.memory("many"), need.fixed(500), need.minutes_of_whole,
                    need.few_minutes):
            self.assertEqual(ask({}, attempt=2), 2 * ask({}, attempt=1))
        self.assertEqual(need.minutes({}, ["a"], attempt=2), 2 * need.minutes({}, ["a"], attempt=1))

    def test_a_grid_that_cannot_be_read(self):
        self.assertEqual(sizes.Needs(["missing.asc"], "missing.flt", "tin").memory("remap")({}, 1), 300)


if __name__ == "__main__":
    sys.exit(unittest.main())
