// Nodal areas: for each region of a layer a table of heights and of the area of the terrain below them.
#include "sampling/na.h"

#include "core/number_text.h"
#include "core/rounding.h"
#include "core/text.h"
#include "gis/layer_objects.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/units.h"
#include "run/sampled_region.h"
#include "sampling/sampled_layer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string>
#include <utility>

namespace gridforge::sampling {

namespace {

constexpr std::size_t kMaxValues = 10000000;
constexpr double kFarthestBound = 10000000000.0; // the bounds of a region are sought from here
constexpr float kHighestStart = 99999.0F;        // the minimum starts from it, the maximum from its negative
constexpr float kLeastRange = 0.001F;

} // namespace

// --- The kernels -----------------------------------------------------------------------------------------------------

bool collectInside(const SampledRegion& region, const GridHeader& header, const Grid& cells, const CellWindow& window,
                   std::size_t most, std::vector<float>& values)
{
    InsideWalk walk;
    prepareWalk(region, walk);
    forEachInsideRun(header, window, CellPlace::northEastCorner, walk,
                     [&](std::int32_t row, std::int32_t first, std::int32_t count) {
                         if (values.size() <= most) {
                             std::ranges::copy_if(cellsOfRun(cells, row, first, count), std::back_inserter(values),
                                                  [null = header.null](float cell) { return cell != null; });
                         }
                     });
    return values.size() <= most;
}

namespace {

struct LadderStage {
    float step;
    int most;
};
constexpr std::array<LadderStage, 6> kLadder = {
    {{0.1F, 20}, {0.25F, 20}, {0.5F, 20}, {1.0F, 20}, {10.0F, 10}, {100.0F, 8}}};
constexpr std::size_t kMaxHeights = 100;
// The first stage may end at a whole height from this step on.
constexpr int kFirstWholeStep = 11;

bool isWhole(float height)
{
    const float fraction = std::abs(height - std::trunc(height));
    return fraction < 0.001F || fraction > 0.999F;
}

// The tenth above the minimum.
float secondHeight(float minimum)
{
    const float tenths = std::floor((minimum + 0.002F) * 10.0F);
    return (static_cast<float>(truncateToInt(static_cast<double>(tenths))) + 1.0F) / 10.0F;
}

} // namespace

std::vector<float> heightLadder(float minimum, float maximum)
{
    std::vector<float> heights;
    heights.reserve(kMaxHeights);
    heights.push_back(minimum + 0.001F);
    heights.push_back(secondHeight(minimum));
    for (const LadderStage& stage : kLadder) {
        for (int step = 1; step <= stage.most; ++step) {
            heights.push_back(heights.back() + stage.step);
            if (heights.back() > maximum) {
                return heights;
            }
            if (&stage == kLadder.data() && step >= kFirstWholeStep && isWhole(heights.back())) {
                break;
            }
        }
    }
    return heights;
}

HeightCounts countByHeight(std::span<const float> values, std::span<const float> heights)
{
    // Where rounding makes the heights fall, the first that is not exceeded is the first among the highest so far.
    std::vector<float> rising(heights.begin(), heights.end());
    for (std::size_t i = 1; i < rising.size(); ++i) {
        rising[i] = std::max(rising[i], rising[i - 1]);
    }
    std::vector<std::int64_t> counts(rising.size() + 1, 0);
    for (const float value : values) {
        const auto found =
            std::partition_point(rising.begin(), rising.end(), [value](float height) { return !(value <= height); });
        ++counts[static_cast<std::size_t>(found - rising.begin())];
    }

    HeightCounts result;
    result.above = counts.back();
    counts.pop_back();
    counts.front() = std::max(counts.front(), std::int64_t{1});
    for (std::size_t i = 1; i < counts.size(); ++i) {
        counts[i] += counts[i - 1];
    }
    result.upTo = std::move(counts);
    return result;
}

namespace {

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
