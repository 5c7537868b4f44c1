#include "ops/flood_extent.h"

#include "grid/header.h"
#include "grid/reader.h"
#include "grid/writer.h"
#include "host/console.h"
#include "ops/flood_extent_cells.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <string>

namespace gridforge {

void runFloodExtent(const RunSettings& settings, const InputFileList& inputs)
{
    say("Loading grid data...");
    GridHeader header = readGridHeader(inputs[1]);
    Grid input;
    Grid output;
    allocateGrid(input, header, "storing input grid...");
    allocateGrid(output, header, "storing output grid...");
    readGridCells(inputs[1], header, input);

    say("Creating flood extent.");
    overRows("Processing Row:", header.nrows, header.ncols,
             [&](const CellBlock& block) { markWet(cellsOf(input, block), header.null, cellsOf(output, block)); });

    const std::string base = outputNameRule(settings, inputs[1], "_extent");
    const std::int32_t format = outputFormatRule(settings, header.format);
    // The words of the transform; deliberate.
    say("Writing transformed values to: ", base);
    writeGrid(format, base, header, output, header.projectionText, settings.decimals);
}

} // namespace gridforge
