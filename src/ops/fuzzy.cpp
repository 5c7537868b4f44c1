#include "ops/fuzzy.h"

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
    Grid input;
    Grid output;
    GridHeader header;
    const auto prepare = [&](const GridHeader& first) {
        header = first;
        allocateGrid(output, first, "storing output grid...");
        std::ranges::fill(output.cells(), first.null);
    };
    const LoadedGrid loaded =
        loadEach(inputs, "storing input grid...", prepare, input, [&](std::int32_t, const GridHeader&) {
            overRows("Processing row:", header.nrows, header.ncols, [&](const CellBlock& block) {
                countActiveCells(cellsOf(input, block), header.null, cellsOf(output, block));
            });
            say("   Done.");
        });
    say("Scaling by number of files...");
    overRows("Processing row:", header.nrows, header.ncols,
             [&](const CellBlock& block) { scaleCounts(inputs.count(), header.null, cellsOf(output, block)); });

    const std::string base = outputNameRule(settings, inputs[1], "_fuzzy");
    const std::int32_t format = outputFormatRule(settings, loaded.format);
    say("Writing fuzzy values to: ", base);
    writeGrid(format, base, header, output, loaded.projectionText, settings.decimals);
}

} // namespace gridforge
