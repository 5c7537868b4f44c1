"""What a picture is drawn on. `svg_canvas` needs numpy alone, `matplotlib_canvas` makes .png."""
from __future__ import annotations

from collections.abc import Sequence
from contextlib import AbstractContextManager
from pathlib import Path
from typing import TYPE_CHECKING, NamedTuple, Protocol

if TYPE_CHECKING:
    from numpy import ndarray

INCH = 2.54  # cm
LEADING = 1.05  # line spacing of a text, in parts of the height of its letters


class Place(NamedTuple):
    """A rectangle on the picture, in cm from its upper left corner."""
    left: float
    top: float
    width: float
    height: float

    @property
    def right(self) -> float:
        return self.left + self.width

    @property
    def bottom(self) -> float:
        return self.top + self.height


Points = Sequence[tuple[float, float]]


class Canvas(Protocol):
    """Places are in cm from the upper left corner of the picture, y goes down. Line widths, diameters and letters are in points.
    Later shapes cover earlier ones. Colours are #rrggbb, "" for none."""

    def image(self, pixels: ndarray, place: Place, smooth: bool = False) -> None:
        """Red, green, blue and opacity of each pixel, 0 to 255, rows from the top down. Pixels stay sharp unless `smooth`."""

    def box(self, place: Place, fill: str, edge: str, width: float) -> None:
        """A rectangle; the edge runs along the middle of its line."""

    def polygon(self, vertices: Points, fill: str, edge: str, width: float) -> None:
        """A closed outline."""

    def lines(self, lines: Sequence[Points], colour: str, width: float, opacity: float = 1.0) -> None:
        """Lines with round ends."""

    def dots(self, centres: Points, colour: str, diameter: float) -> None:
        """Discs with a thin white edge."""

    def text(self, x: float, y: float, text: str, size: float, bold: bool = False, centred: bool = False) -> None:
        """One line of letters or more, their middle at the height y; they begin at x, or lie around it if `centred`."""

    def within(self, place: Place) -> AbstractContextManager[None]:
        """Cuts at the edges of the place what is drawn in the meantime."""

    def save(self, path: Path) -> None:
        """Writes the file."""
