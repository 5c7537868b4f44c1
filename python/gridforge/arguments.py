"""The tool's arguments: what each of them is, and how they are handed over so that the tool takes names for names."""
from __future__ import annotations

import os
from dataclasses import dataclass, replace
from pathlib import Path
from typing import Iterable, Optional, Union

from .description import Description, Flag, Operation
from .families import Look

Name = Union[str, bytes, "os.PathLike[str]"]

LONGEST_NAME = 1000  # bytes that the tool takes of an argument; it cuts off the rest without a word
EN_DASH = "\udc96"   # as text the byte 96, which the tool takes for a hyphen, too
ODD_FLAGS = ("-change", "-check")  # these the tool also takes with two hyphens

FILE_KINDS = ("grid", "layer", "table", "controlFile")


class WrongUse(Exception):
    """Arguments with which no run is started."""


@dataclass(frozen=True)
class Argument:
    """An argument and its role: flag, value (of the flag before it, which `flag` is then), input or output."""
    text: str
    role: str
    flag: Optional[Flag] = None

    @property
    def is_read(self) -> bool:
        """It names a file that the tool reads."""
        return self.role == "input" or (self.role == "value" and self.flag is not None and self.flag.kind in FILE_KINDS)


def text_of(argument: Name) -> str:
    return os.fsdecode(argument)


def _known_flag(text: str, flags: dict[str, Flag]) -> Optional[Flag]:
    """The flag of the longest name that the argument begins with, in any case; letters after it do not count."""
    wanted = "-" + text[1:].lower()
    if wanted.startswith(tuple("-" + odd for odd in ODD_FLAGS)):
        wanted = wanted[1:]
    names = sorted((name for name in flags if wanted.startswith(name.lower())), key=len)
    return flags[names[-1]] if names else None


def _is_flag(text: str, flags: dict[str, Flag], look: Look) -> bool:
    """As the tool sees it, except that a name from the root is not a flag."""
    if text[:1] == "/":
        rest = text[1:].replace("\\", "/")
        return "/" not in rest and _known_flag(text, flags) is not None and not look.matching(text)
    return text[:1] == "-" or (text[:1] == EN_DASH and not look.matching(text))


def scan(arguments: Iterable[Name], description: Description, folder: Path) -> list[Argument]:
    """The roles of arguments, as the tool in `folder` will see them."""
    flags = description.flags
    look = Look(folder)
    scanned: list[Argument] = []
    pending: Optional[Flag] = None
    for argument in map(text_of, arguments):
        if pending is not None:
            scanned.append(Argument(argument, "value", pending))
            pending = None
        elif argument and _is_flag(argument, flags, look):
            flag = _known_flag(argument, flags)
            scanned.append(Argument(argument, "flag", flag))
            pending = flag if flag is not None and flag.takes_next else None
        else:
            scanned.append(Argument(argument, "input"))
    return _with_output(scanned, description, look)


def operation_of(scanned: Iterable[Argument], description: Description) -> Optional[Operation]:
    """The operation that the flags ask for; none if they ask for nothing."""
    given = {argument.flag.flag for argument in scanned if argument.role == "flag" and argument.flag is not None}
    return next((row for row in description.operations if any(flag.flag in given for flag in row.flags)), None)


def _expanded(scanned: Iterable[Argument], look: Look) -> list[tuple[int, str]]:
    """All names that stand by themselves, wildcards replaced by what they match, each with the place of its argument."""
    return [(at, name) for at, argument in enumerate(scanned) if argument.role in ("input", "output")
            for name in look.found(argument.text) or [argument.text]]


def _beyond_inputs(scanned: Iterable[Argument], operation: Optional[Operation], look: Look) -> list[tuple[int, str]]:
    """The names after the last input of an operation that takes the name of its output there."""
    if operation is None or not operation.inputs.then_output_name:
        return []
    return _expanded(scanned, look)[operation.inputs.most:]


def _with_output(scanned: list[Argument], description: Description, look: Look) -> list[Argument]:
    """A wildcard stays an input, as it may match inputs and the output."""
    places = {at for at, name in _beyond_inputs(scanned, operation_of(scanned, description), look) if name == scanned[at].text}
    return [replace(argument, role="output") if at in places else argument for at, argument in enumerate(scanned)]


def output_names(scanned: list[Argument], operation: Optional[Operation], look: Look) -> list[str]:
    """The names that the main output may get by standing after the inputs: what a wildcard matches, and the wildcard itself."""
    return [text for at, name in _beyond_inputs(scanned, operation, look) for text in (name, scanned[at].text)]


def value_of(scanned: Iterable[Argument], flag: str) -> Optional[str]:
    """The last value given to a flag whose value is the next argument."""
    values = [a.text for a in scanned if a.role == "value" and a.flag is not None and a.flag.flag == flag]
    return values[-1] if values else None


# --- Names ---------------------------------------------------------------------------------------------------------------

def relative_name(name: str, folder: Path) -> str:
    """A name from the root as one that is seen from `folder`, which has no links in it; any other name as it is."""
    if not os.path.isabs(name):
        return name
    if ".." in name.split(os.sep):  # may lead back out of a link, which only the system can follow
        head, tail = os.path.split(name)
        name = os.path.join(os.path.realpath(head), tail)
    try:
        return os.path.relpath(name, folder)
    except ValueError:  # on another drive of Windows, where a name from the root is not a flag
        return name


def _handed_over(argument: Argument, folder: Path) -> Argument:
    if argument.role == "flag":
        return argument
    text = argument.text
    if argument.role in ("input", "output") or (argument.flag is not None and argument.flag.kind != "choice"):
        text = relative_name(text, folder)
    if text[:1] in (" ", "\t", EN_DASH):
        text = os.path.join(".", text)
    return replace(argument, text=text)


def _refuse_what_the_tool_cannot_take(text: str) -> None:
    if len(os.fsencode(text)) > LONGEST_NAME:
        raise WrongUse(f"The tool takes {LONGEST_NAME} bytes of a name, and this one is longer: {text}")
    if text != text.rstrip(" "):
        raise WrongUse(f"The tool takes no name that ends with a blank: '{text}'")
    if "\n" in text or "\r" in text or "\0" in text:
        raise WrongUse(f"The tool takes no name with the end of a line in it: {text!r}")


def hand_over(scanned: Iterable[Argument], folder: Path) -> list[Argument]:
    """The arguments for a run in `folder`: names from the root become relative ones, as the tool takes a leading / for a flag,
    and batch mode is asked for, as nobody is there to press Enter."""
    given = [_handed_over(argument, folder) for argument in scanned]
    for argument in given:
        _refuse_what_the_tool_cannot_take(argument.text)
    if not any(a.role == "flag" and a.flag is not None and a.flag.flag == "-b" for a in given):
        given.insert(0, Argument("-b", "flag"))
    return given


def input_patterns(scanned: Iterable[Argument]) -> list[str]:
    """The names of what the tool will read, with wildcards as they were given."""
    return [argument.text for argument in scanned if argument.is_read and argument.text]
