"""Arguments of the tool from those of the functions in `operations`."""
from __future__ import annotations

import math
import os
from pathlib import Path
from typing import TYPE_CHECKING, Any, Callable, Iterable, Mapping, Optional, Sequence, TypedDict, Union

from .arguments import EN_DASH, Name, WrongUse, relative_name, text_of
from .description import Flag, Operation, load_description
from .progress import Progress
from .record import Record
from .running import run

if TYPE_CHECKING:
    from typing import IO

    from .process import Cancel

Names = Union[Name, Iterable[Name]]
Number = Union[int, float]


class How(TypedDict, total=False):
    """The keywords of `gridforge.run`, which every function of an operation takes as well."""
    folder: Union[str, "os.PathLike[str]", None]
    stage: bool
    overwrite: bool
    keep: bool
    named_inputs: Sequence[Name]
    timeout: Optional[float]
    log: "Optional[IO[bytes]]"
    sums: bool
    environment: Optional[Mapping[str, str]]
    on_line: Optional[Callable[[str], None]]
    on_progress: Optional[Callable[[Progress], None]]
    cancel: "Optional[Cancel]"


def _several(values: Any) -> list[Any]:
    return [values] if isinstance(values, (str, bytes, os.PathLike)) else list(values)


def _number(flag: Flag, value: Any) -> str:
    """As many digits as it takes to tell it from all other numbers."""
    if isinstance(value, bool) or not math.isfinite(value) or (flag.kind == "integer" and value != int(value)):
        raise WrongUse(f"{flag.flag} takes a{' whole' if flag.kind == 'integer' else ''} number, not: {value}")
    return str(int(value)) if flag.kind == "integer" else repr(float(value))


def _choice(flag: Flag, value: Any) -> str:
    text = str(int(value)) if isinstance(value, (bool, int)) else str(value)
    plain = text.rstrip("0123456789") + "<n>" if any(choice.endswith("<n>") for choice in flag.choices) else text
    if text not in flag.choices and plain not in flag.choices:
        raise WrongUse(f"{flag.flag} takes one of {', '.join(flag.choices)}, not: {value}")
    return text


def _arguments(flag: Flag, value: Any) -> list[Name]:
    """Of one flag."""
    if flag.kind == "switch":
        return [flag.flag] if value else []
    if flag.kind in ("number", "integer"):
        return [flag.flag + _number(flag, value)]
    values = _several(value) if flag.repeated else [value]
    if flag.kind == "choice":
        return [flag.flag + _choice(flag, each) for each in values]
    return [part for each in values for part in (flag.flag, each)]


def _input(name: Name, folder: Path) -> str:
    """A name that is not a flag, whatever it begins with."""
    text = relative_name(text_of(name), folder)
    return os.path.join(".", text) if text[:1] in ("-", "/", EN_DASH) else text


def _options(operation: Operation, values: Mapping[str, Any]) -> list[Name]:
    """Those with a value first: a switch, as -tin, counts in spite of them."""
    given = [(operation.option(flag), value) for flag, value in values.items() if value is not None]
    ordered = sorted(((flag, value) for flag, value in given if flag is not None), key=lambda pair: pair[0].kind == "switch")
    return [argument for flag, value in ordered for argument in _arguments(flag, value)]


def call(name: str, asked: Mapping[str, Any], inputs: Names, options: Mapping[str, Any], how: Mapping[str, Any]) -> Record:
    """Runs an operation: `asked` are the flags that ask for it, with their values."""
    operation = load_description().operation(name)
    folder = Path(os.path.realpath(how.get("folder") or os.getcwd()))
    return run([*_options(operation, asked), *_options(operation, options), *(_input(each, folder) for each in _several(inputs))],
               **how)
