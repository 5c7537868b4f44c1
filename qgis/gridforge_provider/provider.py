"""The provider: an algorithm for each operation of the description."""
from __future__ import annotations

from pathlib import Path

from processing.core.ProcessingConfig import ProcessingConfig, Setting
from qgis.core import Qgis, QgsMessageLog, QgsProcessingProvider
from qgis.PyQt.QtGui import QIcon

from .algorithm import OperationAlgorithm
from .form import make_form
from .package import DescriptionError, load_description
from .tool_setting import SETTING

HERE = Path(__file__).resolve().parent


class GridforgeProvider(QgsProcessingProvider):
    def id(self) -> str:
        return "gridforge"

    def name(self) -> str:
        return "gridforge"

    def longName(self) -> str:
        return "gridforge: grids of flood models"

    def icon(self) -> QIcon:
        return QIcon(str(HERE / "icon.svg"))

    def load(self) -> bool:
        ProcessingConfig.settingIcons[self.name()] = self.icon()
        ProcessingConfig.addSetting(Setting(self.name(), SETTING, "The tool gridforge; if empty, it is looked for", "",
                                            valuetype=Setting.FILE))
        ProcessingConfig.readSettings()
        self.refreshAlgorithms()
        return True

    def unload(self) -> None:
        ProcessingConfig.removeSetting(SETTING)

    def loadAlgorithms(self) -> None:
        try:
            description = load_description()
        except DescriptionError as error:
            QgsMessageLog.logMessage(str(error), self.name(), Qgis.Critical)
            return
        for operation in description.operations:
            self.addAlgorithm(OperationAlgorithm(make_form(operation)))

    def defaultRasterFileExtension(self) -> str:
        return "flt"

    def supportedOutputRasterLayerExtensions(self) -> list[str]:
        return ["flt", "asc"]

    def defaultVectorFileExtension(self, hasGeometry: bool = True) -> str:
        return "mif"

    def supportedOutputVectorLayerExtensions(self) -> list[str]:
        return ["mif", "shp"]

    def supportsNonFileBasedOutput(self) -> bool:
        return False
