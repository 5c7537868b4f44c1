"""The plugin: it puts the provider into the toolbox and takes it out again."""
from __future__ import annotations

from typing import Any, Union

from qgis.core import QgsApplication

from .provider import GridforgeProvider


class GridforgePlugin:
    def __init__(self, iface: Any) -> None:
        self.provider: Union[GridforgeProvider, None] = None

    def initProcessing(self) -> None:
        """Called alone where QGIS runs without windows."""
        self.provider = GridforgeProvider()
        QgsApplication.processingRegistry().addProvider(self.provider)

    def initGui(self) -> None:
        self.initProcessing()

    def unload(self) -> None:
        if self.provider is not None:
            QgsApplication.processingRegistry().removeProvider(self.provider)
            self.provider = None
