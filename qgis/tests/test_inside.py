"""The plugin inside a QGIS without windows: how it loads, what it converts and puts into the project, how a run is cancelled."""
import with_qgis  # first: it chooses the Python

import os
import re
import stat
import subprocess
import sys
import tempfile
import unittest
import warnings
from pathlib import Path
from unittest import mock

TEMPORARY = tempfile.TemporaryDirectory()
os.environ.update(with_qgis.environment(TEMPORARY.name), GDAL_PAM_ENABLED="NO")  # no notes about folders that are gone
sys.path[:0] = ["/usr/share/qgis/python", "/usr/share/qgis/python/plugins"]

import numpy  # noqa: E402
import qgis.utils  # noqa: E402
from osgeo import gdal, osr  # noqa: E402
from qgis.core import (Qgis, QgsApplication, QgsCoordinateReferenceSystem, QgsFeature, QgsGeometry, QgsPointXY,  # noqa: E402
                       QgsProcessingContext, QgsProcessingException, QgsProcessingFeatureSourceDefinition, QgsProcessingFeedback,
                       QgsProject, QgsRasterLayer, QgsVectorFileWriter, QgsVectorLayer)

import samples  # noqa: E402
import test_toolbox as toolbox  # noqa: E402
import unpacked  # noqa: E402

gdal.UseExceptions()
QGIS = QgsApplication([], False)
QGIS.initQgis()
LOG = []
QgsApplication.messageLog().messageReceived.connect(lambda text, tag, level: LOG.append((tag, level, text)))
from processing.core.Processing import Processing  # noqa: E402
from processing.core.ProcessingConfig import ProcessingConfig  # noqa: E402
from processing.gui.Postprocessing import handleAlgorithmResults  # noqa: E402
from processing.gui.RenderingStyles import RenderingStyles  # noqa: E402

Processing.initialize()
qgis.utils.plugin_paths.append(str(unpacked.PLUGINS))
qgis.utils.updateAvailablePlugins()
with warnings.catch_warnings(record=True) as WARNINGS:
    warnings.simplefilter("always")
    LOADED = qgis.utils.loadPlugin("gridforge_provider") and qgis.utils.startProcessingPlugin("gridforge_provider")
from gridforge_provider import convert, provider  # noqa: E402
from gridforge_provider.gridforge import styles  # noqa: E402
from gridforge_provider.package import load_description  # noqa: E402

REGISTRY = QgsApplication.processingRegistry()


class Feedback(QgsProcessingFeedback):
    """Keeps what is said, and is cancelled at a line that holds `cancel_at`."""

    def __init__(self, cancel_at=None):
        super().__init__(False)
        self.lines, self.warnings, self.errors, self.infos, self.cancel_at = [], [], [], [], cancel_at

    def reportError(self, text, fatal=False):
        self.errors.append(text)

    def pushInfo(self, text):
        self.infos.append(text)
        if self.cancel_at and self.cancel_at in text:
            self.cancel()

    def pushConsoleInfo(self, text):
        self.lines.append(text)
        if self.cancel_at and self.cancel_at in text:
            self.cancel()

    def pushWarning(self, text):
        self.warnings.append(text)


class PluginTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)
        samples.write_samples(self.folder / "in")
        self.project = QgsProject()
        self.feedback = Feedback()

    def path(self, name):
        return str(self.folder / name)

    def run_algorithm(self, name, **parameters):
        """As the toolbox does it: the outputs named in `load` are loaded."""
        algorithm = REGISTRY.createAlgorithmById(f"gridforge:{name}")
        context = QgsProcessingContext()
        context.setProject(self.project)
        context.setFeedback(self.feedback)
        for output in parameters.pop("load", ()):
            details = QgsProcessingContext.LayerDetails(output, self.project, output)
            context.addLayerToLoadOnCompletion(parameters[output], details)
        good, told = algorithm.checkParameterValues(parameters, context)
        self.assertTrue(good, told)
        results, good = algorithm.run(parameters, context, self.feedback, catchExceptions=False)
        self.assertTrue(good)
        handleAlgorithmResults(algorithm, context, self.feedback, False, parameters)
        return results

    def tool(self, text):
        """A tool that is told what to do, for this test."""
        path = self.folder / "tool"
        path.write_text("#!/bin/sh\n" + text)
        path.chmod(path.stat().st_mode | stat.S_IXUSR)
        before = os.environ["GRIDFORGE"]
        os.environ["GRIDFORGE"] = str(path)
        self.addCleanup(os.environ.__setitem__, "GRIDFORGE", before)

    def failure(self, name, **parameters):
        with self.assertRaises(QgsProcessingException) as raised:
            self.run_algorithm(name, **parameters)
        return str(raised.exception)

    def cells(self, path):
        return gdal.Open(path).ReadAsArray().tolist()


class LoadingTest(PluginTest):
    def test_it_loads_without_a_warning(self):
        self.assertTrue(LOADED)
        ours = [str(warning.message) for warning in WARNINGS if "gridforge" in str(warning.filename)]
        self.assertEqual(ours, [])
        self.assertEqual([entry for entry in LOG if "gridforge" in entry[2] or entry[0] in ("Python warning", "gridforge")], [])
        self.assertEqual(len(REGISTRY.providerById("gridforge").algorithms()), len(load_description().operations))

    def test_a_broken_description_is_in_the_log(self):
        at = len(LOG)
        self.addCleanup(LOG.__delitem__, slice(at, None))
        Path(self.path("bad.json")).write_text("{")
        with mock.patch.dict(os.environ, GRIDFORGE_JSON=self.path("bad.json")):
            provider.GridforgeProvider().loadAlgorithms()
        self.assertEqual([(tag, level) for tag, level, _ in LOG[at:]], [("gridforge", Qgis.Critical)])
        self.assertRegex(LOG[at][2], f"^{re.escape(self.path('bad.json'))} is not a description of the tool: ")

    def test_algorithms_say_what_they_are(self):
        for algorithm in REGISTRY.providerById("gridforge").algorithms():
            with self.subTest(algorithm.name()):
                self.assertNotEqual(algorithm.displayName(), algorithm.name())
                self.assertNotEqual(algorithm.group(), "Others")
                self.assertIn("What it does", algorithm.shortHelpString())
                self.assertNotIn("\n", algorithm.shortHelpString())
                names = [definition.name() for definition in algorithm.parameterDefinitions()]
                self.assertEqual(len(names), len(set(names)))
                self.assertTrue(all(definition.description() for definition in algorithm.parameterDefinitions()))
                self.assertFalse(algorithm.icon().isNull())

    def test_parameters_are_of_the_kind_of_their_values(self):
        def kinds(name):
            definitions = REGISTRY.algorithmById(f"gridforge:{name}").parameterDefinitions()
            return {definition.name(): definition.type() for definition in definitions}
        self.assertEqual(kinds("max"), {"INPUTS": "multilayer", "OPERATION": "enum", "SRC": "boolean", "DECIMAL": "number",
                                        "STYLE": "enum", "OUTPUT": "rasterDestination", "OUTPUT_SRC": "rasterDestination",
                                        "OUTPUT_SRC_LEGEND": "fileDestination"})
        self.assertEqual(kinds("cp"), {"INPUT": "raster", "CP": "source", "CPSD": "number", "CPMM": "number", "CONFIG": "file",
                                       "OUTPUT": "vectorDestination", "OUTPUT_CN": "vectorDestination",
                                       "OUTPUT_TABLE": "fileDestination"})
        self.assertEqual(kinds("na"), {"INPUT": "raster", "NA": "source", "FOLDER": "folderDestination", "LOAD": "boolean"})
        self.assertEqual(kinds("rf"), {"RF": "file", "DECIMAL": "number", "BASE": "file", "LOAD": "boolean"})
        spacing = REGISTRY.algorithmById("gridforge:lp").parameterDefinition("LPMD")
        self.assertEqual((spacing.defaultValue(), spacing.description()), (100, "Distance between points (map units)"))

    def test_a_style_is_offered_where_it_is_a_matter_of_choice(self):
        offered = {algorithm.name() for algorithm in REGISTRY.providerById("gridforge").algorithms()
                   if algorithm.parameterDefinition("STYLE")}
        self.assertEqual(offered, {"max", "stat", "dif", "cd", "trans_m", "resize", "xyz", "conv", "trim"})
        choice = REGISTRY.algorithmById("gridforge:max").parameterDefinition("STYLE")
        self.assertEqual(choice.options(), ["Depth or level, by the name of the first input", "Depth", "Level", "Difference",
                                            "Impact classes", "None"])

    def test_it_can_be_taken_out_and_put_back(self):
        self.assertTrue(qgis.utils.unloadPlugin("gridforge_provider"))
        self.assertIsNone(REGISTRY.providerById("gridforge"))
        self.assertTrue(qgis.utils.loadPlugin("gridforge_provider") and qgis.utils.startProcessingPlugin("gridforge_provider"))
        self.assertEqual(len(REGISTRY.providerById("gridforge").algorithms()), len(load_description().operations))


class ConversionTest(PluginTest):
    def tiff(self, name, cells, kind=gdal.GDT_Float32, null=None, west=500000.0, size=10.0, height=None):
        cells = numpy.array(cells)
        dataset = gdal.GetDriverByName("GTiff").Create(self.path(name), cells.shape[1], cells.shape[0], 1, kind)
        dataset.SetGeoTransform((west, size, 0.0, 7000000.0, 0.0, -(height or size)))
        system = osr.SpatialReference()
        system.ImportFromEPSG(32756)
        dataset.SetProjection(system.ExportToWkt())
        dataset.GetRasterBand(1).WriteArray(cells)
        if null is not None:
            dataset.GetRasterBand(1).SetNoDataValue(null)
        del dataset
        return self.path(name)

    def test_a_grid_of_another_format(self):
        source = self.tiff("bytes.tif", [[1, 2, 3], [4, 255, 6]], gdal.GDT_Byte, null=255)
        results = self.run_algorithm("trans_m", INPUT=source, TRANS_M=2, OUTPUT=self.path("out/twice.asc"))
        lines = Path(results["OUTPUT"]).read_text().split("\n")
        self.assertEqual([line.split() for line in lines[:6]],
                         [["ncols", "3"], ["nrows", "2"], ["xllcorner", "500000."], ["yllcorner", "6999980."],
                          ["cellsize", "10."], ["NODATA_value", "-9999.0"]])
        self.assertEqual([[float(cell) for cell in line.split()] for line in lines[6:8]], [[2, 4, 6], [8, -9999, 12]])
        self.assertIn("WGS_1984_UTM_Zone_56S", Path(self.path("out/twice.prj")).read_text())
        self.assertEqual([path.name for path in self.folder.iterdir() if path.name.startswith(".")], [])

    def test_cells_that_are_no_number_are_null(self):
        source = self.tiff("reals.tif", [[1.5, float("nan")], [float("inf"), -0.25]])
        results = self.run_algorithm("trans_m", INPUT=source, TRANS_C=0, OUTPUT=self.path("same.flt"))
        self.assertEqual(self.cells(results["OUTPUT"]), [[1.5, -9999], [-9999, -0.25]])

    def test_grids_that_the_tool_cannot_have(self):
        source = self.tiff("oblong.tif", [[1, 2]], height=20.0)
        with self.assertRaises(QgsProcessingException) as raised:
            self.run_algorithm("fe", INPUT=source, OUTPUT=self.path("e.asc"))
        self.assertEqual(str(raised.exception),
                         f"The cells of the grid are not square: {source}\ngridforge-prepare --cell SIZE gives it square ones.")
        dataset = gdal.Open(self.tiff("turned.tif", [[1, 2]]), gdal.GA_Update)
        dataset.SetGeoTransform((0, 10, 1, 0, 1, -10))
        del dataset
        with self.assertRaises(QgsProcessingException) as raised:
            self.run_algorithm("fe", INPUT=self.path("turned.tif"), OUTPUT=self.path("e.asc"))
        self.assertEqual(str(raised.exception),
                         f"The grid does not point north: {self.path('turned.tif')}\ngridforge-prepare --cell SIZE turns it.")

    def test_a_value_that_is_the_null_of_the_tool(self):
        source = self.tiff("nulls.tif", [[1, -9999, 3], [0, -9999, -9999]], null=0)
        results = self.run_algorithm("trans_m", INPUT=source, TRANS_C=0, OUTPUT=self.path("same.flt"))
        self.assertEqual(self.cells(results["OUTPUT"]), [[1, -9999, 3], [-9999, -9999, -9999]])
        self.assertEqual(self.feedback.warnings, ["Cells of -9999, which is not the null of the source, became null: 3"])
        self.feedback = Feedback()
        source = self.tiff("own.tif", [[1, -9999]], null=-9999)
        self.run_algorithm("trans_m", INPUT=source, TRANS_C=0, OUTPUT=self.path("same.flt"))
        self.assertEqual(self.feedback.warnings, [])
        self.assertIn(f"Converting {source} to own.flt", self.feedback.infos)

    def test_the_progress_of_a_grid(self):
        source = self.tiff("tall.tif", [[1, 2]] * 4)
        seen = []
        self.feedback.progressChanged.connect(seen.append)
        self.addCleanup(setattr, convert, "CELLS_AT_ONCE", convert.CELLS_AT_ONCE)
        convert.CELLS_AT_ONCE = 2
        convert.grid_to_flt(source, Path(self.path("tall.flt")), self.feedback)
        self.assertEqual(seen, [25, 50, 75, 100])
        self.assertEqual(self.cells(self.path("tall.flt")), [[1, 2]] * 4)

    def test_a_cancelled_conversion_ends_the_run(self):
        self.tool(f'touch "{self.path("started")}"\n')
        for parameters in ({"INPUT": self.tiff("a.tif", [[1, 2]]), "CP": self.path("in/points.mif")},
                           {"INPUT": self.path("in/a.asc"), "CP": self.points("gpkg")}):
            self.feedback = Feedback(cancel_at="Converting")
            self.assertEqual(self.failure("cp", **parameters, OUTPUT=self.path("out/r.mif")), "The run was cancelled.")
            self.assertEqual(list(Path(self.path("out")).iterdir()), [])
            self.assertFalse(Path(self.path("started")).exists())

    def test_the_first_of_several_bands(self):
        gdal.Translate(self.path("two.tif"), self.tiff("one.tif", [[1, 2]]), bandList=[1, 1])
        self.run_algorithm("fe", INPUT=self.path("two.tif"), OUTPUT=self.path("e.asc"))
        self.assertEqual(self.feedback.warnings,
                         [f"The tool takes one band of a grid, so this is the first of 2: {self.path('two.tif')}"])

    def test_the_exceptions_of_gdal_are_left_alone(self):
        import_all = "import sys; sys.path[:0] = sys.argv[1:]; from osgeo import gdal; gdal.DontUseExceptions(); " \
                     "import gridforge_provider.job, gridforge_provider.provider; sys.exit(gdal.GetUseExceptions())"
        done = subprocess.run([sys.executable, "-B", "-c", import_all, *sys.path], check=False)
        self.assertEqual(done.returncode, 0)

    def points(self, kind):
        """Two points at (4.4, 4.4) and (6.4, 5.4), in memory or in a file."""
        layer = QgsVectorLayer("Point?crs=EPSG:32756&field=seen:double&field=mark:string(20)", "marks", "memory")
        for x, y, seen, mark in ((4.4, 4.4, 55.0, "m"), (6.4, 5.4, 20.0, "n")):
            feature = QgsFeature(layer.fields())
            feature.setGeometry(QgsGeometry.fromPointXY(QgsPointXY(x, y)))
            feature.setAttributes([seen, mark])
            layer.dataProvider().addFeature(feature)
        if kind == "memory":
            return layer
        options = QgsVectorFileWriter.SaveVectorOptions()
        options.driverName = {"gpkg": "GPKG", "shp": "ESRI Shapefile"}[kind]
        path = self.path(f"marks.{kind}")
        QgsVectorFileWriter.writeAsVectorFormatV3(layer, path, self.project.transformContext(), options)
        return QgsVectorLayer(path, "marks", "ogr")

    def sampled(self, points):
        results = self.run_algorithm("cp", INPUT=self.path("in/a.asc"), CP=points, CPSD=4, OUTPUT=self.path("r.mif"),
                                     OUTPUT_TABLE=self.path("r.csv"))
        return [line.replace(" ", "") for line in Path(results["OUTPUT_TABLE"]).read_text().splitlines()[1:]]

    # The nearest corners are (4, 4), the cell 44, and (6, 5), the cell 56.
    ROWS = ['"m",55.000,44.000,-11.000,0.566', '"n",20.000,56.000,36.000,0.566']

    def test_layers_of_other_formats(self):
        self.assertEqual(self.sampled(self.points("memory")), self.ROWS)

    def test_a_shapefile_as_it_is(self):
        layer = self.points("shp")
        self.assertEqual(self.sampled(layer), self.ROWS)
        self.assertIn("Opening GIS Layer: marks.shp", self.feedback.lines)
        layer.startEditing()
        layer.deleteFeature(0)
        self.assertEqual(self.sampled(layer), self.ROWS[1:])  # as it is on the screen

    def test_the_key_of_a_geopackage_is_no_column(self):
        layer = self.points("gpkg")
        self.assertEqual(layer.fields().names(), ["fid", "seen", "mark"])
        self.assertEqual(self.sampled(layer), self.ROWS)

    def with_heights(self, kind, shapes, name="marks.gpkg"):
        """Objects with their values in a file of any kind, as a path that a user would choose."""
        layer = QgsVectorLayer(f"{kind}?crs=EPSG:32756&field=seen:double&field=mark:string(20)", "marks", "memory")
        for shape, values in shapes:
            feature = QgsFeature(layer.fields())
            feature.setGeometry(QgsGeometry.fromWkt(shape))
            feature.setAttributes(values)
            self.assertTrue(layer.dataProvider().addFeature(feature), shape)
        options = QgsVectorFileWriter.SaveVectorOptions()
        options.driverName = {".gpkg": "GPKG", ".shp": "ESRI Shapefile"}[Path(name).suffix]
        QgsVectorFileWriter.writeAsVectorFormatV3(layer, self.path(name), self.project.transformContext(), options)
        return self.path(name)

    HEIGHTS = "The tool reads no {} values, so they are left out."

    def test_points_with_z_and_m(self):
        for kind, tail, lost in (("PointZ", " 7", "Z"), ("PointM", " 7", "M"), ("PointZM", " 7 8", "Z and no M")):
            for name in ("marks.gpkg", "marks.shp"):
                with self.subTest(kind, name=name):
                    self.feedback = Feedback()
                    shapes = [(f"{kind}(4.4 4.4{tail})", [55.0, "m"]), (f"{kind}(6.4 5.4{tail})", [20, "n"])]
                    points = self.with_heights(kind, shapes, name)
                    self.assertEqual(self.sampled(points), self.ROWS)
                    self.assertIn(self.HEIGHTS.format(lost), self.feedback.infos)
                    self.assertIn("Converting the layer marks to marks.shp", self.feedback.infos)

    def test_a_shapefile_whose_m_values_are_all_missing(self):
        shapes = [("PointM(4.4 4.4 -1e39)", [55.0, "m"]), ("PointM(6.4 5.4 -1e39)", [20, "n"])]
        points = self.with_heights("PointM", shapes, "marks.shp")
        with open(points, "rb") as shapes:
            self.assertEqual(shapes.read(36)[32], 21)  # points with M
        self.assertEqual(self.sampled(points), self.ROWS)

    def test_multipoints_become_points(self):
        said = "The tool reads no multipoints, so each of their points becomes an object."
        for name in ("marks.gpkg", "marks.shp"):
            with self.subTest(name):
                self.feedback = Feedback()
                points = self.with_heights("MultiPoint", [("MultiPoint((4.4 4.4), (6.4 5.4))", [55.0, "m"])], name)
                self.assertEqual(self.sampled(points), [self.ROWS[0], '"m",55.000,56.000,1.000,0.566'])
                self.assertEqual(self.feedback.infos[0].split(" to ")[0], "Converting the layer marks")
                self.assertIn(said, self.feedback.infos)

    def test_lines_with_z(self):
        wanted = self.profile(self.path("in/lines.mif"))
        self.assertEqual([row[0] for row in wanted[1:]], ["  12.000", "  14.000", "  15.000", "  17.000", "  18.000"])
        for name in ("marks.gpkg", "marks.shp"):
            with self.subTest(name):
                lines = self.with_heights("LineStringZ", [("LineStringZ(2 4.4 90, 8 4.4 91)", [1.0, "bed"])], name)
                self.assertEqual(self.profile(lines), wanted)

    def profile(self, lines):
        """The rows of the one profile along these lines."""
        folder = Path(tempfile.mkdtemp(dir=self.folder))
        self.run_algorithm("lp", INPUT=self.path("in/a.asc"), LP=lines, LPMD=2, FOLDER=str(folder), LOAD=False)
        return [line.split(",")[1:] for path in folder.glob("*.csv") for line in path.read_text().splitlines()]

    def test_regions_with_z(self):
        square = "PolygonZ((1.5 1.5 9, 4.5 1.5 9, 4.5 4.5 9, 1.5 4.5 9, 1.5 1.5 9))"
        wanted = self.trimmed(self.path("in/regions.mif"), "wanted")
        self.assertTrue(wanted)
        for name in ("marks.gpkg", "marks.shp"):
            with self.subTest(name):
                regions = self.with_heights("PolygonZ", [(square, [1.0, "park"])], name)
                self.assertEqual(self.trimmed(regions, f"of {name}"), wanted)

    def trimmed(self, regions, folder):
        self.run_algorithm("trim", INPUTS=[self.path("in/a.asc")], TRIM=regions, FOLDER=self.path(folder), LOAD=False)
        return [self.cells(str(path)) for path in sorted(Path(self.path(folder)).rglob("*.asc"))]

    def test_a_null_geometry_stays_without_shape(self):
        points = self.with_heights("PointZ", [("PointZ(4.4 4.4 7)", [55.0, "m"]), ("", [1, "none"]),
                                              ("PointZ(6.4 5.4 7)", [20, "n"])])
        self.assertEqual(self.sampled(points), self.ROWS)

    def test_a_curve_becomes_straight(self):
        curve = self.with_heights("CompoundCurve", [("CompoundCurve((2 4.4, 8 4.4))", [1.0, "bed"])])
        self.assertEqual(self.profile(curve), self.profile(self.path("in/lines.mif")))

    def test_lines_of_one_part_without_projection(self):
        layer = QgsVectorLayer("MultiLineString?field=label:string(20)", "marks", "memory")
        layer.setCrs(QgsCoordinateReferenceSystem())
        feature = QgsFeature(layer.fields())
        feature.setGeometry(QgsGeometry.fromWkt("MultiLineString((2 4.4, 8 4.4))"))
        feature.setAttributes(["bed"])
        layer.dataProvider().addFeature(feature)
        self.assertEqual(self.profile(layer), self.profile(self.path("in/lines.mif")))
        self.assertIn("Converting the layer marks to marks.mif", self.feedback.infos)

    def test_selected_objects_only(self):
        layer = self.points("memory")
        self.project.addMapLayer(layer)
        layer.selectByExpression("mark = 'n'")
        self.assertEqual(self.sampled(QgsProcessingFeatureSourceDefinition(layer.id(), True)), self.ROWS[1:])

    def test_a_filtered_layer(self):
        layer = self.points("gpkg")
        layer.setSubsetString("mark = 'm'")
        self.assertEqual(self.sampled(layer), self.ROWS[:1])

    def test_a_layer_without_projection(self):
        layer = self.points("memory")
        layer.setCrs(QgsCoordinateReferenceSystem())
        self.assertEqual(self.sampled(layer), self.ROWS)

    def test_the_projection_of_a_layer_in_the_project(self):
        layer = QgsRasterLayer(self.path("in/b.asc"), "b")
        layer.setCrs(QgsCoordinateReferenceSystem("EPSG:28356"))
        self.run_algorithm("fe", INPUT=layer, OUTPUT=self.path("e.asc"))
        self.assertIn("GDA_1994_MGA_Zone_56", Path(self.path("e.prj")).read_text())
        self.assertFalse(Path(self.path("in/b.prj")).exists())


class ProjectTest(PluginTest):
    def layer(self, name):
        found = [layer for layer in self.project.mapLayers().values() if layer.name() == name]
        self.assertEqual(len(found), 1, [layer.name() for layer in self.project.mapLayers().values()])
        return found[0]

    def legend(self, layer):
        return [label for label, _ in layer.renderer().legendSymbologyItems()]

    def test_sources_have_the_names_of_the_legend(self):
        self.run_algorithm("max", INPUTS=[self.path("in/a.asc"), self.path("in/b.asc")], OUTPUT=self.path("m.asc"),
                           OUTPUT_SRC=self.path("s.flt"), load=["OUTPUT", "OUTPUT_SRC"])
        self.assertEqual(self.legend(self.layer("OUTPUT_SRC")), ["a", "b"])
        # The tool writes both grids in the format of the first.
        self.assertEqual(self.layer("OUTPUT_SRC").source(), self.path("s.asc"))

    def test_the_kind_of_values_is_chosen_or_comes_from_the_name(self):
        (self.folder / "in/a.asc").rename(self.folder / "in/depth_1.asc")
        inputs = [self.path("in/depth_1.asc"), self.path("in/b.asc")]
        for style, label in ((0, "above 5 m"), (1, "above 5 m"), (4, "rises by more than 0.5 m")):
            self.project.clear()
            self.run_algorithm("max", INPUTS=inputs, STYLE=style, OUTPUT=self.path("m.asc"), load=["OUTPUT"])
            self.assertEqual(self.legend(self.layer("OUTPUT"))[-1], label)
        self.project.clear()
        self.run_algorithm("max", INPUTS=inputs, STYLE=5, OUTPUT=self.path("m.asc"), load=["OUTPUT"])
        self.assertNotIn("above 5 m", self.legend(self.layer("OUTPUT")))

    def test_layers_made_of_the_parts_of_a_shapefile(self):
        for operation, name, output, made in (("lp", "lines", "OUTPUT_LP_CHECK", "r/lines_L_LP_check"),
                                              ("brkline", "breaks", "OUTPUT_BRKLINE", "r/breaks_brkline")):
            lines = self.path(f"{name}_L.shp")
            gdal.VectorTranslate(lines, self.path(f"in/{name}.mif"), options="-a_srs EPSG:32756")
            results = self.run_algorithm(operation, INPUT=self.path("in/a.asc"), CHECK=operation == "lp", FOLDER=self.path("r"),
                                         LOAD=False, **{operation.upper(): lines})
            self.assertEqual(results["LAYERS"], [self.path(f"{made}_L.shp"), self.path(f"{made}_P.shp")])
            self.assertIn(results[output], results["LAYERS"])

    def test_a_style_of_the_user_goes_first(self):
        Path(self.path("mine.qml")).write_text(styles.qml(styles.styles()["depth"]))
        RenderingStyles.styles["gridforge:dif"] = {"OUTPUT": self.path("mine.qml")}
        self.addCleanup(RenderingStyles.styles.pop, "gridforge:dif")
        self.run_algorithm("dif", INPUT=self.path("in/a.asc"), INPUT_2=self.path("in/b.asc"), OUTPUT=self.path("d.asc"),
                           load=["OUTPUT"])
        self.assertIn("above 5 m", self.legend(self.layer("OUTPUT")))

    def test_differences(self):
        self.run_algorithm("dif", INPUT=self.path("in/a.asc"), INPUT_2=self.path("in/b.asc"), OUTPUT=self.path("d.asc"),
                           OUTPUT_WD=self.path("d_wd.asc"), load=["OUTPUT", "OUTPUT_WD"])
        self.assertIn("1 m or higher", self.legend(self.layer("OUTPUT")))
        self.assertIn("wet only in the first grid", self.legend(self.layer("OUTPUT_WD")))

    def test_results_in_a_folder_are_loaded(self):
        self.run_algorithm("remap", WL=self.path("in/b.asc"), DEM=self.path("in/a.asc"), FOLDER=self.path("r"))
        self.assertEqual({layer.name() for layer in self.project.mapLayers().values()}, {"b_remap_h", "b_remap_d"})
        self.assertIn("above 5 m", self.legend(self.layer("b_remap_d")))
        self.assertIn(f"made {self.path('r/b_remap_d.asc')}", self.feedback.infos)

    def test_or_not(self):
        results = self.run_algorithm("stat", INPUTS=[self.path("in/a.asc"), self.path("in/b.asc")], STAT=[3],
                                     FOLDER=self.path("r"), LOAD=False)
        self.assertEqual(self.project.mapLayers(), {})
        self.assertEqual(results["OUTPUT_MIN_VAL"], self.path("r/a_Min_Val.asc"))

    def test_each_kind_of_geometry_of_a_layer(self):
        self.run_algorithm("damages", DAMAGES=self.path("in/floods.dmg"), OUTPUT=self.path("h.mif"),
                           OUTPUT_TABLE=self.path("h.csv"),
                           load=["OUTPUT"])
        kinds = sorted(layer.geometryType() for layer in self.project.mapLayers().values())
        self.assertEqual(kinds, [0, 2])  # points and polygons
        self.assertEqual([layer.featureCount() for layer in self.project.mapLayers().values()], [1, 1])

    def test_parts_of_a_shapefile(self):
        results = self.run_algorithm("damages", DAMAGES=self.path("in/floods.dmg"), OUTPUT=self.path("h.shp"), load=["OUTPUT"])
        self.assertEqual(results["OUTPUT"], self.path("h_P.shp"))
        self.assertEqual(sorted(layer.source() for layer in self.project.mapLayers().values()),
                         [self.path("h_P.shp"), self.path("h_R.shp")])

    def test_a_classified_text_is_not_loaded(self):
        self.run_algorithm("classify", INPUT=self.path("in/a.asc"), CLASSIFY=self.path("in/classes.csv"), GRC=True,
                           OUTPUT=self.path("c.asc"), load=["OUTPUT"])
        self.assertTrue(Path(self.path("c.asc")).is_file())
        self.assertEqual(self.project.mapLayers(), {})


class RunTest(PluginTest):
    def test_the_console_is_in_the_log(self):
        self.run_algorithm("fe", INPUT=self.path("in/a.asc"), OUTPUT=self.path("e.asc"))
        self.assertIn("Writing ASC grid...", self.feedback.lines)
        self.assertEqual(self.feedback.lines[-1], "Finished.")

    def test_progress(self):
        size = sum(os.path.getsize(self.path("in/a." + kind)) for kind in ("asc", "prj"))
        line = '{"seconds":1,"read":%d,"written":0,"objects":0}'
        tell = "echo '%s' > /dev/fd/${GRIDFORGE_PROGRESS#fd:}\n" % line
        self.tool(tell % (size // 2) + tell % size + "echo ERROR - half\n")
        seen = []
        self.feedback.progressChanged.connect(seen.append)
        self.assertEqual(self.failure("fe", INPUT=self.path("in/a.asc"), OUTPUT=self.path("e.asc")), "ERROR - half")
        self.assertEqual([round(percent) for percent in seen], [50, 99])  # inputs may be read twice

    def test_no_share_of_files_that_only_a_control_file_names(self):
        self.tool("echo '{\"seconds\":1,\"read\":9,\"written\":0,\"objects\":0}' > /dev/fd/${GRIDFORGE_PROGRESS#fd:}\n"
                  "echo ERROR - half\n")
        seen = []
        self.feedback.progressChanged.connect(seen.append)
        self.assertEqual(self.failure("rf", RF=self.path("in/storm.rfc")), "ERROR - half")
        self.assertEqual(seen, [])

    def test_warnings_stand_out(self):
        self.run_algorithm("classify", INPUT=self.path("in/a.asc"), CLASSIFY=self.path("in/classes.csv"), RGB=True,
                           OUTPUT=self.path("c.asc"))
        self.assertEqual(self.feedback.warnings, ['WARNING - Must specify "-grc" to get classified .asc grid.'])

    def test_a_run_that_ends_in_a_message(self):
        self.assertEqual(self.failure("multiply", INPUT=self.path("in/a.asc"), INPUT_2=self.path("in/small.asc"),
                                      OUTPUT=self.path("p.asc")),
                         "ERROR - number of rows for input grids do not match. Rows = 9 and 4\n"
                         "ERROR - number of columns for input grids do not match. Columns = 9 and 4\n"
                         "ERROR - dimensions of grids do not match (see above for details).")
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["in"])

    def test_a_cancelled_run_is_ended_and_leaves_nothing(self):
        self.tool(f'echo $$ > "{self.folder}/in/pid"\necho half > out/e.asc\necho begun\nexec sleep 100\n')
        self.feedback = Feedback(cancel_at="begun")
        self.assertEqual(self.failure("fe", INPUT=self.path("in/a.asc"), OUTPUT=self.path("e.asc")), "The run was cancelled.")
        with self.assertRaises(ProcessLookupError):
            os.kill(int(Path(self.path("in/pid")).read_text()), 0)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["in", "tool"])

    def test_inputs_that_are_no_grids(self):
        Path(self.path("bad.asc")).write_text("no grid")
        algorithm = REGISTRY.createAlgorithmById("gridforge:max")
        context = QgsProcessingContext()
        for given in ([self.path("in/a.asc"), self.path("bad.asc")], [self.path("none.asc")]):
            parameters = {"INPUTS": given, "OUTPUT": self.path("m.asc")}
            self.assertFalse(algorithm.checkParameterValues(parameters, context)[0])
            self.assertFalse(algorithm.run(parameters, context, self.feedback)[1])
            self.assertEqual(self.feedback.errors.pop(), "Input grids: one of these is not a grid that can be read.")
        algorithm = REGISTRY.createAlgorithmById("gridforge:fe")
        self.assertFalse(algorithm.run({"INPUT": self.path("bad.asc"), "OUTPUT": self.path("e.asc")}, context, self.feedback)[1])
        self.assertEqual(self.feedback.errors, ["Input grid: this is not a grid that can be read."])

    def test_a_grid_that_is_no_file(self):
        layer = QgsRasterLayer(f"?crs=EPSG:32756&extent=0,0,9,9&width=9&height=9&formula=%22a@1%22&a:uri={self.path('in/a.asc')}"
                               "&a:provider=gdal", "sum", "virtualraster")
        self.assertTrue(layer.isValid())
        algorithm = REGISTRY.createAlgorithmById("gridforge:fe")
        self.assertFalse(algorithm.run({"INPUT": layer, "OUTPUT": self.path("e.asc")}, QgsProcessingContext(), self.feedback)[1])
        self.assertEqual(self.feedback.errors, ["Input grid: sum is not a file."])

    def test_what_cannot_be_converted(self):
        with self.assertRaises(convert.ConversionError) as raised:
            convert.grid_to_flt(self.path("none.tif"), Path(self.path("none.flt")), self.feedback)
        self.assertEqual(str(raised.exception), f"The grid cannot be read: {self.path('none.tif')}")
        layer = QgsVectorLayer("Point?field=seen:double", "marks", "memory")
        with self.assertRaises(convert.ConversionError) as raised:
            convert.layer_to_file(layer, [], Path(self.path("none/marks.shp")), self.feedback, self.project.transformContext())
        self.assertRegex(str(raised.exception), "^The layer cannot be converted: .*none/marks.shp")

    def test_outputs_of_other_formats_are_refused(self):
        self.assertEqual(self.failure("fe", INPUT=self.path("in/a.asc"), OUTPUT=self.path("e.tif")),
                         "Extent: the tool writes .asc or .flt, not e.tif.")
        self.assertEqual(self.failure("damages", DAMAGES=self.path("in/floods.dmg"), OUTPUT=self.path("h.gpkg")),
                         "Buildings with damages: the tool writes .mif or .shp, not h.gpkg.")

    def test_temporary_outputs(self):
        results = self.run_algorithm("max", INPUTS=[self.path("in/a.asc")], OUTPUT="TEMPORARY_OUTPUT",
                                     OUTPUT_SRC_LEGEND="TEMPORARY_OUTPUT")
        self.assertTrue(results["OUTPUT"].endswith(".flt") and Path(results["OUTPUT"]).is_file())
        self.assertTrue(results["OUTPUT_SRC_LEGEND"].endswith(".csv") and Path(results["OUTPUT_SRC_LEGEND"]).is_file())
        results = self.run_algorithm("conv", INPUTS=[self.path("in/a.asc")], FOLDER="TEMPORARY_OUTPUT")
        made = {path.name for path in Path(results["FOLDER"]).iterdir()} - {"a.stx"}  # the last is a note of GDAL
        self.assertEqual(made, {"a.flt", "a.hdr", "a.prj"})

    def test_an_output_over_its_input(self):
        self.run_algorithm("fe", INPUT=self.path("in/a.asc"), OUTPUT=self.path("in/a.asc"))
        self.assertEqual({cell for row in self.cells(self.path("in/a.asc")) for cell in row}, {-9999.0, 1.0})

    def test_nothing_is_asked_for(self):
        self.assertEqual(self.failure("trans_m", INPUT=self.path("in/a.asc"), OUTPUT=self.path("t.asc")),
                         "Nothing is asked for. Give one of -trans_m<m>, -trans_c<c>.")

    def test_no_tool(self):
        self.tool("")
        os.environ["GRIDFORGE"] = self.path("none")
        self.assertEqual(self.failure("fe", INPUT=self.path("in/a.asc"), OUTPUT=self.path("e.asc")),
                         f"The variable GRIDFORGE names no executable: {self.path('none')}")

    def test_the_tool_of_the_settings(self):
        self.addCleanup(ProcessingConfig.setSettingValue, "GRIDFORGE_TOOL", "")
        ProcessingConfig.setSettingValue("GRIDFORGE_TOOL", os.environ["GRIDFORGE"])
        os.environ["GRIDFORGE"] = self.path("none")
        self.addCleanup(os.environ.__setitem__, "GRIDFORGE", ProcessingConfig.getSetting("GRIDFORGE_TOOL"))
        self.run_algorithm("fe", INPUT=self.path("in/a.asc"), OUTPUT=self.path("e.asc"))
        Path(self.path("gone")).write_text("")
        ProcessingConfig.setSettingValue("GRIDFORGE_TOOL", self.path("gone"))
        Path(self.path("gone")).unlink()
        self.assertEqual(self.failure("fe", INPUT=self.path("in/a.asc"), OUTPUT=self.path("e.asc")),
                         f"The settings of Processing name a tool that is not there: {self.path('gone')}")

    def parameters_of(self, case, folder):
        """What `qgis_process` makes of the parameters of a case, and the folder of its results."""
        inputs, results = folder / "in", folder / "out"
        samples.write_samples(inputs)
        given = {}
        for word in case.parameters.split():
            name, value = word.replace("=@", f"={inputs}/").replace("=>", f"={results}/").split("=", 1)
            given.setdefault(name, []).append(value)
        return {name: values if name in ("INPUTS", "MAT") else values[0] for name, values in given.items()}

    def test_what_is_left_empty_counts_as_not_given(self):
        nothing = {"multilayer": [[], None], "file": ["", None], "string": ["", None], "source": ["", None], "raster": ["", None],
                   "number": [None, ""]}
        for name, case in toolbox.CASES.items():
            wanted = toolbox.by_tool(case)[1]
            definitions = REGISTRY.algorithmById(f"gridforge:{case.algorithm}").parameterDefinitions()
            for way in (0, 1):
                with self.subTest(name, way=way), tempfile.TemporaryDirectory() as scratch:
                    parameters = self.parameters_of(case, Path(scratch))
                    before = toolbox.contents(Path(scratch, "in"))
                    empty = {one.name(): nothing[one.type()][way] for one in definitions
                             if one.flags() & one.FlagOptional and one.type() in nothing}
                    self.run_algorithm(case.algorithm, **{**empty, **parameters, "LOAD": False})
                    made = (toolbox.new_or_changed(Path(scratch, "in"), before) if case.in_place
                            else toolbox.contents(Path(scratch, "out")))
                    self.assertEqual(made, wanted)

    def test_the_python_of_the_page_runs(self):
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)
        import processing
        exec("\n".join(toolbox.page_block("python")),
             {"processing": processing, "after": self.path("in/a.asc"), "before": self.path("in/c.asc")})
        self.assertEqual(self.cells(self.path("change.flt"))[0], [2] * 9)  # the cells of c.asc are lower by that

    def test_inputs_of_one_name(self):
        (self.folder / "other").mkdir()
        (self.folder / "other/a.asc").write_text(samples.grid(5))
        self.run_algorithm("max", INPUTS=[self.path("in/a.asc"), self.path("other/a.asc")], OUTPUT=self.path("m.asc"),
                           OUTPUT_SRC_LEGEND=self.path("l.csv"))
        self.assertEqual(Path(self.path("l.csv")).read_text().split()[-2:], ["1,a.asc", "2,other/a.asc"])


if __name__ == "__main__":
    try:
        unittest.main()
    finally:
        TEMPORARY.cleanup()
