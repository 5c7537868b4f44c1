"""The names of outputs by the rules of the description, as far as these settle them before a run."""
from __future__ import annotations

import os
import re
from typing import Optional

from .arguments import Argument, output_names, value_of
from .description import Operation, OutputRule
from .families import Look, family_of

_ENDINGS = {
    "grid": r"\.(asc|flt|hdr|prj)",
    "layer": r"(_[PLR])?\.(mif|mid|shp|shx|dbf|prj)",
    "table": "",
    "netcdf": "",
}
_WORD = re.compile(r"\{(\w+)\}")
_OUT_FORMATS = (".asc", ".flt", ".mif", ".shp", ".nc", ".csv")


def _stem(name: str) -> str:
    return family_of(os.path.normpath(name.replace("\\", "/")))[0]


def _named_output(name: str) -> str:
    """The extension of a format is replaced or, by some operations, followed by that of the output."""
    name = os.path.normpath(name.replace("\\", "/"))
    stem, extension = family_of(name)
    return re.escape(stem) + f"({re.escape(name[len(stem):])})?" if extension in _OUT_FORMATS else re.escape(name)


class OutputNames:
    """Answers whether a run may write under a name. In doubt it may."""

    def __init__(self, operation: Optional[Operation], scanned: list[Argument], look: Look):
        self._inputs = [os.path.normpath(name) for argument in scanned if argument.is_read for name in look.matching(argument.text)]
        self._outs = [*output_names(scanned, operation, look), *filter(None, [value_of(scanned, "-out")])]
        self._formats = {a.flag.flag for a in scanned if a.role == "flag" and a.flag is not None} & {"-asc", "-flt"}
        rules = operation.outputs if operation is not None else ()
        self._rules = [rule for rule in rules if not self._is_conversion(rule)]
        self._converts = len(self._rules) < len(rules)
        self._expressions = [re.compile(self._expression(rule), re.IGNORECASE | re.DOTALL) for rule in self._rules]

    def _is_conversion(self, rule: OutputRule) -> bool:
        """Each input in the other format, beside it."""
        return rule.name == "{input}" and not self._outs

    @property
    def anywhere(self) -> bool:
        """An attribute or a control file may name any folder."""
        return any(rule.anywhere for rule in self._rules)

    def _word(self, word: str) -> str:
        if word == "out" and self._outs:
            return "(" + "|".join(map(_named_output, self._outs)) + ")"
        if word == "input":
            return "(" + "|".join({re.escape(os.path.basename(_stem(name))) for name in self._inputs}) + ")"
        return ".*"

    def _expression(self, rule: OutputRule) -> str:
        template = rule.out_name if self._outs and rule.out_name is not None else rule.name
        pieces = _WORD.split(template)  # text and words by turns
        parts = [self._word(piece) if at % 2 else re.escape(piece) for at, piece in enumerate(pieces)]
        anywhere = "(.*/)?" if pieces[0] or len(pieces) == 1 or pieces[1] != "out" else ""
        return anywhere + "".join(parts) + _ENDINGS[rule.kind]

    def _converted(self, name: str) -> bool:
        """It is the other format of an input or, if a format is asked for, any in that one."""
        stem, extension = family_of(name)
        if self._formats:
            return "-" + extension[1:] in self._formats
        return any(family_of(other)[0] == stem and family_of(other)[1] != extension for other in self._inputs)

    def may_be(self, name: str) -> bool:
        name = os.path.normpath(name.replace("\\", "/"))
        if self._converts and self._converted(name):
            return True
        return any(expression.fullmatch(name) for expression in self._expressions)
