"""An operation as a form: its fields, the files it makes, and the arguments for what was filled in.

All of it comes from the description of the command line. Nothing here needs QGIS.
"""
from __future__ import annotations

import re
from dataclasses import dataclass
from typing import Any, Union

from .package import Flag, Operation, OutputRule
from .words import FLAG_LABELS, GROUP_LABELS, OUTPUT_WORDS, UNITS

# What a name of an output may hold besides the words that one run has one of.
SINGLE_WORDS = {"first", "second", "layer", "levels", "control", "out", "value"}
GRID_FORMAT = "gridFormat"


@dataclass(frozen=True)
class Field:
    """What a user fills in. `kind` is grid, grids, layer, file, controlFile, number, integer, switch, choice, choices or text."""
    name: str
    label: str
    kind: str
    flag: Union[Flag, None] = None  # none for inputs, and for groups of flags
    default: Any = None
    choices: tuple[str, ...] = ()
    labels: tuple[str, ...] = ()  # of the choices
    optional: bool = False
    least: int = 1  # of several grids
    help: str = ""


@dataclass(frozen=True)
class Output:
    """A file of a run. Rows of the description that name one file by different flags are one output."""
    name: str
    label: str
    kind: str  # grid, layer, table or netcdf
    style: str
    rules: tuple[OutputRule, ...]


@dataclass(frozen=True)
class Form:
    operation: Operation
    fields: tuple[Field, ...]
    outputs: tuple[Output, ...]
    to_folder: bool  # the files go into one folder, under names of the tool's own

    def field(self, name: str) -> Field:
        return next(field for field in self.fields if field.name == name)

    @property
    def control_file(self) -> Union[Field, None]:
        return next((field for field in self.fields if field.kind == "controlFile"), None)

    @property
    def takes_output_name(self) -> bool:
        return self.operation.option("-out") is not None

    @property
    def takes_grid_format(self) -> bool:
        return any(flag.group == GRID_FORMAT for flag in self.operation.options)

    @property
    def writes_beside_inputs(self) -> bool:
        """Names in a control file say where files lie, so such a run has its place, unless its output can be named."""
        return self.control_file is not None and self.to_folder


def parameter_name(flag: str) -> str:
    return flag.lstrip("-").upper()


def label_of(flag: Flag) -> str:
    """The label of a field: the words for dialogs, or the flag's description without what follows a semicolon."""
    text = re.sub(r"^(the|an?) ", "", flag.description.split(";")[0].strip())
    label = FLAG_LABELS.get(flag.flag, text[:1].upper() + text[1:])
    unit = UNITS.get(flag.unit, flag.unit)
    return f"{label} ({unit})" if unit else label


# --- fields

def _value_field(flag: Flag, asks: bool) -> Field:
    """A flag that has a value, or an option that is a switch. One that `asks` for the operation has no default."""
    kind = {"table": "file", "name": "text"}.get(flag.kind, flag.kind)
    if flag.repeated and kind == "grid":
        kind = "grids"
    optional = not (asks or flag.required)
    default = flag.default
    if kind == "switch":
        default = False
    elif asks or flag.acts:
        default = None  # giving it does more than set it
    label = label_of(flag)
    text = flag.description
    if flag.default is not None and default is None and kind in ("number", "integer"):
        text += f"; {flag.default:g} without it"
    return Field(parameter_name(flag.flag), label, kind, flag, default, flag.choices, flag.choices, optional, help=text)


def _input_fields(operation: Operation) -> list[Field]:
    rule = operation.inputs
    if rule.most == 0:
        return []
    if rule.kind != "grid":
        return [Field("INPUT", "Input table", "file")]
    if rule.most == 1:
        return [Field("INPUT", "Input grid", "grid")]
    if rule.most == 2:
        return [Field("INPUT", "First grid", "grid"), Field("INPUT_2", "Second grid", "grid", optional=rule.least < 2)]
    label = "Input grids" if rule.least else "Further grids"
    return [Field("INPUTS", label, "grids", optional=rule.least == 0, least=max(rule.least, 1))]


def _asking_fields(operation: Operation) -> list[Field]:
    """The fields of the flags that ask for the operation. A single switch needs none."""
    flags = operation.flags
    if len(flags) > 1 and all(flag.kind == "switch" for flag in flags):
        names = tuple(flag.flag for flag in flags)
        return [Field("OPERATION", "Keep", "choice", default=names[0], choices=names,
                      labels=tuple(label_of(flag) for flag in flags))]
    fields = []
    for flag in flags:
        if flag.kind == "choice" and flag.repeated:
            fields += _choice_fields(flag)
        elif flag.kind != "switch":
            field = _value_field(flag, asks=True)
            # Of several flags with values each may be the only one.
            fields.append(Field(field.name, field.label, field.kind, flag, optional=len(flags) > 1, help=flag.description))
    return fields


def _choice_fields(flag: Flag) -> list[Field]:
    """Several choices at once, and a list of numbers for those that end in one."""
    plain = tuple(choice for choice in flag.choices if "<" not in choice)
    fields = [Field(parameter_name(flag.flag), label_of(flag), "choices", flag, default=plain[:1], choices=plain,
                    labels=plain, optional=True, help=flag.description)]
    for choice in flag.choices:
        if "<" in choice:
            word = choice.split("<")[0]
            fields.append(Field(parameter_name(flag.flag) + "_" + word.upper(), f"{word}: whole numbers with commas between",
                                "text", flag, choices=(word,), optional=True))
    return fields


def _group_field(group: str, flags: list[Flag]) -> Field:
    names = tuple(flag.flag for flag in flags)
    default = next((flag.flag for flag in flags if flag.default is True), None)
    labels = tuple(label_of(flag) for flag in flags)
    if default is None:
        default, names, labels = "", ("", *names), ("As the tool chooses", *labels)
    return Field(parameter_name(group), GROUP_LABELS.get(group, group), "choice", None, default, names, labels, optional=True)


def _option_fields(operation: Operation, to_folder: bool) -> list[Field]:
    fields, groups = [], set()
    for flag in operation.options:
        if flag.flag == "-out" or flag.group == GRID_FORMAT and not to_folder:
            continue  # the names of the outputs say it
        if flag.group is None:
            fields.append(_value_field(flag, asks=False))
        elif flag.group not in groups:
            groups.add(flag.group)
            fields.append(_group_field(flag.group, [row for row in operation.options if row.group == flag.group]))
    # A switch that is on by itself is only worth giving after others, of which the last one counts.
    return sorted(fields, key=lambda field: field.flag is not None and field.flag.default is True)


# --- outputs

def suffix_of(rule: OutputRule, to_folder: bool) -> str:
    """What stands after the name of the input or of `-out`: `_src` of `{out}_src`."""
    return re.sub(r"^\{\w+\}", "", rule.name if to_folder else rule.out_name or rule.name)


def output_name(suffix: str, is_main: bool) -> str:
    """The name of the parameter: OUTPUT, OUTPUT_SRC, OUTPUT_TABLE for a suffix that is an extension alone."""
    words = re.sub(r"\W+", "_", re.sub(r"\.(csv|txt)$", "", suffix)).strip("_").upper()
    return "OUTPUT" if is_main else "OUTPUT_" + (words or "TABLE")


def has_open_words(rule: OutputRule, operation: Operation) -> bool:
    """Whether one run may write several files by this rule, or names that only its inputs know."""
    known = SINGLE_WORDS | ({"input"} if operation.inputs.most == 1 else set())
    return not set(re.findall(r"\{(\w+)\}", rule.name)) <= known


def _goes_to_folder(operation: Operation) -> bool:
    if any(has_open_words(rule, operation) for rule in operation.outputs):
        return True
    return operation.option("-out") is None and any(rule.kind != "table" for rule in operation.outputs)


def _outputs(operation: Operation, to_folder: bool) -> list[Output]:
    outputs: dict[str, Output] = {}
    for rule in operation.outputs:
        if to_folder and has_open_words(rule, operation):
            continue
        suffix = suffix_of(rule, to_folder)
        if suffix in outputs:
            first = outputs[suffix]
            outputs[suffix] = Output(first.name, first.label, first.kind, first.style, first.rules + (rule,))
            continue
        words = OUTPUT_WORDS.get((operation.name, suffix))
        label, style = words or (f"Output {suffix}".strip(), "")
        name = output_name(suffix, not outputs and not to_folder)
        outputs[suffix] = Output(name, label, rule.kind, style, (rule,))
    return list(outputs.values())


def make_form(operation: Operation) -> Form:
    to_folder = _goes_to_folder(operation)
    fields = _input_fields(operation) + _asking_fields(operation) + _option_fields(operation, to_folder)
    # What must be given comes first.
    fields.sort(key=lambda field: field.optional)
    return Form(operation, tuple(fields), tuple(_outputs(operation, to_folder)), to_folder)


# --- arguments

def number_text(value: Union[int, float]) -> str:
    """As a person would type it: no exponent, and no point without need."""
    if float(value) == int(value):
        return str(int(value))
    text = repr(float(value))
    return text if "e" not in text else f"{value:.20f}".rstrip("0")


def _is_default(field: Field, value: Any) -> bool:
    return field.optional and field.default is not None and value == field.default


def _given(field: Field, value: Any) -> list[str]:
    """The arguments of one field; none where it is empty or holds what the tool takes anyway."""
    flag = field.flag
    if value is None or value == "" or value == [] or _is_default(field, value):
        return []
    if field.kind == "switch":
        return [flag.flag] if value else []
    if field.kind == "choice" and flag is None:
        return [value] if value != _plain_choice(field) else []
    if field.kind == "choices":
        return [flag.flag + word for word in value]
    if field.kind == "text" and field.choices:
        return [flag.flag + field.choices[0] + word.strip() for word in value.split(",") if word.strip()]
    if field.kind in ("number", "integer"):
        value = number_text(value)
    values = value if isinstance(value, (list, tuple)) else [value]
    if flag.glued:
        return [flag.flag + str(one) for one in values]
    return [word for one in values for word in (flag.flag, str(one))]


def _plain_choice(field: Field) -> Union[str, None]:
    """The choice of a group that the tool takes where none is given. Of flags that ask for an operation one must be given."""
    return field.default if field.name != "OPERATION" else None


def arguments(form: Form, values: dict[str, Any], more: list[str]) -> list[str]:
    """The command line: what is asked for, options, `more`, and the inputs last."""
    asking = [flag.flag for flag in form.operation.flags if flag.kind == "switch"]
    line = ["-b"] + (asking if len(asking) == 1 else [])
    inputs: list[str] = []
    for field in form.fields:
        value = values.get(field.name)
        if not field.name.startswith("INPUT"):
            line += _given(field, value)
        elif value:
            inputs += value if isinstance(value, (list, tuple)) else [value]
    return line + more + inputs


def what_is_missing(form: Form, given: list[str]) -> Union[str, None]:
    """Why these arguments cannot be run, for flags that need others; the tool itself says all else."""
    for flag in form.operation.options:
        for needed in flag.needs:
            if flag.flag in given and needed not in given:
                return f"{label_of(flag)} ({flag.flag}) needs {needed} beside it."
    if not any(argument.startswith(flag.flag) for argument in given for flag in form.operation.flags):
        return "Nothing is asked for. Give one of " + ", ".join(flag.form for flag in form.operation.flags) + "."
    return None


def applies(rule: OutputRule, given: list[str]) -> bool:
    """Whether a run with these arguments writes the file."""
    def any_of(flags: tuple[str, ...]) -> bool:
        return any(argument.startswith(flag) for flag in flags for argument in given)
    return (not rule.when or any_of(rule.when)) and not any_of(rule.unless)


def name_in_run(output: Output, given: list[str], words: dict[str, str], by_out: bool) -> str:
    """What the tool calls an output: with the extension of a table, without that of a grid or layer; empty if it writes none.

    `words` are what the words in its rule stand for, `by_out` says that `-out` is given.
    """
    rule = next((rule for rule in output.rules if applies(rule, given)), None)
    if rule is None:
        return ""
    return (rule.out_name if by_out and rule.out_name else rule.name).format_map(words)
