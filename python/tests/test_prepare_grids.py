"""gridforge-prepare grid: what the tool reads of prepared grids, and what GDAL reads of the tool's."""
import struct
from unittest import mock

from osgeo import gdal, osr

from gridforge import prepare_grids
from tests.tool_case import ToolCase, asc, cells

gdal.UseExceptions()
LARGEST = -3.4028234663852886e38  # the usual null of other programs
NAN = float("nan")


class Grids(ToolCase):
    def tif(self, name, rows, place=(100, 10, 0, 500, 0, -10), kind=gdal.GDT_Float32, null=None, epsg=28356, **band_values):
        """A GeoTIFF with its rows from north to south; cells of 10 from 100 to the east and from 500 to the south."""
        data = gdal.GetDriverByName("GTiff").Create(str(self.folder / name), len(rows[0]), len(rows), 1, kind)
        data.SetGeoTransform(place)
        if epsg:
            system = osr.SpatialReference()
            system.ImportFromEPSG(epsg)
            data.SetProjection(system.ExportToWkt())
        band = data.GetRasterBand(1)
        if null is not None:
            band.SetNoDataValue(null)
        for setting, value in band_values.items():
            getattr(band, setting)(value)
        flat = [value for row in rows for value in row]
        band.WriteRaster(0, 0, len(rows[0]), len(rows), struct.pack(f"{len(flat)}d", *flat), buf_type=gdal.GDT_Float64)

    def prepare(self, *arguments):
        return self.good("prepare", "grid", *arguments).splitlines()

    def read(self, name="o.flt"):
        """The cells that the tool reads, and its header."""
        self.tool("-conv", name, "-asc", "-out", "read.asc")
        text = self.text("read.asc")
        return cells(text), text.splitlines()[:6]


class ToTheToolTest(Grids):
    def test_nulls_of_all_kinds_become_that_of_the_tool(self):
        for null, kind in ((LARGEST, gdal.GDT_Float32), (-1.7976931348623157e308, gdal.GDT_Float64), (NAN, gdal.GDT_Float32),
                           (255, gdal.GDT_Byte), (-32768, gdal.GDT_Int16), (-9999, gdal.GDT_Float32)):
            with self.subTest(null=null):
                self.tif("a.tif", [[1, null, 3], [4, 5, null]], kind=kind, null=null)
                said = self.prepare("a.tif", "o.flt", "--overwrite")
                self.assertEqual(said, ["3 x 2 cells of 10 written to o.flt, 2 of them null"])
                self.assertEqual(self.read(), ([[1, -9999, 3], [4, 5, -9999]],
                                               ["ncols 3", "nrows 2", "xllcorner 100.", "yllcorner 480.", "cellsize 10.",
                                                "NODATA_value -9999.0"]))

    def test_cells_that_are_no_number_become_null(self):
        self.tif("a.tif", [[1, NAN, float("inf")], [-9999, 5, float("-inf")]], null=-9999)
        self.assertEqual(self.prepare("a.tif", "o.flt"), ["cells that are not numbers made null: 3",
                                                          "3 x 2 cells of 10 written to o.flt, 4 of them null"])
        self.assertEqual(self.read()[0], [[1, -9999, -9999], [-9999, 5, -9999]])

    def test_a_value_of_the_tools_null_is_told(self):
        for null in (7, None):
            self.tif("a.tif", [[-9999, 7]], null=null)
            self.assertEqual(self.prepare("a.tif", "o.flt", "--overwrite"),
                             ["WARNING: cells of -9999, which is not the null of the source, became null: 1",
                              f"2 x 1 cells of 10 written to o.flt, {2 if null else 1} of them null"])

    def test_scale_and_offset_are_applied(self):
        self.tif("a.tif", [[100, 250, 0]], kind=gdal.GDT_Int16, null=0, SetScale=0.01, SetOffset=5)
        self.prepare("a.tif", "o.flt")
        self.assertEqual(self.read()[0], [[6, 7.5, -9999]])

    def test_the_projection_reaches_the_outputs_of_the_tool(self):
        self.tif("a.tif", [[1]])
        self.prepare("a.tif", "o.flt")
        line = self.text("o.prj")
        self.assertTrue(line.startswith('PROJCS["GDA_1994_MGA_Zone_56",'), line)
        self.assertEqual(line.count("\n"), 1)
        self.tool("-conv", "o.flt", "-out", "x.asc")
        self.assertEqual(self.text("x.prj").strip(), line.strip())

    def test_a_source_without_projection(self):
        self.tif("a.tif", [[1]], epsg=None)
        self.assertEqual(self.prepare("a.tif", "o.flt"),
                         ["WARNING: the source has no projection, so there is no .prj: --crs names it",
                          "1 x 1 cells of 10 written to o.flt, 0 of them null"])
        self.assertNotIn("o.prj", self.files())
        self.assertEqual(len(self.prepare("a.tif", "p.flt", "--crs", "EPSG:28356")), 1)
        self.assertIn("Zone_56", self.text("p.prj"))

    def test_no_projection_of_an_earlier_grid_is_left(self):
        self.tif("a.tif", [[1]], epsg=28356)
        self.tif("b.tif", [[2]], epsg=None)
        self.prepare("a.tif", "o.flt")
        self.prepare("b.tif", "o.flt", "--overwrite")
        self.assertEqual(self.files(), ["a.tif", "b.tif", "o.flt", "o.hdr"])
        self.assertEqual(self.read()[0], [[2]])

    def test_a_projection_that_another_file_may_need_stays(self):
        self.tif("a.tif", [[1]], epsg=28356)
        self.tif("b.tif", [[2]], epsg=None)
        self.prepare("a.tif", "o.flt")
        self.give("o.asc", asc([[3]]))
        self.prepare("b.tif", "o.flt", "--overwrite")
        self.assertIn("o.prj", self.files())
        self.give("p.prj", "of nothing yet")
        self.prepare("b.tif", "p.flt", "--overwrite")
        self.assertEqual(self.text("p.prj"), "of nothing yet")

    def test_degrees_are_told(self):
        self.tif("a.tif", [[1]], epsg=4326)
        self.assertEqual(self.prepare("a.tif", "o.flt")[0],
                         "WARNING: WGS 84 is not a projection; the tool takes none from the .prj")

    def test_rows_that_run_north_are_turned(self):
        self.tif("a.tif", [[1, 2], [3, 4]], place=(100, 10, 0, 480, 0, 10))
        self.prepare("a.tif", "o.flt")
        self.assertEqual(self.read()[0], [[3, 4], [1, 2]])
        self.assertEqual(self.read()[1][2:4], ["xllcorner 100.", "yllcorner 480."])

    def test_blocks_make_one_grid(self):
        rows = [[100 * row + column for column in range(7)] for row in range(23)]
        self.tif("a.tif", rows)
        with mock.patch.object(prepare_grids, "BLOCK_CELLS", 15):  # two rows at a time
            self.prepare("a.tif", "o.flt")
        self.assertEqual(self.read()[0], rows)

    def test_one_band_of_several(self):
        self.tif("a.tif", [[1]])
        self.tif("b.tif", [[2]])
        gdal.BuildVRT(str(self.folder / "two.vrt"), [str(self.folder / f"{n}.tif") for n in "ab"], separate=True)
        self.prepare("two.vrt", "o.flt", "--band", "2")
        self.assertEqual(self.read()[0], [[2]])
        self.fails("prepare", "two.vrt has 2 bands, not 3", "grid", "two.vrt", "p.flt", "--band", "3")

    def test_a_source_of_several_grids(self):
        self.tif("a.tif", [[1]])
        self.tif("b.tif", [[2]])
        for name, options in (("a", []), ("b", ["APPEND_SUBDATASET=YES"])):
            gdal.Translate(str(self.folder / "two.gpkg"), str(self.folder / f"{name}.tif"), format="GPKG",
                           outputType=gdal.GDT_Float32, creationOptions=[f"RASTER_TABLE={name}", *options])
        self.fails("prepare", "two.gpkg has no band; subdatasets: GPKG:two.gpkg:a, GPKG:two.gpkg:b", "grid", "two.gpkg", "o.flt")
        self.prepare("GPKG:two.gpkg:b", "o.flt")
        self.assertEqual(self.read()[0], [[2]])

    def test_onto_the_cells_of_another_grid(self):
        # Cells of 5 from 105 to 115 and from 485 to 495 are quarters of the four cells round (110, 490).
        self.tif("a.tif", [[1, 2], [3, 4]])
        self.give("like.asc", asc([[0, 0, 0], [0, 0, 0]], cell=5, west=105, south=485))
        self.prepare("a.tif", "o.flt", "--like", "like.asc")
        rows, header = self.read()
        self.assertEqual(rows, [[1, 2, 2], [3, 4, 4]])
        self.assertEqual(header[:5], ["ncols 3", "nrows 2", "xllcorner 105.", "yllcorner 485.", "cellsize 5."])

    def test_cells_of_a_grid_in_another_projection(self):
        self.tif("a.tif", [[1, 2], [3, 4]], place=(153, 0.01, 0, -27, 0, -0.01), epsg=4326)
        self.tif("like.tif", [[1]])
        self.prepare("like.tif", "like.flt")
        self.fails("prepare", "a.tif and like.flt lie in different projections, WGS 84 and GDA94 / MGA zone 56: --crs names the "
                   "one to go to", "grid", "a.tif", "o.flt", "--like", "like.flt")
        self.fails("prepare", "a.tif and like.flt lie in different projections, GDA94 / MGA zone 55 and GDA94 / MGA zone 56: --crs "
                   "names the one to go to", "grid", "a.tif", "o.flt", "--like", "like.flt", "--crs", "EPSG:28355")
        self.prepare("a.tif", "o.flt", "--like", "like.flt", "--crs", "EPSG:28356")
        self.fails("prepare", "grid: error: argument --like: not allowed with argument --cell", "grid", "a.tif", "p.flt", "--cell",
                   "1", "--like", "like.flt", status=2)

    def test_onto_cells_of_another_size(self):
        self.tif("a.tif", [[1, 2, 5, 6], [3, 4, 7, 8]])
        self.prepare("a.tif", "o.flt", "--cell", "20", "--resampling", "average")
        self.assertEqual(self.read()[0], [[2.5, 6.5]])

    def test_into_another_projection(self):
        # Zone 56 of another datum within some metres: the same cells, far inside, come out.
        self.tif("a.tif", [[7] * 40] * 40, place=(500000, 10, 0, 6000400, 0, -10))
        self.fails("prepare", "--crs moves a.tif to another system: --cell SIZE or --like GRID says onto which cells", "grid",
                   "a.tif",
                   "o.flt", "--crs", "EPSG:7856")
        self.prepare("a.tif", "o.flt", "--crs", "EPSG:7856", "--cell", "10")
        self.assertIn("GDA2020_MGA_Zone_56", self.text("o.prj"))
        rows = self.read()[0]
        self.assertEqual(rows[len(rows) // 2][len(rows[0]) // 2], 7)

    def test_cells_that_are_no_squares_or_turned(self):
        self.tif("a.tif", [[1, 2], [3, 4]], place=(100, 10, 0, 500, 0, -20))
        self.fails("prepare", "a.tif has cells of 10 by 20: --cell SIZE gives it square ones", "grid", "a.tif", "o.flt")
        self.prepare("a.tif", "o.flt", "--cell", "10")
        self.assertEqual(self.read()[0], [[1, 2], [1, 2], [3, 4], [3, 4]])
        self.tif("a.tif", [[1, 2], [3, 4]], place=(100, 7, 7, 500, 7, -7))
        self.fails("prepare", "a.tif does not point north: --cell SIZE turns it onto cells of that size", "grid", "a.tif",
                   "p.flt")

    def test_a_cell_size_that_single_precision_cannot_hold(self):
        # The single-precision number next to 1 / 3 is 1e-8 too large: over 3e6 columns that is 0.09 cells.
        self.tif("a.tif", [[1, 2]], place=(100, 1 / 3, 0, 500, 0, -1 / 3))
        self.assertEqual(len(self.prepare("a.tif", "o.flt")), 1)
        frame = prepare_grids.Frame(100, 500, 1 / 3, 3_000_000, 1)
        self.assertEqual(prepare_grids.single_precision_note(frame),
                         ["WARNING: the tool holds the cell size in single precision, so the far edge is off by 0.0894 cells"])

    def test_refuses_other_files(self):
        self.fails("prepare",
                   "o.asc: a grid for the tool ends in .flt, one for other programs in .tif; gridforge -conv makes an .asc "
                   "of a .flt", "grid", "a.tif", "o.asc")
        self.give("a.txt", "no grid")
        run = self.command("prepare", "grid", "a.txt", "o.flt")
        self.assertRegex(run.error, r"^gridforge-prepare: a\.txt: GDAL cannot read it as a grid: .*\n$")
        self.tif("cut.tif", [[1] * 100] * 100)
        whole = (self.folder / "cut.tif").read_bytes()
        (self.folder / "cut.tif").write_bytes(whole[:len(whole) // 2])
        run = self.command("prepare", "grid", "cut.tif", "cut.flt")
        self.assertRegex(run.error, r"^gridforge-prepare: GDAL: .*\n$")
        self.assertNotIn("cut.flt", self.files())
        self.tif("a.tif", [[1]])
        self.prepare("a.tif", "o.flt")
        self.fails("prepare", "o.flt is there already; --overwrite replaces it", "grid", "a.tif", "o.flt")
        self.give("p.hdr", "")
        self.fails("prepare", "p.hdr is there already; --overwrite replaces it", "grid", "a.tif", "p.flt")
        for output, there in (("r.flt", "r.prj"), ("s.flt", "s.flt")):
            self.comes_second(there, "prepare", "grid", "a.tif", output)
        self.comes_second("t.tif", "prepare", "grid", "o.flt", "t.tif")
        self.fails("prepare", "grid: error: argument --cell: a number above 0 is expected, not 0", "grid", "a.tif", "q.flt",
                   "--cell", "0",
                   status=2)
        self.fails("prepare", "grid: error: argument --band: a whole number above 0 is expected, not 1.5", "grid", "a.tif",
                   "q.flt", "--band",
                   "1.5", status=2)


class BackTest(Grids):
    def geotiff(self, name):
        data = gdal.Open(str(self.folder / name))
        band = data.GetRasterBand(1)
        values = struct.unpack(f"{data.RasterXSize * data.RasterYSize}f", band.ReadRaster())
        return values, data.GetGeoTransform(), band.GetNoDataValue(), data.GetSpatialRef()

    def test_there_and_back(self):
        self.tif("a.tif", [[1.25, LARGEST], [3, 4]], null=LARGEST)
        self.prepare("a.tif", "o.flt")
        self.tool("-conv", "o.flt")
        self.tool("-conv", "o.asc", "-out", "tool.flt")
        self.assertEqual(self.prepare("tool.flt", "b.tif"), ["2 x 2 cells of 10 written to b.tif"])
        values, place, null, system = self.geotiff("b.tif")
        self.assertEqual((values, place, null), ((1.25, -9999, 3, 4), (100, 10, 0, 500, 0, -10), -9999))
        expected = osr.SpatialReference()
        expected.ImportFromEPSG(28356)
        self.assertTrue(system.IsSame(expected, ["IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", "CRITERION=EQUIVALENT"]))

    def test_text_grids_and_null_of_their_own(self):
        self.give("a.asc", asc([[1, 2]], cell=5).replace("-9999", "-1"))
        self.assertEqual(self.prepare("a.asc", "b.tif"),
                         ["WARNING: there is no .prj, so the result has no projection: --crs names it",
                          "2 x 1 cells of 5 written to b.tif"])
        values, place, null, system = self.geotiff("b.tif")
        self.assertEqual((values, place, null, system), ((1, 2), (0, 5, 0, 5, 0, -5), -1, None))
        self.prepare("a.asc", "c.tif", "--crs", "EPSG:28356")
        self.assertEqual(self.geotiff("c.tif")[3].GetAuthorityCode(None), "28356")

    def test_a_centre_lies_where_the_tool_places_it(self):
        self.give("a.asc", asc([[1, 2]], cell=10, west=105, south=205).replace("corner", "center"))
        said = self.prepare("a.asc", "b.tif", "--crs", "EPSG:28356")
        self.assertEqual(said[0],
                         "WARNING: the header names the centre of a cell; the result lies where the tool places it, half a "
                         "cell south-west")
        self.assertEqual(self.geotiff("b.tif")[1], (95, 10, 0, 205, 0, -10))
        self.tool("-conv", "a.asc", "-out", "t.flt")
        self.assertIn("xllcorner 95.", self.text("t.hdr"))

    def test_a_projection_is_named_and_not_gone_to(self):
        self.tif("a.tif", [[1, 2]])
        self.prepare("a.tif", "o.flt")
        self.fails("prepare", "o.flt is in GDA94 / MGA zone 56, and a .tif stays there: gdalwarp -t_srs moves it", "grid", "o.flt",
                   "b.tif", "--crs", "EPSG:28355")
        self.assertNotIn("b.tif", self.files())
        self.prepare("o.flt", "b.tif", "--crs", "EPSG:28356")
        self.assertEqual(self.geotiff("b.tif")[3].GetAuthorityCode(None), "28356")
        self.give("o.prj", "nonsense")
        self.prepare("o.flt", "c.tif", "--crs", "EPSG:28356")
        self.assertEqual(self.geotiff("c.tif")[3].GetAuthorityCode(None), "28356")

    def test_refuses_the_options_of_a_flt(self):
        self.give("a.asc", asc([[1, 2]]))
        for option in (["--cell", "5"], ["--like", "a.asc"], ["--band", "3"], ["--resampling", "mode"]):
            self.fails("prepare", "--band, --cell, --like and --resampling go with a .flt", "grid", "a.asc", "b.tif", *option)

    def test_refuses_what_is_no_grid_of_the_tool(self):
        self.give("a.asc", "ncols 2\nnrows 1\n1 2\n")
        self.fails("prepare", "a.asc does not begin with the header of a grid", "grid", "a.asc", "b.tif")
        self.fails("prepare", "none.asc: No such file or directory", "grid", "none.asc", "b.tif")
        self.give("a.asc", asc([[1, 2]]).replace("ncols 2", "ncols 0"))
        self.fails("prepare", "a.asc: a grid has cells of a size above 0 in one row and column at least", "grid", "a.asc",
                   "b.tif")
        self.give("a.asc", asc([[1, 2]]))
        self.give("a.prj", "nonsense")
        self.fails("prepare", "a.prj: GDAL cannot read it as a projection; --crs names one", "grid", "a.asc", "b.tif")
