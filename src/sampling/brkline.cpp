// Breaklines: vertices are put along each line, and each takes a ground elevation by the width and options of its line.
#include "sampling/brkline.h"

#include "core/names.h"
#include "core/numbers.h"
#include "core/text.h"
#include "gis/layer_objects.h"
#include "gis/layers.h"
#include "host/console.h"
#include "sampling/ground_level.h"
#include "sampling/line_vertices.h"
#include "sampling/sampled_layer.h"

#include <string>
#include <string_view>

namespace gridforge {

namespace {

constexpr std::int32_t kOptionsWidth = 20;
// Narrower lines take one cell, those below this many cell sizes take four.
constexpr float kNarrowest = 0.0001F;
constexpr float kFourCells = 1.5F;
constexpr float kBothSides = 0.5F;
// The counts that the check layer shows for a search line and for a cell found.
constexpr std::int32_t kSearchLineCount = -99;
constexpr std::int32_t kFoundCellCount = 1;

// --- Records ---------------------------------------------------------------------------------------------------------

struct Breakline {
    float spacing = 0;
    float width = 0;
    std::string options;
    LevelRule rule = LevelRule::mean;
    LineVertices line;
};

Breakline parseBreakline(const std::string& dataLine)
{
    Breakline breakline;
    float unusedZ = 0;
    RecordValues values(dataLine);
    values.take(unusedZ);
    values.take(breakline.spacing);
    values.take(breakline.width);
    values.take(breakline.options, static_cast<std::size_t>(kOptionsWidth));
    breakline.rule = levelRule(breakline.options);
    return breakline;
}

std::string real(float value, int width)
{
    constexpr int kDecimals = 3;
    return realField(static_cast<double>(value), width, kDecimals);
}

std::string resultRecord(float z, float width, const std::string& options)
{
    constexpr int kWideReal = 16;
    constexpr int kReal = 8;
    return join(real(z, kWideReal), ",", real(0, kReal), ",", real(width, kReal), ",", quotedValue(options));
}

// Of the search lines and the cells found. The quotation mark in front of the comma is part of its form.
std::string checkRecord(float z, std::int64_t count, const std::string& options)
{
    constexpr int kReal = 9;
    constexpr int kInteger = 8;
    return join(real(z, kReal), ",", integerField(count, kInteger), "\",", quotedValue(options));
}

std::string circleRecord(const GroundLevel& level, const std::string& options)
{
    constexpr int kReal = 16;
    constexpr int kInteger = 8;
    return join(real(level.value, kReal), ",", integerField(level.count, kInteger), ",", quotedValue(options));
}

// --- Outputs ---------------------------------------------------------------------------------------------------------

struct Outputs {
    std::int32_t result = 0;
    std::int32_t check = 0; // 0 without -check
};

// The layer's name with folder and without extension. The lines of a Shapefile layer may bear the tail of our own names.
std::string layerStem(const std::string& layer)
{
    std::string stem = FILENAMEPATH(layer);
    if (FILEEXT(layer) == ".shp" && stem.ends_with("_L")) {
        stem.resize(stem.size() - std::string_view("_L").size());
    }
    return stem;
}

std::int32_t openResultLayer(const std::string& name)
{
    GisOutputAttributes& attributes = gisOutputAttributes();
    attributes.clear();
    attributes.add("Z", "Float");
    attributes.add("dZ", "Float");
    attributes.add("Width", "Float");
    attributes.add("Options", "Char", kOptionsWidth);
    const std::int32_t gisID = gisOpenLayer(name, "PL", "O ");
    gisWriteHeader(gisID);
    return gisID;
}

std::int32_t openCheckLayer(const std::string& name)
{
    GisOutputAttributes& attributes = gisOutputAttributes();
    attributes.clear();
    attributes.add("Z", "Float");
    attributes.add("Count", "Integer");
    attributes.add("Options", "Char", kOptionsWidth);
    const std::int32_t gisID = gisOpenLayer(name, "PLR", "O ");
    gisWriteHeader(gisID);
    return gisID;
}

Outputs openOutputs(const RunSettings& settings)
{
    const std::string stem = layerStem(settings.brklineLayer);
    const std::string extension = FILEEXT(settings.brklineLayer);
    Outputs outputs;
    outputs.result = openResultLayer(join(stem, "_brkline", extension));
    if (settings.check) {
        outputs.check = openCheckLayer(join(stem, "_check", extension));
    }
    return outputs;
}

// --- One line --------------------------------------------------------------------------------------------------------

class LevelSampler {
public:
    LevelSampler(const Terrain& terrain, std::int32_t checkID)
        : header_(terrain.header), cells_(terrain.cells), checkID_(checkID)
    {
    }

    GroundLevel sample(const Breakline& breakline, std::size_t i)
    {
        const double x = breakline.line.x[i];
        const double y = breakline.line.y[i];
        if (breakline.width < kNarrowest) {
            return levelOfCell(header_, cells_, x, y);
        }
        if (breakline.width < kFourCells * header_.cellsize) {
            return levelOfFourCells(header_, cells_, x, y, breakline.rule);
        }
        return FLAGEXISTS(breakline.options, "Perp") ? sampleAcross(breakline, i) : sampleCircle(breakline, i);
    }

private:
    GroundLevel sampleAcross(const Breakline& breakline, std::size_t i)
    {
        const LineVertices& line = breakline.line;
        if (isDuplicate(line, i)) {
            sayDuplicate();
            pauseForEnter();
        }
        const AcrossLine across = acrossLine(header_, line.x[i], line.y[i], perpendicularAngle(lineAngle(line, i)));
        const std::int32_t samples = samplesToSide(header_, breakline.width, kBothSides);
        if (checkID_ > 0) {
            writeSearchLine(checkID_, across, -samples, samples,
                            checkRecord(kNoGround, kSearchLineCount, breakline.options));
        }
        const GroundLevel level = levelAcross(across, header_, cells_, {-samples, samples}, breakline.rule);
        writeFoundCell(level, breakline);
        return level;
    }

    GroundLevel sampleCircle(const Breakline& breakline, std::size_t i)
    {
        const double x = breakline.line.x[i];
        const double y = breakline.line.y[i];
        const SearchPolygon polygon = searchPolygon(x, y, breakline.width);
        const CellWindow window = searchWindow(header_, x, y, breakline.width);
        const GroundLevel level = levelInCircle(polygon, window, header_, cells_, breakline.rule, walk_);
        writeFoundCell(level, breakline);
        if (checkID_ > 0) {
            writeRegion(checkID_, polygon, circleRecord(level, breakline.options));
        }
        return level;
    }

    void writeFoundCell(const GroundLevel& level, const Breakline& breakline) const
    {
        if (checkID_ > 0 && breakline.rule != LevelRule::mean && level.count > 0) {
            writePoint(checkID_, level.x, level.y, checkRecord(level.value, kFoundCellCount, breakline.options));
        }
    }

    const GridHeader& header_;
    const Grid& cells_;
    std::int32_t checkID_;
    InsideWalk walk_;
};

void writeBreakline(const Breakline& breakline, float null, LevelSampler& sampler, std::int32_t resultID)
{
    say("Extracting elevations ...");
    for (std::size_t i = 0; i < breakline.line.count(); ++i) {
        const GroundLevel level = sampler.sample(breakline, i);
        if (level.outside) {
            say("WARNING - Vertex is outside of DEM, value of 99999 assigned.");
        }
        if (level.value != null) {
            writePoint(resultID, breakline.line.x[i], breakline.line.y[i],
                       resultRecord(level.value, 0, breakline.options));
        }
    }
    // 99999 on the line tells the model that the elevations come from the points along it.
    writePolyline(resultID, breakline.line, resultRecord(kNoGround, breakline.width, breakline.options));
}

} // namespace

// --- The run ---------------------------------------------------------------------------------------------------------

void runBreaklines(const RunSettings& settings, const InputFileList& inputs)
{
    say("Processing -brkline option... ");
    requireOneGrid(inputs);
    std::int32_t inputID = openSampledLayer(settings.brklineLayer);
    Outputs outputs = openOutputs(settings);
    say("Extracting elevations along breakline file: ", settings.brklineLayer);
    const Terrain terrain = readTerrain(inputs[1]);

    say("Searching for Lines and Polylines...");
    LevelSampler sampler(terrain, outputs.check);
    GisCoordinates read;
    std::int32_t lines = 0;
    forEachObject(inputID, [&](GisO& gisO, const std::string& dataLine) {
        if (!isLineObject(gisO)) {
            return;
        }
        gisReadObject(inputID, gisO, read, kMaxSampledVertices);
        Breakline breakline = parseBreakline(dataLine);
        say("Polyline ", ++lines, " with ", read.np, " nodes...");
        say("Inserting vertices along line.");
        // What is written as one object is refused before it is worked on.
        breakline.line = insertVertices(read, breakline.spacing, kMaxWriteVertices);
        say("   Done.");
        writeBreakline(breakline, terrain.header.null, sampler, outputs.result);
    });
    gisCloseLayer(inputID);
    gisCloseLayer(outputs.result);
    if (outputs.check > 0) {
        gisCloseLayer(outputs.check);
    }
}

} // namespace gridforge
