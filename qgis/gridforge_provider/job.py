"""One run of an algorithm: inputs into a room, the tool, outputs to their places."""
from __future__ import annotations

from pathlib import Path
from typing import Any

from qgis.core import QgsProcessingException

from . import delivery
from . import room as rooms
from .call import Call
from .convert import Cancelled, ConversionError
from .form import arguments, what_is_missing
from .package import Record, ToolNotFound, WrongUse
from .room import OUT, Room
from .running import CANCELLED, run_tool
from .staging import seen_from_base, stage
from .tool_setting import chosen_tool


def run(call: Call) -> dict[str, Any]:
    try:
        if call.form.writes_beside_inputs:
            return run_in_place(call)
        return run_to_folder(call) if call.form.to_folder else run_to_destinations(call)
    except (ConversionError, ToolNotFound, WrongUse, OSError) as error:
        raise QgsProcessingException(str(error)) from error
    except Cancelled as error:
        raise QgsProcessingException(CANCELLED) from error


def run_to_destinations(call: Call) -> dict[str, Any]:
    """Each output goes where it was asked for."""
    wanted = {output.name: call.destination(output) for output in call.form.outputs}
    main = wanted[call.form.outputs[0].name]
    room = Room(main.parent)
    try:
        values = {field: stage(call, room, field, value) for field, value in call.sources.items()}
        before = room.listing()
        by_out = call.form.takes_output_name
        # Beside a control file the tool does not run in the room.
        name = str(room.folder / OUT / main.name) if call.base else f"{OUT}/{main.name}"
        given, _ = start(call, values, ["-out", name] if by_out else [], call.base or room.folder)
        words = words_of(call, values) | {"out": main.stem}
        return delivery.to_destinations(call, delivery.Run(given, words, by_out, rooms.changed(before, room.listing())), wanted)
    finally:
        room.close()


def run_to_folder(call: Call) -> dict[str, Any]:
    """All that the run makes goes into one folder."""
    room = Room(call.folder)
    try:
        values = {field: stage(call, room, field, value) for field, value in call.sources.items()}
        (room.folder / "csv").mkdir()  # the tool makes no folder, and tables of sections lie in this one
        before = room.listing()
        words = words_of(call, values)
        # Where -out gives the names that the tool would choose itself, outputs stand apart from the inputs.
        same = all(rule.out_name == rule.name.replace("{first}", "{out}") for rule in call.form.operation.outputs)
        given, _ = start(call, values, ["-out", f"{OUT}/{words['first']}"] if same else [], room.folder)
        moves = rooms.moves_to_folder(rooms.changed(before, room.listing()), room.folder, call.folder)
        rooms.publish(moves)
    finally:
        room.close()
    made = [move.target for move in moves]
    return delivery.from_folder(call, delivery.Run(given, words, False, made)) | {"FOLDER": str(call.folder)}


def run_in_place(call: Call) -> dict[str, Any]:
    """The control file says where files lie, so the run has its place."""
    values = {field: seen_from_base(call, value) if isinstance(value, Path) else value for field, value in call.sources.items()}
    given, record = start(call, values, [], call.base)
    named = [call.base / name for name in record.output_names]
    made = list(dict.fromkeys(file for name in named for file in [name, *rooms.companions(name)]))
    rooms.forget_notes(made)
    return delivery.from_folder(call, delivery.Run(given, words_of(call, values), False, made))


def words_of(call: Call, values: dict[str, Any]) -> dict[str, str]:
    """What the words in names of outputs stand for."""
    first = values.get("INPUTS") or values.get("INPUT") or ""
    layer = next((values[field.name] for field in call.form.fields if field.kind == "layer"), "")
    return {"first": Path(first[0] if isinstance(first, list) else first).stem, "layer": Path(layer).stem,
            "levels": Path(values.get("WL") or "").stem, "control": call.control_file.stem if call.control_file else ""}


def start(call: Call, values: dict[str, Any], more: list[str], folder: Path) -> tuple[list[str], Record]:
    """Runs the tool. Returns its arguments, and what it did; a run that does not finish raises the tool's message."""
    given = arguments(call.form, values, more)
    missing = what_is_missing(call.form, given)
    if missing:
        raise QgsProcessingException(missing)
    tool = chosen_tool()
    call.feedback.pushCommandInfo(" ".join([str(tool), *(f'"{word}"' if " " in word else word for word in given)]))
    # How long files are that only a control file names is not known, so the bar then shows no share of them.
    return given, run_tool(tool, given, folder, call.feedback, shows_progress=call.control_file is None)
