"""Shapes as lists of vertices: thinned to a number of vertices, and polygons with their holes cut open."""
from __future__ import annotations

import math
from collections.abc import Sequence
from dataclasses import dataclass

Vertex = tuple[float, float]
Ring = list[Vertex]  # without its closing vertex
LEAST_OF_LINE, LEAST_OF_RING = 2, 3
CUT_VERTICES = 3  # that a cut adds: its end on the outline twice, and the first vertex of the hole once more


def distance(vertex: Vertex, start: Vertex, end: Vertex) -> float:
    """From a vertex to a segment."""
    dx, dy = end[0] - start[0], end[1] - start[1]
    length = dx * dx + dy * dy
    along = 0.0 if length == 0 else ((vertex[0] - start[0]) * dx + (vertex[1] - start[1]) * dy) / length
    along = min(max(along, 0.0), 1.0)
    return math.hypot(vertex[0] - start[0] - along * dx, vertex[1] - start[1] - along * dy)


# --- Thinning --------------------------------------------------------------------------------------------------------


def ranks(vertices: Sequence[Vertex]) -> list[tuple[float, int]]:
    """How much each vertex of a line matters: the distance that the line moves without it, and then the order of discovery, so
    that the vertices a choice rests on always come before it."""
    result = [(math.inf, 0)] * len(vertices)
    found = 0
    open_spans = [(0, len(vertices) - 1, math.inf)]
    while open_spans:
        first, last, most = open_spans.pop()
        if last - first < 2:
            continue
        far, at = max((distance(vertices[i], vertices[first], vertices[last]), -i) for i in range(first + 1, last))
        at, far = -at, min(far, most)
        found += 1
        result[at] = (far, -found)
        open_spans += [(first, at, far), (at, last, far)]
    return result


def ring_ranks(ring: Ring) -> list[tuple[float, int]]:
    """The same of a ring, whose first vertex, the one farthest from it and the one that matters most besides always stay."""
    far = max(range(len(ring)), key=lambda i: math.dist(ring[0], ring[i]))
    result = ranks(ring[:far + 1])[:-1] + ranks(ring[far:] + ring[:1])[:-1]
    others = [i for i in range(len(ring)) if i not in (0, far)]
    if others:
        result[max(others, key=lambda i: result[i])] = (math.inf, 0)
    return result


@dataclass(frozen=True)
class Thinned:
    lines: list[Ring]
    moved: float  # the greatest distance of a vertex left out from what stands for it


def moved_by(vertices: Sequence[Vertex], kept: Sequence[int]) -> float:
    moved = 0.0
    for first, last in zip(kept, kept[1:]):
        for i in range(first + 1, last):
            moved = max(moved, distance(vertices[i], vertices[first], vertices[last]))
    return moved


def thin(lines: Sequence[Ring], closed: bool, most: int | None, tolerance: float | None) -> Thinned:
    """Leaves out vertices until all lines together have at most `most`, and those that move the line by `tolerance` or less."""
    ranked = [(rank, line, i) for line, vertices in enumerate(lines)
              for i, rank in enumerate(ring_ranks(vertices) if closed else ranks(vertices))]
    ranked.sort(key=lambda entry: entry[0], reverse=True)
    if tolerance is not None:
        ranked = [entry for entry in ranked if entry[0][0] > tolerance]
    if most is not None:
        ranked = ranked[:max(most, len(lines) * (LEAST_OF_RING if closed else LEAST_OF_LINE))]
    thinned, moved = [], 0.0
    for line, vertices in enumerate(lines):
        kept = sorted(i for _, of, i in ranked if of == line)
        whole, places = (vertices + vertices[:1], kept + [len(vertices)]) if closed else (vertices, kept)
        moved = max(moved, moved_by(whole, places))
        thinned.append([vertices[i] for i in kept])
    return Thinned(thinned, moved)


# --- Holes -----------------------------------------------------------------------------------------------------------


def nearest_east(ring: Ring, start: Vertex) -> tuple[int, Vertex] | None:
    """The edge of the ring that a ray to the east meets first, by the place of its end, and where."""
    best: tuple[float, int] | None = None
    for i, (x1, y1) in enumerate(ring):
        x0, y0 = ring[i - 1]
        if (y0 <= start[1]) == (y1 <= start[1]):
            continue
        x = x0 + (start[1] - y0) / (y1 - y0) * (x1 - x0)
        if x >= start[0] and (best is None or x < best[0]):
            best = (x, i)
    return None if best is None else (best[1], (best[0], start[1]))


def cut_open(outer: Ring, holes: Sequence[Ring]) -> Ring | None:
    """One ring round the polygon and its holes: a cut of no width leads from the easternmost vertex of each hole due east.

    A cut along a row changes nothing for a test of points that counts edges across the row. From the easternmost hole to the
    westernmost: so a cut only meets holes that are joined already. Holes go the other way round than the outline, so that areas
    are right too. None where a hole lies outside."""
    ring = list(outer)
    for hole in sorted(holes, key=max, reverse=True):
        if (signed_area(hole) > 0) == (signed_area(outer) > 0):
            hole = hole[::-1]
        first = hole.index(max(hole))
        turned = hole[first:] + hole[:first]
        met = nearest_east(ring, turned[0])
        if met is None:
            return None
        at, place = met
        ring[at:at] = [place, *turned, turned[0], place]
    return ring


def signed_area(ring: Sequence[Vertex]) -> float:
    """Above 0 where the ring goes counterclockwise. From its first vertex, since coordinates are large."""
    x0, y0 = ring[0]
    return math.fsum((a[0] - x0) * (b[1] - y0) - (b[0] - x0) * (a[1] - y0) for a, b in zip(ring, [*ring[1:], ring[0]])) / 2


def area(ring: Sequence[Vertex]) -> float:
    return abs(signed_area(ring))
