"""Layers made fit for an operation, by GDAL: columns, kinds of objects, parts, holes, vertices, place."""
from __future__ import annotations

import contextlib
import math
from collections import Counter
from collections.abc import Iterator, Mapping, Sequence
from dataclasses import dataclass, field
from pathlib import Path

from .families import COMPANIONS, PROJECTION
from .grid_files import read_header
from .layer_forms import LINE, POINT, REGION, Column, Form
from .layer_shapes import CUT_VERTICES, Ring, area, cut_open, thin
from .messages import Failure, Scratch, counted, missing_package

try:
    from osgeo import gdal, ogr, osr
    gdal.UseExceptions()
    ogr.UseExceptions()
    osr.UseExceptions()
except ImportError:
    gdal = ogr = osr = None

DRIVERS = {".mif": "MapInfo File", ".shp": "ESRI Shapefile"}
INDEXES = (".qix", ".sbn", ".sbx")  # of the places of the objects of a .shp that is replaced
BESIDE = {".mif": (".mif", *COMPANIONS[".mif"]), ".shp": (".shp", *COMPANIONS[".shp"], PROJECTION)}
NUMBER_WIDTH, NUMBER_DECIMALS = 24, 9  # of the columns of a Shapefile
WIDEST_DBF_TEXT = 254
USUAL_BUILDINGS, USUAL_VERTICES = 1000, 100  # limits of -damages that its control file can raise
LARGE_MOVE = 1e-9  # of a thinned line that is worth telling


def require_gdal() -> None:
    if ogr is None:
        raise missing_package("GDAL for Python", "python3-gdal")


@contextlib.contextmanager
def gdal_says() -> Iterator[list[str]]:
    """Collects the warnings of GDAL, each once."""
    said: list[str] = []

    def note(level: int, _: int, text: str) -> None:
        line = f"WARNING: {text}"
        if level == gdal.CE_Warning and line not in said:
            said.append(line)

    gdal.PushErrorHandler(note)
    try:
        yield said
    finally:
        gdal.PopErrorHandler()


@dataclass(frozen=True)
class Wishes:
    """What the caller says about a layer, other than its form."""
    fields: Mapping[str, str] = field(default_factory=dict)  # column: field of the source
    values: Mapping[str, str] = field(default_factory=dict)  # column: value, where the source has none
    layer: str | None = None
    where: str | None = None
    kind: str | None = None
    crs: str | None = None
    clip: Path | None = None
    holes: str = "cut"  # or "fill"
    parts: str = "apart"  # or "largest"
    thin: int | None = None
    tolerance: float | None = None
    overwrite: bool = False


@dataclass
class Shape:
    kind: str
    vertices: Ring  # of a region without the closing one


@dataclass
class Object:
    number: int  # of the feature in the source, from 1
    record: list[str | float]
    shape: Shape


class Notes:
    """What was done to the layer, one line each."""

    def __init__(self) -> None:
        self.counts: Counter[str] = Counter()
        self.moved = 0.0
        self.filled_area = 0.0

    def add(self, what: str, count: int = 1) -> None:
        self.counts[what] += count

    def lines(self) -> list[str]:
        lines = [f"{what}: {count}" for what, count in self.counts.items() if count]
        if self.filled_area > 0:
            lines.append(f"area of the holes left out: {self.filled_area:.6g}")
        if self.moved > LARGE_MOVE:
            lines.append(f"outlines and lines moved by thinning by at most: {self.moved:.6g}")
        return lines


# --- Places ----------------------------------------------------------------------------------------------------------


def system_of(text: str) -> osr.SpatialReference:
    system = osr.SpatialReference()
    try:
        system.SetFromUserInput(text)
    except RuntimeError:
        raise Failure(f"--crs: GDAL knows no {text}") from None
    return system


def plane_system(system: osr.SpatialReference | None) -> osr.SpatialReference | None:
    """Without heights, with axes in the order of coordinates."""
    if system is None:
        return None
    copy = system.Clone()
    copy.StripVertical()
    copy.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    return copy


class Place:
    """Moves geometries to the wanted system and cuts them to the wanted window."""

    def __init__(self, source: osr.SpatialReference | None, form: Form, wishes: Wishes) -> None:
        self.system = plane_system(source)
        self._transform = None
        if wishes.crs:
            wanted = plane_system(system_of(wishes.crs))
            if self.system is not None and not self.system.IsSame(wanted):
                self._transform = osr.CoordinateTransformation(self.system, wanted)
            self.system = wanted
        self._windows = {kind: window(wishes.clip, form, kind) for kind in form.kinds} if wishes.clip else {}

    def take(self, geometry: ogr.Geometry, kind: str, notes: Notes) -> ogr.Geometry | None:
        """The geometry in its place; None where nothing of it lies in the window."""
        if self._transform:
            geometry.Transform(self._transform)
        if not self._windows:
            return geometry
        bounds = self._windows[kind]
        west, east, south, north = geometry.GetEnvelope()
        if west >= bounds[0] and south >= bounds[1] and east <= bounds[2] and north <= bounds[3]:
            return geometry
        if not is_valid(geometry):
            geometry = geometry.MakeValid()
            notes.add("objects repaired before they were cut to the grid")
        cut = geometry.Intersection(rectangle(bounds))
        if cut is None or cut.IsEmpty():
            notes.add("objects left out that lie off the grid")
            return None
        notes.add("objects cut to the grid")
        return cut


def window(grid: Path, form: Form, kind: str) -> tuple[float, float, float, float]:
    header = read_header(grid)
    margins = form.margins if kind == REGION else (0, 0, 0, 0)
    west, south, east, north = (cells * header.cell for cells in margins)
    bounds = (header.west + west, header.south + south, header.east - east, header.north - north)
    if bounds[0] >= bounds[2] or bounds[1] >= bounds[3]:
        raise Failure(f"{grid} is too small: -{form.operation} needs free cells at its edges")
    return bounds


def rectangle(bounds: Sequence[float]) -> ogr.Geometry:
    west, south, east, north = bounds
    return ogr.CreateGeometryFromWkt(f"POLYGON(({west!r} {south!r},{east!r} {south!r},{east!r} {north!r},{west!r} {north!r},"
                                     f"{west!r} {south!r}))")


# --- Shapes ----------------------------------------------------------------------------------------------------------

SIMPLE = {"POINT": POINT, "LINESTRING": LINE, "POLYGON": REGION}


def kind_of(geometry: ogr.Geometry) -> str | None:
    return SIMPLE.get(geometry.GetGeometryName())


def simple_parts(geometry: ogr.Geometry) -> Iterator[ogr.Geometry]:
    """Points, lines and polygons of which a geometry is made, curves as lines."""
    if geometry.IsEmpty():
        return
    if kind_of(geometry):
        yield geometry
        return
    for i in range(geometry.GetGeometryCount()):
        yield from simple_parts(geometry.GetGeometryRef(i))


def vertices_of(geometry: ogr.Geometry) -> Ring:
    vertices: Ring = []
    for x, y, *_ in geometry.GetPoints():
        if not vertices or vertices[-1] != (x, y):
            vertices.append((x, y))
    return vertices


def ring_of(geometry: ogr.Geometry) -> Ring:
    ring = vertices_of(geometry)
    return ring[:-1] if len(ring) > 1 and ring[0] == ring[-1] else ring


class Shaper:
    """Simple geometries as shapes of the wanted kinds."""

    def __init__(self, form: Form, wishes: Wishes, notes: Notes) -> None:
        self._form = form
        self._wishes = wishes
        self._notes = notes
        limits = [limit for limit in (form.most_vertices, wishes.thin) if limit is not None]
        self._most = min(limits, default=None)

    def shape(self, geometry: ogr.Geometry, where: str) -> Shape | None:
        kind = kind_of(geometry)
        if kind == POINT:
            return Shape(POINT, [(geometry.GetX(), geometry.GetY())])
        return self._line(geometry, where) if kind == LINE else self._region(geometry, where)

    def _line(self, geometry: ogr.Geometry, where: str) -> Shape | None:
        vertices = vertices_of(geometry)
        if len(vertices) < 2:
            self._notes.add("lines left out that have no length")
            return None
        return Shape(LINE, self._thinned([vertices], False, 0, where)[0])

    def _region(self, geometry: ogr.Geometry, where: str) -> Shape | None:
        rings = [ring_of(geometry.GetGeometryRef(i)) for i in range(geometry.GetGeometryCount())]
        outer, holes = rings[0], [ring for ring in rings[1:] if len(set(ring)) > 2]
        if len(set(outer)) < 3:
            self._notes.add("regions left out that have no area")
            return None
        if holes and self._wishes.holes == "fill":
            self._notes.add("holes left out", len(holes))
            self._notes.filled_area += math.fsum(map(area, holes))
            holes = []
        outer, *holes = self._thinned([outer, *holes], True, CUT_VERTICES * len(holes), where)
        if not holes:
            return Shape(REGION, outer)
        opened = cut_open(outer, holes)
        if opened is None:
            raise Failure(f"{where}: a hole does not lie inside its polygon; "
                          f"repair the source, or leave holes out (--holes fill)")
        self._notes.add("holes cut open", len(holes))
        return Shape(REGION, opened)

    def _thinned(self, lines: list[Ring], closed: bool, spare: int, where: str) -> list[Ring]:
        count = sum(map(len, lines))
        most = None if self._most is None else self._most - spare
        if (most is None or count <= most) and self._wishes.tolerance is None:
            return lines
        thinned = thin(lines, closed, most, self._wishes.tolerance)
        left = sum(map(len, thinned.lines))
        if most is not None and left > most:
            raise Failure(f"{where}: no fewer than {left + spare} vertices are possible, but {self._most} are wanted")
        if left < count:
            self._notes.add("objects thinned")
            self._notes.add("vertices left out by thinning", count - left)
            self._notes.moved = max(self._notes.moved, thinned.moved)
            if closed and not crosses_nothing(thinned.lines):
                if len(lines) > 1:
                    raise Failure(f"{where}: thinning moves the outline across a hole; allow more vertices, or leave holes out "
                                  f"(--holes fill)")
                self._notes.add("WARNING: outlines that cross themselves after thinning")
        return thinned.lines


def crosses_nothing(rings: Sequence[Ring]) -> bool:
    text = ",".join("(" + ",".join(f"{x!r} {y!r}" for x, y in [*ring, ring[0]]) + ")" for ring in rings)
    return is_valid(ogr.CreateGeometryFromWkt(f"POLYGON({text})"))


def is_valid(geometry: ogr.Geometry) -> bool:
    with gdal_says():  # GEOS warns of the place
        return geometry.IsValid()


# --- Records ---------------------------------------------------------------------------------------------------------


class Records:
    """The record of a feature in the order of the columns."""

    def __init__(self, form: Form, wishes: Wishes, definition: ogr.FeatureDefn, notes: Notes) -> None:
        self._notes = notes
        self._wishes = wishes
        names = [definition.GetFieldDefn(i).GetName() for i in range(definition.GetFieldCount())]
        self._places = {name.lower(): i for i, name in enumerate(names)}
        self._names = names
        known = {column.name.lower(): column for column in form.columns}
        for wished in (*wishes.fields, *wishes.values):
            if wished.lower() not in known:
                raise Failure(f"-{form.operation} has no column {wished}; its columns: {listed(c.name for c in form.columns)}")
        self._fields = {name.lower(): source for name, source in wishes.fields.items()}
        self._values = {name.lower(): value for name, value in wishes.values.items()}
        self.columns = [column for column in form.columns if not column.optional or self._wished(column)]
        self._from = [self._field_of(column, form) for column in self.columns]

    def _wished(self, column: Column) -> bool:
        return column.name.lower() in self._fields or column.name.lower() in self._values

    def _field_of(self, column: Column, form: Form) -> int | None:
        wished = self._fields.get(column.name.lower())
        if wished is not None:
            if wished.lower() not in self._places:
                raise Failure(f"the source has no field {wished}; its fields: {listed(self._names)}")
            return self._places[wished.lower()]
        if column.name.lower() in self._values:
            return None
        for name in (column.name, *column.also):
            if name.lower() in self._places:
                return self._places[name.lower()]
        if column.default is None:
            raise Failure(f"-{form.operation} needs {column.name}: name its field with --column {column.name}=FIELD, or a value "
                          f"for all with --value {column.name}=VALUE; fields of the source: {listed(self._names)}")
        return None

    def told(self) -> list[str]:
        """Where each column comes from."""
        return [f"{column.name} from {self._names[at]}" if at is not None else
                f"{column.name} is {self._standing(column)!s} everywhere" for column, at in zip(self.columns, self._from)
                if at is not None or self._standing(column) != ""]

    def _standing(self, column: Column) -> str | float | None:
        return self._values.get(column.name.lower(), column.default)

    def record(self, feature: ogr.Feature, where: str) -> list[str | float]:
        return [self._value(feature, column, at, where) for column, at in zip(self.columns, self._from)]

    def _value(self, feature: ogr.Feature, column: Column, at: int | None, where: str) -> str | float:
        given = feature.GetField(at) if at is not None and feature.IsFieldSetAndNotNull(at) else None
        if isinstance(given, str) and not given.strip():
            given = None
        if given is None:
            standing = self._standing(column)
            if standing is None:
                if not column.is_text:
                    raise Failure(f"{where}: {column.name} is blank; --value {column.name}=VALUE fills blanks")
                standing = ""
            if at is not None and standing != "":
                self._notes.add(f"blanks of {column.name} filled with {standing}")
            given = standing
        return self._text(feature, column, at, given) if column.is_text else self._number(column, given, where)

    def _text(self, feature: ogr.Feature, column: Column, at: int | None, given: object) -> str:
        text = feature.GetFieldAsString(at) if at is not None and not isinstance(given, str) else str(given)
        text = " ".join(text.split("\n")).replace("\r", "").strip()
        if len(text.encode()) > column.width:
            self._notes.add(f"texts of {column.name} cut to {column.width} characters")
            text = text.encode()[:column.width].decode(errors="ignore")
        return text

    @staticmethod
    def _number(column: Column, given: object, where: str) -> float:
        try:
            value = float(given)  # type: ignore[arg-type]
        except (TypeError, ValueError):
            value = math.nan
        if not math.isfinite(value):
            raise Failure(f"{where}: {column.name} is not a number: {given}")
        return value


def listed(names: Iterator[str] | Sequence[str]) -> str:
    return ", ".join(names) or "none"


# --- Reading ---------------------------------------------------------------------------------------------------------


def open_source(source: str, wishes: Wishes) -> tuple[ogr.DataSource, ogr.Layer]:
    try:
        data = gdal.OpenEx(source, gdal.OF_VECTOR)
    except RuntimeError as error:
        raise Failure(f"{source}: GDAL cannot read it as a layer: {error}") from None
    names = [data.GetLayer(i).GetName() for i in range(data.GetLayerCount())]
    if wishes.layer is None and len(names) != 1:
        raise Failure(f"{source} has {len(names)} layers: choose one with --layer: {listed(names)}")
    layer = data.GetLayer(0) if wishes.layer is None else data.GetLayerByName(wishes.layer)
    if layer is None:
        raise Failure(f"{source} has no layer {wishes.layer}; its layers: {listed(names)}")
    if wishes.where:
        try:
            layer.SetAttributeFilter(wishes.where)
        except RuntimeError as error:
            raise Failure(f"--where: {error}") from None
    return data, layer


def flat(geometry: ogr.Geometry, notes: Notes) -> ogr.Geometry:
    if geometry.HasCurveGeometry():
        notes.add("objects with curves made of lines")
        geometry = geometry.GetLinearGeometry()
    if geometry.Is3D() or geometry.IsMeasured():
        notes.add("objects whose Z or M values were left out")
        geometry.FlattenTo2D()
    return geometry


def feature_of(number: int, wishes: Wishes) -> str:
    return f"feature {number} of those that --where leaves" if wishes.where else f"feature {number}"


class Reader:
    """The objects of a source that fit a form."""

    def __init__(self, form: Form, wishes: Wishes, layer: ogr.Layer) -> None:
        self.notes = Notes()
        self._form = form
        self._wishes = wishes
        self._layer = layer
        self._kinds = (wishes.kind,) if wishes.kind else form.kinds
        self.place = Place(layer.GetSpatialRef(), form, wishes)
        self.records = Records(form, wishes, layer.GetLayerDefn(), self.notes)
        self._shaper = Shaper(form, wishes, self.notes)

    def objects(self) -> Iterator[Object]:
        for number, feature in enumerate(self._layer, 1):
            geometry = feature.GetGeometryRef()
            if geometry is None or geometry.IsEmpty():
                self.notes.add("features without a geometry left out")
                continue
            where = feature_of(number, self._wishes)
            shapes = self._shapes(flat(geometry.Clone(), self.notes), where)
            if not shapes:
                continue
            record = self.records.record(feature, where)
            for part, shape in enumerate(shapes, 1):
                yield Object(number, self._own_record(record, part, len(shapes)), shape)

    def _shapes(self, geometry: ogr.Geometry, where: str) -> list[Shape]:
        parts: list[ogr.Geometry] = []
        unfit = 0
        for part in simple_parts(geometry):
            kind = kind_of(part)
            if kind not in self._kinds:
                unfit += 1
                continue
            placed = self.place.take(part.Clone(), kind, self.notes)
            if placed is not None:
                parts += [piece for piece in simple_parts(placed) if kind_of(piece) == kind]
        if unfit:
            self.notes.add(f"parts left out that are not {' or '.join(kind + 's' for kind in self._kinds)}", unfit)
        shapes = [shape for shape in (self._shaper.shape(part, where) for part in parts) if shape]
        if len(shapes) > 1 and self._wishes.parts == "largest":
            self.notes.add("smaller parts left out", len(shapes) - 1)
            return [max(shapes, key=size)]
        if len(shapes) > 1:
            self.notes.add("features of several parts taken apart")
        return shapes

    def _own_record(self, record: list[str | float], part: int, parts: int) -> list[str | float]:
        """Names of outputs get the number of the part, and the extension that they need."""
        own = list(record)
        if self._form.named_outputs and own[0] != "":
            name, extension = str(own[0]), self._form.extension
            if extension and "." not in name.replace("\\", "/").rsplit("/", 1)[-1]:
                name += extension
                self.notes.add(f"names that got {extension}", 1 if part == 1 else 0)
            stem, dot, end = name.rpartition(".") if extension else (name, "", "")
            own[0] = (f"{stem}_{part}{dot}{end}" if dot else f"{name}_{part}") if parts > 1 else name
        return own


def size(shape: Shape) -> float:
    if shape.kind == REGION:
        return area(shape.vertices)
    return math.fsum(math.dist(a, b) for a, b in zip(shape.vertices, shape.vertices[1:]))


# --- What the operation would refuse ---------------------------------------------------------------------------------


def check(form: Form, objects: Sequence[Object], wishes: Wishes) -> list[str]:
    """Ends with a message where a run could not go on; returns what the user should know."""
    notes = []
    if form.most_objects is not None and len(objects) > form.most_objects:
        raise Failure(f"{len(objects)} objects, but -{form.operation} takes {form.most_objects}; choose with --where")
    if form.role == "triangles":
        for made in objects:
            if len(made.shape.vertices) != 3:
                raise Failure(f"{feature_of(made.number, wishes)}: {len(made.shape.vertices)} corners, but a triangle has 3")
    if form.role == "losses":
        for made in objects:
            if abs(float(made.record[0])) < 1e-4:
                raise Failure(f"{feature_of(made.number, wishes)}: Loss is 0, which -nbc refuses; leave it out with --where")
    if form.named_outputs:
        names = Counter(str(made.record[0]).lower() for made in objects if made.record[0] != "")
        notes += [f"WARNING: {count} objects have the name {name}: the later output replaces the earlier one"
                  for name, count in names.items() if count > 1]
    if form.operation == "damages":
        notes += damage_limits(objects)
    return notes


def damage_limits(objects: Sequence[Object]) -> list[str]:
    """Lines for the control file, where its usual limits are too low."""
    lines = []
    vertices = max((len(made.shape.vertices) + 2 for made in objects if made.shape.kind == REGION), default=0)
    if len(objects) > USUAL_BUILDINGS:
        lines.append(f"the control file needs: Maximum Buildings == {len(objects)}")
    if vertices > USUAL_VERTICES:
        lines.append(f"the control file needs: Maximum Vertices == {vertices}")
    return lines


# --- Writing ---------------------------------------------------------------------------------------------------------

TYPES = {POINT: "wkbPoint", LINE: "wkbLineString", REGION: "wkbPolygon"}


def geometry_of(shape: Shape) -> ogr.Geometry:
    if shape.kind == POINT:
        point = ogr.Geometry(ogr.wkbPoint)
        point.AddPoint_2D(*shape.vertices[0])
        return point
    line = ogr.Geometry(ogr.wkbLineString if shape.kind == LINE else ogr.wkbLinearRing)
    for x, y in shape.vertices:
        line.AddPoint_2D(x, y)
    if shape.kind == LINE:
        return line
    line.AddPoint_2D(*shape.vertices[0])
    region = ogr.Geometry(ogr.wkbPolygon)
    region.AddGeometry(line)
    return region


def system_for(output: Path, system: osr.SpatialReference | None) -> osr.SpatialReference:
    """The system of the output. A .mif without one is of metres somewhere; a .shp must have a projection."""
    if output.suffix.lower() == ".shp":
        if system is None:
            raise Failure("the source has no projection, which a .shp needs: name it with --crs, or write a .mif")
        if not system.IsProjected():
            raise Failure(f"{system.GetName()} is not a projection, which a .shp needs: choose one with --crs, or write a .mif")
    if system is None:
        system = osr.SpatialReference()
        system.ImportFromWkt('LOCAL_CS["Nonearth",UNIT["Meter",1]]')
    return system


def define(layer: ogr.Layer, columns: Sequence[Column], dbf: bool) -> None:
    for column in columns:
        made = ogr.FieldDefn(column.name, ogr.OFTString if column.is_text else ogr.OFTReal)
        if column.is_text:
            made.SetWidth(min(column.width, WIDEST_DBF_TEXT) if dbf else column.width)
        elif dbf:
            made.SetWidth(NUMBER_WIDTH)
            made.SetPrecision(NUMBER_DECIMALS)
        layer.CreateField(made)


def write_layer(output: Path, columns: Sequence[Column], system: osr.SpatialReference | None, kinds: Sequence[str],
                objects: Sequence[Object], overwrite: bool) -> None:
    """Writes all files of the layer; they get their names when all are whole."""
    ending = output.suffix.lower()
    dbf = ending == ".shp"
    present = sorted({made.shape.kind for made in objects}) or sorted(kinds[:1])
    if dbf and len(present) > 1:
        raise Failure(f"a .shp holds one kind of objects, not {' and '.join(present)}: choose with --kind, or write a .mif")
    place = system_for(output, system)
    with Scratch(output, overwrite) as scratch:
        made = scratch.path / (output.stem + ending)
        options = ["FORMAT=MIF"] if not dbf else []
        data = ogr.GetDriverByName(DRIVERS[ending]).CreateDataSource(str(made), options=options)
        layer = data.CreateLayer(output.stem, place, getattr(ogr, TYPES[present[0]]) if dbf else ogr.wkbUnknown,
                                 options=["ENCODING=UTF-8"] if dbf else [])
        define(layer, columns, dbf)
        for one in objects:
            feature = ogr.Feature(layer.GetLayerDefn())
            for i, value in enumerate(one.record):
                feature.SetField(i, value)
            feature.SetGeometry(geometry_of(one.shape))
            layer.CreateFeature(feature)
        layer = data = None  # closes the files
        scratch.publish([(made.with_suffix(suffix), output.with_suffix(suffix)) for suffix in BESIDE[ending]
                         if made.with_suffix(suffix).exists()],
                        [*output_files(output), *(output.with_suffix(suffix) for suffix in INDEXES if dbf)])


def output_files(output: Path) -> list[Path]:
    if output.suffix.lower() not in DRIVERS:
        raise Failure(f"{output}: a layer ends in .mif or .shp")
    return [output.with_suffix(suffix) for suffix in BESIDE[output.suffix.lower()]]


def prepare_layer(form: Form, source: str, output: Path, wishes: Wishes) -> list[str]:
    """Makes the layer and returns what was done, line by line."""
    require_gdal()
    with gdal_says() as said:
        data, layer = open_source(source, wishes)
        reader = Reader(form, wishes, layer)
        objects = list(reader.objects())
        if not objects:
            raise Failure("\n  ".join([f"{source} has no object that fits -{form.operation}", *reader.notes.lines()]))
        notes = check(form, objects, wishes)
        write_layer(output, reader.records.columns, reader.place.system, form.kinds, objects, wishes.overwrite)
        del data
    return [*reader.records.told(), *reader.notes.lines(), *said, *notes,
            f"{counted(len(objects), 'object')} written to {output}"]


def make_template(form: Form, output: Path, crs: str | None, kind: str | None, optional: bool,
                  overwrite: bool) -> None:
    require_gdal()
    columns = [column for column in form.columns if optional or not column.optional]
    write_layer(output, columns, plane_system(system_of(crs)) if crs else None, (kind,) if kind else form.kinds, [],
                overwrite)
