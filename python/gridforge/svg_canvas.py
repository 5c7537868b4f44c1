"""A canvas for .svg: shapes and texts as such, images as PNG inside. Needs numpy."""
from __future__ import annotations

import base64
import re
import struct
import zlib
from collections.abc import Iterable, Iterator, Sequence
from contextlib import contextmanager
from pathlib import Path
from typing import TYPE_CHECKING
from xml.sax.saxutils import escape, quoteattr

from .canvas import INCH, LEADING, Place, Points
from .grid_blocks import numpy

if TYPE_CHECKING:
    from numpy import ndarray

POINTS = 72 / INCH  # in a cm; the unit of the file, as some programs cannot draw letters of less than one unit
FONTS = "DejaVu Sans, Verdana, sans-serif"  # letters of the same width, as they are called on Linux and elsewhere
ASCENT, DESCENT = 0.76, 0.236  # heights of "l" above the base line and of "p" below it, in parts of the size
NOT_XML = re.compile("[^\t\n\r\x20-\ud7ff\ue000-\ufffd\U00010000-\U0010ffff]")
PNG_SIGNATURE = b"\x89PNG\r\n\x1a\n"
SHARP = 2000
RGBA, UP = 6, 2  # PNG's number of the colour type and of the filter


def png(pixels: ndarray) -> bytes:
    """Red, green, blue and opacity of each pixel as a PNG. Rows are stored as differences from the row above, which are mostly
    zero on a map."""
    rows, columns = pixels.shape[:2]
    values = numpy.ascontiguousarray(pixels, dtype="u1").reshape(rows, -1)
    lines = numpy.full((rows, 1 + values.shape[1]), UP, dtype="u1")
    lines[:, 1:] = numpy.diff(values, axis=0, prepend=numpy.zeros((1, values.shape[1]), dtype="u1"))

    def chunk(kind: bytes, data: bytes) -> bytes:
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", columns, rows, 8, RGBA, 0, 0, 0)
    return PNG_SIGNATURE + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines.tobytes())) + chunk(b"IEND", b"")


def enlarged(pixels: ndarray) -> ndarray:
    """Each pixel as a square of so many that the longer side has up to SHARP. Programs blur between pixels, most of them whatever
    the file asks for; so they blur only a seam."""
    times = max(1, SHARP // max(pixels.shape[:2]))
    return pixels.repeat(times, axis=0).repeat(times, axis=1)


def number(points: float) -> str:
    return f"{points:.2f}".rstrip("0").rstrip(".")


def units(*lengths: float) -> Iterator[str]:
    """Lengths in cm as numbers of the file."""
    return (number(length * POINTS) for length in lengths)


def outline(vertices: Iterable[tuple[float, float]]) -> str:
    """Without vertices that no eye can tell from the one before."""
    places = [" ".join(units(*vertex)) for vertex in vertices]
    return "M" + "L".join(place for i, place in enumerate(places) if i in (0, len(places) - 1) or place != places[i - 1])


def readable(text: str) -> str:
    """What XML cannot hold, as bytes of a name that are not UTF-8, is shown as a replacement character."""
    return NOT_XML.sub("\ufffd", text)


class SvgCanvas:
    """See Canvas. `name` is for readers who do not see the picture."""

    def __init__(self, width: float, height: float, name: str) -> None:
        wide, high = units(width, height)
        self._elements = [
            '<?xml version="1.0" encoding="UTF-8"?>',
            f'<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" xml:space="preserve" role="img"'
            f' width="{wide}pt" height="{high}pt" viewBox="0 0 {wide} {high}" font-family="{FONTS}" stroke-linejoin="round">',
            f"<title>{escape(readable(name))}</title>"]
        self._cuts = 0
        self.box(Place(0, 0, width, height), "#ffffff", "", 0)

    def image(self, pixels: ndarray, place: Place, smooth: bool = False) -> None:
        data = base64.b64encode(png(pixels if smooth else enlarged(pixels))).decode()
        self._add(f'<image {self._place(place)} preserveAspectRatio="none" xlink:href="data:image/png;base64,{data}"/>')

    def box(self, place: Place, fill: str, edge: str, width: float) -> None:
        self._add(f"<rect {self._place(place)}{self._paint(fill, edge, width)}/>")

    def polygon(self, vertices: Points, fill: str, edge: str, width: float) -> None:
        self._add(f'<path d="{outline(vertices)}Z"{self._paint(fill, edge, width)}/>')

    def lines(self, lines: Sequence[Points], colour: str, width: float, opacity: float = 1.0) -> None:
        shades = f' stroke-opacity="{number(opacity)}"' if opacity < 1 else ""
        self._add(f'<path d="{"".join(map(outline, lines))}"{self._paint("", colour, width)} stroke-linecap="round"{shades}/>')

    def dots(self, centres: Points, colour: str, diameter: float) -> None:
        self._add(f"<g{self._paint(colour, '#ffffff', 0.5)}>")
        for x, y in centres:
            self._add('<circle cx="{}" cy="{}" r="{}"/>'.format(*units(x, y), number(diameter / 2)))
        self._add("</g>")

    def text(self, x: float, y: float, text: str, size: float, bold: bool = False, centred: bool = False) -> None:
        style = (' font-weight="bold"' if bold else "") + (' text-anchor="middle"' if centred else "")
        lines = text.split("\n")
        apart = ASCENT * LEADING + DESCENT
        above = (ASCENT - DESCENT - apart * (len(lines) - 1)) / 2  # from the middle down to the first base line
        for i, line in enumerate(lines):
            base = number(y * POINTS + size * (above + i * apart))
            self._add(f'<text x="{next(units(x))}" y="{base}" font-size="{number(size)}"{style}>{escape(readable(line))}</text>')

    @contextmanager
    def within(self, place: Place) -> Iterator[None]:
        self._cuts += 1
        self._add(f'<clipPath id="cut{self._cuts}"><rect {self._place(place)}/></clipPath>')
        self._add(f'<g clip-path="url(#cut{self._cuts})">')
        yield
        self._add("</g>")

    def save(self, path: Path) -> None:
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write("\n".join([*self._elements, "</svg>", ""]))

    def _add(self, element: str) -> None:
        self._elements.append(element)

    @staticmethod
    def _place(place: Place) -> str:
        return 'x="{}" y="{}" width="{}" height="{}"'.format(*units(*place))

    @staticmethod
    def _paint(fill: str, edge: str, width: float) -> str:
        stroke = f' stroke={quoteattr(edge)} stroke-width="{number(width)}"' if edge else ""
        return f' fill={quoteattr(fill or "none")}{stroke}'
