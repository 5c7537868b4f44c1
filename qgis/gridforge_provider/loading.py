"""Results in the project: which files are loaded, and by what style."""
from __future__ import annotations

from collections import deque
from pathlib import Path

from qgis.core import (Qgis, QgsMapLayer, QgsProcessingContext, QgsProcessingFeedback, QgsProcessingLayerPostProcessorInterface,
                       QgsProviderRegistry)
from qgis.PyQt.QtXml import QDomDocument


class Styler(QgsProcessingLayerPostProcessorInterface):
    """Gives a loaded layer its style."""
    kept: deque["Styler"] = deque(maxlen=1000)  # QGIS does not keep them until they are used

    def __init__(self, qml: str) -> None:
        super().__init__()
        self.qml = qml
        Styler.kept.append(self)

    def postProcessLayer(self, layer: QgsMapLayer, context: QgsProcessingContext, feedback: QgsProcessingFeedback) -> None:
        document = QDomDocument()
        document.setContent(self.qml)
        layer.importNamedStyle(document)
        layer.triggerRepaint()


def sources_of(file: Path) -> list[str]:
    """What of a file is loaded: each kind of geometry of a .mif by itself."""
    if file.suffix.lower() != ".mif":
        return [str(file)]
    by_geometry = Qgis.SublayerQueryFlags(Qgis.SublayerQueryFlag.ResolveGeometryType)
    parts = QgsProviderRegistry.instance().querySublayers(str(file), by_geometry)
    return [part.uri() for part in parts] or [str(file)]


def load_later(file: Path, name: str, qml: str, context: QgsProcessingContext) -> None:
    """Has a file loaded when the algorithm has ended, if there is a project to load it to."""
    if context.project() is None:
        return
    for source in sources_of(file):
        details = QgsProcessingContext.LayerDetails(name, context.project(), name)
        if qml:
            details.setPostProcessor(Styler(qml))
        context.addLayerToLoadOnCompletion(source, details)


def load_instead(wanted: str, files: list[Path], qml: str, context: QgsProcessingContext) -> None:
    """Has the files that an output became loaded in place of the one that was asked for, if that was to be loaded."""
    if not context.willLoadLayerOnCompletion(wanted):
        return
    waiting = context.layersToLoadOnCompletion()
    asked = waiting.pop(wanted)
    for file in files:
        for source in sources_of(file):
            details = QgsProcessingContext.LayerDetails(asked.name, asked.project, asked.outputName)
            if qml:
                details.setPostProcessor(Styler(qml))
            waiting[source] = details
    context.setLayersToLoadOnCompletion(waiting)
