#include "ops/flood_extent.h"

#include "grid/header.h"
#include "grid/reader.h"
#include "grid/writer.h"
#include "host/console.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <cassert>
#include <cmath>
#include <string>

namespace gridforge {

void markWet(std::span<const float> cells, float null, std::span<float> output)
{
    assert(cells.size() == output.size());
    const float* const in = cells.data();
    float* const out = output.data();
    for (std::size_t i = 0; i < output.size(); ++i) {
        out[i] = ((in[i] == null) | (std::fabs(in[i]) < kWetFrom)) ? null : 1.0F;
    }
}

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
