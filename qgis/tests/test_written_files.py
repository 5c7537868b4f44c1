"""What QGIS makes of the files that the tool writes, as docs/gis.md says."""
import with_qgis  # noqa: F401  first: it chooses the Python

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

TEMPORARY = tempfile.TemporaryDirectory()
os.environ.update(HOME=TEMPORARY.name, QGIS_CUSTOM_CONFIG_PATH=TEMPORARY.name)

import samples  # noqa: E402
from qgis.core import (QgsApplication, QgsMeshDatasetIndex, QgsMeshLayer, QgsPointXY, QgsRasterBandStats,  # noqa: E402
                       QgsRasterLayer, QgsVectorLayer)

QGIS = QgsApplication([], False)
QGIS.initQgis()
MIDDLE = QgsPointXY(4.5, 2.5)  # of the cell 35


class WrittenFilesTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.held = []  # a provider is good as long as its layer is held
        self.addCleanup(self.held.clear)
        for name, text in samples.files().items():
            path = self.folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="ascii")

    def run_tool(self, *arguments):
        console = subprocess.run([os.environ["GRIDFORGE"], "-b", *arguments], cwd=self.folder, stdin=subprocess.DEVNULL,
                                 capture_output=True, text=True, check=False).stdout
        self.assertTrue(console.endswith("Finished.\n"), console)

    def raster(self, name):
        layer = QgsRasterLayer(name.replace("FOLDER", str(self.folder)), "a")
        self.assertTrue(layer.isValid(), name)
        self.held.append(layer)
        return layer.dataProvider(), layer

    def vector(self, name, kind="ogr"):
        layer = QgsVectorLayer(name.replace("FOLDER", str(self.folder)), "a", kind)
        self.assertTrue(layer.isValid(), name)
        self.held.append(layer)
        return layer

    def test_grids(self):
        self.run_tool("-trans_c0", "a.asc", "-out", "made.asc")
        self.run_tool("-trans_c0", "a.asc", "-out", "made.flt")
        for name in ("made.asc", "made.flt"):
            with self.subTest(name):
                cells, layer = self.raster(f"FOLDER/{name}")
                self.assertEqual(cells.sample(MIDDLE, 1), (35.0, True))
                self.assertFalse(cells.sample(QgsPointXY(0.5, 0.5), 1)[1], "a null cell")
                self.assertEqual(cells.bandStatistics(1).minimumValue, 12)
                self.assertEqual((layer.crs().isValid(), cells.sourceNoDataValue(1)), (True, -9999))
                self.assertEqual(layer.extent().toString(0), "0,0 : 9,9")
        self.assertFalse(QgsRasterLayer(str(self.folder / "made.hdr"), "a").isValid())

    def test_a_grid_without_projection(self):
        self.run_tool("-trans_c0", "b.asc", "-out", "made.asc")
        self.assertFalse(self.raster("FOLDER/made.asc")[1].crs().isValid())

    def highest(self, name):
        found = self.raster(name)[0].bandStatistics(1, QgsRasterBandStats.Max).maximumValue
        self.held.clear()  # QGIS keeps what it found when a layer is closed
        return found

    def test_statistics_of_an_earlier_run_stay(self):
        self.run_tool("-trans_c0", "a.asc", "-out", "made.asc")
        self.assertEqual(self.highest("FOLDER/made.asc"), 99)
        self.run_tool("-trans_c1", "a.asc", "-out", "made.asc")
        self.assertEqual(self.highest("FOLDER/made.asc"), 99)
        (self.folder / "made.asc.aux.xml").unlink()
        self.assertEqual(self.highest("FOLDER/made.asc"), 100)

    def test_class_numbers_in_whole_numbers_are_wrong(self):
        self.run_tool("-classify", "classes.csv", "a.asc", "-out", "plain.asc")
        self.run_tool("-classify", "classes.csv", "a.asc", "-grc", "-asc", "-out", "classes.asc")
        classes = {name: self.raster(f"FOLDER/{name}.asc")[0].sample(MIDDLE, 1)[0] for name in ("plain", "classes")}
        self.assertEqual(classes["plain"], 2)
        self.assertNotEqual(classes["classes"], 2)

    def test_a_series_lies_half_a_cell_off(self):
        self.run_tool("-nc", "-nc_part1", "a.asc", "b.asc", "-out", "made.nc")
        cells, layer = self.raster("NETCDF:FOLDER/made.nc:data_temporal")
        self.assertEqual(layer.extent().toString(1), "0.5,0.5 : 9.5,9.5")
        self.assertEqual(cells.sample(QgsPointXY(5, 3), 2), (36.0, True))
        self.assertFalse(layer.crs().isValid())
        drawn = QgsMeshLayer(str(self.folder / "made.nc"), "a", "mdal")
        mesh = drawn.dataProvider()
        group = next(i for i in range(mesh.datasetGroupCount())
                     if mesh.datasetGroupMetadata(QgsMeshDatasetIndex(i)).name() == "data_temporal")
        self.assertEqual([mesh.datasetMetadata(QgsMeshDatasetIndex(group, i)).time() for i in range(2)], [1, 2])
        self.assertEqual(mesh.temporalCapabilities().referenceTime().toString("yyyy-MM-dd hh"), "2011-03-01 10")

    def test_a_layer_of_several_kinds(self):
        head, tail = samples.files()["regions.mif"].split("Data\n\n")
        (self.folder / "both.mif").write_text(f"{head}Data\n\n{samples.POINT}{tail}", encoding="ascii")
        (self.folder / "both.mid").write_text('"a"\n"b"\n', encoding="ascii")
        kinds = {row.split("!!::!!")[3] for row in self.vector("FOLDER/both.mif").dataProvider().subLayers()}
        self.assertEqual(kinds, {"Point", "Polygon"})

    def test_letters(self):
        for encoding, of_mif, of_shp, of_shp_as_windows in (("cp1252", "Brücke", "Br\ufffdcke", "Brücke"),
                                                            ("utf-8", "BrÃ¼cke", "Brücke", "BrÃ¼cke")):
            with self.subTest(encoding):
                (self.folder / "points.mid").write_bytes('55,"Brücke"\n'.encode(encoding))
                self.run_tool("-cp", "points.mif", "a.asc", "-cpsd1")
                self.run_tool("-cp", "points.mif", "a.asc", "-cpsd1", "-out", "made.shp")
                self.assertEqual(self.mark("points_Res.mif"), of_mif)
                self.assertEqual(self.mark("made_P.shp"), of_shp)
                self.assertEqual(self.mark("made_P.shp", "windows-1252"), of_shp_as_windows)

    def mark(self, name, encoding=None):
        layer = self.vector(f"FOLDER/{name}")
        if encoding:
            layer.setProviderEncoding(encoding)
        return next(layer.getFeatures())["Mark"]

    def test_tables(self):
        self.run_tool("-cp", "points.mif", "a.asc", "-cpsd1")
        types = {name: [field.typeName() for field in self.vector(*source).fields()][1] for name, source in (
            ("dragged", ("FOLDER/points.csv",)),
            ("delimited", ("file://FOLDER/points.csv?type=csv&detectTypes=yes", "delimitedtext")))}
        self.assertEqual(types, {"dragged": "String", "delimited": "double"})


if __name__ == "__main__":
    unittest.main()
