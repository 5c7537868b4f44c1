"""gridforge-picture, as .png: the colours at places of the picture, what stands in the legend, and grids that are thinned first."""
import random
import struct
import unittest
from pathlib import Path
from unittest import mock

import numpy
from matplotlib import image
from matplotlib.font_manager import FontProperties
from matplotlib.textpath import TextPath

from gridforge import grid_blocks, picture, styles
from gridforge.canvas import Place
from tests.tool_case import ToolCase, asc, mif

DPI = 100
CM = DPI / 2.54  # dots
NULL = -9999
MAP_WIDTH = 16 - picture.PANEL - picture.GAP - 2 * picture.MARGIN
WHITE = (255, 255, 255)


def rgb(colour):
    return tuple(bytes.fromhex(colour[1:]))


class Drawn(ToolCase):
    def draw(self, *options):
        """Draws a.asc without a title, its map as wide as the panel leaves it."""
        self.assertEqual(self.good("picture", "a.asc", "o.png", "--dpi", str(DPI), "--overwrite", *options), "")
        self.picture = (image.imread(self.folder / "o.png")[..., :3] * 255).round().astype(int)

    def at(self, east, south, wide, tall):
        """The colour at a place of a map of so many units, from its north-west corner."""
        unit = MAP_WIDTH * CM / wide
        x, y = picture.MARGIN * CM + east * unit, picture.MARGIN * CM + south * unit
        return tuple(self.picture[int(y), int(x)])

    def row(self, count):
        """The colours in the middle of the cells of a map of one row of squares."""
        return [self.at(column + 0.5, 0.5, count, 1) for column in range(count)]

    def near(self, got, expected, by=3):
        self.assertLessEqual(max(abs(int(a) - int(b)) for a, b in zip(got, expected)), by, (got, expected))


class ColoursTest(Drawn):
    def check(self, kind, cells, colours, *options):
        # Two rows, so that the map is high enough to have the panel beside it.
        self.give("a.asc", asc([cells] * len(cells)))
        self.draw("--kind", kind, *options)
        for column, colour in enumerate(colours):
            self.near(self.at(column + 0.5, len(cells) / 2 + 0.25, len(cells), len(cells)), rgb(colour) if colour else WHITE)

    def test_depths(self):
        self.check("depth", [0.05, 0.1, 0.7, 20, NULL], ["#d8ecf8", "#d8ecf8", "#55a4d3", "#071f4a", None])

    def test_impacts(self):
        self.check("impact", [-2, 0, 0.03, 0.7], ["#1a4f94", "#f4efb4", "#fde3cf", "#97141f"])

    def test_levels_from_the_lowest_to_the_highest(self):
        self.check("level", [10, 14, 30], ["#1f3b73", "#2c7fb8", "#d7301f"])  # 14 lies at a fifth of the way

    def test_levels_in_a_range_that_is_given(self):
        self.check("level", [5, 14, 99], ["#1f3b73", "#2c7fb8", "#d7301f"], "--range", "10", "30")

    def test_differences(self):
        self.check("difference", [-9, 0, 0.3], ["#1a4f94", "#fdf8d8", "#e5724e"])

    def test_cells_of_one_grid_only(self):
        self.check("wet_dry", [-99, 99, 1, 50], ["#e08214", "#7b3294", "#4a90c8", None])

    def test_sources(self):
        self.check("source", [1, 3, NULL], ["#1f77b4", "#2ca02c", None])

    def test_a_level_that_is_the_same_everywhere(self):
        self.check("level", [7, 7], ["#1f3b73", "#1f3b73"])


class MapTest(Drawn):
    def test_the_ground_shows_light_slopes_in_the_north_west(self):
        # A ridge from south-west to north-east: its north-western side looks to the sun.
        size = 20
        ridge = [[10 - abs(row + column - size + 1) for column in range(size)] for row in range(size)]
        self.give("g.asc", asc(ridge))
        self.give("a.asc", asc([[NULL] * size for _ in range(size - 1)] + [[NULL] * (size - 1) + [1]]))
        self.draw("--kind", "depth", "--ground", "g.asc")
        light, dark = self.at(5, 5, size, size), self.at(15, 15, size, size)
        self.assertGreater(light[0], dark[0] + 40)
        self.assertEqual(len(set(light)), 1)  # grey

    def test_over_the_ground_cells_have_the_colours_of_the_legend(self):
        self.give("g.asc", asc([[1, 1], [1, 1]]))
        self.give("a.asc", asc([[1, NULL], [4, 1]]))
        self.draw("--kind", "depth", "--ground", "g.asc")
        self.assertEqual(self.at(0.5, 0.5, 2, 2), rgb("#55a4d3"))
        self.assertEqual(self.at(0.5, 1.5, 2, 2), rgb("#0b3c7c"))
        # A level ground under a sun of 45 degrees has the brightness 0.6 + 0.4 * sin 45.
        self.near(self.at(1.5, 0.5, 2, 2), [255 * (0.6 + 0.4 * 0.5 ** 0.5)] * 3)

    def test_layers_lie_on_top(self):
        self.give("a.asc", asc([[1] * 10] * 10))
        self.give("l.mif", mif(["Name Char(9)"], "Line 0 5 10 5\n"))
        self.give("l.mid", '"x"\n')
        self.give("p.mif", mif(["Name Char(9)"], "Point 5 8\n"))
        self.give("p.mid", '"x"\n')
        self.draw("--kind", "depth", "--layer", "l.mif=A line", "--layer", "p.mif")
        self.near(self.at(5, 5, 10, 10), rgb(picture.INKS[0]), 40)
        self.near(self.at(5, 2, 10, 10), rgb(picture.INKS[1]), 40)
        self.near(self.at(5, 3.5, 10, 10), rgb("#55a4d3"))

    def test_only_a_window(self):
        self.give("a.asc", asc([[0.05, 0.2, 0.4], [0.7, 1.5, 2.5], [4, 9, NULL]], cell=10))
        self.draw("--kind", "depth", "--window", "10", "10", "30", "30")
        self.near(self.at(0.5, 0.5, 2, 2), rgb("#b3d9ef"))
        self.near(self.at(1.5, 1.5, 2, 2), rgb("#195da0"))

    def test_a_flat_map_is_as_wide_as_the_picture(self):
        self.give("a.asc", asc([[1] * 10]))
        self.draw("--kind", "depth")
        y = int((picture.MARGIN + 0.5) * CM)
        self.near(self.picture[y, int(15.5 * CM)], rgb("#55a4d3"))

    def test_size_in_centimetres(self):
        self.give("a.asc", asc([[1, 1], [1, 1]]))
        self.draw("--kind", "depth", "--width", "12", "--title", "A title")
        height, width = self.picture.shape[:2]
        side = 12 - picture.PANEL - picture.GAP - 2 * picture.MARGIN
        self.assertEqual(width, int(12 * CM))
        self.assertAlmostEqual(height, (max(side, 7) + 2 * picture.MARGIN + picture.TITLE) * CM, delta=0.6 * CM)

    def width_of_title(self, title):
        self.draw("--kind", "depth", "--title", title)
        strip = self.picture[:int((picture.MARGIN + picture.TITLE * 0.7) * CM)]
        inked = numpy.flatnonzero((strip < 128).all(axis=2).any(axis=0))
        return inked[-1] - inked[0]

    def test_dollars_in_a_title_are_shown(self):
        self.give("a.asc", asc([[1] * 10]))
        # A formula would lose the dollars and the blanks.
        self.assertGreater(self.width_of_title("$5m to $9m"), self.width_of_title("5m to 9m"))

    def test_dollars_anywhere_are_no_formula(self):
        self.give("a.asc", asc([[1, 2], [3, 4]]))
        self.give("l.mif", mif(["Name Char(9)"], "Line 0 0 2 2\n"))
        self.give("l.mid", '"x"\n')
        broken = r"$\nothing$"  # a formula that cannot be drawn
        self.draw("--kind", "depth", "--title", broken, "--heading", broken, "--unit", broken, "--layer", f"l.mif={broken}")


class LegendTest(unittest.TestCase):
    def keys(self, kind, *cells, unit="m"):
        return [key.label for key in picture.keys_of(styles.styles()[kind], numpy.array(cells, dtype="f4"), unit)]

    def test_all_bands_and_the_values_that_occur(self):
        self.assertEqual(self.keys("depth", 0.2)[:3], ["to 0.1", "0.1 to 0.3", "0.3 to 0.5"])
        self.assertEqual(len(self.keys("depth", 0.2)), 8)
        self.assertEqual(self.keys("wet_dry", 99, numpy.nan), ["wet only in the first grid"])
        self.assertEqual(self.keys("level", 3), [])  # has a bar

    def test_a_layer_shows_its_lines_and_its_points(self):
        point, line = (1, 1), [(0, 0), (1, 1)]
        for points, lines in (([point], []), ([], [line]), ([point], [line])):
            canvas = mock.Mock()
            layer = picture.Layer("", picture.INKS[0], points, lines)
            picture.Panel(canvas, Place(0, 0, 5, 5)).keys([picture.Key("a", layer=layer)])
            self.assertEqual((canvas.dots.call_count, canvas.lines.call_count), (len(points), len(lines)))

    def test_labels_of_a_bar_are_round(self):
        level = styles.styles()["level"]
        self.assertEqual(picture.bar_labels(level.between(2.5, 47.5)),
                         [((value - 2.5) / 45, str(value)) for value in (10, 20, 30, 40)])
        self.assertEqual([label for _, label in picture.bar_labels(level.between(0, 1))], ["0", "0.2", "0.4", "0.6", "0.8", "1"])
        self.assertEqual([label for _, label in picture.bar_labels(styles.styles()["difference"])],
                         ["-1 or lower", "-0.3", "-0.05", "0", "0.05", "0.3", "1 or higher"])

    def test_the_scale_bar_is_the_longest_round_one(self):
        for most, length in ((99, 50), (100, 100), (0.3, 0.2), (4999, 2000), (7000, 5000)):
            self.assertAlmostEqual(picture.round_length(most), length)

    def test_long_labels_take_several_lines(self):
        self.assertEqual(picture.wrapped("short", 4), "short")
        self.assertEqual(picture.wrapped("", 4), "")
        self.assertEqual(picture.wrapped("a storm of six hours over the whole catchment", 4).split("\n"),
                         ["a storm of six hours over", "the whole catchment"])
        self.assertEqual(picture.wrapped("two\nlines", 4), "two\nlines")
        first, second = picture.wrapped("level_1pct_with_blockage_24h_coarse", 4).split("\n")
        self.assertEqual((first + second, first[-1]), ("level_1pct_with_blockage_24h_coarse", "_"))
        lines = picture.wrapped("begin_" + "x" * 200 + "_end", 4).split("\n")
        self.assertEqual((len(lines), lines[0], lines[2][-4:], lines[2].count("\u2026")), (3, "begin_", "_end", 1))

    def test_names_of_classes_take_one_line(self):
        for style in styles.styles().values():
            for one in style.classes:
                label = picture.without_unit(one.label)
                self.assertEqual(picture.label_of(picture.Key(label)), label)

    def test_lines_are_no_wider_than_asked(self):
        draw = random.Random(5)
        for letters in ("abcdefghijklmnopqrstuvwxyz ", "ABCDEFGHIJKLMNOPQRSTUVWXYZ_", "0123456789_.-+", "mwMW@%", "<>()[]!?\"#$&/=+*;:|"):
            for bold in (False, True):
                text = "".join(draw.choices(letters, k=60))
                font = FontProperties(family="DejaVu Sans", weight="bold" if bold else "normal")
                for line in picture.wrapped(text, 4, 8, bold).split("\n"):
                    width = TextPath((0, 0), line, size=8, prop=font).get_extents().x1 * 2.54 / 72
                    self.assertLess(width, 4.05, line)
                    self.assertGreater(width, 0.1)


class SourcesTest(Drawn):
    def names(self, *legend):
        path = self.folder / "peak_src.asc"
        return picture.names_of_sources(path, numpy.array([1, 3, numpy.nan]), Path(self.folder / legend[0]) if legend else None)

    def test_names_from_the_legend(self):
        self.assertEqual(self.names(), {1: "source 1", 3: "source 3"})
        self.give("peak_src_legend.csv", '"Value in Grid","Source Grid File"\r\n1,r/a.asc\r\n2,r/b.asc\r\n')
        self.assertEqual(self.names(), {1: "a", 3: "source 3"})
        self.give("other.csv", '"Value in Grid","Source Grid File"\r\n1,r/x.asc\r\n3,r/z.flt\r\n')
        self.assertEqual(self.names("other.csv"), {1: "x", 3: "z"})

    def test_the_legends_of_the_tool(self):
        self.give("a.asc", asc([[1, 5]]))
        self.give("b.asc", asc([[2, 4]]))
        self.tool("-max", "a.asc", "b.asc", "-out", "peak.asc")
        self.assertEqual(picture.names_of_sources(self.folder / "peak_src.asc", numpy.array([1.0, 2]), None), {1: "a", 2: "b"})
        self.tool("-statMax", "-statRank1", "a.asc", "b.asc", "-out", "s.asc")
        self.assertEqual(picture.names_of_sources(self.folder / "s_Rank1_Src.asc", numpy.array([1.0, 2]), None), {1: "a", 2: "b"})


class ThinnedTest(ToolCase):
    def thinned(self, name, most, **options):
        return grid_blocks.read_thinned(self.folder / name, most, **options)

    def test_means_of_blocks(self):
        # Blocks of 2 by 2; those at the east and the south are half as large. Of two values of four the mean stands.
        rows = [[1, 2, NULL, 4, 5], [3, 6, NULL, 8, 9], [NULL, NULL, 1, 2, NULL]]
        self.give("a.asc", asc(rows, cell=10, west=100, south=200))
        self.give("a.flt", "")
        (self.folder / "a.flt").write_bytes(struct.pack("<15f", *[value for row in rows for value in row]))
        self.give("a.HDR", "NCOLS 5\nNROWS 3\nXLLCORNER 100\nYLLCORNER 200\nCELLSIZE 10\nNODATA_VALUE -9999\n"
                           "BYTEORDER LSBFIRST\n")
        for name in ("a.asc", "a.flt"):
            grid = self.thinned(name, 3)
            numpy.testing.assert_array_equal(grid.values, [[3, 6, 7], [numpy.nan, 1.5, numpy.nan]])
            self.assertEqual((grid.factor, grid.cell), (2, 20))
            self.assertEqual(grid.extent, (100, 160, 190, 230))

    def test_classes_are_taken_and_not_mixed(self):
        self.give("a.asc", asc([[1, 3, 5, 5, 7], [1, 9, 5, 6, 8]]))
        numpy.testing.assert_array_equal(self.thinned("a.asc", 3, classes=True).values, [[9, 6, 8]])

    def test_small_grids_are_taken_as_they_are(self):
        self.give("a.asc", asc([[1, NULL], [3, 4]]))
        numpy.testing.assert_array_equal(self.thinned("a.asc", 2).values, [[1, numpy.nan], [3, 4]])

    def test_rows_over_several_lines(self):
        header = asc([[1, 1, 1], [1, 1, 1]]).split("1 1 1\n", maxsplit=1)[0]
        self.give("a.asc", header + "1 2\n3 junk\n4\n5\n6\n")
        numpy.testing.assert_array_equal(self.thinned("a.asc", 9).values, [[1, 2, 3], [4, 5, 6]])

    def test_only_the_cells_that_touch_the_window(self):
        self.give("a.asc", asc([[1, 2, 3], [4, 5, 6], [7, 8, 9]], cell=10))
        grid = self.thinned("a.asc", 9, wanted=grid_blocks.Window(10, 5, 29, 20))
        numpy.testing.assert_array_equal(grid.values, [[5, 6], [8, 9]])
        self.assertEqual(grid.extent, (10, 30, 0, 20))

    def test_a_large_grid_takes_little_memory(self):
        side = 12000  # cells of a file of 576 million bytes without a byte on the disk
        self.give("a.hdr", f"ncols {side}\nnrows {side}\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n"
                           "byteorder LSBFIRST\n")
        with open(self.folder / "a.flt", "wb") as file:
            file.truncate(side * side * 4)
        # The peak of the process itself: that of getrusage begins with the memory of the process that started it.
        program = ("import re, sys; from gridforge import picture; "
                   "status = picture.main(['a.flt', sys.argv[1], '--kind', 'level']); "
                   "print(re.search(r'VmHWM:\\s*(\\d+) kB', open('/proc/self/status').read())[1]); sys.exit(status)")
        for output in ("o.png", "o.svg"):
            run = self.python(program, output)
            self.assertEqual((run.status, run.error), (0, ""))
            self.assertLess(int(run.out) * 1024, side * side * 4 / 2, output)

    def test_broken_grids(self):
        self.give("a.asc", asc([[1, 2], [3, 4]])[:-3])
        self.give("b.asc", asc([[1, 2], [3, 4]]).replace("3 4", "3 ****"))
        self.give("c.flt", "1234")
        self.give("c.hdr", asc([[1, 2], [3, 4]]).split("1 2\n")[0] + "byteorder LSBFIRST\n")
        self.fails("picture", "a.asc ends in row 2 of 2", "a.asc", "o.png", "--kind", "depth")
        self.fails("picture", "b.asc: row 2 from the north holds what is not a number", "b.asc", "o.png", "--kind", "depth")
        self.fails("picture", "c.flt ends in row 1 of 2", "c.flt", "o.png", "--kind", "depth")


class MessagesTest(Drawn):
    def test_wrong_wishes(self):
        self.give("a.asc", asc([[1, 2], [3, 4]]))
        for message, *arguments in (
                ("the name of a.asc does not show its kind: --kind is one of depth, level, difference, source, wet_dry, impact", "o.png"),
                ("o.jpg: a picture ends in .png or .svg", "o.jpg"),
                ("--window: west, south, east, north are expected, each smaller than its opposite", "o.png", "--window", "2",
                 "0", "1",
                 "1"),
                ("--range: the low end must lie below the high end", "o.png", "--range", "2", "2"),
                ("--width and --dpi: the picture is too narrow or too large", "o.png", "--width", "3"),
                ("--dpi: letters need 20 dots an inch", "o.png", "--dpi", "19"),
                ("--range is for levels, not for the kind depth", "o.png", "--kind", "depth", "--range", "1", "2"),
                ("--legend is for sources, not for the kind level", "o.png", "--kind", "level", "--legend", "none.csv"),
                ("a.asc has no cell in the window", "o.png", "--kind", "depth", "--window", "9", "9", "10", "10"),
                ("none.asc: No such file or directory", "o.png", "--kind", "depth", "--ground", "none.asc"),
                ("the folder of none/o.png does not exist", "none/o.png")):
            self.fails("picture", message, "a.asc", *arguments)
        self.fails("picture", "error: argument --dpi: a number above 0 is expected, not none", "a.asc", "o.png", "--dpi", "none",
                   status=2)
        for option, values in (("--window", ("0", "0", "inf", "9")), ("--range", ("0", "inf")), ("--range", ("x", "inf"))):
            wrong = next(value for value in values if value in ("x", "inf"))
            self.fails("picture", f"error: argument {option}: a number is expected, not {wrong}", "a.asc", "o.png", option, *values,
                       status=2)

    def test_pictures_as_high_as_a_tower(self):
        self.give("a_d.asc", asc([[1]] * 2000))
        for output in ("o.png", "o.svg"):
            # The map is 10.45 cm wide and 2000 times as high.
            self.fails("picture", "the picture would be 20901 cm high, which is too large: "
                       "a smaller --width or --dpi, or a --window", "a_d.asc", output)

    def test_the_coarsest_picture(self):
        self.give("a_d.asc", asc([[1, 2], [3, 4]]))
        self.good("picture", "a_d.asc", "o.png", "--dpi", "20", "--title", "A title")

    def test_the_kind_is_checked_before_the_cells_are_read(self):
        self.give("a.asc", asc([[1, 2], [3, 4]])[:-4])
        self.fails("picture", "--legend is for sources, not for the kind level", "a.asc", "o.png", "--kind", "level", "--legend",
                   "l")

    def test_nothing_to_draw(self):
        self.give("a.asc", asc([[NULL, NULL], [1, NULL]]))
        self.fails("picture", "a.asc has no value in the window", "a.asc", "o.png", "--kind", "depth", "--window", "1", "0", "2",
                   "1")
        self.give("a.asc", asc([[NULL]]))
        self.fails("picture", "a.asc has no value", "a.asc", "o.png", "--kind", "depth")
        self.give("a.asc", asc([[1]]))
        self.give("l.mif", mif(["Name Char(9)"], "Line 5 5 10 5\n"))
        self.give("l.mid", '"x"\n')
        self.fails("picture", "l.mif has nothing in the window of the picture", "a.asc", "o.png", "--kind", "depth", "--layer",
                   "l.mif")
        self.give("x.txt", "no layer")
        run = self.command("picture", "a.asc", "o.png", "--kind", "depth", "--layer", "x.txt")
        self.assertRegex(run.error, r"^gridforge-picture: x\.txt: GDAL cannot read it as a layer: .*\n$")

    def test_files_that_are_there(self):
        self.give("a_d.asc", asc([[1, 2], [3, 4]]))
        self.good("picture", "a_d.asc", "o.png")
        self.assertEqual(self.files(), ["a_d.asc", "o.png"])
        self.fails("picture", "o.png is there already; --overwrite replaces it", "a_d.asc", "o.png")
        self.comes_second("p.png", "picture", "a_d.asc", "p.png")

    def test_missing_packages(self):
        self.give("a_d.asc", asc([[1]]))
        self.give("l.mif", mif(["Name Char(9)"], ""))
        for package, message in (("numpy", "numpy is not installed (Debian package python3-numpy)"),
                                 ("matplotlib", "matplotlib is not installed (Debian package python3-matplotlib)"),
                                 ("osgeo", "GDAL for Python is not installed (Debian package python3-gdal)")):
            run = self.process("picture", "a_d.asc", "o.png", "--layer", "l.mif", without=(package,))
            self.assertEqual((run.status, run.error), (1, f"gridforge-picture: {message}\n"))
        run = self.process("picture", "a_d.asc", "o.png", without=("osgeo",))  # not needed without layers
        self.assertEqual((run.status, run.error), (0, ""))
