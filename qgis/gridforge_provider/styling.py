"""Styles of results. Nothing here needs QGIS."""
from __future__ import annotations

from pathlib import Path
from typing import Union

from .package import styles_module as package_styles

# What a user may say about the cells of a result that are what the cells of its inputs are.
INPUT_CHOICES = ("by name", "depth", "level", "difference", "impact", "none")
DIFFERENCE_CHOICES = ("difference", "impact", "none")
LABELS = {"by name": "Depth or level, by the name of the first input", "depth": "Depth", "level": "Level",
          "difference": "Difference", "impact": "Impact classes", "none": "None"}


def choices_for(style: str) -> tuple[str, ...]:
    return {"input": INPUT_CHOICES, "difference": DIFFERENCE_CHOICES}.get(style, ())


def kind_for(style: str, chosen: str, name: str) -> str:
    """The kind of style of an output, where that of some is the user's choice."""
    if not choices_for(style):
        return style
    if chosen != "by name":
        return "" if chosen == "none" else chosen
    return package_styles.kind_of(name) or ""


def qml_for(kind: str, file: Path, legend: Union[Path, None] = None) -> str:
    """The style as QGIS reads it; empty where there is none of this kind."""
    style = package_styles.styles().get(kind)
    if style is None:
        return ""
    legend = legend or (package_styles.legend_of(file) if kind == "source" else None)
    if legend is not None:
        style = style.named(package_styles.read_legend(legend))
    return package_styles.qml(style)
