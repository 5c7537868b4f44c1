"""Where the tool is: as the settings of the toolbox say, or as the package finds it."""
from __future__ import annotations

from pathlib import Path

from processing.core.ProcessingConfig import ProcessingConfig

from .package import ToolNotFound, find_tool

SETTING = "GRIDFORGE_TOOL"


def chosen_tool() -> Path:
    named = ProcessingConfig.getSetting(SETTING)
    if not named:
        return find_tool()
    if not Path(named).is_file():
        raise ToolNotFound(f"The settings of Processing name a tool that is not there: {named}")
    return Path(named)
