"""The parameters of an algorithm, made from the fields of its form, and what was given to them."""
from __future__ import annotations

from dataclasses import dataclass
from pathlib import Path
from typing import Any, Union

from qgis.core import (QgsCoordinateReferenceSystem, QgsProcessing, QgsProcessingAlgorithm, QgsProcessingContext,
                       QgsProcessingException, QgsProcessingFeatureSourceDefinition, QgsProcessingOutputFile,
                       QgsProcessingOutputMultipleLayers, QgsProcessingOutputRasterLayer, QgsProcessingOutputVectorLayer,
                       QgsProcessingParameterBoolean, QgsProcessingParameterDefinition, QgsProcessingParameterEnum,
                       QgsProcessingParameterFeatureSource, QgsProcessingParameterFile, QgsProcessingParameterFileDestination,
                       QgsProcessingParameterFolderDestination, QgsProcessingParameterMultipleLayers,
                       QgsProcessingParameterNumber, QgsProcessingParameterRasterDestination,
                       QgsProcessingParameterRasterLayer, QgsProcessingParameterString, QgsProcessingParameterVectorDestination,
                       QgsProviderRegistry, QgsRasterLayer, QgsVectorLayer, QgsWkbTypes)

from . import styling
from .form import Field, Form, Output

FOLDER, LOAD, STYLE, BASE, LAYERS = "FOLDER", "LOAD", "STYLE", "BASE", "LAYERS"
GRIDS = (".asc", ".flt")
VECTORS = (".mif", ".shp")
SHAPE_TYPE_AT = 32  # in the header of a .shp
PLAIN_SHAPES = (0, 1, 3, 5)  # nulls, points, lines, polygons


@dataclass(frozen=True)
class GridSource:
    """A grid that was given: its file, or what GDAL calls it, and its projection."""
    source: str
    name: str
    projection: str
    bands: int

    @property
    def fits(self) -> bool:
        return Path(self.source).suffix.lower() in GRIDS and Path(self.source).is_file()


@dataclass(frozen=True)
class LayerSource:
    """A layer that was given: its file if the tool can read it, else what conversion has to know."""
    file: Union[Path, None]
    name: str
    has_projection: bool
    hidden_columns: tuple[int, ...]


# --- definition

def _number(field: Field, kind: Any) -> QgsProcessingParameterDefinition:
    return QgsProcessingParameterNumber(field.name, field.label, kind, field.default, field.optional)


def _choice(field: Field) -> QgsProcessingParameterDefinition:
    several = field.kind == "choices"
    default = [field.choices.index(one) for one in field.default] if several else field.choices.index(str(field.default))
    return QgsProcessingParameterEnum(field.name, field.label, list(field.labels), several, default, field.optional and several)


def _grids(field: Field) -> QgsProcessingParameterDefinition:
    parameter = QgsProcessingParameterMultipleLayers(field.name, field.label, QgsProcessing.TypeRaster, None, field.optional)
    parameter.setMinimumNumberInputs(0 if field.optional else field.least)
    return parameter


def _file(field: Field) -> QgsProcessingParameterDefinition:
    return QgsProcessingParameterFile(field.name, field.label, optional=field.optional)


MAKERS = {
    "grid": lambda field: QgsProcessingParameterRasterLayer(field.name, field.label, None, field.optional),
    "grids": _grids,
    "layer": lambda field: QgsProcessingParameterFeatureSource(field.name, field.label, [QgsProcessing.TypeVectorAnyGeometry],
                                                               None, field.optional),
    "file": _file,
    "controlFile": _file,
    "number": lambda field: _number(field, QgsProcessingParameterNumber.Double),
    "integer": lambda field: _number(field, QgsProcessingParameterNumber.Integer),
    "switch": lambda field: QgsProcessingParameterBoolean(field.name, field.label, bool(field.default)),
    "choice": _choice,
    "choices": _choice,
    "text": lambda field: QgsProcessingParameterString(field.name, field.label, field.default, False, field.optional),
}


def _destination(output: Output, is_main: bool) -> QgsProcessingParameterDefinition:
    optional = not is_main
    if output.kind == "grid":
        return QgsProcessingParameterRasterDestination(output.name, output.label, None, optional, True)
    if output.kind == "layer":
        return QgsProcessingParameterVectorDestination(output.name, output.label, QgsProcessing.TypeVectorAnyGeometry, None,
                                                       optional, True)
    ending = Path("x" + output.rules[0].name.split("}")[-1]).suffix[1:]
    kinds = {"csv": "Tables (*.csv)", "txt": "Texts (*.txt)", "nc": "NetCDF files (*.nc)"}
    return QgsProcessingParameterFileDestination(output.name, output.label, kinds[ending], None, optional, is_main)


def _result(output: Output) -> Any:
    kind = {"grid": QgsProcessingOutputRasterLayer, "layer": QgsProcessingOutputVectorLayer}.get(output.kind,
                                                                                                 QgsProcessingOutputFile)
    return kind(output.name, output.label)


def style_choices(form: Form) -> tuple[str, ...]:
    """Of the first output whose style is the user's choice, or of grids in a folder that are not told apart."""
    for output in form.outputs:
        if styling.choices_for(output.style):
            return styling.choices_for(output.style)
    return styling.INPUT_CHOICES if form.to_folder and form.takes_grid_format and not form.outputs else ()


def _add_style(algorithm: QgsProcessingAlgorithm, form: Form) -> None:
    choices = style_choices(form)
    if choices:
        labels = [styling.LABELS[choice] for choice in choices]
        algorithm.addParameter(QgsProcessingParameterEnum(STYLE, "Style of the result", labels, False, 0))


def _add_places(algorithm: QgsProcessingAlgorithm, form: Form) -> None:
    """Where outputs go."""
    if form.control_file is not None:
        algorithm.addParameter(QgsProcessingParameterFile(
            BASE, "Folder from which the control file names its files; its own, if empty", QgsProcessingParameterFile.Folder,
            optional=True))
    if not form.to_folder:
        for output in form.outputs:
            algorithm.addParameter(_destination(output, output is form.outputs[0]))
        return
    if not form.writes_beside_inputs:
        algorithm.addParameter(QgsProcessingParameterFolderDestination(FOLDER, "Folder of the results"))
    algorithm.addParameter(QgsProcessingParameterBoolean(LOAD, "Load the results", True))
    for output in form.outputs:
        algorithm.addOutput(_result(output))
    algorithm.addOutput(QgsProcessingOutputMultipleLayers(LAYERS, "Grids and layers of the run"))


def add_parameters(algorithm: QgsProcessingAlgorithm, form: Form) -> None:
    for field in form.fields:
        parameter = MAKERS[field.kind](field)
        if field.help:
            parameter.setHelp(field.help[:1].upper() + field.help[1:] + ".")
        if field.name == "DECIMAL":
            parameter.setFlags(parameter.flags() | QgsProcessingParameterDefinition.FlagAdvanced)
        algorithm.addParameter(parameter)
    _add_style(algorithm, form)
    _add_places(algorithm, form)


# --- what was given

def _projection(system: QgsCoordinateReferenceSystem) -> str:
    return system.toWkt(QgsCoordinateReferenceSystem.WKT1_ESRI) + "\n" if system.isValid() else ""


def _grid(layer: Union[QgsRasterLayer, None], label: str) -> GridSource:
    if layer is None or not layer.isValid():
        raise QgsProcessingException(f"{label}: this is not a grid that can be read.")
    if layer.providerType() != "gdal":
        raise QgsProcessingException(f"{label}: {layer.name()} is not a file.")
    source = layer.source()
    path = QgsProviderRegistry.instance().decodeUri("gdal", source).get("path") or source
    plain = Path(path).is_file() and Path(path).suffix.lower() in GRIDS
    return GridSource(path if plain else source, layer.name(), _projection(layer.crs()), layer.bandCount())


def _layer(algorithm: QgsProcessingAlgorithm, name: str, parameters: dict[str, Any],
           context: QgsProcessingContext) -> Union[LayerSource, None]:
    layer = algorithm.parameterAsVectorLayer(parameters, name, context)
    if layer is None:
        if algorithm.parameterAsSource(parameters, name, context) is None:
            return None
        return LayerSource(None, name.lower(), True, ())
    value = parameters[name]
    selected = isinstance(value, QgsProcessingFeatureSourceDefinition) and value.selectedFeaturesOnly
    uri = QgsProviderRegistry.instance().decodeUri(layer.providerType(), layer.source())
    path = Path(uri.get("path") or "")
    whole = not selected and not layer.subsetString() and not layer.isEditable()
    ours = layer.providerType() == "ogr" and path.suffix.lower() in VECTORS and path.is_file()
    fits = ours and whole and _is_plain(layer, path)
    return LayerSource(path if fits else None, layer.name(), layer.crs().isValid(), tuple(_hidden(layer)))


def _is_plain(layer: QgsVectorLayer, file: Path) -> bool:
    """Whether the tool reads the shapes: it has no multipoints, and no Z and M, which QGIS may not show if all are empty."""
    if file.suffix.lower() != ".shp":
        return QgsWkbTypes.flatType(layer.wkbType()) != QgsWkbTypes.MultiPoint
    with open(file, "rb") as shapes:
        shapes.seek(SHAPE_TYPE_AT)
        return int.from_bytes(shapes.read(4), "little") in PLAIN_SHAPES


def _hidden(layer: QgsVectorLayer) -> list[int]:
    """The key that a GeoPackage gives its objects: nobody has put that column there."""
    if layer.providerType() != "ogr" or layer.storageType() != "GPKG":
        return []
    return list(layer.primaryKeyAttributes())


def _is_empty(value: Any) -> bool:
    """What a dialog gives for a field that nobody has filled in: file widgets and `qgis_process` give an empty text."""
    return value is None or isinstance(value, str) and not value


def _value(algorithm: QgsProcessingAlgorithm, field: Field, parameters: dict[str, Any], context: QgsProcessingContext) -> Any:
    if field.optional and _is_empty(parameters.get(field.name)):
        return field.default
    if field.kind == "grid":
        return _grid(algorithm.parameterAsRasterLayer(parameters, field.name, context), field.label)
    if field.kind == "grids":
        layers = algorithm.parameterAsLayerList(parameters, field.name, context)
        given = parameters[field.name]
        if isinstance(given, list) and len(given) != len(layers):
            raise QgsProcessingException(f"{field.label}: one of these is not a grid that can be read.")
        return [_grid(layer, field.label) for layer in layers]
    if field.kind == "layer":
        return _layer(algorithm, field.name, parameters, context)
    if field.kind in ("file", "controlFile"):
        return Path(algorithm.parameterAsFile(parameters, field.name, context))
    if field.kind == "number":
        return algorithm.parameterAsDouble(parameters, field.name, context)
    if field.kind == "integer":
        return algorithm.parameterAsInt(parameters, field.name, context)
    if field.kind == "switch":
        return algorithm.parameterAsBool(parameters, field.name, context)
    if field.kind == "choice":
        return field.choices[algorithm.parameterAsEnum(parameters, field.name, context)]
    if field.kind == "choices":
        return [field.choices[index] for index in algorithm.parameterAsEnums(parameters, field.name, context)]
    return algorithm.parameterAsString(parameters, field.name, context)


def read_sources(algorithm: QgsProcessingAlgorithm, form: Form, parameters: dict[str, Any],
                 context: QgsProcessingContext) -> dict[str, Any]:
    return {field.name: _value(algorithm, field, parameters, context) for field in form.fields}
