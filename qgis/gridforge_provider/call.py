"""What QGIS hands to an algorithm that is run."""
from __future__ import annotations

from dataclasses import dataclass
from functools import cached_property
from pathlib import Path
from typing import Any, Union

from qgis.core import QgsProcessingAlgorithm, QgsProcessingContext, QgsProcessingException, QgsProcessingFeedback

from .form import Form, Output
from .parameters import BASE, FOLDER, GRIDS, LOAD, STYLE, VECTORS, style_choices

KINDS = {"grid": GRIDS, "layer": VECTORS}  # extensions of outputs


@dataclass(frozen=True)
class Call:
    algorithm: QgsProcessingAlgorithm
    form: Form
    sources: dict[str, Any]  # what was given, by the names of fields
    parameters: dict[str, Any]
    context: QgsProcessingContext
    feedback: QgsProcessingFeedback

    @cached_property
    def folder(self) -> Path:
        """Each time that QGIS is asked it makes up another temporary one."""
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
        kinds = KINDS.get(output.kind)
        if place and kinds and Path(place).suffix.lower() not in kinds:
            raise QgsProcessingException(f"{output.label}: the tool writes {' or '.join(kinds)}, not {Path(place).name}.")
        return Path(place) if place else None
