"""The scratch folder of one run: takes inputs under short names, and moves outputs to their places.

Inputs keep their names, because the tool makes names of outputs and legends from them. Only the large file of cells is a link:
the tool rewrites a projection, and no run may reach the files of the user in that way. Nothing here needs QGIS.
"""
from __future__ import annotations

import os
import shutil
import tempfile
from pathlib import Path
from typing import Iterable

from .package import COMPANIONS, PROJECTION, Move, move_all

# What belongs to a file besides itself, by its extension.
BESIDE = {".asc": (PROJECTION,), ".flt": (*COMPANIONS[".flt"], PROJECTION), ".mif": COMPANIONS[".mif"],
          ".shp": (*COMPANIONS[".shp"], PROJECTION)}
SHAPE_PARTS = ("_P.shp", "_L.shp", "_R.shp")
LINKED = (".asc", ".flt")
OUT = "out"
NOTES = (".aux.xml", ".stx")  # of GDAL about a grid that it has read
INDEXES = (".qix", ".sbn", ".sbx")  # of the places of a Shapefile's objects
UNWANTED = str.maketrans("*?", "__")  # in a name: the tool would look for what matches


def companions(file: Path) -> list[Path]:
    """The files that belong to `file`. As in the tool, the case of their names does not count."""
    wanted = {(file.stem + ending).lower() for ending in BESIDE.get(file.suffix.lower(), ())}
    if not wanted:
        return []
    return sorted(entry for entry in file.parent.iterdir() if entry.name.lower() in wanted)


def link(source: Path, target: Path) -> None:
    """A link where the system allows one, else a copy."""
    for make in (os.symlink, os.link):
        try:
            make(source.resolve(), target)
            return
        except OSError:
            continue
    shutil.copyfile(source, target)


def _key(name: str) -> tuple[str, bool]:
    is_grid = name.lower().endswith(LINKED)
    return (os.path.splitext(name)[0] if is_grid else name).lower(), is_grid


class Room:
    """A scratch folder beside the outputs, so that they reach their places by a change of name."""

    def __init__(self, beside: Path) -> None:
        beside.mkdir(parents=True, exist_ok=True)
        self.folder = Path(tempfile.mkdtemp(prefix=".gridforge-", dir=beside))
        (self.folder / OUT).mkdir()
        self._taken: set[tuple[str, bool]] = set()

    def close(self) -> None:
        shutil.rmtree(self.folder, ignore_errors=True)

    def name_for(self, wanted: str, apart: str = "") -> str:
        """A name that no other input has: the wanted one, or that in a folder named `apart`, or in a numbered one.

        Grids also stand apart if only their extensions differ, as the one may become the output made from the other.
        """
        name, number = wanted, 1
        while _key(name) in self._taken:
            name = f"{apart}/{wanted}" if apart and number == 1 else f"{number}/{wanted}"
            number += 1
        self._taken.add(_key(name))
        (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
        return f"./{name}" if name.startswith("-") else name

    def give(self, source: Path, is_only_read: bool = False) -> str:
        """Puts a file with what belongs to it into the room. Returns its name there."""
        name = self.name_for(source.name.translate(UNWANTED), source.parent.name.translate(UNWANTED))
        target = self.folder / name
        (link if is_only_read or source.suffix.lower() in LINKED else shutil.copyfile)(source, target)
        for file in companions(source):
            shutil.copyfile(file, target.with_suffix(file.suffix))
        return name

    def project(self, name: str, projection: str) -> None:
        """Gives an input a projection, if it brought none. The tool looks for it in the current folder."""
        target = (self.folder / Path(name).name).with_suffix(".prj")
        if projection and not target.exists():
            target.write_text(projection, encoding="utf-8")

    def listing(self) -> dict[Path, tuple[int, int]]:
        return listing([self.folder])


def layers_of(files: Iterable[Path]) -> list[Path]:
    """Those files that open as a layer or grid, without what belongs to them."""
    return [file for file in files if file.suffix.lower() in (".asc", ".flt", ".mif", ".shp")]


def with_stem(files: Iterable[Path], stem: str) -> list[Path]:
    """The files of an output: those of the name itself, and the parts of a Shapefile."""
    parts = {stem.lower(), *(stem.lower() + part[:-4].lower() for part in SHAPE_PARTS)}
    return [file for file in files if file.stem.lower() in parts]


def moves_of(files: Iterable[Path], stem: str, target: Path) -> list[Move]:
    """The files of an output that is called `stem` in the room, on their way to be called `target`.

    What follows the stem stays: the parts of a Shapefile are `target_P.shp` and so on.
    """
    return [Move(file, target.with_name(target.stem + file.stem[len(stem):] + file.suffix)) for file in files]


def moves_to_folder(files: Iterable[Path], room: Path, folder: Path) -> list[Move]:
    """To the same places in `folder`. What stands in `OUT` goes to its top."""
    inside = [file.relative_to(room) for file in files]
    return [Move(room / file, folder / (file.relative_to(OUT) if file.parts[0] == OUT else file)) for file in inside]


def left_over(moves: list[Move]) -> list[Path]:
    """What belongs to files that are replaced and has no successor, as the projection of a grid by one without. What also belongs
    to a file that stays is kept."""
    targets = {move.target for move in moves}
    old = {file: target for target in targets if target.is_file() for file in companions(target) if file not in targets}
    return [file for file, target in old.items()
            if not any(file in companions(other) for other in target.parent.iterdir()
                       if other not in targets and other.stem.lower() == target.stem.lower())]


def publish(moves: list[Move]) -> None:
    """All files to their places, over what is there, or none of them."""
    for move in moves:
        move.target.parent.mkdir(parents=True, exist_ok=True)
    move_all(moves, overwrite=True, gone=left_over(moves))
    forget_notes(move.target for move in moves)


def forget_notes(files: Iterable[Path]) -> None:
    """What programs have noted about grids and layers that were here before: statistics of cells, indexes of places."""
    for file in files:
        ending = file.suffix.lower()
        for suffix in (file.suffix + ".aux.xml", ".stx") if ending in LINKED else INDEXES if ending == ".shp" else ():
            file.with_suffix(suffix).unlink(missing_ok=True)


def listing(folders: Iterable[Path]) -> dict[Path, tuple[int, int]]:
    """Files in these folders and below them, with time and size, to find what a run has made."""
    found: dict[Path, tuple[int, int]] = {}
    for top in folders:
        for folder, _, names in os.walk(top):
            for name in names:
                path = Path(folder) / name
                if name.endswith(NOTES):
                    continue
                try:
                    status = path.stat()
                except OSError:
                    continue
                found[path] = (status.st_mtime_ns, status.st_size)
    return found


def changed(before: dict[Path, tuple[int, int]], after: dict[Path, tuple[int, int]]) -> list[Path]:
    return sorted(path for path, status in after.items() if before.get(path) != status)
