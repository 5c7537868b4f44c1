"""gridforge-prepare layer and template: each prepared layer goes through its operation, whose numbers are worked out by hand."""
import csv
import unittest

from osgeo import ogr, osr

from gridforge.layer_forms import FORMS
from tests.tool_case import ToolCase, asc, cells

ogr.UseExceptions()
SIZE = 9  # rows and columns of the ground


def at(row, column):
    """The ground: the row from the south, then the column."""
    return 10 * row + column


GROUND = asc([[at(row, column) for column in range(1, SIZE + 1)] for row in range(SIZE, 0, -1)])


def wkt(*rows):
    """A source of geometries as text, without a projection: a heading and rows."""
    return "".join(",".join('"' + str(value).replace('"', '""') + '"' for value in row) + "\n" for row in rows)


def square(west, south, east, north, hole=""):
    return f"(({west} {south},{east} {south},{east} {north},{west} {north},{west} {south}){hole})"


class Prepared(ToolCase):
    def setUp(self):
        super().setUp()
        self.give("a.asc", GROUND)

    def prepare(self, operation, source, output, *options):
        """What the command says of its work, line by line."""
        return self.good("prepare", "layer", "--for", operation, source, output, *options).splitlines()

    def table(self, name):
        return list(csv.reader(self.text(name).splitlines()))

    def records(self, name):
        """The records of a layer that the tool wrote."""
        layers = ogr.Open(str(self.folder / name))  # which must outlive its layer
        return [feature.items() for feature in layers.GetLayer()]


class OperationsTest(Prepared):
    def test_damages_of_a_building_with_a_court(self):
        # The corners 4, 5 and 6 of rows and columns lie in the court: 9 cells of 40 m; the other 16 of the corners 3 to 7
        # have 10 m.
        court = (4, 5, 6)
        self.give("level.asc", asc([[40 if row in court and column in court else 10 for column in range(1, 13)]
                                    for row in range(12, 0, -1)]))
        hole = ",(3.5 3.5,6.5 3.5,6.5 6.5,3.5 6.5,3.5 3.5)"
        self.give("town.csv", wkt(("WKT", "kind", "id", "floor", "height"),
                                  ("POLYGON" + square(2.5, 2.5, 7.5, 7.5, hole), "House, brick", "h 1", "9", "3")))
        self.give("curve.csv", "Depth,Damage\n0,0\n100,100000\n")  # 1000 a metre
        fields = ("--column", "Prop_Type=kind", "--column", "Prop_ID=id", "--column", "FFL=floor", "--value", "Multiplier=2")
        for way, holes, method, damage in (
                ("cut", "holes cut open: 1", "Max", (10 - 9) * 1000 * 2),
                ("fill", "holes left out: 1", "Max", (40 - 9) * 1000 * 2),
                ("fill", "holes left out: 1", "Avg", ((16 * 10 + 9 * 40) / 25 - 9) * 1000 * 2)):
            with self.subTest(holes=way, method=method):
                said = self.prepare("damages", "town.csv", "town.mif", *fields, "--holes", way, "--overwrite")
                self.assertIn(holes, said)
                self.assertEqual("area of the holes left out: 9" in said, way == "fill")
                self.give("town.dmg", "Read GIS Building == town.mif\nRead Curve House, brick == curve.csv\n"
                                      f"Read Result % 1 == level.asc\nRegion Inspection Method == {method}\n")
                self.tool("-damages", "town.dmg")
                row = self.table("town_Damages.csv")[1]
                self.assertEqual(row[:2], ["House, brick", "h 1"])
                self.assertEqual([float(value) for value in row[2:5]], [9, 2, round(damage, 3)])

    def test_calibration_points_of_a_multipoint_with_heights(self):
        # The cells of the corners (3, 4) and (5, 6) hold 43 and 65.
        self.give("marks.csv", wkt(("WKT", "Mark", "seen"), ("MULTIPOINT Z ((3.1 4 7),(5 6.1 8))", "m", "40")))
        said = self.prepare("cp", "marks.csv", "marks.mif", "--column", "Observed=seen", "--column", "Label=Mark")
        self.assertEqual(said, ["Observed from seen", "Label from Mark", "objects whose Z or M values were left out: 1",
                                "features of several parts taken apart: 1", "2 objects written to marks.mif"])
        self.tool("-cp", "marks.mif", "a.asc", "-cpsd2", "-out", "o.mif")
        self.assertEqual([[label, *map(float, values)] for label, *values in self.table("o.csv")[1:]],
                         [["m", 40, 43, 3, 0.1], ["m", 40, 65, 25, 0.1]])

    def test_calibration_points_with_modelled_values(self):
        self.give("marks.csv", wkt(("WKT", "Obs", "Label", "model"), ("POINT (3 4)", 40, "m", 41.5)))
        self.prepare("cp", "marks.csv", "marks.mif", "--column", "Modelled=model")
        self.tool("-cp", "marks.mif", "a.asc", "-cpsd2", "-out", "o.mif")
        self.assertEqual([float(value) for value in self.table("o.csv")[1][1:]], [40, 41.5, 1.5, -1])

    def test_long_profiles_of_a_channel_in_two_parts(self):
        # A bed of 0 in row 5; each row costs 10 in the north and 7 in the south. The last ones, 9 and 1, hold 40 and 28.
        self.give("valley.asc", asc([[10 * (row - 5) if row > 5 else 7 * (5 - row)] * SIZE for row in range(SIZE, 0, -1)]))
        self.give("bed.csv", wkt(("WKT", "Name"), ("MULTILINESTRING ((2 5,4 5),(7 5,5 5))", "main")))
        said = self.prepare("lp", "bed.csv", "bed.mif")
        self.assertIn("features of several parts taken apart: 1", said)
        self.tool("-lp", "bed.mif", "valley.asc", "-cpsd10")
        east, west = ([[float(value) for value in row] for row in self.table(f"bed_main_{part}.csv")[1:]] for part in (1, 2))
        self.assertEqual(east, [[0, 0, 40, 28], [2, 0, 40, 28]])
        self.assertEqual(west, [[0, 0, 28, 40], [2, 0, 28, 40]])  # this one runs west, so its left is the south

    def test_breaklines_take_the_cells_of_their_vertices(self):
        # The middle vertex lies on the line between its neighbours and is thinned away.
        self.give("road.csv", wkt(("WKT", "Options"), ("LINESTRING (2 4,4 4,6 4)", "Max")))
        said = self.prepare("brkline", "road.csv", "road.mif", "--tolerance", "0.01")
        self.assertEqual(said, ["Z is 0.0 everywhere", "dZ is -1.0 everywhere", "Width is 0.0 everywhere", "Options from Options",
                                "objects thinned: 1", "vertices left out by thinning: 1", "1 object written to road.mif"])
        self.tool("-brkline", "road.mif", "a.asc")
        self.assertEqual([(row["Z"], row["Options"]) for row in self.records("road_brkline.mif")],
                         [(at(4, 2), "Max"), (at(4, 6), "Max"), (99999, "Max")])

    def test_nodal_areas_of_a_region_that_is_cut_to_the_grid(self):
        # Four corners in each: 2 and 3, of the cells 22, 23, 32 and 33; and 7 and 8, of 77, 78, 87 and 88, the rest lies outside.
        self.give("ponds.csv", wkt(("WKT", "ID"), ("MULTIPOLYGON (" + square(1.5, 1.5, 3.5, 3.5) + "," + square(6.5, 6.5, 20,
                                                                                                                20) + ")",
                                                   "pond")))
        said = self.prepare("na", "ponds.csv", "ponds.mif", "--clip", "a.asc")
        self.assertEqual(said, ["ID from ID", "Z_Incr is 0.0 everywhere", "Z_Max is 0.0 everywhere", "Skew is 0.0 everywhere",
                                "objects cut to the grid: 1", "features of several parts taken apart: 1",
                                "names that got .csv: 1",
                                "2 objects written to ponds.mif"])
        self.tool("-na", "ponds.mif", "a.asc")
        for part, lowest in ((1, at(2, 2)), (2, at(7, 7))):
            rows = [[float(value) for value in row] for row in self.table(f"pond_{part}.csv")[1:]]
            self.assertEqual(rows[0], [lowest + 0.001, 1])
            self.assertEqual([area for height, area in rows if height > lowest + 1.5][0], 2)  # the cell in the east of it
            self.assertEqual(rows[-1][1], 4)

    def test_a_network_by_a_control_file(self):
        # The section runs from (5, 2) to (5, 7): its 5 m get floor(5 / 1.1) points between the ends, one a metre, which lie at
        # corners of cells. The branch starts in the region of a loss.
        self.give("sections.csv", wkt(("WKT", "Source", "Split_TF"), ("LINESTRING (5 2,5 7)", "bank", "F")))
        self.give("branches.csv", wkt(("WKT", "name", "n"), ("LINESTRING M (1 4 0,4 4 3,8 4 7)", "Main", "0.03")))
        self.give("losses.csv", wkt(("WKT", "FLC"), ("POLYGON" + square(0.5, 3.5, 1.5, 4.5), "0.5")))
        self.prepare("nbc", "sections.csv", "1d_cut_t.mif", "--role", "sections")
        said = self.prepare("nbc", "branches.csv", "1d_br_t.mif", "--role", "branches", "--value", "Form_Loss=0.25")
        self.assertIn("objects whose Z or M values were left out: 1", said)
        self.prepare("nbc", "losses.csv", "losses.mif", "--role", "losses")
        self.give("net.nbc",
                  "Read GIS Branch == 1d_br_t.mif\nRead GIS XS == 1d_cut_t.mif\nSet XS dx == 1.1\nRead Grid Z == a.asc\n"
                             "Read GIS FLC == losses.mif\n")
        self.tool("-nbc", "net.nbc")
        self.assertEqual([[float(value) for value in row[:2]] for row in self.table("bank.csv")[1:]],
                         [[row - 2, at(row, 5)] for row in range(2, 8)])
        lines = self.records("1d_nwk_t.mif")
        self.assertEqual(len(lines), 1)
        self.assertAlmostEqual(lines[0]["n_or_n_F"], 0.03, places=6)
        self.assertAlmostEqual(lines[0]["Form_Loss"], 0.25 + 0.5, places=6)

    def test_sections_and_branches_from_flags(self):
        self.give("sections.csv", wkt(("WKT", "Name"), ("LINESTRING (5 2,5 7)", "bank")))
        self.give("branches.csv", wkt(("WKT", "Name"), ("LINESTRING (1 4,8 4)", "Main")))
        self.prepare("xs", "sections.csv", "1d_cut_t.mif", "--value", "Distance=1.1")
        self.prepare("xs", "branches.csv", "1d_br_t.mif", "--role", "branches")
        self.tool("-xs", "1d_cut_t.mif", "a.asc", "-branch", "1d_br_t.mif")
        self.assertEqual([[float(value) for value in row[:2]] for row in self.table("bank.csv")[1:]],
                         [[row - 2, at(row, 5)] for row in range(2, 8)])

    def test_rain_at_points(self):
        # 10 and 20 mm, times 1 and 3, at the ends of a row of two cells: each centre lies 5 m and 15 m from them.
        self.rain("IDW", "RF Points", "points", ("POINT (0 5)", "p", 1), ("POINT (20 5)", "q", 3))
        near, far = 1 / 5 ** 2, 1 / 15 ** 2
        west, east = (near * 10 + far * 60) / (near + far), (far * 10 + near * 60) / (near + far)
        self.assertEqual(cells(self.text("storm_t1..asc")), [[round(west, 3), round(east, 3)]])

    def test_rain_over_polygons(self):
        self.rain("Polygon", "RF Polygon", "polygons", ("POLYGON" + square(0, 0, 10, 20), "p", 2),
                  ("MULTIPOLYGON (" + square(10, 0, 20, 10) + "," + square(10, 10, 20, 20) + ")", "q", 3), points=True)
        self.assertEqual(cells(self.text("storm_t1..asc")), [[20, 60]] * 2)

    def test_rain_over_triangles(self):
        # The plane through 10 at (0, 0), 20 at (40, 0) and 10 at (0, 40) rises by a quarter for each metre to the east.
        self.rain("TIN", "RF Triangle", "triangles", ("POLYGON ((0 0,40 0,0 40,0 0))", "", 1), points=True)
        self.assertEqual(cells(self.text("storm_t1..asc")), [[11.25, 13.75]] * 2)

    def rain(self, method, command, role, *rows, points=False):
        """A storm of 10 mm by the name p and of 20 mm by the name q, on two columns of cells of 10 m; IDW has one row of them."""
        self.give("areas.csv", wkt(("WKT", "Name", "F1"), *rows))
        self.prepare("rf", "areas.csv", "areas.mif", "--role", role)
        control = (f"RF GRID Cell Size == 10\nRF GRID Size (X,Y) == {10 if method == 'IDW' else 20}, 20\n"
                   f"Rainfall Hyetograph p == p.csv\nRainfall Hyetograph q == q.csv\nRF Interpolation Method == {method}\nRead GIS {command} == areas.mif\n")
        if points:
            self.give("gauges.csv", wkt(("WKT", "Name"), ("POINT (0 0)", "p"), ("POINT (40 0)", "q"), ("POINT (0 40)", "r")))
            self.prepare("rf", "gauges.csv", "gauges.mif")
            control += "Read GIS RF Points == gauges.mif\nRainfall Hyetograph r == p.csv\n"
        self.give("p.csv", "Time,Depth\n1,10\n2,10\n")
        self.give("q.csv", "Time,Depth\n1,20\n2,20\n")
        self.give("storm.rfc", control)
        self.tool("-rf", "storm.rfc")

    def test_trim_by_a_region_of_many_vertices(self):
        # A square of 400 vertices, with a tooth of 0.2 in the middle of its west side; the tooth stays, since it moves most.
        side = [i / 100 * 5 for i in range(100)]
        ring = [(2.5 + d, 3.5) for d in side] + [(7.5, 3.5 + d) for d in side] + [(7.5 - d, 8.5) for d in side]
        ring += [(2.5 - (0.2 if d == 2.5 else 0), 8.5 - d) for d in side]
        ring.append(ring[0])
        self.give("part.csv", wkt(("WKT", "Name"), ("POLYGON ((" + ",".join(f"{x!r} {y!r}" for x, y in ring) + "))", "part")))
        said = self.prepare("trim", "part.csv", "part.mif", "--clip", "a.asc")
        self.assertEqual(said, ["Name from Name", "objects thinned: 1", "vertices left out by thinning: 302",
                                "1 object written to part.mif"])
        self.tool("-trim", "part.mif", "a.asc")
        kept = [value for row in cells(self.text("part_a.asc")) for value in row if value != -9999]
        self.assertEqual(kept, [at(row, column) for row in range(8, 3, -1) for column in range(3, 8)])

    def test_every_layer_as_a_shapefile(self):
        # Once more through the other kind of files: the same rectangle and line, by a source with a projection.
        source = osr.SpatialReference()
        source.ImportFromEPSG(28356)
        made = ogr.GetDriverByName("GPKG").CreateDataSource(str(self.folder / "s.gpkg"))
        for name, kind, text in (("areas", ogr.wkbPolygon25D, "POLYGON Z ((1.5 1.5 9,3.5 1.5 9,3.5 3.5 9,1.5 3.5 9,1.5 1.5 9))"),
                                 ("lines", ogr.wkbLineString, "LINESTRING (5 2,5 7)")):
            layer = made.CreateLayer(name, source, kind)
            layer.CreateField(ogr.FieldDefn("Name", ogr.OFTString))
            feature = ogr.Feature(layer.GetLayerDefn())
            feature.SetField(0, "n\u00f6rd")
            feature.SetGeometry(ogr.CreateGeometryFromWkt(text))
            layer.CreateFeature(feature)
        made = layer = None
        self.prepare("trim", "s.gpkg", "part.shp", "--layer", "areas")
        self.tool("-trim", "part.shp", "a.asc")
        self.assertIn([at(3, 2), at(3, 3)], [[v for v in row if v != -9999] for row in cells(self.text("n\u00f6rd_a.asc"))])
        self.prepare("xs", "s.gpkg", "1d_cut_t.shp", "--layer", "lines", "--value", "Distance=1.1")
        self.tool("-xs", "1d_cut_t.shp", "a.asc")
        self.assertEqual([float(row[1]) for row in self.table("n\u00f6rd.csv")[1:]], [at(row, 5) for row in range(2, 8)])
        self.assertTrue(self.text("part.prj").startswith('PROJCS["GDA_1994_MGA_Zone_56",'))


class ShapesTest(Prepared):
    """What becomes of objects, as the command says it and as GDAL sees the result."""

    def shapes(self, name):
        layers = ogr.Open(str(self.folder / name))
        return [feature.GetGeometryRef().ExportToWkt() for feature in layers.GetLayer()]

    def test_thinning_says_how_far_it_moved(self):
        self.give("s.csv", wkt(("WKT", "Name"), ("LINESTRING (0 0,5 0.25,10 0,20 0,20 10)", "x")))
        said = self.prepare("lp", "s.csv", "o.mif", "--thin", "3")
        self.assertEqual(said[1:], ["objects thinned: 1", "vertices left out by thinning: 2",
                                    "outlines and lines moved by thinning by at most: 0.25", "1 object written to o.mif"])
        self.assertEqual(self.shapes("o.mif"), ["LINESTRING (0 0,20 0,20 10)"])

    def test_thinning_that_makes_an_outline_cross_itself_is_told(self):
        # A spike from below ends in a dent of the underside that is 1 deep; without the dent the underside runs through
        # the spike.
        dent, arm = "9 0,10 1,11 0", "19 0,19 -4,10.2 -4,10 0.5,9.8 -5,20 -5"
        self.give("s.csv", wkt(("WKT", "Name"), (f"POLYGON ((0 10,0 0,{dent},{arm},20 10,0 10))", "x")))
        said = self.prepare("trim", "s.csv", "o.mif", "--thin", "9")
        self.assertEqual(said[1:-1], ["objects thinned: 1", "vertices left out by thinning: 3",
                                      "WARNING: outlines that cross themselves after thinning: 1",
                                      "outlines and lines moved by thinning by at most: 1"])

    def test_parts_apart_or_the_largest(self):
        parts = "MULTIPOLYGON (" + square(0, 0, 1, 1) + "," + square(2, 0, 5, 3) + "," + square(6, 0, 8, 2) + ")"
        self.give("s.csv", wkt(("WKT", "Name"), (parts, "x")))
        self.prepare("trim", "s.csv", "apart.mif")
        self.assertEqual([record["Name"] for record in self.records("apart.mif")], ["x_1", "x_2", "x_3"])
        said = self.prepare("trim", "s.csv", "one.mif", "--parts", "largest")
        self.assertIn("smaller parts left out: 2", said)
        self.assertEqual(self.records("one.mif"), [{"Name": "x"}])
        self.assertEqual(self.shapes("one.mif"), ["POLYGON ((2 0,5 0,5 3,2 3,2 0))"])

    def test_objects_that_do_not_fit_are_told(self):
        self.give("s.csv", wkt(("WKT", "Name"), ("POINT (1 1)", "a"), ("LINESTRING (0 0,1 1)", "b"), ("", "c"), ("POINT EMPTY",
                                                                                                                 "d"),
                               ("LINESTRING (3 3,3 3)", "e"), ("GEOMETRYCOLLECTION (POINT (1 1),LINESTRING (5 5,6 6))", "f")))
        self.assertEqual(self.prepare("lp", "s.csv", "o.mif"),
                         ["Label from Name", "parts left out that are not lines: 2", "features without a geometry left out: 2",
                          "lines left out that have no length: 1", "2 objects written to o.mif"])
        self.assertEqual(self.records("o.mif"), [{"Label": "b"}, {"Label": "f"}])

    def test_regions_without_an_area_are_told(self):
        self.give("s.csv", wkt(("WKT", "Name"), ("POLYGON ((1 1,2 2,1 1))", "flat"), ("POLYGON" + square(1, 1, 3, 3), "a")))
        self.assertEqual(self.prepare("trim", "s.csv", "o.mif"),
                         ["Name from Name", "regions left out that have no area: 1", "1 object written to o.mif"])

    def test_curves_become_lines(self):
        self.give("s.csv", wkt(("WKT", "Name"), ("CIRCULARSTRING (0 0,1 1,2 0)", "arc")))
        self.assertIn("objects with curves made of lines: 1", self.prepare("lp", "s.csv", "o.mif"))
        arc = ogr.CreateGeometryFromWkt(self.shapes("o.mif")[0])
        self.assertAlmostEqual(arc.Length(), 3.1416, delta=0.001)  # half a circle of radius 1

    def test_objects_off_the_grid_are_left_out_and_others_cut(self):
        self.give("s.csv", wkt(("WKT", "Name"), ("LINESTRING (-5 5,5 5)", "in"), ("LINESTRING (-5 5,-1 5)", "out")))
        said = self.prepare("lp", "s.csv", "o.mif", "--clip", "a.asc")
        self.assertEqual(said[1:], ["objects cut to the grid: 1", "objects left out that lie off the grid: 1",
                                    "1 object written to o.mif"])
        self.assertEqual(self.shapes("o.mif"), ["LINESTRING (0 5,5 5)"])

    def test_buildings_keep_two_cells_free_in_the_south_west(self):
        self.give("s.csv", wkt(("WKT", "Prop_Type", "Prop_ID", "FFL"), ("POLYGON" + square(-5, -5, 30, 30), "a", "1", "0")))
        self.prepare("damages", "s.csv", "o.mif", "--clip", "a.asc")
        self.assertEqual(ogr.CreateGeometryFromWkt(self.shapes("o.mif")[0]).GetEnvelope(), (2.001, 10, 2.001, 10))
        self.give("curve.csv", "Depth,Damage\n0,0\n100,1000\n")
        self.give("d.dmg", "Read GIS Building == o.mif\nRead Curve a == curve.csv\nRead Result % 1 == a.asc\n")
        self.tool("-damages", "d.dmg")
        self.assertEqual(float(self.table("o_Damages.csv")[1][4]), 10 * at(SIZE, SIZE))  # 10 a metre, the highest cell

    def test_outlines_that_cross_themselves_are_repaired_before_they_are_cut(self):
        self.give("s.csv", wkt(("WKT", "Name"), ("POLYGON ((-2 2,4 6,4 2,-2 6,-2 2))", "bow")))
        said = self.prepare("trim", "s.csv", "o.mif", "--clip", "a.asc")
        self.assertIn("objects repaired before they were cut to the grid: 1", said)
        # The eastern triangle is 3 high on a side of 4. Of the western one the window leaves the last half a metre before its
        # tip, where it is 4 / 3 wide for each metre.
        area = sum(ogr.CreateGeometryFromWkt(shape).Area() for shape in self.shapes("o.mif"))
        self.assertAlmostEqual(area, 3 * 4 / 2 + 0.5 * (0.5 * 4 / 3) / 2)

    def test_moves_to_another_projection(self):
        source = osr.SpatialReference()
        source.ImportFromEPSG(4326)
        made = ogr.GetDriverByName("GeoJSON").CreateDataSource(str(self.folder / "s.geojson"))
        layer = made.CreateLayer("s", source, ogr.wkbPoint)
        layer.CreateField(ogr.FieldDefn("Name", ogr.OFTString))
        feature = ogr.Feature(layer.GetLayerDefn())
        feature.SetField(0, "gauge")
        feature.SetGeometry(ogr.CreateGeometryFromWkt("POINT (153 0)"))  # on the central meridian of zone 56 and the equator
        layer.CreateFeature(feature)
        made = layer = None
        self.fails("prepare", "WGS 84 is not a projection, which a .shp needs: choose one with --crs, or write a .mif",
                   "layer", "--for", "rf", "s.geojson", "o.shp")
        self.prepare("rf", "s.geojson", "o.shp", "--crs", "EPSG:32756")
        x, y = map(float, self.shapes("o.shp")[0][7:-1].split())
        self.assertAlmostEqual(x, 500000, places=3)
        self.assertAlmostEqual(y, 10000000, places=3)

    def test_says_what_the_control_file_of_damages_needs(self):
        circle = ogr.CreateGeometryFromWkt("POINT (5 5)").Buffer(2, 30)  # 120 vertices and the closing one
        self.give("s.csv", wkt(("WKT", "Prop_Type", "Prop_ID", "FFL"), (circle.ExportToWkt(), "a", "1", "0"),
                               *[("POINT (5 5)", "a", n, "0") for n in range(1000)]))
        self.assertEqual(self.prepare("damages", "s.csv", "o.mif")[-3:],
                         ["the control file needs: Maximum Buildings == 1001", "the control file needs: Maximum Vertices == 122",
                          "1001 objects written to o.mif"])
        self.give("curve.csv", "Depth,Damage\n0,0\n100,1000\n")
        limits = ("Maximum Buildings == 1001\n", "Maximum Vertices == 122\n")
        control = "Read GIS Building == o.mif\nRead Curve a == curve.csv\nRead Result % 1 == a.asc\n"
        self.give("d.dmg", "".join(limits) + control)
        self.tool("-damages", "d.dmg")
        for limit in limits:
            self.give("d.dmg", limit + control)
            self.assertIn("ERROR", self.tool("-damages", "d.dmg", ends_well=False))


class RecordsTest(Prepared):
    def record(self, operation, row, *options):
        self.give("s.csv", wkt(*row))
        self.prepare(operation, "s.csv", "o.mif", "--overwrite", *options)
        return self.text("o.mid")

    def test_columns_stand_in_the_order_of_the_operation(self):
        heading = ("WKT", "multiplier", "FFL", "prop_id", "PROP_TYPE", "other")
        self.assertEqual(self.record("damages", (heading, ("POINT (1 2)", 2.5, 10.25, "7a", "House", "x"))),
                         '"House","7a",10.25,2.5\n')

    def test_other_names_of_fields_fit(self):
        self.assertEqual(self.record("damages", (("WKT", "floor", "id", "type"), ("POINT (1 2)", 10.25, "7a", "House"))),
                         '"House","7a",10.25,1\n')

    def test_quotes_commas_and_line_ends(self):
        self.assertEqual(self.record("trim", (("WKT", "Name"), ("POLYGON" + square(1, 1, 2, 2), 'a "b",\nc'))), '"a ""b"", c"\n')

    def test_blanks_take_the_value_that_is_given(self):
        row = (("WKT", "Obs"), ("POINT (1 2)", ""), ("POINT (1 2)", "4"))
        self.assertEqual(self.record("cp", row, "--column", "Observed=Obs", "--value", "Observed=1.5"), '1.5,""\n4,""\n')
        self.give("s.csv", wkt(*row))
        self.assertIn("blanks of Observed filled with 1.5: 1",
                      self.prepare("cp", "s.csv", "p.mif", "--column", "Observed=Obs", "--value", "Observed=1.5"))
        self.fails("prepare", "feature 1: Observed is blank; --value Observed=VALUE fills blanks", "layer", "--for", "cp",
                   "s.csv",
                   "q.mif")

    def test_no_record_is_longer_than_the_tool_reads(self):
        limit, longest_number = 1000, len("-2.2250738585072014e-308")
        for form in FORMS:
            longest = sum(2 * column.width + len('"",') if column.is_text else longest_number + 1 for column in form.columns)
            self.assertLess(longest, limit, form)  # a quote in a text is written twice

    def test_long_texts_are_cut(self):
        self.give("s.csv", wkt(("WKT", "Obs", "Label"), ("POINT (1 2)", 1, "x" * 49 + "\u00f6\u00f6")))
        self.assertIn("texts of Label cut to 50 characters: 1", self.prepare("cp", "s.csv", "o.mif"))
        self.assertEqual(self.text("o.mid"), '1,"' + "x" * 49 + '"\n')  # no half of a letter


class RefusalsTest(Prepared):
    def refuse(self, message, operation, rows, *options, output="o.mif", status=1):
        self.give("s.csv", wkt(*rows))
        self.fails("prepare", message, "layer", "--for", operation, "s.csv", output, *options, status=status)

    def test_missing_columns_and_wrong_names(self):
        points = (("WKT", "h", "t"), ("POINT (1 2)", "high", "t"))
        self.refuse("-cp needs Observed: name its field with --column Observed=FIELD, or a value for all with --value "
                    "Observed=VALUE; fields of the source: WKT, h, t", "cp", points)
        self.refuse("the source has no field level; its fields: WKT, h, t", "cp", points, "--column", "Observed=level")
        self.refuse("-cp has no column Depth; its columns: Observed, Label, Modelled", "cp", points, "--column", "Depth=h")
        self.refuse("feature 1: Observed is not a number: high", "cp", points, "--column", "Observed=h")
        self.refuse("feature 1: Observed is not a number: nan", "cp", points, "--value", "Observed=nan")

    def test_nothing_that_fits(self):
        run = self.command("prepare", "layer", "--for", "lp", str(self.give("s.csv", wkt(("WKT", "Name"), ("POINT (1 2)", "a")))),
                           "o.mif")
        self.assertEqual(run.status, 1)
        self.assertEqual(run.error, f"gridforge-prepare: {self.folder}/s.csv has no object that fits -lp\n"
                                     "  parts left out that are not lines: 1\n")

    def test_holes_and_vertices_that_cannot_be_helped(self):
        self.refuse("feature 1: a hole does not lie inside its polygon; repair the source, or leave holes out (--holes fill)",
                    "trim",
                    (("WKT", "Name"), ("POLYGON" + square(0, 0, 2, 2, ",(5 1,6 1,6 2,5 1)"), "a")))
        self.refuse("feature 1: no fewer than 3 vertices are possible, but 2 are wanted", "trim",
                    (("WKT", "Name"), ("POLYGON" + square(0, 0, 2, 2), "a")), "--thin", "2")

    def test_thinning_that_would_lose_a_hole(self):
        # The hole lies in a peak of 3 above the north side; three vertices stay of it, so the peak goes.
        ring = "(0 0,40 0,40 40,20 43,0 40,0 0),(19 41,21 41,20 42.5,19 41)"
        self.refuse("feature 1: thinning moves the outline across a hole; allow more vertices, or leave holes out (--holes fill)",
                    "trim", (("WKT", "Name"), (f"POLYGON ({ring})", "a")), "--thin", "10")

    def test_limits_of_the_tool(self):
        region = "POLYGON" + square(0, 0, 2, 2)
        self.refuse("101 objects, but -trim takes 100; choose with --where", "trim",
                    (("WKT", "Name"), *[(region, f"r{n}") for n in range(101)]))
        self.refuse("feature 1: 4 corners, but a triangle has 3", "rf", (("WKT", "F1"), (region, 1)), "--role", "triangles")
        self.refuse("feature 1: Loss is 0, which -nbc refuses; leave it out with --where", "nbc", (("WKT", "Loss"), (region, 0)),
                    "--role", "losses")

    def test_names_of_outputs_that_repeat_are_told(self):
        region = "POLYGON" + square(0, 0, 2, 2)
        self.give("s.csv", wkt(("WKT", "Name"), (region, "a"), (region, "A"), (region, "b")))
        self.assertIn("WARNING: 2 objects have the name a: the later output replaces the earlier one",
                      self.prepare("trim", "s.csv", "o.mif"))
        self.prepare("trim", "s.csv", "b.mif", "--where", "Name = 'b'")
        self.assertEqual(self.records("b.mif"), [{"Name": "b"}])

    def test_sources_and_outputs(self):
        points = (("WKT", "Obs"), ("POINT (1 2)", 1))
        self.refuse("o.tab: a layer ends in .mif or .shp", "cp", points, output="o.tab")
        self.refuse("the source has no projection, which a .shp needs: name it with --crs, or write a .mif", "cp", points,
                    output="o.shp")
        self.refuse("--crs: GDAL knows no EPSG:nowhere", "cp", points, "--crs", "EPSG:nowhere")
        self.refuse("--role: the layers of -cp are points, not lines", "cp", points, "--role", "lines")
        self.refuse("--kind: -cp wants point, not line", "cp", points, "--kind", "line")
        self.refuse("s.csv has no layer t; its layers: s", "cp", points, "--layer", "t")
        for option in ("--column", "--value"):
            for text in ("Observed", "=Obs"):
                self.refuse(f"layer: error: argument {option}: COLUMN=... is expected, not {text}", "cp", points, option, text,
                            status=2)
        self.refuse("the folder of none/o.mif does not exist", "cp", points, output="none/o.mif")
        self.prepare("cp", "s.csv", "o.mif")
        self.refuse("o.mif is there already; --overwrite replaces it", "cp", points)
        self.comes_second("q.mid", "prepare", "layer", "--for", "cp", "s.csv", "q.mif")
        self.comes_second("t.mif", "prepare", "template", "--for", "cp", "t.mif")
        self.refuse("s.mif is an input; give the output another name", "cp", points, "--clip", "s.mif", "--overwrite",
                    output=str(self.give("s.mif", "").name))
        self.give("x.txt", "no layer")
        run = self.command("prepare", "layer", "--for", "cp", "x.txt", "p.mif")
        self.assertRegex(run.error, r"^gridforge-prepare: x\.txt: GDAL cannot read it as a layer: .*\n$")

    def test_features_that_where_leaves_are_counted(self):
        region = "POLYGON" + square(0, 0, 2, 2)
        self.refuse("feature 1 of those that --where leaves: Loss is 0, which -nbc refuses; leave it out with --where", "nbc",
                    (("WKT", "Loss"), (region, 1), (region, 0)), "--role", "losses", "--where", "Loss = '0'")

    def test_no_index_of_an_earlier_layer_is_left(self):
        self.give("s.csv", wkt(("WKT", "Observed"), ("POINT (1 2)", 1)))
        for suffix in (".qix", ".sbn", ".sbx"):
            self.give("o" + suffix, "of an earlier layer")
        self.prepare("cp", "s.csv", "o.shp", "--overwrite", "--crs", "EPSG:28356")
        self.assertEqual(sorted(self.files()), ["a.asc", "o.cpg", "o.dbf", "o.prj", "o.shp", "o.shx", "s.csv"])

    def test_a_source_of_several_layers(self):
        made = ogr.GetDriverByName("GPKG").CreateDataSource(str(self.folder / "s.gpkg"))
        for name, seen in (("marks", 1), ("others", 2)):
            layer = made.CreateLayer(name, None, ogr.wkbPoint)
            layer.CreateField(ogr.FieldDefn("Observed", ogr.OFTReal))
            feature = ogr.Feature(layer.GetLayerDefn())
            feature.SetField(0, seen)
            feature.SetGeometry(ogr.CreateGeometryFromWkt("POINT (1 2)"))
            layer.CreateFeature(feature)
        made = layer = None
        self.fails("prepare", "s.gpkg has 2 layers: choose one with --layer: marks, others", "layer", "--for", "cp", "s.gpkg",
                   "o.mif")
        self.prepare("cp", "s.gpkg", "o.mif", "--layer", "others")
        self.assertEqual(self.text("o.mid"), '2,""\n')

    def test_a_condition_that_gdal_does_not_take(self):
        self.give("s.csv", wkt(("WKT", "Obs"), ("POINT (1 2)", 1)))
        run = self.command("prepare", "layer", "--for", "cp", "s.csv", "o.mif", "--where", "depth > 1")
        self.assertEqual((run.status, run.error),
                         (1, 'gridforge-prepare: --where: "depth" not recognised as an available field.\n'))
        self.assertEqual(self.files(), ["a.asc", "s.csv"])

    def test_a_shapefile_holds_one_kind(self):
        heading = ("WKT", "Prop_Type", "Prop_ID", "FFL")
        rows = (heading, ("POINT (5 5)", "a", "1", "0"), ("POLYGON" + square(3, 3, 5, 5), "a", "2", "0"))
        self.refuse("a .shp holds one kind of objects, not point and region: choose with --kind, or write a .mif", "damages",
                    rows,
                    "--crs", "EPSG:28356", output="o.shp")
        self.prepare("damages", "s.csv", "o.shp", "--crs", "EPSG:28356", "--kind", "region")
        self.assertEqual([record["Prop_ID"] for record in self.records("o.shp")], ["2"])

    def test_a_grid_too_small_to_cut_to(self):
        self.give("small.asc", asc([[1]]))
        self.refuse("small.asc is too small: -damages needs free cells at its edges", "damages",
                    (("WKT", "Prop_Type", "Prop_ID", "FFL"), ("POINT (1 1)", "a", "1", "0")), "--clip", "small.asc")

    def test_nothing_else_is_said_by_gdal(self):
        self.give("s.csv", wkt(("WKT", "Name"), ("POLYGON ((-2 2,4 6,4 2,-2 6,-2 2))", "bow")))
        run = self.process("prepare", "layer", "--for", "trim", "s.csv", "o.mif", "--clip", "a.asc")
        self.assertEqual((run.status, run.error), (0, ""))
        self.assertIn("2 objects written to o.mif\n", run.out)

    def test_needs_gdal(self):
        self.give("s.csv", "")
        run = self.process("prepare", "template", "--for", "cp", "o.mif", without=("osgeo",))
        self.assertEqual((run.status, run.error),
                         (1, "gridforge-prepare: GDAL for Python is not installed (Debian package python3-gdal)\n"))


class TemplatesTest(Prepared):
    DRAWN = {"point": "POINT (5 5)", "line": "LINESTRING (5 2,5 7)",
             "region": "POLYGON ((1.5 1.5,6.5 1.5,6.5 6.5,1.5 6.5,1.5 1.5))"}
    VALUES = {"cp": [40, "m"], "lp": ["bed"], "brkline": [0, 3, 0, ""], "na": ["pond.csv", "S", "", *[""] * 6, 0, 0, 0],
              "xs": ["bank", 0, "T", "T", "", "", 0], "trim": ["part"]}
    MAKES = {"cp": "t_Res", "lp": "t_bed.csv", "brkline": "t_brkline", "na": "pond.csv", "xs": "bank.csv", "trim": "part_a.asc"}
    KIND = {"cp": "point", "lp": "line", "brkline": "line", "na": "region", "xs": "line", "trim": "region"}

    def test_the_tool_takes_empty_layers(self):
        for operation in self.VALUES:
            with self.subTest(operation=operation):
                said = self.good("prepare", "template", "--for", operation, "t.mif", "--overwrite")
                self.assertRegex(said, rf"^an empty layer of \w+ for -{operation} written to t\.mif\n$")
                self.tool(f"-{operation}", "t.mif", "a.asc")

    def draw(self, arguments, values, kind, output="t.shp"):
        """An empty Shapefile into which one object is drawn."""
        said = self.good("prepare", "template", "--for", *arguments, output, "--overwrite", "--crs", "EPSG:28356")
        self.assertEqual(said.splitlines()[1], "draw into it before a run: the tool refuses a .shp without objects")
        layers = ogr.Open(str(self.folder / output), 1)
        layer = layers.GetLayer()
        feature = ogr.Feature(layer.GetLayerDefn())
        self.assertEqual(feature.GetFieldCount(), len(values))
        for i, value in enumerate(values):
            feature.SetField(i, value)
        feature.SetGeometry(ogr.CreateGeometryFromWkt(self.DRAWN[kind]))
        layer.CreateFeature(feature)
        layer = layers = None

    def test_the_tool_takes_objects_drawn_into_shapefiles(self):
        for operation, values in self.VALUES.items():
            with self.subTest(operation=operation):
                self.draw([operation], values, self.KIND[operation])
                self.tool(f"-{operation}", "t.shp", "a.asc")
                self.assertTrue([name for name in self.files() if name.startswith(self.MAKES[operation])], self.files())

    def test_control_files_take_objects_drawn_into_shapefiles(self):
        self.draw(["damages"], ["a", "1", 0, 1], "point", "houses.shp")
        self.give("curve.csv", "Depth,Damage\n0,0\n100,1000\n")
        self.give("d.dmg", "Read GIS Building == houses.shp\nRead Curve a == curve.csv\nRead Result % 1 == a.asc\n")
        self.tool("-damages", "d.dmg")
        self.assertEqual(float(self.table("houses_Damages.csv")[1][4]), 10 * at(5, 5))  # 10 a metre at the corner (5, 5)

        self.draw(["nbc"], ["bank", 1.1, "F", "T", "", "", 0], "line", "1d_cut_t.shp")
        self.draw(["nbc", "--role", "branches"], ["Main", 0.03, "T", 0, "S"], "line", "1d_br_t.shp")
        self.draw(["nbc", "--role", "losses"], [0.5], "region", "losses.shp")
        self.give("n.nbc", "Read GIS Branch == 1d_br_t.shp\nRead GIS XS == 1d_cut_t.shp\nSet XS dx == 1\nRead Grid Z == a.asc\n"
                           "Read GIS FLC == losses.shp\n")
        self.tool("-nbc", "n.nbc")
        self.assertEqual([float(row[1]) for row in self.table("bank.csv")[1:]], [at(row, 5) for row in range(2, 8)])

        self.draw(["rf"], ["p", 1, 1], "point", "gauges.shp")
        self.draw(["rf", "--role", "polygons"], ["p", 2, 1], "region", "areas.shp")
        for name, depth in (("p", 10), ("q", 20)):
            self.give(f"{name}.csv", f"Time,Depth\n1,{depth}\n2,{depth}\n")
        self.give("r.rfc", "RF GRID Cell Size == 2\nRF GRID Size (X,Y) == 4, 4\nRF GRID Origin == 2, 2\n"
                           "Rainfall Hyetograph p == p.csv\nRainfall Hyetograph q == q.csv\n"
                           "RF Interpolation Method == Polygon\nRead GIS RF Points == gauges.shp\n"
                           "Read GIS RF Polygon == areas.shp\n")
        self.tool("-rf", "r.rfc")
        self.assertEqual(cells(self.text("r_t1..asc")), [[20, 20]] * 2)

    def test_columns_of_all_roles(self):
        for arguments, columns in (
                (("damages",), "Prop_Type Prop_ID FFL Multiplier"), (("cp",), "Observed Label"),
                (("cp", "--all-columns"), "Observed Label Modelled"), (("rf", "--role", "triangles"), "Name F1 F2"),
                (("nbc", "--role", "branches"), "Name Roughness UCS Form_Loss Type"), (("nbc", "--role", "losses"), "Loss")):
            self.good("prepare", "template", "t.mif", "--overwrite", "--for", *arguments)
            layers = ogr.Open(str(self.folder / "t.mif"))
            definition = layers.GetLayer().GetLayerDefn()
            self.assertEqual(" ".join(definition.GetFieldDefn(i).GetName() for i in range(definition.GetFieldCount())), columns)
        self.good("prepare", "template", "--for", "damages", "t.shp", "--kind", "region", "--crs", "EPSG:28356")
        layers = ogr.Open(str(self.folder / "t.shp"))
        self.assertEqual(layers.GetLayer().GetGeomType(), ogr.wkbPolygon)
