#include "ops/fuzzy.h"

#include "grid/header.h"
#include "grid/writer.h"
#include "host/console.h"
#include "ops/fuzzy_cells.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <algorithm>
#include <string>

namespace gridforge {

void runFuzzy(const RunSettings& settings, const InputFileList& inputs)
{
    say("Loading header info...");
    const GridHeader first = readGridHeader(inputs[1]);
    Grid input;
    Grid output;
    allocateGrid(input, first, "storing input grid...");
    allocateGrid(output, first, "storing output grid...");
    std::ranges::fill(output.cells(), first.null);

    std::string projectionText;
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        say("Processing: ", inputs[i]);
        projectionText = loadInput(inputs, i, first, input).projectionText;
        overRows("Processing row:", first.nrows, first.ncols, [&](const CellBlock& block) {
            countActiveCells(cellsOf(input, block), first.null, cellsOf(output, block));
        });
        say("   Done.");
    }
    say("Scaling by number of files...");
    overRows("Processing row:", first.nrows, first.ncols,
             [&](const CellBlock& block) { scaleCounts(inputs.count(), first.null, cellsOf(output, block)); });

    const std::string base = outputNameRule(settings, inputs[1], "_fuzzy");
    const std::int32_t format = outputFormatRule(settings, first.format);
    say("Writing fuzzy values to: ", base);
    writeGrid(format, base, first, output, projectionText, settings.decimals);
}

} // namespace gridforge
