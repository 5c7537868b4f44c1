"""Which terrains can be cut into tiles, and tiles that are put together again."""
import sys
import unittest
from pathlib import Path

import with_workflow
from with_workflow import FolderTest

import tiles  # isort: skip

with_workflow.settle_programs()


class LatticeTest(FolderTest):
    def give(self, west="0", south="0", cell="1", columns="7", rows="5"):
        path = self.folder / "g.asc"
        path.write_text(f"ncols {columns}\nnrows {rows}\nxllcorner {west}\nyllcorner {south}\ncellsize {cell}\nNODATA_value -9999\n1 2\n")
        return path

    def refused(self, message, **header):
        path = self.give(**header)
        with self.assertRaises(tiles.Failure) as caught:
            tiles.Lattice(path)
        self.assertEqual(str(caught.exception), f"{path}: {message}")

    def test_exact_ones(self):
        for header in ({}, {"cell": "0.5"}, {"cell": "0.25", "west": "293000.125"}, {"cell": "2.", "south": "6178000.000"},
                       {"west": "-1e6", "cell": "12.5"}):
            self.assertEqual(tiles.Lattice(self.give(**header)).columns, 7)

    def test_rounded_ones(self):
        rounded = "is rounded by the tool, so tiles would not give what the whole gives; take one tile"
        self.refused(f"cellsize 0.1 {rounded}", cell="0.1")
        self.refused(f"cellsize 16777217 {rounded}", cell="16777217")  # a whole number that single precision has not
        self.refused(f"xllcorner 0.3 {rounded}", west="0.3")
        self.refused(f"yllcorner 1000.1 {rounded}", south="1000.1")
        self.refused("corners of cells are rounded by the tool, so tiles would not give what the whole gives; take one tile",
                     west="8589934592", cell="0.00000095367431640625")  # 2^33 and 2^-20: halves of cells are past the 53rd bit
        self.refused("xllcorner is no number: x", west="x")

    def test_a_header_by_centres(self):
        path = self.folder / "g.asc"
        path.write_text("ncols 7\nnrows 5\nxllcenter 0\nyllcenter 0\ncellsize 1\n1 2\n")
        with self.assertRaises(tiles.Failure) as caught:
            tiles.Lattice(path)
        self.assertEqual(str(caught.exception), f"{path}: xllcorner is missing in the header")

    def test_tiles_cover_all_cells_once(self):
        lattice = tiles.Lattice(self.give())
        for count in (1, 2, 3, 7):
            parts = [lattice.tile(number, count, 7) for number in range(count)]
            self.assertEqual([cell for first, cells in parts for cell in range(first, first + cells)], list(range(7)))


if __name__ == "__main__":
    assert Path(tiles.__file__).is_file()
    sys.exit(unittest.main())
