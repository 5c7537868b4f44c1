// Calibration points: each observed point gets the value of the nearest cell of a modelled grid and their difference.
#include "sampling/cp.h"

#include "core/names.h"
#include "core/numbers.h"
#include "core/text.h"
#include "gis/layer_objects.h"
#include "gis/layers.h"
#include "grid/grid.h"
#include "host/console.h"
#include "host/ends.h"
#include "sampling/cell_extremes.h"
#include "sampling/cell_search.h"
#include "sampling/cell_tiles.h"
#include "sampling/cp_config.h"
#include "sampling/sampled_layer.h"

#include <string>
#include <string_view>
#include <vector>

namespace gridforge {

namespace {

// A modelled value that comes with the layer counts up to this; above it the grid is searched.
constexpr float kModelledLimit = 99998.0F;
constexpr float kNotMeasured = -1.0F; // the distance of such a value
constexpr std::int32_t kLabelledAttributes = 2;
constexpr std::int32_t kPointVertices = 2;
constexpr std::int32_t kTypeNameWidth = 20;
constexpr int kRealWidth = 9;
constexpr int kRealDecimals = 3;

// --- Attributes ------------------------------------------------------------------------------------------------------

// The number in the brackets of a type such as Char(20); 0 where there is none.
std::int32_t bracketedWidth(std::string_view type)
{
    const std::size_t open = type.find('(');
    std::int32_t width = 0;
    if (open == std::string_view::npos || !readFree(type.substr(open + 1, type.find(')', open) - open - 1), width)) {
        return 0;
    }
    return width;
}

GisOutputAttribute mifAttribute(const MifLayer& mif, std::size_t i)
{
    const std::string& type = mif.attributeType[i];
    if (FLAGEXISTS(type, "Float")) {
        return {mif.attributeName[i], "Float", 0};
    }
    return {mif.attributeName[i], std::string(trim(type.substr(0, type.find('(')))), bracketedWidth(type)};
}

GisOutputAttribute dbfAttribute(const DbfTable& dbf, std::size_t i)
{
    if (dbf.fieldType[i] == 'N' || dbf.fieldType[i] == 'F') {
        return {dbf.fieldName[i], "Float", 0};
    }
    return {dbf.fieldName[i], "Char", dbf.fieldLength[i]};
}

// Attribute i of a layer, from 0, as an output layer takes it; blank where there are fewer.
GisOutputAttribute inputAttribute(std::int32_t gisID, std::int32_t i)
{
    if (i >= gisNumberAttributes(gisID)) {
        return {};
    }
    const Layer& layer = gisLayer(gisID);
    const auto place = static_cast<std::size_t>(i);
    return layer.layerFormat == kLayerMif ? mifAttribute(layer.mifLayer, place)
                                          : dbfAttribute(layer.dbfTable[0], place);
}

// The columns of the result layer; a layer whose first column is no float ends the run.
void defineResultAttributes(std::int32_t inputID, bool withExtremes)
{
    if (gisNumberAttributes(inputID) <= 0) {
        fail("ERROR - Unable to detect any existing attributes.");
    }
    const GisOutputAttribute observed = inputAttribute(inputID, 0);
    if (observed.type != "Float") {
        say("ERROR - 1st GIS attribute is not a float type.");
        fail("   Attribute 1 type: ", observed.type);
    }
    const GisOutputAttribute label = inputAttribute(inputID, 1);
    GisOutputAttributes& attributes = gisOutputAttributes();
    attributes.clear();
    attributes.add(observed.name, observed.type, observed.length);
    attributes.add(label.name, label.type, label.length);
    attributes.add("Modelled", "Float");
    attributes.add("Difference", "Float");
    attributes.add("Distance", "Float");
    if (withExtremes) {
        attributes.add("CP_min", "Float");
        attributes.add("CP_max", "Float");
    }
}

void defineConnectionAttributes()
{
    gisOutputAttributes().clear();
    gisOutputAttributes().add("distance", "Float");
    gisOutputAttributes().add("cp_type", "Char", kTypeNameWidth);
}

// --- Outputs ---------------------------------------------------------------------------------------------------------

struct Names {
    std::string result;
    std::string connections;
    std::string summary;
};

Names settleNames(const RunSettings& settings)
{
    const std::string extension = FILEEXT(settings.cpLayer);
    if (settings.outputNameGiven) {
        say("Using specified output file: ", settings.outputName);
        const std::string base = FILENAMEPATH(settings.outputName);
        return {settings.outputName, base + "_Cn" + extension, base + ".csv"};
    }
    const std::string base = FILENAMEPATH(settings.cpLayer);
    return {base + "_Res" + extension, base + "_Cn" + extension, base + ".csv"};
}

struct Outputs {
    std::int32_t result = 0;
    std::int32_t connections = 0;
    Unit summary = 0;
};

// The attributes of the result layer have been defined.
Outputs openOutputs(const Names& names, bool withExtremes)
{
    Outputs outputs;
    say("Writing summary data to: ", names.summary);
    OPENER(outputs.summary, "O ", names.summary);
    writeLine(outputs.summary, join("\"Label\",\"Observed\",\"Modelled\",\"Difference\",\"Distance\"",
                                    std::string_view(withExtremes ? ",\"Minimum\",\"Maximum\"" : "")));
    outputs.result = gisOpenLayer(names.result, "P", "O ");
    gisWriteHeader(outputs.result);
    defineConnectionAttributes();
    outputs.connections = gisOpenLayer(names.connections, "L", "O ");
    gisWriteHeader(outputs.connections);
    setStyle(outputs.connections, "Pen (1,59,0)");
    return outputs;
}

std::string real(float value)
{
    return realField(static_cast<double>(value), kRealWidth, kRealDecimals);
}

// --- One point -------------------------------------------------------------------------------------------------------

struct CalibrationPoint {
    double x = 0;
    double y = 0;
    float observed = 0;
    std::string label;
    float modelled = kNoValue;
    float difference = 0;
    float distance = kNoValue;
    float minimum = kNoValue;
    float maximum = -kNoValue;
};

CalibrationPoint parsePoint(const std::string& dataLine, std::int32_t attributes)
{
    if (attributes < kLabelledAttributes) {
        fail("ERROR - Expecting at least 2 GIS attirbutes for input calibration point layer.");
    }
    CalibrationPoint point;
    RecordValues values(dataLine);
    values.take(point.observed);
    values.take(point.label, kLineWidth);
    if (attributes > kLabelledAttributes) {
        point.modelled = 0;
        values.take(point.modelled);
    }
    return point;
}

// Where the last cells were found. They stay from point to point, so a point without a cell is joined to an earlier
// point's; deliberate, such lines show which points had none.
struct LastFound {
    FoundCell nearest;
    FoundCell lowest;
    FoundCell highest;
};

class PointSampler {
public:
    PointSampler(const RunSettings& settings, const Terrain& terrain, std::int32_t connections)
        : settings_(settings), header_(terrain.header), cells_(terrain.cells), connections_(connections),
          emptyTiles_(terrain.header, terrain.cells), extremes_(terrain.header, terrain.cells)
    {
    }

    void sample(CalibrationPoint& point)
    {
        if (point.modelled > kModelledLimit) {
            sampleNearest(point);
        } else {
            point.difference = point.modelled - point.observed;
            point.distance = kNotMeasured;
        }
        if (settings_.cpmm) {
            sampleExtremes(point);
        }
    }

private:
    // A point whose window touches the edge of the grid gets nothing, though it lies inside.
    bool isSearchable(const CellSearch& search) const { return isWithinGrid(search.window, header_); }

    void sampleNearest(CalibrationPoint& point)
    {
        const CellSearch search = searchAround(header_, point.x, point.y, settings_.cpSearchDistance);
        if (const auto found =
                isSearchable(search) ? nearestCell(search, header_, cells_, emptyTiles_) : std::nullopt) {
            last_.nearest = *found;
            point.modelled = found->value;
            point.distance = found->distance;
        }
        point.difference = point.modelled > kModelledLimit ? kNoValue : point.modelled - point.observed;
        connect(last_.nearest, point, join(real(point.distance), ",\"Closest\""));
    }

    void sampleExtremes(CalibrationPoint& point)
    {
        const CellSearch search = searchAround(header_, point.x, point.y, settings_.cpMinMaxDistance);
        if (isSearchable(search)) {
            const FoundExtremes found = extremes_.find(search);
            if (found.lowest) {
                last_.lowest = *found.lowest;
                point.minimum = found.lowest->value;
                point.distance = found.lowest->distance;
            }
            if (found.highest) {
                last_.highest = *found.highest;
                point.maximum = found.highest->value;
            }
        }
        // The record of a minimum has no comma before its word: that is its form.
        connect(last_.lowest, point, join(real(point.distance), "\"Min\""));
        connect(last_.highest, point, join(real(last_.highest.distance), ",\"Max\""));
    }

    void connect(const FoundCell& cell, const CalibrationPoint& point, std::string_view dataLine) const
    {
        writeSegment(connections_, cell.x, cell.y, point.x, point.y, dataLine);
    }

    const RunSettings& settings_;
    const GridHeader& header_;
    const Grid& cells_;
    std::int32_t connections_;
    EmptyTiles emptyTiles_;
    ExtremeSearch extremes_;
    LastFound last_;
};

void writeResult(const CalibrationPoint& point, bool withExtremes, const Outputs& outputs)
{
    const std::string label = quotedValue(point.label);
    std::string results = join(real(point.modelled), ",", real(point.difference), ",", real(point.distance));
    if (withExtremes) {
        results += join(",", real(point.minimum), ",", real(point.maximum));
    }
    writePoint(outputs.result, point.x, point.y, join(real(point.observed), ",", label, ",", results));
    writeLine(outputs.summary, join(label, ",", real(point.observed), ",", results));
}

} // namespace

void runCalibrationPoints(const RunSettings& settings, const InputFileList& inputs)
{
    say("Processing calibration points.");
    say("Using search distance of ", AREAL(settings.cpSearchDistance));
    say("   Use -cpsd<distance> input argument to modify.");
    if (settings.cpmm) {
        say("Extracting max/min with search disatnce of ", AREAL(settings.cpMinMaxDistance));
    }
    const bool withSymbols = !settings.configFile.empty();
    std::vector<SymbolThreshold> thresholds;
    if (withSymbols) {
        thresholds = readSymbolThresholds(settings.configFile);
    }

    std::int32_t inputID = openSampledLayer(settings.cpLayer);
    defineResultAttributes(inputID, settings.cpmm);
    Outputs outputs = openOutputs(settleNames(settings), settings.cpmm);
    const Terrain terrain = loadTerrain(inputs[1]);

    say("Searching for Points...");
    const std::int32_t attributes = gisNumberAttributes(inputID);
    PointSampler sampler(settings, terrain, outputs.connections);
    GisCoordinates read;
    forEachObject(inputID, [&](GisO& gisO, const std::string& dataLine) {
        if (!gisO.point) {
            return;
        }
        gisReadObject(inputID, gisO, read, kPointVertices);
        CalibrationPoint point = parsePoint(dataLine, attributes);
        point.x = read.x[0];
        point.y = read.y[0];
        sampler.sample(point);
        if (withSymbols) {
            setStyle(outputs.result, symbolStyle(thresholds, point.difference));
        }
        writeResult(point, settings.cpmm, outputs);
    });
    gisCloseLayer(inputID);
    gisCloseLayer(outputs.result);
    gisCloseLayer(outputs.connections);
    CLOSER(outputs.summary);
}

} // namespace gridforge
