"""Outputs of a run to their places and into the project."""
from __future__ import annotations

import re
from dataclasses import dataclass, replace
from pathlib import Path
from typing import Any, Union

from processing.gui.RenderingStyles import RenderingStyles

from . import room as rooms
from . import styling
from .call import Call
from .form import Output, name_in_run
from .loading import load_instead, load_later
from .package import Move
from .parameters import LAYERS, GridSource

GRID_FILES = (".asc", ".flt", ".hdr", ".prj")
LAYER_FILES = (".mif", ".mid", ".shp", ".shx", ".dbf", ".prj")


@dataclass(frozen=True)
class Run:
    given: list[str]  # arguments
    words: dict[str, str]  # what the words in names of outputs stand for
    by_out: bool  # -out is given
    made: list[Path]

    def name_of(self, output: Output) -> str:
        return name_in_run(output, self.given, self.words, self.by_out)

    def files_of(self, output: Output) -> list[Path]:
        # To some operations a layer `road_L.shp` is `road`.
        short = replace(self, words={**self.words, "layer": re.sub("_[PLR]$", "", self.words["layer"])})
        return self._files_called(output, self.name_of(output)) or self._files_called(output, short.name_of(output))

    def _files_called(self, output: Output, name: str) -> list[Path]:
        if not name:
            return []
        if output.kind in ("table", "netcdf"):
            return [file for file in self.made if file.name == name]
        kinds = GRID_FILES if output.kind == "grid" else LAYER_FILES
        return rooms.with_stem([file for file in self.made if file.suffix.lower() in kinds], name)

    @property
    def opens_elsewhere(self) -> bool:
        """A classified .asc is not a grid for other programs."""
        return "-grc" not in self.given


def first_input(call: Call) -> str:
    first = call.sources.get("INPUTS") or call.sources.get("INPUT")
    first = first[0] if isinstance(first, list) and first else first
    return Path(first.source).name if isinstance(first, GridSource) else ""


def style_of(call: Call, output: Union[Output, None], files: list[Path], name: str) -> str:
    """The style for a grid, whose cells are what its output says, or what a file of that `name` holds."""
    grids = [file for file in files if file.suffix.lower() in (".asc", ".flt")]
    own = output is not None and RenderingStyles.getStyle(call.algorithm.id(), output.name)  # set by the user
    if not grids or own:
        return ""
    return styling.qml_for(styling.kind_for(output.style if output else "input", call.style, name), grids[0])


def to_destinations(call: Call, run: Run, wanted: dict[str, Union[Path, None]]) -> dict[str, Any]:
    found = {output.name: run.files_of(output) for output in call.form.outputs}
    # Styles before anything is moved: names of sources come from the legend, which may go elsewhere.
    styles = {output.name: style_of(call, output, found[output.name], first_input(call)) for output in call.form.outputs}
    moves = {output.name: moves_for(run, output, found[output.name], wanted[output.name]) for output in call.form.outputs}
    rooms.publish([move for some in moves.values() for move in some])
    results: dict[str, Any] = {}
    for output in call.form.outputs:
        files = [move.target for move in moves[output.name]]
        shown = files if output.kind in ("table", "netcdf") else rooms.layers_of(files)
        if wanted[output.name] is not None:
            load_instead(str(wanted[output.name]), shown if run.opens_elsewhere else [], styles[output.name], call.context)
        if shown:
            results[output.name] = str(shown[0])
    return results


def moves_for(run: Run, output: Output, files: list[Path], target: Union[Path, None]) -> list[Move]:
    """The files of an output to the place that was asked for, if any was."""
    if target is None:
        return []
    if output.kind in ("table", "netcdf"):
        return [Move(file, target) for file in files]
    return rooms.moves_of(files, run.name_of(output), target)


def from_folder(call: Call, run: Run) -> dict[str, Any]:
    """Results of a run whose files are where they belong."""
    results: dict[str, Any] = {}
    owners: dict[Path, Output] = {}
    for output in call.form.outputs:
        files = run.files_of(output)
        owners.update({file: output for file in files})
        shown = rooms.layers_of(files) or files
        if shown:
            results[output.name] = str(shown[0])
    layers = rooms.layers_of(run.made)
    for layer in layers if call.loads else []:
        load_later(layer, layer.stem, style_of(call, owners.get(layer), [layer], layer.name), call.context)
    for file in run.made:
        call.feedback.pushInfo(f"made {file}")
    return results | {LAYERS: [str(layer) for layer in layers]}
