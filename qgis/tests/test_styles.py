"""The styles in a QGIS without windows: what it shows of a row of cells."""
import with_qgis  # noqa: F401  first: it chooses the Python

import os
import sys
import tempfile
import unittest
from pathlib import Path

TEMPORARY = tempfile.TemporaryDirectory()
os.environ.update(HOME=TEMPORARY.name, QGIS_CUSTOM_CONFIG_PATH=TEMPORARY.name, GDAL_PAM_ENABLED="NO")
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "python"))

from qgis.core import QgsApplication, QgsMapRendererSequentialJob, QgsMapSettings, QgsRasterLayer  # noqa: E402
from qgis.PyQt.QtCore import QSize, Qt  # noqa: E402

from gridforge import styles  # noqa: E402

QGIS = QgsApplication([], False)
QGIS.initQgis()
DOTS = 20  # for a cell
NOTHING = "#ffffff"


class StylesTest(unittest.TestCase):
    def shown(self, style, *row):
        """The colours in the middle of the cells, white where there is none."""
        with tempfile.TemporaryDirectory() as folder:
            grid, qml = Path(folder, "a.asc"), Path(folder, "a.qml")
            grid.write_text(f"ncols {len(row)}\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n"
                            + " ".join(map(str, row)) + "\n", encoding="ascii")
            qml.write_text(styles.qml(style), encoding="utf-8")
            layer = QgsRasterLayer(str(grid), "a")
            self.assertEqual(layer.loadNamedStyle(str(qml)), ("", True))
            settings = QgsMapSettings()
            settings.setLayers([layer])
            settings.setExtent(layer.extent())
            settings.setOutputSize(QSize(DOTS * len(row), DOTS))
            settings.setBackgroundColor(Qt.white)
            job = QgsMapRendererSequentialJob(settings)
            job.start()
            job.waitForFinished()
            picture = job.renderedImage()
        return [picture.pixelColor(DOTS * column + DOTS // 2, DOTS // 2).name() for column in range(len(row))]

    def check(self, kind, row, *colours):
        self.assertEqual(self.shown(styles.styles()[kind], *row), list(colours))

    def test_cells_at_limits_belong_to_the_class_below(self):
        self.check("depth", (0.05, 0.1, 0.101, 5, 7, -9999), "#d8ecf8", "#d8ecf8", "#b3d9ef", "#0b3c7c", "#071f4a", NOTHING)
        self.check("impact", (-0.5, -0.499, -0.01, 0.01, 0.011, 0.6), "#1a4f94", "#4a8fca", "#d3e6f4", "#f4efb4", "#fde3cf",
                   "#97141f")

    def test_differences_blend(self):
        # -0.65 lies half way between -1 and -0.3, whose colours are 1a4f94 and 5a9bd0.
        self.check("difference", (-4, -1, -0.65, 0, 1, 9), "#1a4f94", "#1a4f94", "#3a75b2", "#fdf8d8", "#97141f", "#97141f")

    def test_levels_go_from_the_lowest_to_the_highest_cell_shown(self):
        self.check("level", (50, 60, 100), "#1f3b73", "#2c7fb8", "#d7301f")  # 60 lies at a fifth of the way

    def test_levels_in_a_range_stay_there(self):
        self.assertEqual(self.shown(styles.styles()["level"].between(0, 100), 20, 100, 500), ["#2c7fb8", "#d7301f", "#d7301f"])

    def test_values(self):
        self.check("wet_dry", (-99, 1, 99, 50), "#e08214", "#4a90c8", "#7b3294", NOTHING)
        named = styles.styles()["source"].named({1: "a & b", 13: "c"})
        self.assertEqual(self.shown(named, 1, 2, 13), ["#1f77b4", NOTHING, "#1f77b4"])


if __name__ == "__main__":
    unittest.main()
