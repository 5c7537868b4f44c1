"""Grids made fit for the tool, by GDAL: from GeoTIFF and the like to .flt, and back."""
from __future__ import annotations

import math
import struct
import sys
from array import array
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path

from .grid_files import Header, beside, is_binary, read_header
from .messages import Failure, Scratch
from .prepare_layers import gdal, gdal_says, osr, plane_system, require_gdal, system_of

NULL = -9999.0
SQUARE = 1e-6  # part of a cell by which width and height may differ
BLOCK_CELLS = 4_000_000
OFF_BY = 0.01  # cells at the far corner, where single precision of the cell size shows
DRIVERS = {".tif": "GTiff", ".tiff": "GTiff"}
BESIDE = (".flt", ".hdr", ".prj")
RESAMPLINGS = ("near", "bilinear", "cubic", "average", "max", "min", "mode")


@dataclass(frozen=True)
class GridWishes:
    band: int = 1
    crs: str | None = None  # of a source that has none, or to go to
    cell: float | None = None
    like: Path | None = None  # a grid whose cells the result has
    resampling: str = "near"
    overwrite: bool = False


@dataclass(frozen=True)
class Frame:
    """The cells of the result."""
    west: float
    north: float
    cell: float
    columns: int
    rows: int

    @property
    def bounds(self) -> tuple[float, float, float, float]:
        return (self.west, self.north - self.rows * self.cell, self.west + self.columns * self.cell, self.north)


def open_grid(source: str, band: int) -> gdal.Dataset:
    try:
        data = gdal.Open(source)
    except RuntimeError as error:
        raise Failure(f"{source}: GDAL cannot read it as a grid: {error}") from None
    if data.RasterCount == 0:
        raise Failure(f"{source} has no band; subdatasets: {', '.join(name for name, _ in data.GetSubDatasets())}")
    if not 1 <= band <= data.RasterCount:
        raise Failure(f"{source} has {data.RasterCount} bands, not {band}")
    return data


# --- The frame -------------------------------------------------------------------------------------------------------


def own_frame(data: gdal.Dataset, source: str) -> Frame:
    """The cells of the source, which must be squares of a lattice that points north."""
    west, width, turn_x, north, turn_y, height = data.GetGeoTransform()
    if turn_x != 0 or turn_y != 0 or width <= 0:
        raise Failure(f"{source} does not point north: --cell SIZE turns it onto cells of that size")
    if abs(width - abs(height)) > SQUARE * width:
        raise Failure(f"{source} has cells of {width:.10g} by {abs(height):.10g}: --cell SIZE gives it square ones")
    top = north if height < 0 else north + data.RasterYSize * height
    return Frame(west, top, width, data.RasterXSize, data.RasterYSize)


def frame_of(header: Header) -> Frame:
    return Frame(header.west, header.north, header.cell, header.columns, header.rows)


def extent(data: gdal.Dataset, crs: str | None) -> tuple[float, float, float, float]:
    """West, south, east and north of the source, in the wanted projection."""
    place = data.GetGeoTransform()
    if crs or place[2] != 0 or place[4] != 0:
        data = gdal.Warp("", data, format="VRT", dstSRS=crs)
        place = data.GetGeoTransform()
    ends = sorted((place[3], place[3] + data.RasterYSize * place[5]))
    return place[0], ends[0], place[0] + data.RasterXSize * place[1], ends[1]


def new_frame(data: gdal.Dataset, crs: str | None, cell: float) -> Frame:
    """The cells of this size, on whole multiples of it, that hold the whole source."""
    west, south, east, north = extent(data, crs)
    first, last = math.floor(west / cell + SQUARE), math.ceil(east / cell - SQUARE)
    bottom, top = math.floor(south / cell + SQUARE), math.ceil(north / cell - SQUARE)
    return Frame(first * cell, top * cell, cell, last - first, top - bottom)


def system_in(data: gdal.Dataset) -> osr.SpatialReference | None:
    return data.GetSpatialRef() if data.GetProjection() else None


def source_band(data: gdal.Dataset, wishes: GridWishes) -> gdal.Dataset:
    """The one band, with its scale and offset applied, in single precision or double."""
    band = data.GetRasterBand(wishes.band)
    scaled = band.GetScale() not in (None, 1) or band.GetOffset() not in (None, 0)
    system = wishes.crs if system_in(data) is None else None
    return gdal.Translate("", data, format="VRT", bandList=[wishes.band], unscale=scaled, outputSRS=system,
                          outputType=gdal.GDT_Float64 if scaled else gdal.GDT_Unknown)


def onto(band: gdal.Dataset, frame: Frame, wishes: GridWishes) -> gdal.Dataset:
    """The band on the cells of the frame, with the null of the tool."""
    return gdal.Warp("", band, format="VRT", dstSRS=wishes.crs if system_in(band) else None, outputType=gdal.GDT_Float32,
                     dstNodata=NULL, errorThreshold=0, outputBounds=frame.bounds, width=frame.columns, height=frame.rows,
                     resampleAlg=wishes.resampling)


def values_of_null(data: gdal.Dataset, wishes: GridWishes) -> list[str]:
    """Reports cells that hold the tool's null as a value, in a source whose null is another number."""
    band = data.GetRasterBand(wishes.band)
    if band.GetNoDataValue() == NULL or band.DataType == gdal.GDT_Byte:
        return []
    rows = max(1, BLOCK_CELLS // data.RasterXSize)
    found = 0
    for first in range(0, data.RasterYSize, rows):
        count = min(rows, data.RasterYSize - first)
        found += array("f", band.ReadRaster(0, first, data.RasterXSize, count, buf_type=gdal.GDT_Float32)).count(NULL)
    return [f"WARNING: cells of {NULL:g}, which is not the null of the source, became null: {found}"] if found else []


# --- To .flt ---------------------------------------------------------------------------------------------------------


class Cells:
    """Writes blocks of rows; cells that are not numbers become null."""

    def __init__(self) -> None:
        self.nulls = 0
        self.not_numbers = 0

    def write(self, data: gdal.Dataset, file) -> None:
        band = data.GetRasterBand(1)
        rows = max(1, BLOCK_CELLS // data.RasterXSize)
        for first in range(0, data.RasterYSize, rows):
            count = min(rows, data.RasterYSize - first)
            cells = array("f", band.ReadRaster(0, first, data.RasterXSize, count, buf_type=gdal.GDT_Float32))
            if not math.isfinite(sum(cells)):
                self._clean(cells)
            self.nulls += cells.count(NULL)
            if sys.byteorder == "big":
                cells.byteswap()
            cells.tofile(file)

    def _clean(self, cells: array) -> None:
        for i, value in enumerate(cells):
            if not math.isfinite(value):
                cells[i] = NULL
                self.not_numbers += 1


def header_text(frame: Frame) -> str:
    south = frame.north - frame.rows * frame.cell
    return (f"ncols {frame.columns}\r\nnrows {frame.rows}\r\nxllcorner {frame.west!r}\r\nyllcorner {south!r}\r\n"
            f"cellsize {frame.cell!r}\r\nNODATA_value {NULL}\r\nbyteorder LSBFIRST\r\n")


def projection_line(system: osr.SpatialReference | None) -> str | None:
    """On one line, as the tool wants it."""
    if system is None:
        return None
    esri = plane_system(system)
    esri.MorphToESRI()
    return esri.ExportToWkt().replace("\n", "") + "\n"


def single_precision_note(frame: Frame) -> list[str]:
    held = struct.unpack("f", struct.pack("f", frame.cell))[0]
    off = abs(held - frame.cell) * max(frame.columns, frame.rows) / frame.cell
    return [f"WARNING: the tool holds the cell size in single precision, so the far edge is off by {off:.3g} cells"
            ] if off > OFF_BY else []


def to_flt(source: str, output: Path, wishes: GridWishes) -> list[str]:
    require_gdal()
    data = open_grid(source, wishes.band)
    own_system = system_in(data)
    if wishes.crs:
        system_of(wishes.crs)
    moves = bool(wishes.crs and own_system and not same_system(own_system, system_of(wishes.crs)))
    if wishes.like:
        refuse_other_system(source, own_system if wishes.crs is None else system_of(wishes.crs), wishes.like)
        frame = frame_of(read_header(wishes.like))
    elif wishes.cell:
        frame = new_frame(source_band(data, wishes), wishes.crs if moves else None, wishes.cell)
    elif moves:
        raise Failure(f"--crs moves {source} to another system: --cell SIZE or --like GRID says onto which cells")
    else:
        frame = own_frame(data, source)
    with gdal_says() as said:
        cells, system = write_flt(onto(source_band(data, wishes), frame, wishes), output, frame, wishes.overwrite)
    return [*grid_notes(cells, system), *values_of_null(data, wishes), *said, *single_precision_note(frame),
            f"{frame.columns} x {frame.rows} cells of {frame.cell:.10g} written to {output}, {cells.nulls} of them null"]


def same_system(one: osr.SpatialReference, other: osr.SpatialReference) -> bool:
    return bool(plane_system(one).IsSame(plane_system(other)))


def refuse_other_system(source: str, system: osr.SpatialReference | None, like: Path) -> None:
    """Cells of one projection that lie where another has them would all be null."""
    wanted = readable_prj_system(like)
    if system and wanted and not same_system(system, wanted):
        raise Failure(f"{source} and {like} lie in different projections, {system.GetName()} and {wanted.GetName()}: "
                      f"--crs names the one to go to")


def write_flt(data: gdal.Dataset, output: Path, frame: Frame, overwrite: bool) -> tuple[Cells, osr.SpatialReference | None]:
    system = system_in(data)
    cells = Cells()
    with Scratch(output, overwrite) as scratch:
        made = scratch.path / output.name
        with open(made, "wb") as file:
            cells.write(data, file)
        made.with_suffix(".hdr").write_bytes(header_text(frame).encode())
        files = [(made.with_suffix(".hdr"), output.with_suffix(".hdr"))]
        line = projection_line(system)
        if line:
            made.with_suffix(".prj").write_text(line, encoding="utf-8")
            files.append((made.with_suffix(".prj"), output.with_suffix(".prj")))
        scratch.publish([*files, (made, output)], () if others_beside(output) or not output.exists() else output_files(output))
    return cells, system


def others_beside(output: Path) -> list[Path]:
    """Other grids and layers that an earlier .prj of this name may belong to."""
    return [other for other in map(output.with_suffix, (".asc", ".shp", ".mif")) if other.exists()]


def grid_notes(cells: Cells, system: osr.SpatialReference | None) -> list[str]:
    notes = []
    if cells.not_numbers:
        notes.append(f"cells that are not numbers made null: {cells.not_numbers}")
    if system is None:
        notes.append("WARNING: the source has no projection, so there is no .prj: --crs names it")
    elif not system.IsProjected():
        notes.append(f"WARNING: {system.GetName()} is not a projection; the tool takes none from the .prj")
    return notes


# --- Back ------------------------------------------------------------------------------------------------------------


def named_system(source: str, wishes: GridWishes) -> osr.SpatialReference:
    """That of --crs, which names the projection of a grid and does not move it."""
    system = system_of(wishes.crs)
    own = readable_prj_system(Path(source))
    if own and not same_system(own, system):
        raise Failure(f"{source} is in {own.GetName()}, and a .tif stays there: gdalwarp -t_srs moves it")
    return system


def from_flt(source: str, output: Path, wishes: GridWishes) -> list[str]:
    """A grid of the tool to a GeoTIFF, placed as the tool places it."""
    require_gdal()
    if wishes.cell or wishes.like or wishes.band != 1 or wishes.resampling != "near":
        raise Failure("--band, --cell, --like and --resampling go with a .flt")
    header = read_header(Path(source))
    frame = frame_of(header)
    data = open_grid(source, 1)
    system = prj_system(Path(source)) if wishes.crs is None else named_system(source, wishes)
    with Scratch(output, wishes.overwrite) as scratch:
        made = scratch.path / output.name
        west, south, east, north = frame.bounds
        gdal.Translate(str(made), data, format=DRIVERS[output.suffix.lower()], outputType=gdal.GDT_Float32, noData=header.null,
                       outputBounds=(west, north, east, south), outputSRS=system.ExportToWkt() if system else None,
                       creationOptions=["COMPRESS=DEFLATE", "PREDICTOR=3", "TILED=YES", "BIGTIFF=IF_SAFER"])
        scratch.publish([(made, output)])
    notes = [] if system else ["WARNING: there is no .prj, so the result has no projection: --crs names it"]
    if header.by_centre:
        notes.append("WARNING: the header names the centre of a cell; "
                     "the result lies where the tool places it, half a cell south-west")
    return [*notes, f"{frame.columns} x {frame.rows} cells of {frame.cell:.10g} written to {output}"]


def prj_system(grid: Path) -> osr.SpatialReference | None:
    path = beside(grid, ".prj")
    if not path.exists():
        return None
    system = osr.SpatialReference()
    try:
        system.ImportFromESRI([path.read_text(encoding="utf-8", errors="replace").replace("\n", "").replace("\r", "")])
    except RuntimeError:
        raise Failure(f"{path}: GDAL cannot read it as a projection; --crs names one") from None
    return system


def readable_prj_system(grid: Path) -> osr.SpatialReference | None:
    """Nothing where there is no .prj or GDAL cannot read it."""
    try:
        return prj_system(grid)
    except Failure:
        return None


def converter(output: Path) -> Callable[[str, Path, GridWishes], list[str]]:
    if is_binary(output):
        return to_flt
    if output.suffix.lower() in DRIVERS:
        return from_flt
    raise Failure(f"{output}: a grid for the tool ends in .flt, one for other programs in .tif; "
                  f"gridforge -conv makes an .asc of a .flt")


def output_files(output: Path) -> list[Path]:
    return [output.with_suffix(suffix) for suffix in BESIDE] if is_binary(output) else [output]
