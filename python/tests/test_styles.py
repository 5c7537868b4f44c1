"""Styles: GDAL colours grids by the tables, and the .qml files hold the same classes."""
import math
import re
import struct
import unittest
import xml.etree.ElementTree as ElementTree

from osgeo import gdal

from tests.tool_case import PACKAGES, ToolCase, asc

from gridforge import styles

gdal.UseExceptions()
KINDS = ("depth", "level", "difference", "source", "wet_dry", "impact")
CLEAR = (0, 0, 0, 0)


def rgba(colour):
    return (*bytes.fromhex(colour[1:]), 255)


def as_cell(value):
    return struct.unpack("f", struct.pack("f", value))[0]


class StylesTest(ToolCase):
    def setUp(self):
        super().setUp()
        self.good("styles", "styles")

    def coloured(self, kind, *row):
        """The colours that GDAL gives to a row of cells, CLEAR for those that it shows nothing of."""
        self.give("a.asc", asc([row]))
        (self.folder / "a.asc.aux.xml").unlink(missing_ok=True)  # the range of an earlier row
        gdal.DEMProcessing(str(self.folder / "a.tif"), str(self.folder / "a.asc"), "color-relief",
                           colorFilename=str(self.folder / f"styles/{kind}.txt"), addAlpha=True)
        picture = gdal.Open(str(self.folder / "a.tif"))
        bands = [picture.GetRasterBand(band).ReadRaster() for band in range(1, 5)]
        colours = [tuple(band[column] for band in bands) for column in range(len(row))]
        return [colour if colour[3] else CLEAR for colour in colours]

    def qml(self, kind):
        return ElementTree.parse(self.folder / f"styles/{kind}.qml").getroot()

    def test_writes_both_files_of_each_kind(self):
        self.assertEqual(self.files(), sorted(f"styles/{kind}.{ending}" for kind in KINDS for ending in ("qml", "txt")))

    def test_depths_belong_to_the_class_up_to_their_limit(self):
        self.assertEqual(self.coloured("depth", 0.02, 0.1, 0.101, 0.3, 1, 1.001, 5, 5.01, 400, -9999),
                         [rgba(c) for c in ("#d8ecf8", "#d8ecf8", "#b3d9ef", "#b3d9ef", "#55a4d3", "#2f80bd", "#0b3c7c",
                                            "#071f4a",
                                            "#071f4a")] + [CLEAR])

    def test_impacts_below_a_centimetre_are_no_change(self):
        self.assertEqual(self.coloured("impact", -7, -0.5, -0.499, -0.0101, -0.0099, 0, 0.01, 0.011, 0.5, 0.51),
                         [rgba(c) for c in ("#1a4f94", "#1a4f94", "#4a8fca", "#d3e6f4", "#f4efb4", "#f4efb4", "#f4efb4",
                                            "#fde3cf",
                                            "#dd5a44", "#97141f")])

    def test_levels_take_the_colours_from_the_lowest_cell_to_the_highest(self):
        # Of 50, 60 and 100 the middle one lies at a fifth of the way; of 50, 54 and 70 too.
        for row in ((50, 60, 100), (50, 54, 70)):
            self.assertEqual(self.coloured("level", *row), [rgba(c) for c in ("#1f3b73", "#2c7fb8", "#d7301f")])

    def test_differences_blend_and_end_at_a_metre(self):
        # -0.65 is half way between -1 and -0.3: the mean of 1a4f94 and 5a9bd0 is 3a75b2.
        self.assertEqual(self.coloured("difference", -3, -1, -0.65, 0, 0.3, 8),
                         [rgba(c) for c in ("#1a4f94", "#1a4f94", "#3a75b2", "#fdf8d8", "#e5724e", "#97141f")])

    def test_values_between_sources_have_no_colour(self):
        self.assertEqual(self.coloured("source", 1, 2, 12, 1.5, 13),
                         [rgba("#1f77b4"), rgba("#e08214"), rgba("#234d20"), CLEAR, CLEAR])

    def test_cells_of_one_grid_only(self):
        self.assertEqual(self.coloured("wet_dry", -99, 1, 99, 50, -9999),
                         [rgba("#e08214"), rgba("#4a90c8"), rgba("#7b3294"), CLEAR, CLEAR])

    def test_qml_has_the_classes_in_their_order(self):
        for kind in KINDS:
            with self.subTest(kind=kind):
                root = self.qml(kind)
                self.assertEqual(root.get("version"), "3.22.0")
                items = root.findall(".//item") + root.findall(".//paletteEntry")
                expected = re.findall(rf"(?m)^{kind},\w+,(.*?),(.*?),(.*)$",
                                      (PACKAGES / "gridforge/classes.csv").read_text(encoding="utf-8"))
                self.assertEqual([(item.get("color"), item.get("label")) for item in items],
                                 [(colour, label) for _, colour, label in expected])
                numbers = [float("inf") if value == "above" else float(value) for value, _, _ in expected]
                for item, number in zip(items, numbers, strict=True):
                    self.assertTrue(math.isclose(float(item.get("value")), number, rel_tol=1e-7), (item.get("value"), number))

    def test_qml_puts_a_cell_at_a_limit_into_the_class_below(self):
        shader = self.qml("depth").find(".//colorrampshader")
        self.assertEqual(shader.get("colorRampType"), "DISCRETE")  # the first item that the cell does not exceed
        self.assertEqual(next(item.get("label") for item in shader.findall("item") if as_cell(0.1) <= float(item.get("value"))),
                         "to 0.1 m")

    def test_qml_of_levels_follows_the_cells_shown(self):
        root = self.qml("level")
        self.assertEqual((root.find(".//limits").text, root.find(".//minMaxOrigin/extent").text), ("MinMax", "UpdatedCanvas"))
        self.assertEqual(self.qml("depth").find(".//limits").text, "None")

    def test_a_range_can_be_fixed_to_the_values_of_a_grid(self):
        root = ElementTree.fromstring(styles.qml(styles.styles()["level"].between(10, 20)))
        self.assertEqual([item.get("value") for item in root.findall(".//item")], ["10", "12", "14", "16", "18", "20"])
        self.assertEqual([item.get("label") for item in root.findall(".//item")], ["10", "12", "14", "16", "18", "20"])
        self.assertEqual(root.find(".//limits").text, "None")

    def test_sources_take_their_names_from_the_legend_of_a_run(self):
        for name, value in (("storm 1h", 3), ("storm & 6h", 5)):
            self.give(f"in/{name}.asc", asc([[value, value]]))
        self.tool("-max", "in/storm 1h.asc", "in/storm & 6h.asc", "-out", "peak.asc")
        self.good("styles", "styles", "--legend", "peak_src_legend.csv", "--overwrite")
        entries = self.qml("peak_src_legend").findall(".//paletteEntry")
        self.assertEqual([(e.get("value"), e.get("color"), e.get("label")) for e in entries],
                         [("1", "#1f77b4", "storm 1h"), ("2", "#e08214", "storm & 6h")])
        self.assertEqual(self.coloured("peak_src_legend", 2, 3), [rgba("#e08214"), CLEAR])

    def test_more_sources_than_colours_begin_again(self):
        rows = "".join(f"{n},d/s{n}.flt\r\n" for n in range(1, 15))
        self.give("many_src_legend.csv", '"Value in Grid","Source Grid File"\r\n' + rows)
        self.good("styles", "styles", "--legend", "many_src_legend.csv", "--overwrite")
        entries = self.qml("many_src_legend").findall(".//paletteEntry")
        self.assertEqual([e.get("label") for e in entries], [f"s{n}" for n in range(1, 15)])
        self.assertEqual(entries[12].get("color"), entries[0].get("color"))

    def test_leaves_what_is_there_unless_it_shall_be_replaced(self):
        self.give("mine/level.txt", "my own colours\n")
        self.fails("styles", "mine/level.txt is there already; --overwrite replaces it", "mine")
        self.assertEqual([name for name in self.files() if name.startswith("mine/")], ["mine/level.txt"])
        self.good("styles", "mine", "--overwrite")
        self.assertEqual((self.folder / "mine/level.txt").read_bytes(), (self.folder / "styles/level.txt").read_bytes())

    def test_refuses_what_is_no_legend(self):
        self.fails("styles", "none.csv: No such file or directory", "styles", "--legend", "none.csv")
        self.give("l.csv", "a,b\n1,x\n")
        self.fails("styles", "l.csv is not a legend: its first line is not Value in Grid,Source Grid File", "new", "--legend",
                   "l.csv")
        for line in ("x,a.asc", "1", "0,a.asc"):
            self.give("l.csv", f'"Value in Grid","Source Grid File"\n{line}\n')
            self.fails("styles", "l.csv: line 2 is not a number and a name", "new", "--legend", "l.csv")

    def test_names_of_outputs_tell_their_kind(self):
        for name, kind in (("a_src.asc", "source"), ("a(maxmax)_src.flt", "source"), ("a_Rank3_Src.asc", "source"),
                           ("a - b_wd.asc", "wet_dry"), ("a_extent.asc", "wet_dry"), ("a - b.asc", "difference"),
                           ("wl_remap_d.asc", "depth"), ("wl_remap_h.asc", "level"), ("Depth_1pct.flt", "depth"),
                           ("level_1pct_6h.asc", "level"), ("run_d_max.flt", "depth"), ("dem.asc", None)):
            self.assertEqual(styles.kind_of(name), kind, name)
