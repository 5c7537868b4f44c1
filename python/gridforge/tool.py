"""Where the tool and its description are."""
from __future__ import annotations

import os
import shutil
from pathlib import Path
from typing import Mapping, Optional, Union

PACKAGE = Path(__file__).resolve().parent
EXECUTABLE = "gridforge.exe" if os.name == "nt" else "gridforge"
DESCRIPTION = "gridforge.json"


class ToolNotFound(Exception):
    """The executable is nowhere, or the place that a variable names holds none."""


def _is_executable(path: Path) -> bool:
    return path.is_file() and os.access(path, os.X_OK)


def _prefixes() -> list[Path]:
    """The folders that the package may be installed below, the nearest first."""
    return list(PACKAGE.parents)[:5]


def find_tool(environment: Union[Mapping[str, str], None] = None) -> Path:
    """The executable: that of GRIDFORGE, else the one installed together with this package, else that of PATH. The variables are
    those of `environment`, or of the process."""
    variables = os.environ if environment is None else environment
    named = variables.get("GRIDFORGE", "")
    if named:
        if not _is_executable(Path(named)):
            raise ToolNotFound(f"The variable GRIDFORGE names no executable: {named}")
        return Path(named).resolve()
    for prefix in _prefixes():
        if _is_executable(prefix / "bin" / EXECUTABLE):
            return prefix / "bin" / EXECUTABLE
    found = shutil.which(EXECUTABLE, path=variables.get("PATH"))
    if found is None:
        raise ToolNotFound("The tool gridforge is not installed. Put it into PATH, or name it in the variable GRIDFORGE.")
    return Path(found).resolve()


def _beside(tool: Path) -> list[Path]:
    """Where its description is, installed and in a build."""
    return [tool.parent.parent / "share" / "gridforge" / DESCRIPTION, tool.parent / "manual" / DESCRIPTION]


def find_description(tool: Optional[Path] = None) -> Path:
    """gridforge.json: that of GRIDFORGE_JSON, else the one that belongs to `tool`, else the one installed together with this
    package, else the package's own."""
    named = os.environ.get("GRIDFORGE_JSON", "")
    if named:
        return Path(named)
    places = _beside(tool) if tool is not None else []
    places += [prefix / "share" / "gridforge" / DESCRIPTION for prefix in _prefixes()]
    return next((place for place in places if place.is_file()), PACKAGE / DESCRIPTION)
