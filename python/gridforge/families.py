"""Names of files as the tool looks for them: wildcards, capitals and small letters, and what belongs to a grid or a layer."""
from __future__ import annotations

import os
import re
from collections import defaultdict
from pathlib import Path
from typing import Iterator, Optional, Union

COMPANIONS = {".flt": (".hdr",), ".mif": (".mid",), ".shp": (".shx", ".dbf", ".cpg")}
PROJECTION = ".prj"


def is_pattern(name: str) -> bool:
    return "*" in name or "?" in name


def split_name(name: str) -> tuple[str, str]:
    """The folder, with its separator, and the last part; \\ separates as / does."""
    name = name.replace("\\", "/")
    at = name.rfind("/") + 1
    return name[:at], name[at:]


def family_of(name: str) -> tuple[str, str]:
    """What a file shares with those that belong to it, and its extension in small letters."""
    stem, extension = os.path.splitext(name)
    return stem, extension.lower()


def _expression(pattern: str) -> re.Pattern[bytes]:
    """Of * and ?, byte by byte, as the tool compares."""
    wild = {b"*": b".*", b"?": b"."}
    pieces = re.split(rb"([*?])", os.fsencode(pattern))
    return re.compile(b"".join(wild.get(piece, re.escape(piece)) for piece in pieces), re.DOTALL)


class Look:
    """A look at the files that names stand for, seen from a folder. Each folder is listed once."""

    def __init__(self, folder: Union[str, Path]):
        self.folder = Path(folder)
        self._listed: dict[str, dict[str, list[str]]] = {}

    def _entries(self, part: str) -> dict[str, list[str]]:
        """The names in a folder by their small letters."""
        if part not in self._listed:
            entries: dict[str, list[str]] = defaultdict(list)
            try:
                for name in os.listdir(self.folder / part):
                    entries[name.lower()].append(name)
            except OSError:
                pass  # what cannot be listed matches nothing; the tool says why
            self._listed[part] = entries
        return self._listed[part]

    def matching(self, name: str) -> list[str]:
        """The names that match, in the order of their bytes, with the folder as it was given."""
        part, last = split_name(name)
        if not is_pattern(last):
            return [part + last] if last and os.path.lexists(self.folder / (part + last)) else []
        expression = _expression(last)
        found = [entry for entries in self._entries(part).values() for entry in entries
                 if expression.fullmatch(os.fsencode(entry))]
        return [part + entry for entry in sorted(found, key=os.fsencode)]

    def in_any_case(self, name: str) -> Optional[str]:
        """The file of that name or, if there is none, the only one whose name differs in capitals and small letters."""
        part, last = split_name(name)
        if os.path.isfile(self.folder / (part + last)):
            return part + last
        found = [entry for entry in self._entries(part).get(last.lower(), []) if os.path.isfile(self.folder / part / entry)]
        return part + found[0] if len(found) == 1 else None

    def found(self, name: str) -> list[str]:
        """Those that match, or the one file that differs in capitals and small letters."""
        other = self.in_any_case(name)
        return self.matching(name) or ([other] if other is not None else [])

    def companions(self, name: str) -> Iterator[str]:
        """What belongs to a grid or layer: files of its stem in its folder, the .prj last."""
        stem, extension = family_of(name)
        for other in (*COMPANIONS.get(extension, ()), PROJECTION):
            found = self.in_any_case(stem + other)
            if found is not None:
                yield found
