#include "network/flc.h"

#include "core/number_text.h"
#include "core/text.h"
#include "gis/layer_objects.h"
#include "gis/layer_reader.h"
#include "gis/record_values.h"
#include "host/console.h"
#include "host/ends.h"
#include "plane/region_rows.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

namespace gridforge::network {

namespace {

constexpr float kLeastValue = 0.0001F;

float valueOf(const std::string& dataLine)
{
    float value = 0;
    gis::RecordValues(dataLine, "ERROR - Reading following line in 1d_FLC file:").take(value);
    return value;
}

void prepare(const gis::LayerObject& object, const gis::Coordinates& read, PreparedRegion& region)
{
    const std::span<const double> x = read.vertexX();
    const std::span<const double> y = read.vertexY();
    const double xmin = x.empty() ? 0.0 : *std::ranges::min_element(x);
    [[maybe_unused]] const bool whole = prepareRegion(x, y, read.np, xmin, object.parts, object.rings, region);
    assert(whole); // one ring, which ends where the vertices do
}

// The places of the lines that start in the region; a line without vertices starts at 0, 0.
std::vector<std::size_t> linesFrom(const PreparedRegion& region, const NbcLines& lines)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const bool empty = lines[i].x.empty();
        if (insideRegion(region, empty ? 0.0 : lines[i].x.front(), empty ? 0.0 : lines[i].y.front())) {
            found.push_back(i);
        }
    }
    return found;
}

void addLoss(float value, const std::vector<std::size_t>& starting, NbcLines& lines)
{
    float share = 0;
    if (value > kLeastValue) {
        share = value / static_cast<float>(starting.size());
    } else if (value < -kLeastValue) {
        share = std::abs(value);
    } else {
        fail("ERROR - No FLC value specified on region.");
    }
    for (const std::size_t i : starting) {
        lines[i].formLoss += share;
    }
}

} // namespace

void nbc_read_flc(const std::string& fileName, NbcLines& lines)
{
    say("Opening FLC file ", fileName);
    gis::LayerReader layer = gis::openLayer(fileName);
    say("Loading FLC polygons from from ", fileName);
    say("Searching for region objects...");
    gis::Coordinates read;
    PreparedRegion region;
    std::int32_t regions = 0;
    while (const gis::LayerObject* object = gis::nextRegion(layer, read)) {
        say("Region ", ++regions, " with ", read.np, " nodes...");
        const float value = valueOf(object->record);
        prepare(*object, read, region);
        const std::vector<std::size_t> starting = linesFrom(region, lines);
        if (starting.empty()) {
            say("WARNING - No network lines start within region object.");
            say("  XY of first polygon vertex is: ", AREAL8(read.x[0]), ", ", AREAL8(read.y[0]));
        }
        addLoss(value, starting, lines);
    }
    layer.close();
}

} // namespace gridforge::network
