// Breaklines: vertices are put along each line, and each takes a ground elevation by the width and options of its line.
#include "sampling/brkline.h"

#include "core/names.h"
#include "core/number_text.h"
#include "core/text.h"
#include "gis/layer_name.h"
#include "gis/layer_objects.h"
#include "gis/layer_writer.h"
#include "gis/record_values.h"
#include "host/console.h"
#include "plane/line_points.h"
#include "sampling/ground_level.h"
#include "sampling/line_vertices.h"
#include "sampling/sampled_layer.h"

#include <optional>
#include <string>
#include <string_view>

namespace gridforge::sampling {

namespace {

constexpr std::int32_t kOptionsWidth = 20;
// Narrower lines take one cell, those below this many cell sizes take four.
constexpr float kNarrowest = 0.0001F;
constexpr float kFourCells = 1.5F;
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

Breakline parseBreakline(const std::string& record)
{
    Breakline breakline;
    float unusedZ = 0;
    gis::RecordValues values(record);
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

// Of the search lines and the cells found. The quotation mark before the comma is part of its form.
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

struct BreaklineLayers {
    gis::LayerWriter result;
    std::optional<gis::LayerWriter> check;
};

gis::LayerSpec resultSpec(const gis::Projection& projection)
{
    return {.columns = {{"Z", "Float"}, {"dZ", "Float"}, {"Width", "Float"}, {"Options", "Char", kOptionsWidth}},
            .projection = projection,
            .families = "PL"};
}

gis::LayerSpec checkSpec(const gis::Projection& projection)
{
    return {.columns = {{"Z", "Float"}, {"Count", "Integer"}, {"Options", "Char", kOptionsWidth}},
            .projection = projection,
            .families = "PLR"};
}

BreaklineLayers openOutputs(const BrklineOptions& options, const gis::Projection& projection)
{
    const std::string stem = gis::layerStem(options.layer, "L"); // lines, as we write them
    const std::string extension = FILEEXT(options.layer);
    BreaklineLayers outputs{gis::createLayer(join(stem, "_brkline", extension), resultSpec(projection)), {}};
    if (options.check) {
        outputs.check = gis::createLayer(join(stem, "_check", extension), checkSpec(projection));
    }
    return outputs;
}

// --- One line --------------------------------------------------------------------------------------------------------

class LevelSampler {
public:
    LevelSampler(const Terrain& terrain, std::optional<gis::LayerWriter>& check)
        : header_(terrain.header), cells_(terrain.cells), check_(check)
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
        if (check_) {
            gis::Feature searched = searchLine(across, -samples, samples);
            searched.record = checkRecord(kNoGround, kSearchLineCount, breakline.options);
            check_->write(searched);
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
        if (check_) {
            check_->write({.kind = gis::Kind::region,
                           .x = {polygon.x.begin(), polygon.x.end() - 1}, // without the slot after the closing vertex
                           .y = {polygon.y.begin(), polygon.y.end() - 1},
                           .record = circleRecord(level, breakline.options)});
        }
        return level;
    }

    void writeFoundCell(const GroundLevel& level, const Breakline& breakline)
    {
        if (check_ && breakline.rule != LevelRule::mean && level.count > 0) {
            check_->write({.kind = gis::Kind::point,
                           .x = {level.x},
                           .y = {level.y},
                           .record = checkRecord(level.value, kFoundCellCount, breakline.options)});
        }
    }

    const GridHeader& header_;
    const Grid& cells_;
    std::optional<gis::LayerWriter>& check_;
    InsideWalk walk_;
};

void writeBreakline(const Breakline& breakline, float null, LevelSampler& sampler, gis::LayerWriter& result)
{
    say("Extracting elevations ...");
    for (std::size_t i = 0; i < breakline.line.count(); ++i) {
        const GroundLevel level = sampler.sample(breakline, i);
        if (level.outside) {
            say("WARNING - Vertex is outside of DEM, value of 99999 assigned.");
        }
        if (level.value != null) {
            result.write({.kind = gis::Kind::point,
                          .x = {breakline.line.x[i]},
                          .y = {breakline.line.y[i]},
                          .record = resultRecord(level.value, 0, breakline.options)});
        }
    }
    // 99999 on the line says to the model that the elevations come from the points along it.
    result.write({.kind = gis::Kind::polyline,
                  .x = breakline.line.x,
                  .y = breakline.line.y,
                  .record = resultRecord(kNoGround, breakline.width, breakline.options)});
}

} // namespace

// --- The run ---------------------------------------------------------------------------------------------------------

void runBreaklines(const BrklineOptions& options, const run::InputFileList& inputs)
{
    say("Processing -brkline option... ");
    requireOneGrid(inputs);
    gis::ProjectedLayer input = gis::openWithProjection(options.layer);
    BreaklineLayers outputs = openOutputs(options, input.projection);
    say("Extracting elevations along breakline file: ", options.layer);
    const Terrain terrain = readTerrain(inputs[1]);

    say("Searching for Lines and Polylines...");
    LevelSampler sampler(terrain, outputs.check);
    gis::Coordinates read;
    std::int32_t lines = 0;
    while (const gis::LayerObject* object = gis::nextLine(input.layer, read)) {
        Breakline breakline = parseBreakline(object->record);
        say("Polyline ", ++lines, " with ", read.np, " nodes...");
        say("Inserting vertices along line.");
        // What is written as one object is refused before it is worked on.
        breakline.line = insertVertices(read, breakline.spacing, gis::kMaxWriteVertices);
        say("   Done.");
        writeBreakline(breakline, terrain.header.null, sampler, outputs.result);
    }
    input.layer.close();
    outputs.result.close();
    if (outputs.check) {
        outputs.check->close();
    }
}

} // namespace gridforge::sampling
