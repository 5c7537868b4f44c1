#include "ops/flood_extent.h"

#include "host/console.h"
#include "ops/flood_extent_cells.h"
#include "run/cell_story.h"
#include "run/outputs.h"

#include <string>

namespace gridforge::ops {

void runFloodExtent(const run::Common& common, const run::InputFileList& inputs)
{
    const auto kernel = [](const run::CellPiece& piece, run::InputPieces cells, run::OutputPieces output) {
        markWet(cells[0], piece.nulls[0], output[0]);
    };
    run::CellStory story(common, inputs.first(1), {}, kernel);
    const run::LoadedGrid loaded = story.load(
        1, {.opening = "Loading grid data...",
            .purpose = "storing input grid...",
            .prepare = [&](const GridHeader& lattice) { story.allocate(0, lattice, "storing output grid..."); }});

    say("Creating flood extent.");
    story.compute("Processing Row:");

    const std::string base = run::outputNameRule(common, inputs[1], "_extent");
    const grid::Format format = run::outputFormatRule(common, loaded.format);
    // The words of the transform, on purpose: scripts look for them.
    say("Writing transformed values to: ", base);
    story.write(0, format, base, loaded.header, loaded.projectionText, common.decimals);
}

} // namespace gridforge::ops
