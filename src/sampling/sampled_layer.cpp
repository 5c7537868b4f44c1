#include "sampling/sampled_layer.h"

#include "core/computed.h"
#include "host/console.h"
#include "host/ends.h"
#include "run/load.h"

#include <optional>
#include <string_view>
#include <utility>

namespace gridforge::sampling {

void requireOneGrid(const run::InputFileList& inputs)
{
    if (inputs.count() > 1) {
        fail("ERROR - Only one input grid file supported.");
    }
}

Terrain readTerrain(const std::string& name)
{
    Terrain terrain;
    terrain.header = run::loadGrid(name, {.purpose = "storing input grid..."}, terrain.cells).header;
    return terrain;
}

Terrain loadTerrain(const std::string& name, bool ahead)
{
    const run::LoadSteps steps{.opening = "Loading grid data...",
                               .purpose = "storing input grid...",
                               .reading = "Reading data...",
                               .done = "   Done.",
                               .ahead = ahead};
    Terrain terrain;
    terrain.header = run::loadGrid(name, steps, terrain.cells).header;
    return terrain;
}

LineVertices insertVertices(const gis::Coordinates& read, float spacing, std::int32_t most)
{
    std::optional<LineVertices> line = withVertices(read, spacing, most);
    if (!line) {
        fail("ERROR - Number of vertices in polyline exceeds maximum: ", most);
    }
    return *std::move(line);
}

void sayDuplicate()
{
    say("WARNING - Duplicate Vertices along line.  This may cause issues with determining angles.");
}

gis::Feature searchLine(const AcrossLine& across, std::int32_t from, std::int32_t to)
{
    return {.kind = gis::Kind::line,
            .x = {stored(across.sampleX(from)), stored(across.sampleX(to))},
            .y = {stored(across.sampleY(from)), stored(across.sampleY(to))}};
}

} // namespace gridforge::sampling
