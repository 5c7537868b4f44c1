"""Runs gridforge from Python and tells a program what happened."""
from __future__ import annotations

from .description import Description, DescriptionError, Flag, InputRule, Operation, OutputRule, load_description
from .tool import ToolNotFound, find_description, find_tool

__version__ = "0.1.0"
__all__ = ["Description", "DescriptionError", "Flag", "InputRule", "Operation", "OutputRule", "ToolNotFound",
           "find_description", "find_tool", "load_description"]
