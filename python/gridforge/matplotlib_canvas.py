"""A canvas for .png, by matplotlib."""
from __future__ import annotations

from collections.abc import Iterator, Sequence
from contextlib import contextmanager
from pathlib import Path
from typing import TYPE_CHECKING

import matplotlib
from matplotlib.collections import LineCollection
from matplotlib.figure import Figure
from matplotlib.patches import Polygon, Rectangle

from .canvas import INCH, LEADING, Place, Points

if TYPE_CHECKING:
    from matplotlib.artist import Artist
    from numpy import ndarray

matplotlib.rcParams["text.parse_math"] = False  # two dollars in a title are not a formula
NO_COLOUR = "none"


class MatplotlibCanvas:
    """Axes of centimetres as large as the picture. See Canvas."""

    def __init__(self, width: float, height: float, dpi: float) -> None:
        self._figure = Figure(figsize=(width / INCH, height / INCH), dpi=dpi)
        self._axes = self._figure.add_axes((0, 0, 1, 1), xlim=(0, width), ylim=(height, 0))
        self._axes.axis("off")
        self._place: Rectangle | None = None
        self._drawn = 0

    def image(self, pixels: ndarray, place: Place, smooth: bool = False) -> None:
        extent = (place.left, place.right, place.bottom, place.top)
        self._add(self._axes.imshow(pixels, extent=extent, aspect="auto", interpolation="antialiased" if smooth else "nearest"))

    def box(self, place: Place, fill: str, edge: str, width: float) -> None:
        self._patch(Rectangle((place.left, place.top), place.width, place.height), fill, edge, width)

    def polygon(self, vertices: Points, fill: str, edge: str, width: float) -> None:
        self._patch(Polygon(vertices), fill, edge, width)

    def lines(self, lines: Sequence[Points], colour: str, width: float, opacity: float = 1.0) -> None:
        self._add(self._axes.add_collection(LineCollection(lines, colors=colour, linewidths=width, alpha=opacity,
                                                           capstyle="round"), autolim=False))

    def dots(self, centres: Points, colour: str, diameter: float) -> None:
        self._add(self._axes.scatter(*zip(*centres), s=diameter ** 2, color=colour, edgecolors="white", linewidths=0.5))

    def text(self, x: float, y: float, text: str, size: float, bold: bool = False, centred: bool = False) -> None:
        self._add(self._axes.text(x, y, text, fontsize=size, fontweight="bold" if bold else "normal", linespacing=LEADING,
                                  ha="center" if centred else "left", va="center"))

    @contextmanager
    def within(self, place: Place) -> Iterator[None]:
        self._place = Rectangle((place.left, place.top), place.width, place.height, transform=self._axes.transData)
        yield
        self._place = None

    def save(self, path: Path) -> None:
        self._figure.savefig(path, metadata={"Software": None})

    def _patch(self, patch: Rectangle | Polygon, fill: str, edge: str, width: float) -> None:
        patch.set(facecolor=fill or NO_COLOUR, edgecolor=edge or NO_COLOUR, linewidth=width)
        self._add(self._axes.add_patch(patch))

    def _add(self, artist: Artist) -> None:
        """Each artist lies over those before it, whatever its type is."""
        self._drawn += 1
        artist.set_zorder(self._drawn)
        if self._place:
            artist.set_clip_path(self._place)
