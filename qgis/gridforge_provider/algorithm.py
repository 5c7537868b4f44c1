"""An operation of the tool as an algorithm of QGIS."""
from __future__ import annotations

from pathlib import Path
from typing import Any

from qgis.core import QgsProcessingAlgorithm, QgsProcessingContext, QgsProcessingFeedback
from qgis.PyQt.QtGui import QIcon, QTextDocument

from . import help as pages
from . import job
from .call import Call
from .form import Form
from .parameters import add_parameters, read_sources
from .words import GROUPS

HERE = Path(__file__).resolve().parent


class OperationAlgorithm(QgsProcessingAlgorithm):
    def __init__(self, form: Form) -> None:
        super().__init__()
        self._form = form
        self._page = pages.page_of(form.operation.page)
        self._sources: dict[str, Any] = {}

    def createInstance(self) -> "OperationAlgorithm":
        return OperationAlgorithm(self._form)

    def name(self) -> str:
        return self._form.operation.name

    def displayName(self) -> str:
        return pages.title_of(self._page) or self.name()

    def group(self) -> str:
        return next((group for group, names in GROUPS.items() if self.name() in names), "Others")

    def groupId(self) -> str:
        return self.group().lower().replace(" ", "_")

    def icon(self) -> QIcon:
        return QIcon(str(HERE / "icon.svg"))

    def tags(self) -> list[str]:
        return [self.name(), "flood", *(flag.flag for flag in self._form.operation.flags)]

    def shortDescription(self) -> str:
        text = self._form.operation.description
        return text[:1].upper() + text[1:]

    def shortHelpString(self) -> str:
        document = QTextDocument()
        document.setMarkdown(pages.help_text(self._page))
        return f"<p>{self.shortDescription()}.</p>" + pages.on_one_line(document.toHtml())

    def initAlgorithm(self, configuration: dict[str, Any]) -> None:
        add_parameters(self, self._form)

    def prepareAlgorithm(self, parameters: dict[str, Any], context: QgsProcessingContext,
                         feedback: QgsProcessingFeedback) -> bool:
        # Layers of the project may only be asked about here, in the thread that they live in.
        self._sources = read_sources(self, self._form, parameters, context)
        return True

    def processAlgorithm(self, parameters: dict[str, Any], context: QgsProcessingContext,
                         feedback: QgsProcessingFeedback) -> dict[str, Any]:
        return job.run(Call(self, self._form, self._sources, parameters, context, feedback))
