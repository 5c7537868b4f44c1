// Calibration points: each observed point gets the value of the nearest cell of a modelled grid and their difference.
#include "sampling/cp.h"

#include "core/names.h"
#include "core/number_text.h"
#include "core/text.h"
#include "gis/layer_writer.h"
#include "gis/record_values.h"
#include "host/console.h"
#include "host/ends.h"
#include "sampling/cell_search.h"
#include "sampling/cp_config.h"
#include "sampling/point_finder.h"
#include "sampling/sampled_layer.h"

#include <cassert>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gridforge::sampling {

namespace {

// A modelled value that comes with the layer counts up to this; above it the grid is searched.
constexpr float kModelledLimit = 99998.0F;
constexpr float kNotMeasured = -1.0F; // the distance of such a value
constexpr std::int32_t kLabelledColumns = 2;
constexpr std::int32_t kPointVertices = 2;
constexpr std::int32_t kTypeNameWidth = 20;
constexpr int kRealWidth = 9;
constexpr int kRealDecimals = 3;

// --- Attributes ------------------------------------------------------------------------------------------------------

// The columns of the result layer; a layer whose first column is no float ends the run.
std::vector<gis::Column> resultColumns(std::vector<gis::Column> input, bool withExtremes)
{
    assert(!input.empty()); // a layer without columns has been refused
    const gis::Column& observed = input.front();
    if (observed.type != "Float") {
        say("ERROR - 1st GIS attribute is not a float type.");
        fail("   Attribute 1 type: ", observed.type);
    }
    std::vector<gis::Column> columns = std::move(input);
    columns.resize(kLabelledColumns); // a layer of one column has a label without a name
    columns.insert(columns.end(), {{"Modelled", "Float"}, {"Difference", "Float"}, {"Distance", "Float"}});
    if (withExtremes) {
        columns.insert(columns.end(), {{"CP_min", "Float"}, {"CP_max", "Float"}});
    }
    return columns;
}

const std::vector<gis::Column>& connectionColumns()
{
    static const std::vector<gis::Column> columns = {{"distance", "Float"}, {"cp_type", "Char", kTypeNameWidth}};
    return columns;
}

// --- Outputs ---------------------------------------------------------------------------------------------------------

struct Names {
    std::string result;
    std::string connections;
    std::string summary;
};

Names settleNames(const run::Common& common, const std::string& layer)
{
    const std::string extension = FILEEXT(layer);
    if (common.out) {
        say("Using specified output file: ", *common.out);
        const std::string base = FILENAMEPATH(*common.out);
        return {*common.out, base + "_Cn" + extension, base + ".csv"};
    }
    const std::string base = FILENAMEPATH(layer);
    return {base + "_Res" + extension, base + "_Cn" + extension, base + ".csv"};
}

struct PointOutputs {
    Unit summary = 0;
    gis::LayerWriter result;
    gis::LayerWriter connections;
    gis::Feature point; // the last one written
};

PointOutputs openOutputs(const Names& names, const gis::Projection& projection, std::vector<gis::Column> columns,
                         bool withExtremes)
{
    say("Writing summary data to: ", names.summary);
    Unit summary = 0;
    OPENER(summary, "O ", names.summary);
    writeLine(summary, join("\"Label\",\"Observed\",\"Modelled\",\"Difference\",\"Distance\"",
                            std::string_view(withExtremes ? ",\"Minimum\",\"Maximum\"" : "")));
    gis::LayerWriter result =
        gis::createLayer(names.result, {.columns = std::move(columns), .projection = projection, .families = "P"});
    gis::LayerWriter connections = gis::createLayer(
        names.connections, {.columns = connectionColumns(), .projection = projection, .families = "L"});
    return {summary, std::move(result), std::move(connections), {.kind = gis::Kind::point}};
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

CalibrationPoint parsePoint(const std::string& record, std::int32_t columns)
{
    if (columns < kLabelledColumns) {
        fail("ERROR - Expecting at least 2 GIS attirbutes for input calibration point layer.");
    }
    CalibrationPoint point;
    gis::RecordValues values(record);
    values.take(point.observed);
    values.take(point.label, kLineWidth);
    if (columns > kLabelledColumns) {
        point.modelled = 0;
        values.take(point.modelled);
    }
    return point;
}

// Where the last cells were found. They stay from point to point, so a point without a cell is joined to an earlier
// point's, on purpose: such lines show which points had none.
struct LastFound {
    FoundCell nearest;
    FoundCell lowest;
    FoundCell highest;
};

class PointSampler {
public:
    PointSampler(const CpOptions& options, PointFinder& finder, gis::LayerWriter& connections)
        : options_(options), finder_(finder), connections_(connections)
    {
    }

    void sample(CalibrationPoint& point)
    {
        finder_.goTo(point.x, point.y);
        if (point.modelled > kModelledLimit) {
            sampleNearest(point);
        } else {
            point.difference = point.modelled - point.observed;
            point.distance = kNotMeasured;
        }
        if (options_.extremes) {
            sampleExtremes(point);
        }
    }

private:
    void sampleNearest(CalibrationPoint& point)
    {
        if (const auto found = finder_.nearest()) {
            last_.nearest = *found;
            point.modelled = found->value;
            point.distance = found->distance;
        }
        point.difference = point.modelled > kModelledLimit ? kNoValue : point.modelled - point.observed;
        connect(last_.nearest, point, join(real(point.distance), ",\"Closest\""));
    }

    void sampleExtremes(CalibrationPoint& point)
    {
        const FoundExtremes found = finder_.extremes();
        if (found.lowest) {
            last_.lowest = *found.lowest;
            point.minimum = found.lowest->value;
            point.distance = found.lowest->distance;
        }
        if (found.highest) {
            last_.highest = *found.highest;
            point.maximum = found.highest->value;
        }
        // The record of a minimum has no comma before its word: that is its form.
        connect(last_.lowest, point, join(real(point.distance), "\"Min\""));
        connect(last_.highest, point, join(real(last_.highest.distance), ",\"Max\""));
    }

    void connect(const FoundCell& cell, const CalibrationPoint& point, std::string record)
    {
        connection_.x = {cell.x, point.x};
        connection_.y = {cell.y, point.y};
        connection_.record = std::move(record);
        connections_.write(connection_);
    }

    const CpOptions& options_;
    PointFinder& finder_;
    gis::LayerWriter& connections_;
    gis::Feature connection_{.kind = gis::Kind::line, .style = {.first = "Pen (1,59,0)"}};
    LastFound last_;
};

void writeResult(const CalibrationPoint& point, bool withExtremes, const std::string& symbol, PointOutputs& outputs)
{
    const std::string label = quotedValue(point.label);
    std::string results = join(real(point.modelled), ",", real(point.difference), ",", real(point.distance));
    if (withExtremes) {
        results += join(",", real(point.minimum), ",", real(point.maximum));
    }
    const std::string observed = real(point.observed);
    outputs.point.x = {point.x};
    outputs.point.y = {point.y};
    outputs.point.record = join(observed, ",", label, ",", results);
    outputs.point.style.first = symbol;
    outputs.result.write(outputs.point);
    writeLine(outputs.summary, join(label, ",", observed, ",", results));
}

// Blank, with a warning, where no threshold has a symbol for it.
std::string symbolOf(float difference, const std::vector<SymbolThreshold>& thresholds)
{
    const std::optional<std::string> style = symbolStyle(thresholds, difference);
    if (!style) {
        say("Warning above difference is above highest value in config file.");
    }
    return style.value_or("");
}

} // namespace

void runCalibrationPoints(const run::Common& common, const CpOptions& options, const run::InputFileList& inputs)
{
    say("Processing calibration points.");
    say("Using search distance of ", AREAL(options.searchDistance));
    say("   Use -cpsd<distance> input argument to modify.");
    if (options.extremes) {
        say("Extracting max/min with search disatnce of ", AREAL(options.extremesDistance));
    }
    const bool withSymbols = !options.configFile.empty();
    std::vector<SymbolThreshold> thresholds;
    if (withSymbols) {
        thresholds = readSymbolThresholds(options.configFile);
    }

    gis::ProjectedLayer input = gis::openWithProjection(options.layer);
    std::vector<gis::Column> columns = resultColumns(input.layer.columns(), options.extremes);
    PointOutputs outputs =
        openOutputs(settleNames(common, options.layer), input.projection, std::move(columns), options.extremes);
    const PointCircles circles{options.searchDistance,
                               options.extremes ? std::optional(options.extremesDistance) : std::nullopt};
    PointFinder finder(options.layer, inputs[1], circles);
    finder.load(inputs[1]);

    say("Searching for Points...");
    PointSampler sampler(options, finder, outputs.connections);
    gis::Coordinates read;
    while (gis::LayerObject* object = input.layer.next()) {
        if (object->kind != gis::Kind::point) {
            continue;
        }
        input.layer.readCoordinates(*object, read, kPointVertices);
        CalibrationPoint point = parsePoint(object->record, input.layer.columnCount());
        point.x = read.x[0];
        point.y = read.y[0];
        sampler.sample(point);
        const std::string symbol = withSymbols ? symbolOf(point.difference, thresholds) : "";
        writeResult(point, options.extremes, symbol, outputs);
    }
    input.layer.close();
    outputs.result.close();
    outputs.connections.close();
    CLOSER(outputs.summary);
}

} // namespace gridforge::sampling
