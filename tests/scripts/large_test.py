#!/usr/bin/env python3
"""Tests of scripts/large: what it computes by itself, and that a wrong cell is found."""
import array
import os
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "support"))

from script_module import loaded  # noqa: E402

large = loaded("large")
N = large.NULL


def write(name, rows):
    with open(name[:-4] + ".hdr", "w") as header:
        header.write("ncols %d\nnrows %d\nxllcorner %.1f\nyllcorner %.1f\ncellsize 1\nNODATA_value -9999\nbyteorder LSBFIRST\n"
                     % (len(rows[0]), len(rows), large.WEST, large.SOUTH))
    with open(name, "wb") as file:
        for row in rows:
            array.array("f", row).tofile(file)


class ChecksTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)
        write("d1.flt", [[1, N], [N, 0.125]])
        write("d2.flt", [[2, N], [5, 0.25]])
        write("d3.flt", [[0, N], [N, 0.5]])
        write("d4.flt", [[-1, N], [N, 4]])

    def finds(self, check, name, right, wrong):
        write(name, right)
        check()
        write(name, wrong)
        with self.assertRaises(large.Wrong):
            check()

    def test_a_maximum(self):
        write("o_src.flt", [[2, N], [2, 4]])
        self.finds(large.check_max, "o.flt", [[2, N], [5, 4]], [[2, N], [5, 3]])
        write("o.flt", [[2, N], [5, 4]])
        self.finds(large.check_max, "o_src.flt", [[2, N], [2, 4]], [[2, N], [2, 3]])

    def test_a_difference(self):
        write("o_wd.flt", [[N, N], [-99, N]])
        self.finds(large.check_dif, "o.flt", [[-1, N], [N, -0.125]], [[-1, N], [-5, -0.125]])
        write("o.flt", [[-1, N], [N, -0.125]])
        self.finds(large.check_dif, "o_wd.flt", [[N, N], [-99, N]], [[N, N], [99, N]])

    def test_a_text_and_the_grid_that_it_becomes_again(self):
        head = "ncols 2\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n"
        with open("d1.asc", "w") as file:
            file.write(head + "     1.000 -9999.000\n -9999.000     0.125\n")
        large.check_to_text()
        self.finds(large.check_to_binary, "o.flt", [[1, N], [N, 0.125]], [[1, N], [N, 0.126]])
        with open("d1.asc", "w") as file:
            file.write(head + "     1.000 -9999.000\n")  # a row is missing
        with self.assertRaises(large.Wrong):
            large.check_to_text()

    def test_squares_and_a_part_of_a_grid(self):
        side = 20
        ground = [[100 * row + column for column in range(side)] for row in range(side)]
        write("g.flt", ground)
        means = [[100 * (5 * row + 2) + 5 * column + 2 for column in range(4)] for row in range(4)]
        self.finds(large.check_resize, "o.flt", means, [means[0], means[1], means[2], [1, 2, 3, 4]])
        # The region reaches from 5.5 to 15.5: north-east corners from 6 to 15, so rows 5 to 14 from the north.
        kept = [[ground[row][column] if 5 <= row <= 14 and 5 <= column <= 14 else N for column in range(side)] for row in range(side)]
        self.finds(large.check_trim, "by_g.flt", kept, ground)


class DiskTest(unittest.TestCase):
    def test_holds_the_inputs_and_the_largest_outputs(self):
        cells = 20000 ** 2
        self.assertGreater(large.disk_needed(20000, 8000), 5 * 4 * cells + 10 * cells + 4 * cells)


if __name__ == "__main__":
    unittest.main()
