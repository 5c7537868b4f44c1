#include "sampling/sampled_layer.h"

#include "core/computed.h"
#include "grid/header.h"
#include "grid/reader.h"
#include "host/console.h"
#include "host/ends.h"

#include <string_view>

namespace gridforge {

SampledLayer openSampledLayer(const std::string& name)
{
    gis::Projection projection;
    get_projection(name, projection);
    return {projection, gis::openLayer(name)};
}

void requireOneGrid(const InputFileList& inputs)
{
    if (inputs.count() > 1) {
        fail("ERROR - Only one input grid file supported.");
    }
}

namespace {

Terrain readTerrainSaying(const std::string& name, std::string_view beforeCells)
{
    Terrain terrain;
    terrain.header = readGridHeader(name);
    allocateGrid(terrain.cells, terrain.header, "storing input grid...");
    if (!beforeCells.empty()) {
        say(beforeCells);
    }
    readGridCells(name, terrain.header, terrain.cells);
    return terrain;
}

} // namespace

Terrain readTerrain(const std::string& name)
{
    return readTerrainSaying(name, "");
}

Terrain loadTerrain(const std::string& name)
{
    say("Loading grid data...");
    Terrain terrain = readTerrainSaying(name, "Reading data...");
    say("   Done.");
    return terrain;
}

gis::Feature searchLine(const AcrossLine& across, std::int32_t from, std::int32_t to)
{
    return {.kind = gis::Kind::line,
            .x = {stored(across.sampleX(from)), stored(across.sampleX(to))},
            .y = {stored(across.sampleY(from)), stored(across.sampleY(to))}};
}

} // namespace gridforge
