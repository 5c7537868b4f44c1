// Nodal areas: for each region of a layer a table of heights and of the area of the terrain below them.
#include "sampling/na.h"

#include "core/number_text.h"
#include "core/text.h"
#include "gis/layer_objects.h"
#include "gis/record_values.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/units.h"
#include "run/sampled_region.h"
#include "sampling/na_cells.h"
#include "sampling/sampled_layer.h"

#include <array>
#include <cmath>
#include <span>
#include <string>
#include <vector>

namespace gridforge::sampling {

namespace {

constexpr std::size_t kMaxValues = 10000000;
constexpr double kFarthestBound = 10000000000.0; // the bounds of a region are sought from here
constexpr float kHighestStart = 99999.0F;        // the minimum starts from it, the maximum from its negative
constexpr float kLeastRange = 0.001F;

// --- One region ------------------------------------------------------------------------------------------------------

struct NodeRecord {
    std::string identifier; // names the table
    float minimum = 0;      // of the user; none where it is next to 0
};

NodeRecord parseNode(const std::string& record)
{
    // The columns of a network layer between the identifier and the skew, which holds the minimum here.
    constexpr std::array<std::size_t, 8> kTextWidths = {2, 8, 20, 20, 20, 20, 20, 20};
    constexpr std::size_t kIdentifierWidth = 50;
    NodeRecord node;
    gis::RecordValues values(record);
    values.take(node.identifier, kIdentifierWidth);
    std::string text;
    for (const std::size_t width : kTextWidths) {
        values.take(text, width);
    }
    float unused = 0;
    values.take(unused);
    values.take(unused);
    values.take(node.minimum);
    return node;
}

// The values of the terrain inside the region.
std::vector<float> terrainInside(const SampledRegion& region, const Terrain& terrain)
{
    const CellWindow window = regionWindow(region, terrain.header);
    if (!isWithinGrid(window, terrain.header)) {
        fail("ERROR - Region is outside of DEM.");
    }
    std::vector<float> values;
    if (!collectInside(region, terrain.header, terrain.cells, window, kMaxValues, values)) {
        fail("ERROR - Number of DEM values with polygon exceeds ", kMaxValues);
    }
    return values;
}

struct HeightRange {
    float minimum = kHighestStart;
    float maximum = -kHighestStart;
};

HeightRange rangeOf(std::span<const float> values)
{
    HeightRange range;
    for (const float value : values) {
        range.minimum = value < range.minimum ? value : range.minimum;
        range.maximum = value > range.maximum ? value : range.maximum;
    }
    return range;
}

// From the lowest value, or the user's minimum, to the highest. A minimum of the user drops no cell: what is lower counts
// at the first height.
HeightRange announcedRange(std::span<const float> values, const NodeRecord& node)
{
    constexpr float kNextToNothing = 0.001F;
    HeightRange range = rangeOf(values);
    if (std::abs(node.minimum) > kNextToNothing) {
        say("Using user defined minimum value (skew column)");
        range.minimum = node.minimum;
    }
    say("Found ", values.size(), " DEM values within region.");
    say("Elevations range from ", AREAL(range.minimum), " to ", AREAL(range.maximum));
    if (range.maximum - range.minimum < kLeastRange) {
        fail("ERROR - Maximum value less or equal to minimum value.");
    }
    return range;
}

void writeTable(const std::string& name, std::span<const float> heights, const HeightCounts& counts, double dx)
{
    constexpr int kHeightWidth = 8;
    constexpr int kAreaWidth = 20;
    constexpr int kDecimals = 3;
    say("Writing nodal-area data to: ", name);
    Unit unit = 0;
    OPENER(unit, "O ", name);
    writeLine(unit, "\"Height\",\"Area\"");
    for (std::size_t i = 0; i < heights.size(); ++i) {
        const double area = static_cast<double>(counts.upTo[i]) * dx * dx;
        writeLine(unit, join(realField(static_cast<double>(heights[i]), kHeightWidth, kDecimals), ",",
                             realField(area, kAreaWidth, kDecimals)));
    }
    CLOSER(unit);
}

void tabulateRegion(const SampledRegion& region, const NodeRecord& node, const Terrain& terrain)
{
    const std::vector<float> values = terrainInside(region, terrain);
    const HeightRange range = announcedRange(values, node);
    const std::vector<float> heights = heightLadder(range.minimum, range.maximum);
    const HeightCounts counts = countByHeight(values, heights);
    for (std::int64_t i = 0; i < counts.above; ++i) {
        say("ERROR - Should not be here. DEM value above maximum.");
    }
    writeTable(node.identifier, heights, counts, terrain.header.cellsize8);
}

} // namespace

// --- The run ---------------------------------------------------------------------------------------------------------

void runNodalArea(const NaOptions& options, const run::InputFileList& inputs)
{
    say("Processing -na option... ");
    requireOneGrid(inputs);
    gis::LayerReader layer = gis::openWithProjection(options.layer).layer;
    const Terrain terrain = loadTerrain(inputs[1]);

    say("Searching for region objects...");
    gis::Coordinates read;
    std::int32_t regions = 0;
    while (const gis::LayerObject* object = gis::nextRegion(layer, read)) {
        const NodeRecord node = parseNode(object->record);
        say("Region ", ++regions, " with ", read.np, " nodes...");
        tabulateRegion(run::sampledRegion(read, kFarthestBound), node, terrain);
    }
    layer.close();
}

} // namespace gridforge::sampling
