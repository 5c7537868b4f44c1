"""Draws the pictures of docs/qgis.md: a dialog of the toolbox, and results in the map. QGIS itself runs this, on its own screen:

    xvfb-run -a -s "-screen 0 1600x1000x24" env DEMO=demo-output PICTURES=docs/pictures \
        qgis --noversioncheck --nologo --code docs/pictures/qgis_windows.py

The plugin is installed and turned on, GRIDFORGE names the tool, and scripts/demo has made `demo-output`.
"""
import os
from pathlib import Path

import processing
from qgis.core import QgsBilinearRasterResampler, QgsHillshadeRenderer, QgsProject, QgsRasterLayer
from qgis.PyQt.QtCore import QTimer
from qgis.PyQt.QtWidgets import QApplication, QDockWidget, QToolBar
from qgis.utils import iface

DEMO, PICTURES = Path(os.environ["DEMO"]).resolve(), Path(os.environ["PICTURES"]).resolve()
STORMS = [str(DEMO / f"level_1pct_{hours}_coarse.asc") for hours in ("1h", "6h", "24h")]
RESULTS = DEMO / "qgis"


def dialog():
    """The dialog of the maximum, filled in."""
    window = processing.createAlgorithmDialog("gridforge:max", {"INPUTS": STORMS, "OUTPUT": f"{RESULTS}/level_1pct.asc",
                                                                "STYLE": 2})
    window.resize(1000, 600)
    window.show()
    settle()
    window.grab().save(str(PICTURES / "qgis_dialog.png"))
    window.close()


def plain_window():
    """Layers and map, without what else a window has."""
    window = iface.mainWindow()
    for bar in window.findChildren(QToolBar):
        bar.hide()
    for dock in window.findChildren(QDockWidget):
        dock.setVisible(dock.objectName() == "Layers")
    window.menuBar().hide()
    window.statusBar().hide()
    window.resize(1000, 600)
    dock = window.findChild(QDockWidget, "Layers")
    window.resizeDocks([dock], [250], 1)
    return window


def hillshade():
    layer = QgsRasterLayer(str(DEMO / "ground.asc"), "ground")
    layer.setRenderer(QgsHillshadeRenderer(layer.dataProvider(), 1, 315, 45))
    layer.renderer().setZFactor(1.2)
    layer.renderer().setOpacity(0.5)
    layer.resampleFilter().setZoomedOutResampler(QgsBilinearRasterResampler())
    layer.resampleFilter().setMaxOversampling(4)
    QgsProject.instance().addMapLayer(layer)
    return layer


def results():
    """The maximum with its sources, and its level as depths on the fine ground."""
    ground = hillshade()
    processing.runAndLoadResults("gridforge:max", {"INPUTS": STORMS, "STYLE": 5, "OUTPUT": f"{RESULTS}/level_1pct.asc",
                                                   "OUTPUT_SRC": f"{RESULTS}/level_1pct_src.asc"})
    processing.runAndLoadResults("gridforge:remap", {"WL": f"{RESULTS}/level_1pct.asc", "DEM": str(DEMO / "ground.asc"),
                                                     "FOLDER": str(RESULTS)})
    project = QgsProject.instance()
    tree = project.layerTreeRoot()
    for layer in list(project.mapLayers().values()):
        if layer.name() == "Source grid":
            layer.setName("level_1pct_src")
        shown = layer.name() in ("ground", "level_1pct_remap_d", "level_1pct_src")
        if not shown:
            project.removeMapLayer(layer)
        else:
            tree.findLayer(layer).setExpanded(layer is not ground)
            tree.findLayer(layer).setItemVisibilityChecked(layer.name() != "level_1pct_src")
    window = plain_window()
    settle()
    canvas = iface.mapCanvas()
    canvas.setExtent(ground.extent())
    canvas.refresh()
    canvas.waitWhileRendering()
    settle()
    window.grab().save(str(PICTURES / "qgis_results.png"))


def settle():
    for _ in range(20):
        QApplication.processEvents()


def draw():
    RESULTS.mkdir(exist_ok=True)
    try:
        dialog()
        results()
    finally:
        QgsProject.instance().clear()
        QApplication.instance().exit()


QTimer.singleShot(3000, draw)
