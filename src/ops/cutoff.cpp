#include "ops/cutoff.h"

#include "core/names.h"
#include "core/numbers.h"
#include "grid/header.h"
#include "grid/writer.h"
#include "host/ends.h"
#include "ops/cutoff_cells.h"
#include "ops/two_grids.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <string>

namespace gridforge {

namespace {

void settleInputs(RunSettings& settings, InputFileList& inputs)
{
    if (inputs.count() > 1) {
        say("More than one input file specified, using ", quoted(inputs[1]), " for setting cutoff depth / threshold.");
    }
    if (inputs.count() > 3) {
        fail("ERROR - More than three files specified with the cutoff depth option.");
    }
    if (inputs.count() == 3) {
        takeThirdAsOutput(settings, inputs);
    }
}

std::string ruledName(const InputFileList& inputs, float cutoff)
{
    const bool filters = inputs.count() == 2;
    return join(FILENAMEPATH(inputs[inputs.count()]), filters ? "_filtered" : "_cd", AREAL(cutoff));
}

} // namespace

void runCutoff(const RunSettings& givenSettings, const InputFileList& givenInputs)
{
    RunSettings settings = givenSettings;
    InputFileList inputs = givenInputs;
    say("Processing cutoff option.");
    settleInputs(settings, inputs);
    const bool filters = inputs.count() == 2;

    GridHeader first = readGridHeader(inputs[1]);
    Grid grid1;
    Grid output;
    allocateGrid(grid1, first, "storing grid 1...");
    allocateGrid(output, first, "storing output grid...");
    readAnnounced(inputs[1], first, grid1);

    GridHeader last = first;
    Grid grid2;
    if (filters) {
        allocateGrid(grid2, first, "storing grid 2...");
        last = readFurtherHeader(inputs[2], first);
        readAnnounced(inputs[2], last, grid2);
    }

    overRows("Processing Row:", first.nrows, first.ncols, [&](const CellBlock& block) {
        if (filters) {
            filterFrom(cellsOf(grid1, block), settings.cutoff, cellsOf(grid2, block), last.null, first.null,
                       cellsOf(output, block));
        } else {
            keepFrom(cellsOf(grid1, block), settings.cutoff, first.null, cellsOf(output, block));
        }
    });
    say("   Done.");

    const std::string base = specifiedNameOr(settings, ruledName(inputs, settings.cutoff));
    const std::int32_t format = outputFormatRule(settings, first.format);
    say("Writing output to: ", base);
    writeGrid(format, base, first, output, last.projectionText, settings.decimals);
}

} // namespace gridforge
