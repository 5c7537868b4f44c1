"""gridforge-picture, as .svg: a file that other programs read, with the colours and the geometry of the .png."""
import base64
import csv
import inspect
import io
import math
import random
import re
import unittest
from xml.etree import ElementTree

import numpy
from matplotlib import image
from matplotlib.font_manager import FontProperties
from matplotlib.textpath import TextPath

from gridforge import picture, styles, svg_canvas
from gridforge.canvas import Canvas, Place
from gridforge.matplotlib_canvas import MatplotlibCanvas
from gridforge.svg_canvas import SvgCanvas
from tests.tool_case import PACKAGES, ToolCase, asc, mif

SVG = "{http://www.w3.org/2000/svg}"
HREF = "{http://www.w3.org/1999/xlink}href"
CM = 72 / 2.54  # units of the file
NULL = -9999
MAP_WIDTH = 16 - picture.PANEL - picture.GAP - 2 * picture.MARGIN
SLACK = 0.02  # two decimals are written


def pixels_of(data):
    """By another reader of PNG, which checks sums and lengths."""
    return (image.imread(io.BytesIO(data), format="png") * 255).round().astype(int)


def rgb(colour):
    return tuple(bytes.fromhex(colour[1:]))


def numbers(element, *names):
    return [float(element.get(name)) for name in names]


def drawn_width(text, size, bold=False):
    """In points, by the letters of the font."""
    return TextPath((0, 0), text, size=size, prop=FontProperties(family="DejaVu Sans", weight="bold" if bold else "normal")
                    ).get_extents().x1


class SvgCase(ToolCase):
    def draw(self, *options, cells="a.asc"):
        self.assertEqual(self.good("picture", cells, "o.svg", "--overwrite", *options), "")
        self.root = ElementTree.fromstring(self.text("o.svg"))

    def all(self, name, root=None):
        return list((self.root if root is None else root).iter(SVG + name))

    def texts(self):
        return [text.text for text in self.all("text")]

    def rasters(self):
        """The images of the map: their pixels, and where they lie."""
        begin = "data:image/png;base64,"
        found = []
        for element in self.all("image", self.map()):
            self.assertTrue(element.get(HREF).startswith(begin))
            data = base64.b64decode(element.get(HREF)[len(begin):], validate=True)
            found.append((pixels_of(data), numbers(element, "x", "y", "width", "height")))
        return found

    def map(self):
        """The group of what is cut at the edges of the map."""
        return next(group for group in self.all("g") if group.get("clip-path"))

    def frame(self):
        identity = re.fullmatch(r"url\(#(.+)\)", self.map().get("clip-path")).group(1)
        cut = next(element for element in self.all("clipPath") if element.get("id") == identity)
        return numbers(cut[0], "x", "y", "width", "height")

    def near(self, got, expected, by=SLACK):
        self.assertEqual(len(got), len(expected))
        self.assertLessEqual(max(abs(a - b) for a, b in zip(got, expected)), by, (got, expected))


class CellsTest(SvgCase):
    def classes(self, kind):
        with open(PACKAGES / "gridforge/classes.csv", encoding="utf-8", newline="") as file:
            return [row for row in csv.DictReader(file) if row["kind"] == kind]

    def test_each_cell_has_the_colour_of_its_class(self):
        draw = random.Random(7)
        rows = [[round(draw.uniform(0.001, 6), 3) if draw.random() < 0.8 else NULL for _ in range(23)] for _ in range(17)]
        self.give("a_d.asc", asc(rows))
        self.draw(cells="a_d.asc")
        (pixels, _), = self.rasters()
        high, wide = pixels.shape[0] // 17, pixels.shape[1] // 23
        classes = self.classes("depth")
        self.assertEqual((high, wide, pixels.shape), (wide, high, (17 * high, 23 * wide, 4)))
        for y, row in enumerate(rows):
            for x, depth in enumerate(row):
                expected = next(rgb(one["colour"]) for one in classes if one["value"] == "above" or depth <= float(one["value"]))
                block = pixels[y * high:(y + 1) * high, x * wide:(x + 1) * wide].reshape(-1, 4)
                if depth == NULL:
                    self.assertEqual(set(block[:, 3]), {0}, (y, x))
                else:
                    self.assertEqual(set(map(tuple, block)), {(*expected, 255)}, (y, x, depth))

    def test_levels_blend_between_their_colours(self):
        self.give("a_h.asc", asc([[10, 14, 30]] * 3))
        self.draw(cells="a_h.asc")
        (pixels, _), = self.rasters()
        classes = [(float(one["value"]), rgb(one["colour"])) for one in self.classes("level")]
        for column, share in enumerate((0, 0.2, 1)):
            (low, first), (high, second) = next(pair for pair in zip(classes, classes[1:]) if pair[0][0] <= share <= pair[1][0])
            expected = [a + (b - a) * (share - low) / (high - low) for a, b in zip(first, second)]
            self.near(pixels[0, int((column + 0.5) * pixels.shape[1] / 3), :3], expected, 0.51)

    def test_the_png_has_the_same_colours_at_the_same_places(self):
        draw = random.Random(3)
        self.give("g.asc", asc([[draw.uniform(0, 5) for _ in range(12)] for _ in range(9)], cell=10))
        self.give("a_d.asc", asc([[draw.choice([0.05, 0.2, 0.7, 1.5, 9, NULL]) for _ in range(12)] for _ in range(9)], cell=10))
        self.draw("--ground", "g.asc", cells="a_d.asc")
        self.good("picture", "a_d.asc", "o.png", "--ground", "g.asc", "--dpi", "100")
        raster = (image.imread(self.folder / "o.png") * 255).round().astype(int)
        unit = raster.shape[1] / float(self.root.get("viewBox").split()[2])
        ground, cells = self.rasters()
        left, top, width, height = cells[1]
        self.near(ground[1], cells[1])
        for y in range(9):
            for x in range(12):
                east, south = (x + 0.5) / 12, (y + 0.5) / 9
                pixel, below = (one[int(south * one.shape[0]), int(east * one.shape[1])] for one in (cells[0], ground[0]))
                shown = pixel if pixel[3] else below
                self.near(raster[int((top + south * height) * unit), int((left + east * width) * unit), :3], shown[:3], 2)

    def test_where_the_ground_has_no_value_nothing_is_drawn(self):
        self.give("g.asc", asc([[1, 1, NULL], [1, 1, 1], [1, 1, 1]]))
        self.give("a_d.asc", asc([[NULL] * 3] * 2 + [[1] * 3]))
        self.draw("--ground", "g.asc", cells="a_d.asc")
        ground = self.rasters()[0][0]
        self.assertEqual(ground[0, -1, 3], 0)
        # A level ground under a sun of 45 degrees has the brightness 0.6 + 0.4 * sin 45.
        self.assertEqual(tuple(ground[-1, 0]), (*[round(255 * (0.6 + 0.4 * 0.5 ** 0.5))] * 3, 255))

    def test_images_are_whatever_numbers_they_are_made_of(self):
        for shape in ((1, 1), (1, 300), (300, 1), (37, 53)):
            pixels = numpy.random.default_rng(1).integers(0, 256, (*shape, 4), dtype="u1")
            numpy.testing.assert_array_equal(pixels_of(svg_canvas.png(pixels)), pixels)


class GeometryTest(SvgCase):
    def test_size_in_centimetres(self):
        self.give("a.asc", asc([[1, 1], [1, 1]]))
        self.draw("--kind", "depth", "--width", "12")
        width, height = (float(self.root.get(name).removesuffix("pt")) / CM for name in ("width", "height"))
        self.assertAlmostEqual(width, 12, places=2)
        self.near([float(number) / CM for number in self.root.get("viewBox").split()], [0, 0, width, height])

    def test_the_map_fills_its_frame(self):
        self.give("a.asc", asc([[1] * 20] * 30, cell=5, west=1000, south=2000))
        self.draw("--kind", "depth")
        (_, place), = self.rasters()
        self.near(place, [picture.MARGIN * CM, picture.MARGIN * CM, MAP_WIDTH * CM, MAP_WIDTH * CM * 1.5])
        self.near(self.frame(), place)

    def test_a_window_cuts_cells(self):
        self.give("a.asc", asc([[1, 1, 1]] * 3, cell=10))
        self.draw("--kind", "depth", "--window", "5", "5", "25", "25")
        (_, place), = self.rasters()
        left, top, width, height = self.frame()
        self.near(place, [left - width / 4, top - height / 4, 1.5 * width, 1.5 * height])

    def scale_bar(self):
        """Its quarters, as they lie, and the labels below."""
        boxes = [box for box in self.all("rect") if abs(float(box.get("height")) - 0.14 * CM) < SLACK]
        quarters = sorted(numbers(box, "x", "width") for box in boxes)
        self.assertEqual(len(quarters), 4)
        labels = [(float(text.get("x")), text.text) for text in self.all("text") if text.get("text-anchor") == "middle"]
        return quarters, labels

    def test_the_scale_bar_measures_the_map(self):
        # The longest round lengths in 3.1 cm of a map on which 20 cells are 10.5 cm wide.
        for cell, metres, labels in ((1, 5, ["0", "2.5", "5"]), (100, 500, ["0", "250", "500"]), (500, 2000, ["0", "1", "2"])):
            self.give("a.asc", asc([[1] * 20] * 20, cell=cell))
            self.draw("--kind", "depth")
            quarters, found = self.scale_bar()
            width = metres / (20 * cell) * self.frame()[2]
            left = quarters[0][0]
            for i, quarter in enumerate(quarters):
                self.near(quarter, [left + i * width / 4, width / 4])
            self.assertEqual([text for _, text in found], labels)
            self.near([x for x, _ in found], [left, left + width / 2, left + width])
            self.assertIn("km" if cell == 500 else "m", self.texts())

    def test_degrees_have_no_scale_bar(self):
        self.give("a.asc", asc([[1, 1], [1, 1]]))
        self.give("a.prj", 'GEOGCS["WGS 84"]')
        self.draw("--kind", "depth")
        self.assertEqual([text for text in self.all("text") if text.get("text-anchor")], [])
        self.assertIn("N", self.texts())

    def test_layers_lie_where_their_objects_are(self):
        self.give("a.asc", asc([[1] * 10] * 10, west=100, south=50))
        self.give("l.mif", mif(["Name Char(9)"], "Line 100 55 110 60\n"))
        self.give("l.mid", '"x"\n')
        self.give("p.mif", mif(["Name Char(9)"], "Point 105 58\n"))
        self.give("p.mid", '"x"\n')
        self.give("r.mif", mif(["Name Char(9)"], "Region 1\n  5\n102 52\n104 52\n104 54\n102 54\n102 52\n"))
        self.give("r.mid", '"x"\n')
        self.draw("--kind", "depth", "--layer", "l.mif=A line", "--layer", "p.mif", "--layer", "r.mif")
        left, top, width, _ = self.frame()
        cell = width / 10
        halo, line, below, ring = self.all("path", self.map())
        self.assertEqual([one.get("stroke") for one in (halo, line, below, ring)],
                         ["#ffffff", picture.INKS[0], "#ffffff", picture.INKS[2]])
        self.assertEqual(halo.get("d"), line.get("d"))
        for path, vertices in ((line, [(0, 5), (10, 0)]), (ring, [(2, 8), (4, 8), (4, 6), (2, 6), (2, 8)])):
            got = [float(number) for number in re.findall(r"[-.\d]+", path.get("d"))]
            self.near(got, [number for x, y in vertices for number in (left + x * cell, top + y * cell)])
        self.assertEqual(re.sub(r"[-.\d ]", "", ring.get("d")), "MLLLL")
        dot, = self.all("circle", self.map())
        self.near(numbers(dot, "cx", "cy"), [left + 5 * cell, top + 2 * cell])
        self.assertTrue({"A line", "p", "r"} < set(self.texts()))

    def test_names_of_layers_with_an_equals_sign(self):
        self.give("a_d.asc", asc([[1] * 3] * 3))
        for name in ("l", "n=5"):
            self.give(name + ".mif", mif(["Name Char(9)"], "Line 0 0 2 2\n"))
            self.give(name + ".mid", '"x"\n')
        for wish, label in (("n=5.mif", "n=5"), ("n=5.mif=River", "River"), ("l.mif=n=5", "n=5"), ("l.mif", "l")):
            self.draw("--layer", wish, cells="a_d.asc")
            self.assertEqual([text for text in self.texts() if text in ("n=5", "River", "l")], [label], wish)
        for nothing in ("", "=Label"):  # a folder of layers would be drawn
            self.fails("picture", f"error: argument --layer: a file is expected, not '{nothing}'", "a_d.asc", "p.svg", "--layer",
                       nothing, status=2)

    def test_objects_without_coordinates(self):
        layer = picture.Layer("", "#000000")
        for text in ("POINT EMPTY", "LINESTRING EMPTY", "POLYGON EMPTY", "GEOMETRYCOLLECTION (POINT (3 4))"):
            picture.add_shape(layer, picture.ogr.CreateGeometryFromWkt(text))
        for kind, vertices in ((picture.ogr.wkbPoint, [(math.nan, 1)]),
                               (picture.ogr.wkbLineString, [(0, 0), (math.nan, 1), (1, math.inf), (2, 2)])):
            shape = picture.ogr.Geometry(kind)
            for vertex in vertices:
                shape.AddPoint_2D(*vertex)
            picture.add_shape(layer, shape)
        self.assertEqual((layer.points, layer.lines, layer.regions), ([(3, 4)], [[(0, 0), (2, 2)]], False))

    def test_lines_keep_the_vertices_that_an_eye_can_tell_apart(self):
        self.assertEqual(svg_canvas.outline([(0, 0), (0.00001, 0), (1, 0), (1, 0.00001)]), "M0 0L28.35 0L28.35 0")
        self.assertEqual(svg_canvas.outline([(0, 0), (0, 0)]), "M0 0L0 0")


class WordsTest(SvgCase):
    def test_the_legend_has_all_classes(self):
        self.give("a_d.asc", asc([[1] * 3] * 3))
        self.draw("--title", "A title", cells="a_d.asc")
        labels = ["to 0.1", "0.1 to 0.3", "0.3 to 0.5", "0.5 to 1", "1 to 2", "2 to 3", "3 to 5", "above 5"]
        self.assertEqual(self.texts()[:10], ["A title", "Depth (m)", *labels])
        # Each patch is level with its label.
        patches = [box for box in self.all("rect") if abs(float(box.get("width")) - picture.PATCH * CM) < SLACK]
        self.assertEqual([box.get("fill") for box in patches], [one.colour for one in styles.styles()["depth"].classes])
        words = {text.text: float(text.get("y")) for text in self.all("text")}
        for box, label in zip(patches, labels):
            y, height = numbers(box, "y", "height")
            self.assertTrue(y + height / 2 < words[label] < y + height, label)  # its base line
        self.assertEqual(self.root.find(SVG + "title").text, "A title")

    def test_any_letters(self):
        self.give("a.asc", asc([[1] * 3] * 3))
        words = 'A & B <b>"C"</b> \'d\'  $5m ]]> Überflutung 洪水 \U0001f30a'
        self.give("l.mif", mif(["Name Char(9)"], "Line 0 0 2 2\n"))
        self.give("l.mid", '"x"\n')
        self.draw("--kind", "depth", "--title", words, "--heading", "&amp;", "--unit", "<m>", "--layer", "l.mif=<&\"")
        self.assertEqual(self.texts()[:2], [words, "&amp; (<m>)"])
        self.assertIn("<&\"", self.texts())
        self.assertEqual(self.root.find(SVG + "title").text, words)

    def test_letters_that_xml_cannot_hold(self):
        self.give("a.asc", asc([[1] * 3] * 3))
        self.draw("--kind", "depth", "--title", "bell \a, byte \udcff, end \uffff")
        self.assertEqual(self.texts()[0], "bell \ufffd, byte \ufffd, end \ufffd")

    def test_names_of_files_that_are_not_utf_8(self):
        self.give("a_src.asc", asc([[1] * 3] * 3))
        (self.folder / "a_src_legend.csv").write_bytes(b'"Value in Grid","Source Grid File"\r\n1,fl\xe4che.asc\r\n')
        self.draw(cells="a_src.asc")
        self.assertIn("fl\ufffdche", self.texts())

    def test_long_labels_take_two_lines(self):
        self.give("a_src.asc", asc([[1] * 3] * 3))
        self.give("a_src_legend.csv", '"Value in Grid","Source Grid File"\n1,a storm of six hours over the whole catchment\n')
        self.draw(cells="a_src.asc")
        first, second = [text for text in self.all("text") if text.text in ("a storm of six hours over", "the whole catchment")]
        self.assertEqual(first.get("x"), second.get("x"))
        apart = float(second.get("y")) - float(first.get("y"))
        self.assertTrue(picture.FONT < apart < 1.2 * picture.FONT, apart)


    def test_long_texts_end_within_the_picture_and_above_the_map(self):
        name = "MODEL_1PCT_CC_WITH_BLOCKAGE_120M_TP03_MAXIMUM_OF_ALL_RUNS_OF_THE_YEAR"
        self.give("a_src.asc", asc([[1] * 3] * 3))
        self.give("a_src_legend.csv", f'"Value in Grid","Source Grid File"\n1,{name}.flt\n')
        title = "Where the storms of this catchment are critical, for all durations, patterns and climates that the study has run"
        for shape in ([[1] * 3] * 3, [[1] * 30]):  # the legend beside the map and below it
            self.give("a_src.asc", asc(shape))
            self.draw("--title", title, "--heading", "Storm of the highest level in each of the cells", cells="a_src.asc")
            texts = [text for text in self.all("text") if text.text]
            for text in texts:
                size, bold = float(text.get("font-size")), text.get("font-weight") == "bold"
                width = drawn_width(text.text, size, bold) / (2 if text.get("text-anchor") else 1)
                self.assertLess(float(text.get("x")) + width, 16 * CM, text.text)
            lines = [text for text in texts if float(text.get("font-size")) == picture.FONT + 3]
            self.assertEqual(" ".join(line.text for line in lines), title)
            self.assertGreater(len(lines), 1)
            self.assertLess(max(float(line.get("y")) for line in lines) + picture.FONT / 2, self.frame()[1])


class FileTest(SvgCase):
    def test_without_matplotlib(self):
        # A package in its place that cannot be imported, and says so.
        self.give("broken/matplotlib/__init__.py", "raise RuntimeError('matplotlib was imported')")
        self.give("a_d.asc", asc([[1] * 3] * 3))
        self.give("l.mif", mif(["Name Char(9)"], "Line 0 0 2 2\n"))
        self.give("l.mid", '"x"\n')
        program = "import sys; sys.path.insert(0, 'broken'); from gridforge import picture; sys.exit(picture.main(sys.argv[1:]))"
        run = self.python(program, "a_d.asc", "o.svg", "--ground", "a_d.asc", "--layer", "l.mif", "--title", "A title")
        self.assertEqual((run.status, run.error), (0, ""))
        ElementTree.fromstring(self.text("o.svg"))
        self.assertIn("matplotlib was imported", self.python(program, "a_d.asc", "o.png").error)

    def test_missing_packages(self):
        self.give("a_d.asc", asc([[1]]))
        self.give("l.mif", mif(["Name Char(9)"], ""))
        for package, message in (("numpy", "numpy is not installed (Debian package python3-numpy)"),
                                 ("osgeo", "GDAL for Python is not installed (Debian package python3-gdal)")):
            run = self.process("picture", "a_d.asc", "o.svg", "--layer", "l.mif", without=(package,))
            self.assertEqual((run.status, run.error), (1, f"gridforge-picture: {message}\n"))
        self.assertEqual(self.files(), ["a_d.asc", "l.mif"])

    def test_files_that_are_there(self):
        self.give("a_d.asc", asc([[1, 2], [3, 4]]))
        self.good("picture", "a_d.asc", "o.svg")
        self.assertEqual(self.files(), ["a_d.asc", "o.svg"])
        self.fails("picture", "o.svg is there already; --overwrite replaces it", "a_d.asc", "o.svg")
        self.comes_second("p.svg", "picture", "a_d.asc", "p.svg")
        (self.folder / "q.svg").mkdir()
        self.fails("picture", "q.svg is a folder; give the output another name", "a_d.asc", "q.svg", "--overwrite")

    def test_the_same_picture_is_the_same_file(self):
        self.give("a_d.asc", asc([[1, 2], [3, 4]]))
        self.good("picture", "a_d.asc", "o.svg", "--title", "A title")
        self.good("picture", "a_d.asc", "P.SVG", "--title", "A title")
        self.assertEqual(self.text("o.svg"), self.text("P.SVG"))

    def test_a_full_disk_leaves_what_was_there(self):
        self.give("a_d.asc", asc([[1, 2], [3, 4]]))
        program = ("import resource, sys; from gridforge import picture; "
                   "resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000)); sys.exit(picture.main(sys.argv[1:]))")
        for before in ([], ["o.svg"]):
            for name in before:
                self.give(name, "theirs")
            run = self.python(program, "a_d.asc", "o.svg", "--overwrite")
            self.assertEqual(run.status, 1)
            self.assertRegex(run.error, r"\Agridforge-picture: .*File too large\n\Z")
            self.assertEqual(self.files(), ["a_d.asc", *before])
        self.assertEqual(self.text("o.svg"), "theirs")


class CanvasesTest(SvgCase):
    def test_both_canvases_are_called_in_the_same_way(self):
        for name, asked in inspect.getmembers(Canvas, inspect.isfunction):
            if not name.startswith("_"):
                wanted = inspect.signature(asked).parameters
                for canvas in (SvgCanvas, MatplotlibCanvas):
                    self.assertEqual(inspect.signature(getattr(canvas, name)).parameters, wanted, name)

    def test_what_is_drawn_within_a_place_is_cut_there_and_later_things_are_not(self):
        canvas = SvgCanvas(4, 3, "")
        with canvas.within(Place(1, 1, 2, 1)):
            canvas.box(Place(0, 0, 4, 3), "#123456", "", 0)
        canvas.box(Place(0, 0, 1, 1), "#654321", "", 0)
        canvas.save(self.folder / "o.svg")
        self.root = ElementTree.fromstring(self.text("o.svg"))
        self.near(self.frame(), [CM, CM, 2 * CM, CM])
        parents = {child.get("fill"): parent.tag for parent in self.root.iter() for child in parent}
        self.assertEqual((parents["#123456"], parents["#654321"]), (SVG + "g", SVG + "svg"))


if __name__ == "__main__":
    unittest.main()
