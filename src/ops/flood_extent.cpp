#include "ops/flood_extent.h"

#include "grid/writer.h"
#include "host/console.h"
#include "ops/flood_extent_cells.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <string>

namespace gridforge {

void runFloodExtent(const RunSettings& settings, const InputFileList& inputs)
{
    Grid input;
    Grid output;
    const LoadSteps steps{
        .opening = "Loading grid data...",
        .purpose = "storing input grid...",
        .prepare = [&](const GridHeader& lattice) { allocateGrid(output, lattice, "storing output grid..."); }};
    const LoadedGrid loaded = loadGrid(inputs[1], steps, input);
    const GridHeader& header = loaded.header;

    say("Creating flood extent.");
    overRows("Processing Row:", header.nrows, header.ncols,
             [&](const CellBlock& block) { markWet(cellsOf(input, block), header.null, cellsOf(output, block)); });

    const std::string base = outputNameRule(settings, inputs[1], "_extent");
    const std::int32_t format = outputFormatRule(settings, loaded.format);
    // The words of the transform; deliberate.
    say("Writing transformed values to: ", base);
    writeGrid(format, base, header, output, loaded.projectionText, settings.decimals);
}

} // namespace gridforge
