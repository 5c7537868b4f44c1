"""What QGIS hands to an algorithm that is run."""
from __future__ import annotations

from dataclasses import dataclass
from pathlib import Path
from typing import Any, Union

from qgis.core import QgsProcessingAlgorithm, QgsProcessingContext, QgsProcessingFeedback

from .form import Form, Output
from .parameters import BASE, FOLDER, LOAD, STYLE, style_choices


@dataclass(frozen=True)
class Call:
    algorithm: QgsProcessingAlgorithm
    form: Form
    sources: dict[str, Any]  # what was given, by the names of fields
    parameters: dict[str, Any]
    context: QgsProcessingContext
    feedback: QgsProcessingFeedback

    @property
    def folder(self) -> Path:
        return Path(self.algorithm.parameterAsString(self.parameters, FOLDER, self.context))

    @property
    def loads(self) -> bool:
        return self.algorithm.parameterAsBool(self.parameters, LOAD, self.context)

    @property
    def control_file(self) -> Union[Path, None]:
        field = self.form.control_file
        return self.sources[field.name].resolve() if field else None

    @property
    def base(self) -> Union[Path, None]:
        """The folder that a control file names its files from."""
        if self.control_file is None:
            return None
        chosen = self.algorithm.parameterAsFile(self.parameters, BASE, self.context)
        return Path(chosen).resolve() if chosen else self.control_file.parent

    @property
    def style(self) -> str:
        """The user's choice."""
        choices = style_choices(self.form)
        return choices[self.algorithm.parameterAsEnum(self.parameters, STYLE, self.context)] if choices else "by name"

    def destination(self, output: Output) -> Union[Path, None]:
        """Where an output was asked for."""
        ask = self.algorithm.parameterAsOutputLayer if output.kind in ("grid", "layer") else self.algorithm.parameterAsFileOutput
        place = ask(self.parameters, output.name, self.context)
        return Path(place) if place else None
