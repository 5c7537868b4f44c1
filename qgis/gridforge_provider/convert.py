"""Grids and layers of other formats in those of the tool.

gridforge-prepare does more for grids, but works with the exceptions of GDAL, which one cannot turn on for a while in a process
whose other parts use GDAL too.
"""
from __future__ import annotations

from pathlib import Path

import numpy
from osgeo import gdal, osr
from qgis.core import (QgsCoordinateReferenceSystem, QgsCoordinateTransformContext, QgsFeature, QgsFeatureSource, QgsField,
                       QgsFields, QgsGeometry, QgsProcessingFeedback, QgsVectorFileWriter, QgsWkbTypes)

NULL = -9999.0
PLAIN_METRES = 'LOCAL_CS["Nonearth",UNIT["Meter",1.0]]'
CELLS_AT_ONCE = 4_000_000


class ConversionError(Exception):
    """A grid that has no cells of the tool's kind."""


class Cancelled(Exception):
    """The user has cancelled a conversion."""


def _lattice(dataset: gdal.Dataset, source: str) -> tuple[float, float, float]:
    """West edge, south edge and cell size."""
    west, width, skew_x, north, skew_y, height = dataset.GetGeoTransform()
    if skew_x or skew_y or height >= 0:
        raise ConversionError(f"The grid does not point north: {source}\ngridforge-prepare --cell SIZE turns it.")
    if abs(width + height) > 1e-6 * width:
        raise ConversionError(f"The cells of the grid are not square: {source}\n"
                              "gridforge-prepare --cell SIZE gives it square ones.")
    return west, north + height * dataset.RasterYSize, width


def _cells(band: gdal.Band, row: int, rows: int) -> tuple[bytes, int]:
    """Rows as the tool has them, and how many of their cells hold its null although the source has another."""
    cells = band.ReadAsArray(0, row, band.XSize, rows).astype("float64")
    null = band.GetNoDataValue()
    missing = ~numpy.isfinite(cells)
    if null is not None:
        missing |= cells == null
    cells = cells * (band.GetScale() or 1) + (band.GetOffset() or 0)
    lost = int(numpy.count_nonzero((cells.astype("f4") == NULL) & ~missing))
    cells[missing] = NULL
    return cells.astype("<f4").tobytes(), lost


def _write_cells(band: gdal.Band, target: Path, feedback: QgsProcessingFeedback) -> int:
    """All cells of a band, a few rows at a time. Returns how many of them became null because they hold the tool's null."""
    rows = max(1, CELLS_AT_ONCE // band.XSize)
    lost = 0
    with open(target, "wb") as file:
        for row in range(0, band.YSize, rows):
            if feedback.isCanceled():
                raise Cancelled()
            cells, lost_here = _cells(band, row, min(rows, band.YSize - row))
            file.write(cells)
            lost += lost_here
            feedback.setProgress(100 * min(row + rows, band.YSize) / band.YSize)
    return lost


def grid_to_flt(source: str, target: Path, feedback: QgsProcessingFeedback) -> None:
    """The first band of whatever GDAL reads, as .flt with header and projection."""
    try:
        dataset = gdal.Open(source)
    except RuntimeError:  # where another plugin has turned exceptions on
        dataset = None
    if dataset is None:
        raise ConversionError(f"The grid cannot be read: {source}")
    west, south, size = _lattice(dataset, source)
    band = dataset.GetRasterBand(1)
    lost = _write_cells(band, target, feedback)
    if lost:
        feedback.pushWarning(f"Cells of {NULL:g}, which is not the null of the source, became null: {lost}")
    header = (f"ncols {band.XSize}\nnrows {band.YSize}\nxllcorner {west!r}\nyllcorner {south!r}\ncellsize {size!r}\n"
              f"NODATA_value {NULL:g}\nbyteorder LSBFIRST\n")
    target.with_suffix(".hdr").write_text(header, encoding="ascii")
    system = dataset.GetSpatialRef()
    if system is not None:
        system = osr.SpatialReference(system.ExportToWkt())
        target.with_suffix(".prj").write_text(system.ExportToWkt(["FORMAT=WKT1_ESRI"]) + "\n", encoding="utf-8")


def columns_of(source: QgsFeatureSource, hidden: list[int]) -> list[int]:
    """The columns that are written. The tool takes them by their order, so keys that a format adds are left out."""
    return [index for index in range(source.fields().count()) if index not in hidden]


def _plain_type(source: QgsFeatureSource) -> QgsWkbTypes.Type:
    """The kind of geometry that the tool reads, for that of a layer."""
    flat = QgsWkbTypes.flatType(source.wkbType())
    return QgsWkbTypes.Point if flat == QgsWkbTypes.MultiPoint else flat


def what_is_lost(source: QgsFeatureSource) -> list[str]:
    """What the tool does not read of the geometry of a layer, in words for the log."""
    kind = source.wkbType()
    lost = [letter for letter, has in (("Z", QgsWkbTypes.hasZ(kind)), ("M", QgsWkbTypes.hasM(kind))) if has]
    said = [f"The tool reads no {' and no '.join(lost)} values, so they are left out."] if lost else []
    if QgsWkbTypes.flatType(kind) == QgsWkbTypes.MultiPoint:
        said.append("The tool reads no multipoints, so each of their points becomes an object.")
    return said


def _plain(geometry: QgsGeometry, kind: QgsWkbTypes.Type) -> list[QgsGeometry]:
    """A geometry as objects of this kind. One of a single part must not become a `Pline Multiple`, which the tool refuses."""
    if geometry.isEmpty():
        return [QgsGeometry()]
    objects = geometry.coerceToType(kind) or [geometry]  # what cannot become one is refused when it is written
    for one in objects:
        if one.isMultipart() and one.constGet().numGeometries() == 1:
            one.convertToSingleType()
    return objects


def layer_to_file(source: QgsFeatureSource, hidden: list[int], target: Path, feedback: QgsProcessingFeedback,
                  context: QgsCoordinateTransformContext) -> None:
    """The objects of a layer as .shp, or as .mif where they have no projection, which a .shp needs."""
    columns = columns_of(source, hidden)
    kind = _plain_type(source)
    stored = QgsWkbTypes.singleType(kind) if target.suffix == ".mif" else kind  # each object of a .mif has a kind of its own
    fields = QgsFields()
    for index in columns:
        field = QgsField(source.fields().at(index))
        if target.suffix == ".mif" and field.isNumeric():
            field.setLength(0)  # a column of a given width holds no floating-point numbers
            field.setPrecision(0)
        fields.append(field)
    system = source.sourceCrs() if source.sourceCrs().isValid() else QgsCoordinateReferenceSystem.fromWkt(PLAIN_METRES)
    options = QgsVectorFileWriter.SaveVectorOptions()
    options.driverName = "ESRI Shapefile" if target.suffix == ".shp" else "MapInfo MIF"
    options.fileEncoding = "UTF-8"
    writer = QgsVectorFileWriter.create(str(target), fields, stored, system, context, options)
    if writer.hasError():
        raise ConversionError(f"The layer cannot be converted: {writer.errorMessage()}")
    for feature in source.getFeatures():
        if feedback.isCanceled():
            raise Cancelled()
        for geometry in _plain(feature.geometry(), kind):
            copy = QgsFeature(fields)
            copy.setGeometry(geometry)
            copy.setAttributes([feature.attribute(index) for index in columns])
            if not writer.addFeature(copy):
                raise ConversionError(f"The layer cannot be converted: {writer.errorMessage()}")
    del writer  # closes the file
