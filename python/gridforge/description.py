"""gridforge.json as records: what there is to know about the command line."""
from __future__ import annotations

import json
import os
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Union

from .tool import find_description

SHAPE = 1  # of the file; a change of its meaning raises it


class DescriptionError(Exception):
    """A description that cannot be read, or that a later version of the tool has written."""


@dataclass(frozen=True)
class Flag:
    """A flag with its value. `kind` is switch, number, integer, grid, layer, table, controlFile, choice or name."""
    flag: str
    kind: str
    form: str
    glued: bool
    description: str
    default: Union[bool, int, float, str, None]
    unit: Union[str, None]
    choices: tuple[str, ...]
    required: bool
    repeated: bool
    acts: bool
    needs: tuple[str, ...]
    group: Union[str, None]

    @property
    def name(self) -> str:
        """Without the hyphen."""
        return self.flag[1:]

    @property
    def takes_next(self) -> bool:
        """The next argument is the value."""
        return self.kind != "switch" and not self.glued


@dataclass(frozen=True)
class InputRule:
    """The names that stand by themselves. `kind` is grid or table."""
    kind: str
    least: int
    most: int
    more: str  # refused or ignored
    then_output_name: bool
    output_name_must_exist: bool


@dataclass(frozen=True)
class OutputRule:
    """A file that is written if a flag of `when` is given and none of `unless`."""
    kind: str  # grid, layer, table or netcdf
    name: str
    out_name: Union[str, None]
    when: tuple[str, ...]
    unless: tuple[str, ...]
    note: Union[str, None]
    anywhere: bool  # an attribute or a control file may name its folder


@dataclass(frozen=True)
class Operation:
    name: str
    description: str
    page: str
    flags: tuple[Flag, ...]  # one or more ask for the operation
    inputs: InputRule
    outputs: tuple[OutputRule, ...]
    options: tuple[Flag, ...]

    def option(self, flag: str) -> Union[Flag, None]:
        """The flag or option of that name, with its hyphen."""
        return next((row for row in self.flags + self.options if row.flag == flag), None)


@dataclass(frozen=True)
class Description:
    version: str
    common_options: tuple[Flag, ...]
    operations: tuple[Operation, ...]

    def operation(self, name: str) -> Operation:
        return next(row for row in self.operations if row.name == name)

    @property
    def flags(self) -> dict[str, Flag]:
        """All flags by their names with the hyphen, in the order in which they come first."""
        rows = list(self.common_options)
        for operation in self.operations:
            rows += operation.flags + operation.options
        return {row.flag: row for row in reversed(rows)}


def _flag(row: dict[str, Any]) -> Flag:
    return Flag(row["flag"], row["kind"], row["form"], row["glued"], row["description"], row["default"], row["unit"],
                tuple(row["choices"]), row["required"], row["repeated"], row["acts"], tuple(row["needs"]), row["group"])


def _output(row: dict[str, Any]) -> OutputRule:
    return OutputRule(row["kind"], row["name"], row["outName"], tuple(row["when"]), tuple(row["unless"]), row["note"],
                      row["anywhere"])


def _operation(row: dict[str, Any]) -> Operation:
    inputs = row["inputs"]
    return Operation(row["name"], row["description"], row["page"], tuple(map(_flag, row["flags"])),
                     InputRule(inputs["kind"], inputs["min"], inputs["max"], inputs["more"], inputs["thenOutputName"],
                               inputs.get("outputNameMustExist", False)),  # older tools do not write it
                     tuple(map(_output, row["outputs"])), tuple(map(_flag, row["options"])))


def load_description(path: Union[str, os.PathLike[str], None] = None) -> Description:
    """That of `path`, or the one that `find_description` finds. Members that are not known here are ignored."""
    file = Path(path) if path is not None else find_description()
    try:
        with open(file, encoding="utf-8") as text:
            content = json.load(text)
        if content["shape"] > SHAPE:
            raise DescriptionError(f"{file} is of a later version of the tool than this package.")
        return Description(content["version"], tuple(map(_flag, content["commonOptions"])),
                           tuple(map(_operation, content["operations"])))
    except (OSError, ValueError, KeyError, TypeError) as error:
        raise DescriptionError(f"{file} is not a description of the tool: {error}") from error
