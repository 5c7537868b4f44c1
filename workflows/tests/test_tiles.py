"""Which terrains can be cut into tiles, and tiles that are put together again."""
import struct
import subprocess
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


class JoinTest(FolderTest):
    """A terrain of 7 x 5 cells, cut by the script and put together again."""

    CELLS = [float(number) for number in range(35)]

    def setUp(self):
        super().setUp()
        self.give("ground", 7, 5, 0, 0, self.CELLS)

    def give(self, name, columns, rows, west, south, cells):
        (self.folder / f"{name}.flt").write_bytes(struct.pack(f"<{len(cells)}f", *cells))
        (self.folder / f"{name}.hdr").write_text(f"ncols {columns}\nnrows {rows}\nxllcorner {west}\nyllcorner {south}\ncellsize 1\n"
                                                 "NODATA_value -9999\nbyteorder LSBFIRST\n")

    def run_tiles(self, *arguments):
        run = subprocess.run([sys.executable, "-B", tiles.__file__, *arguments], cwd=self.folder, capture_output=True, text=True,
                             check=False)
        return run.returncode, run.stderr

    def cut(self, count):
        names = [f"{row}_{column}" for row in range(count) for column in range(count)]
        for name in names:
            self.assertEqual(self.run_tiles("cut", "ground.flt", "--out", f"{name}.flt", "--tile", name, "--count", str(count)), (0, ""))
        return [f"{name}.flt" for name in names]

    def join(self, names, count):
        return self.run_tiles("join", *names, "--ground", "ground.flt", "--count", str(count), "--out", "whole.flt")

    def refused(self, names, count, message):
        self.assertEqual(self.join(names, count), (1, f"tiles: {message}\n"))
        self.assertFalse((self.folder / "whole.flt").exists())

    def test_the_whole_again(self):
        self.assertEqual(self.join(self.cut(2), 2), (0, ""))
        self.assertEqual((self.folder / "whole.flt").read_bytes(), (self.folder / "ground.flt").read_bytes())

    def test_a_tile_of_another_number_of_tiles(self):
        names = self.cut(3)
        (self.folder / "older").mkdir()
        for end in (".flt", ".hdr"):
            (self.folder / f"0_0{end}").rename(self.folder / f"older/0_0{end}")
        self.cut(2)
        self.refused(["older/0_0.flt", *names[1:]], 2, "2 x 2 tiles are 4 grids, not 9")
        self.refused(["older/0_0.flt", "0_1.flt", "1_0.flt", "1_1.flt"], 2,
                     "older/0_0.flt is not tile 0_0 of 2 x 2 of the terrain; delete it and run again")
        self.refused(["0_0.flt", "1_0.flt", "0_1.flt", "1_1.flt"], 2,
                     "1_0.flt is not tile 0_1 of 2 x 2 of the terrain; delete it and run again")

    def test_tiles_that_do_not_make_the_terrain(self):
        names = self.cut(2)
        for name, west in (("0_0", -0.4), ("0_1", 3.4)):  # each nearer to its place than half a cell
            self.give(name, 3 if name == "0_0" else 4, 2, west, 0, [1.0] * (6 if name == "0_0" else 8))
        self.refused(names, 2, "whole.flt: the tiles together have 8 x 5 cells, the terrain has 7 x 5")

    def test_grids_that_end_too_early(self):
        names = self.cut(2)
        (self.folder / "1_1.flt").write_bytes(b"1234")
        self.refused(names, 2, "1_1.flt ends before its last cell")
        (self.folder / "ground.flt").write_bytes(b"1234")
        self.assertEqual(self.run_tiles("cut", "ground.flt", "--out", "a.flt"), (1, "tiles: ground.flt ends before its last cell\n"))
        self.assertFalse((self.folder / "a.flt").exists())

    def test_what_gdal_does_not_read(self):
        names = self.cut(2)
        with open(self.folder / "1_1.hdr", "a") as header:
            header.write("nbits 7\n")
        status, error = self.join(names, 2)
        self.assertEqual(status, 1)
        self.assertRegex(error, r"\Atiles: whole\.flt: GDAL: [^\n]+\n\Z")


if __name__ == "__main__":
    assert Path(tiles.__file__).is_file()
    sys.exit(unittest.main())
