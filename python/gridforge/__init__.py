"""Runs gridforge from Python and reports what happened: `run` takes the tool's arguments, and there is a function for each
operation, such as `gridforge.max(["a.asc", "b.asc"], out="highest.asc")`."""
from __future__ import annotations

from . import operations
from .arguments import WrongUse
from .description import Description, DescriptionError, Flag, InputRule, Operation, OutputRule, load_description
from .operations import *  # noqa: F401,F403
from .progress import Progress
from .record import File, Record
from .running import RunError, run
from .tool import ToolNotFound, find_description, find_tool

__version__ = "0.1.0"
__all__ = ["Description", "DescriptionError", "File", "Flag", "InputRule", "Operation", "OutputRule", "Progress", "Record",
           "RunError", "ToolNotFound", "WrongUse", "find_description", "find_tool", "load_description", "run",
           *operations.__all__]
