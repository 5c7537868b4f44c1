"""Inputs of a call in the room of its run, converted where the tool does not read them."""
from __future__ import annotations

import os
from pathlib import Path
from typing import Any

from .call import Call
from .convert import grid_to_flt, layer_to_file, what_is_lost
from .parameters import GridSource, LayerSource
from .room import Room


def plain_name(name: str) -> str:
    """The name of a layer as that of a file."""
    return "".join(letter if letter.isalnum() or letter in "-_. ()" else "_" for letter in name).strip() or "layer"


def stage_grid(call: Call, room: Room, grid: GridSource) -> str:
    if grid.fits:
        name = room.give(Path(grid.source))
    else:
        name = room.name_for(plain_name(grid.name) + ".flt")
        call.feedback.pushInfo(f"Converting {grid.source} to {name}")
        if grid.bands > 1:
            call.feedback.pushWarning(f"The tool takes one band of a grid, so this is the first of {grid.bands}: {grid.source}")
        grid_to_flt(grid.source, room.folder / name, call.feedback)
    room.project(name, grid.projection)
    return name


def stage_layer(call: Call, room: Room, field: str, layer: LayerSource) -> str:
    if layer.file is not None:
        return room.give(layer.file)
    name = room.name_for(plain_name(layer.name) + (".shp" if layer.has_projection else ".mif"))
    call.feedback.pushInfo(f"Converting the layer {layer.name} to {name}")
    source = call.algorithm.parameterAsSource(call.parameters, field, call.context)
    for said in what_is_lost(source):
        call.feedback.pushInfo(said)
    layer_to_file(source, list(layer.hidden_columns), room.folder / name, call.feedback, call.context.transformContext())
    return name


def seen_from_base(call: Call, file: Path) -> str:
    """The control file as it is called where its names are seen from: some outputs hold its folder."""
    return os.path.relpath(file.resolve(), call.base)


def stage(call: Call, room: Room, field: str, value: Any) -> Any:
    """A value as the tool gets it: files have their names in the room. Control files stay where they are."""
    if isinstance(value, list):
        return [stage(call, room, field, one) for one in value]
    if isinstance(value, GridSource):
        return stage_grid(call, room, value)
    if isinstance(value, LayerSource):
        return stage_layer(call, room, field, value)
    if isinstance(value, Path) and call.form.field(field).kind == "controlFile":
        return seen_from_base(call, value)
    if isinstance(value, Path):
        return room.give(value, is_only_read=field == "INPUT")  # a table of points may be large
    return value
