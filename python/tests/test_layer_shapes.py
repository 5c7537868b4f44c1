"""Thinning and holes, on shapes worked out by hand."""
import math
import unittest

from gridforge.layer_shapes import area, cut_open, thin

SQUARE = [(0.0, 0.0), (10.0, 0.0), (10.0, 10.0), (0.0, 10.0)]


def box(west, south, east, north):
    return [(west, south), (east, south), (east, north), (west, north)]


def inside(ring, x, y):
    """By the edges that a ray to the west crosses."""
    crossed = False
    for (x0, y0), (x1, y1) in zip(ring, ring[1:] + ring[:1]):
        if (y0 <= y) != (y1 <= y) and x0 + (y - y0) / (y1 - y0) * (x1 - x0) < x:
            crossed = not crossed
    return crossed


class ThinTest(unittest.TestCase):
    def test_keeps_the_vertices_that_matter_most(self):
        line = [(0, 0), (1, 0.1), (2, 0), (3, 5), (4, 0), (5, 0.2), (6, 0)]
        thinned = thin([line], closed=False, most=3, tolerance=None)
        self.assertEqual(thinned.lines, [[(0, 0), (3, 5), (6, 0)]])
        # (2, 0) lies off the side that goes up from the origin to (3, 5): 2 * 5 / sqrt(34); nothing lies farther
        self.assertAlmostEqual(thinned.moved, 10 / math.sqrt(34))

    def test_by_a_distance(self):
        line = [(0, 0), (1, 0.1), (2, 0), (3, 5), (4, 0), (5, 0.2), (6, 0)]
        thinned = thin([line], closed=False, most=None, tolerance=0.3)
        self.assertEqual(thinned.lines, [[(0, 0), (2, 0), (3, 5), (4, 0), (6, 0)]])
        self.assertEqual(thinned.moved, 0.2)
        self.assertEqual(thin([line], False, None, 0.1).lines, [[v for v in line if v != (1, 0.1)]])

    def test_straight_lines_keep_their_ends_and_do_not_move(self):
        thinned = thin([[(float(x), 2.0 * x) for x in range(50)]], closed=False, most=2, tolerance=None)
        self.assertEqual(thinned.lines, [[(0, 0), (49, 98)]])
        self.assertAlmostEqual(thinned.moved, 0, delta=1e-12)

    def test_a_ring_keeps_its_corners(self):
        ring = [(x / 10, 0.0) for x in range(100)] + [(10.0, y / 10) for y in range(100)]
        ring += [(10 - x / 10, 10.0) for x in range(100)] + [(0.0, 10 - y / 10) for y in range(100)]
        thinned = thin([ring], closed=True, most=4, tolerance=None)
        self.assertEqual(sorted(thinned.lines[0]), sorted(SQUARE))
        self.assertAlmostEqual(thinned.moved, 0, delta=1e-12)

    def test_a_ring_keeps_three_vertices(self):
        self.assertEqual(len(thin([SQUARE], True, 1, None).lines[0]), 3)
        self.assertEqual(len(thin([SQUARE], True, None, 1000).lines[0]), 3)

    def test_vertices_of_several_rings_count_together(self):
        toothed = [(0.0, 0.0), (5.0, -0.5), *SQUARE[1:]]  # the tooth is 0.5 long
        hole = [(4.0, 4.0), (5.0, 3.9), (6.0, 4.0), (6.0, 6.0), (4.0, 6.0)]  # and this one 0.1
        thinned = thin([toothed, hole], True, 9, None)
        self.assertEqual([len(ring) for ring in thinned.lines], [5, 4])
        self.assertAlmostEqual(thinned.moved, 0.1)

    def test_a_circle_moves_by_what_lies_between_chord_and_arc(self):
        radius, vertices, kept = 100.0, 256, 64
        turns = [2 * math.pi * i / vertices for i in range(vertices)]
        ring = [(radius * math.cos(turn), radius * math.sin(turn)) for turn in turns]
        thinned = thin([ring], True, kept, None)
        self.assertEqual(len(thinned.lines[0]), kept)
        # 64 vertices leave arcs of 4 steps at best; one that is uneven has arcs of 8 at most.
        self.assertGreaterEqual(thinned.moved, radius * (1 - math.cos(4 * math.pi / vertices)) - 1e-9)
        self.assertLessEqual(thinned.moved, radius * (1 - math.cos(8 * math.pi / vertices)) + 1e-9)


class HolesTest(unittest.TestCase):
    def check(self, outer, holes):
        ring = cut_open(outer, holes)
        self.assertAlmostEqual(area(ring), area(outer) - sum(map(area, holes)), places=9)
        west, east = min(x for x, _ in outer), max(x for x, _ in outer)
        south, north = min(y for _, y in outer), max(y for _, y in outer)
        for i in range(41):
            for j in range(41):  # also on the rows of the cuts, which count nothing
                x, y = west + (east - west) * (i + 0.37) / 41, south + (north - south) * j / 40
                in_hole = any(inside(hole, x, y) for hole in holes)
                self.assertEqual(inside(ring, x, y), inside(outer, x, y) and not in_hole, (x, y))
        return ring

    def test_a_hole_is_joined_by_a_cut_due_east(self):
        hole = box(2, 4, 5, 6)
        ring = self.check(SQUARE, [hole])
        # in from the east side to the corner of the hole, round it the other way, and back
        self.assertEqual(ring, [(0, 0), (10, 0), (10, 6), (5, 6), (5, 4), (2, 4), (2, 6), (5, 6), (10, 6), (10, 10), (0, 10)])

    def test_holes_behind_each_other_are_joined_in_turn(self):
        ring = self.check(SQUARE, [box(1, 4, 2, 6), box(3, 3, 4, 7), box(6, 5, 8, 8)])
        self.assertEqual(len(ring), 4 + 3 * (4 + 3))

    def test_holes_of_one_row_that_end_at_one_place(self):
        self.check(SQUARE, [box(2, 1, 4, 3), box(2, 5, 4, 7), box(5, 1, 6, 7)])

    def test_whichever_way_rings_go(self):
        for outer in (SQUARE, SQUARE[::-1]):
            for hole in (box(2, 4, 5, 6), box(2, 4, 5, 6)[::-1]):
                self.check(outer, [hole])

    def test_slanted_sides_and_bays(self):
        outer = [(0.0, 0.0), (12.0, -1.0), (9.0, 5.0), (13.0, 11.0), (-1.0, 9.0)]
        self.check(outer, [[(2.0, 2.0), (4.0, 3.0), (3.0, 5.0)], [(5.0, 4.5), (7.0, 5.0), (6.0, 7.0), (5.2, 6.0)]])

    def test_a_hole_outside_is_refused(self):
        self.assertIsNone(cut_open(SQUARE, [box(12, 4, 13, 6)]))
