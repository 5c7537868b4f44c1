#!/usr/bin/env python3
"""Writes the functions of the package, one for each operation: signatures from the description for programs, docstrings from the
pages of the operations.

usage: python/make_operations.py gridforge.json FILE     FILE is python/gridforge/operations.py
"""
import keyword
import re
import sys
import textwrap
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "python"))
from gridforge.description import Flag, Operation, load_description  # noqa: E402

WIDTH = 128
HEAD = '''"""One function for each operation. Made by python/make_operations.py from the description for programs and the pages of the
operations: do not edit."""
# flake8: noqa
from __future__ import annotations

from typing import TYPE_CHECKING, Iterable, Literal, Optional, Union

from .arguments import Name
from .calls import How, Names, Number, call
from .record import Record

if TYPE_CHECKING:
    from typing_extensions import Unpack
'''
TYPES = {"switch": "bool", "number": "Number", "integer": "int"}


def parameter_name(flag: Flag) -> str:
    """Of a flag that asks for an operation the name of its value; of an option its own."""
    value = re.fullmatch(r".*<([a-z]+)[^>]*>", flag.form)
    name = value[1] if value and not flag.choices else flag.name
    return name + "_" if keyword.iskeyword(name) else name


def type_of(flag: Flag) -> str:
    if flag.choices:
        plain = all(re.fullmatch(r"\w+", choice) for choice in flag.choices)
        kind = "Literal[" + ", ".join(repr(int(c) if c.isdigit() else c) for c in flag.choices) + "]" if plain else "str"
    else:
        kind = TYPES.get(flag.kind, "Name")
    return f"Union[{kind}, Iterable[{kind}]]" if flag.repeated else kind


def kind_with_default(flag: Flag) -> str:
    """A default that the tool has is left to it: to give it can do more than to set it."""
    kind = type_of(flag)
    if flag.required:
        return kind
    return "bool = False" if kind == "bool" else f"Optional[{kind}] = None"


def page_text(operation: Operation) -> str:
    """The first paragraph of what the page says that the operation does, without links."""
    page = (ROOT / operation.page).read_text(encoding="utf-8")
    section = re.search(r"^## What it does\n+(.*?)\n(?:\n|\||```|!\[)", page, re.S | re.M)
    if section is None:
        sys.exit(f"{operation.page} does not say what the operation does.")
    text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", section[1]).strip()
    if text.endswith(":"):  # what it announces is not here
        text = text[:text.rfind(". ") + 1]
    return textwrap.fill(re.sub(r"\s+", " ", text), WIDTH - 4).replace("\\", "\\\\").replace('"""', "'''")


def wrapped(head: str, items: list[str], tail: str) -> str:
    """Items with commas between them, broken between items only."""
    lines = [head]
    for at, item in enumerate(items):
        text = item + (tail if at + 1 == len(items) else ",")
        if len(lines[-1]) + 1 + len(text) > WIDTH:
            lines.append(" " * len(head))
        lines[-1] += text if lines[-1].endswith(("(", " ", "{")) else " " + text
    return "\n".join(lines)


def described(flag: Flag) -> str:
    notes = [flag.unit] if flag.unit and flag.unit != "decimals" else []
    if flag.default not in (None, False, True) and flag.kind != "switch":
        notes.append(f"{flag.default} without it")
    if flag.choices:
        notes.insert(0, ", ".join(flag.choices))
    if flag.needs:
        notes.append("with " + ", ".join(need.lstrip("-") for need in flag.needs))
    return flag.description + (f" ({'; '.join(notes)})" if notes else "")


def input_words(operation: Operation) -> str:
    rule = operation.inputs
    kind = {"grid": "grids", "table": "text files of points"}[rule.kind]
    if rule.least == rule.most:
        return f"{rule.least} {kind[:-1] if rule.least == 1 and rule.kind == 'grid' else kind}; wildcards are taken"
    return f"{rule.least} to {rule.most} {kind}; wildcards are taken"


def documented(rows: list[tuple[str, str]]) -> list[str]:
    widest = max(len(name) for name, _ in rows)
    lines = []
    for name, text in rows:
        lines += textwrap.wrap(text, WIDTH - 4, initial_indent=f"{name:{widest}}  ", subsequent_indent=" " * (widest + 2))
    return lines


def docstring(operation: Operation, summary: str, rows: list[tuple[str, str]]) -> str:
    lines = [summary[0].upper() + summary[1:] + ".", "", *page_text(operation).splitlines(), "", *documented(rows), "",
             f"Further keywords are those of gridforge.run. Page: {operation.page}"]
    return '    """' + "\n".join("    " + line if line and at else line for at, line in enumerate(lines)) + '\n    """\n'


def function(operation: Operation, name: str, asking: list[Flag]) -> str:
    """`asking` are flags that ask for the operation and become parameters, or the one switch that does."""
    is_switch = asking[0].kind == "switch"
    rows: list[tuple[str, str]] = []
    signature = []
    if operation.inputs.most > 0:
        rows.append(("inputs", input_words(operation)))
        signature.append("inputs: Names" + (" = ()" if operation.inputs.least == 0 else ""))
    asked = "{" + f'"{asking[0].flag}": True' + "}"
    if not is_switch:
        one = len(asking) == 1
        names = [parameter_name(flag) for flag in asking]
        rows += [(parameter, described(flag)) for parameter, flag in zip(names, asking)]
        signature += [f"{parameter}: " + (type_of(flag) if one else f"Optional[{type_of(flag)}] = None")
                      for parameter, flag in zip(names, asking)]
        asked = "{" + ", ".join(f'"{flag.flag}": {parameter}' for parameter, flag in zip(names, asking)) + "}"
    options = sorted(operation.options, key=lambda flag: not flag.required)
    rows += [(flag.name, described(flag)) for flag in options]
    if options:
        signature.append("*")
    signature += [f"{flag.name}: {kind_with_default(flag)}" for flag in options]
    given = [f'"{flag.flag}": {flag.name}' for flag in options] or [""]
    given[0] = "{" + given[0]
    given[-1] += "}"
    text = wrapped(f"def {name}(", [*signature, "**how: Unpack[How]"], ") -> Record:")
    summary = asking[0].description if len(operation.flags) > 1 and is_switch else operation.description
    call = [f'"{operation.name}"', asked, "inputs" if operation.inputs.most > 0 else "()", *given, "how"]
    body = wrapped("    return call(", call, ")")
    return f"{text}\n{docstring(operation, summary, rows)}{body}\n"


def functions(operation: Operation) -> list[tuple[str, str]]:
    """One, or one for each switch that asks for the operation."""
    if all(flag.kind == "switch" for flag in operation.flags):
        return [(flag.name, function(operation, flag.name, [flag])) for flag in operation.flags]
    return [(operation.name, function(operation, operation.name, list(operation.flags)))]


def module(description_file: str) -> str:
    made = [pair for operation in load_description(description_file).operations for pair in functions(operation)]
    names = textwrap.fill(", ".join(f'"{name}"' for name, _ in made), WIDTH, initial_indent="__all__ = [",
                          subsequent_indent=" " * 11)
    return HEAD + "\n" + names + "]\n" + "".join("\n\n" + text for _, text in made)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    Path(sys.argv[2]).write_text(module(sys.argv[1]), encoding="utf-8")
