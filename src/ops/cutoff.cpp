#include "ops/cutoff.h"

#include "core/names.h"
#include "core/numbers.h"
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

    Grid grid1;
    Grid output;
    const LoadSteps steps{
        .purpose = "storing grid 1...",
        .prepare = [&](const GridHeader& lattice) { allocateGrid(output, lattice, "storing output grid..."); },
        .reading = join("Reading: ", inputs[1])};
    const LoadedGrid first = loadGrid(inputs[1], steps, grid1);
    const GridHeader& header = first.header;

    LoadedGrid last = first;
    Grid grid2;
    if (filters) {
        allocateGrid(grid2, header, "storing grid 2...");
        last = loadGrid(inputs[2], {.match = &header, .reading = join("Reading: ", inputs[2])}, grid2);
    }

    overRows("Processing Row:", header.nrows, header.ncols, [&](const CellBlock& block) {
        if (filters) {
            filterFrom(cellsOf(grid1, block), settings.cutoff, cellsOf(grid2, block), last.header.null, header.null,
                       cellsOf(output, block));
        } else {
            keepFrom(cellsOf(grid1, block), settings.cutoff, header.null, cellsOf(output, block));
        }
    });
    say("   Done.");

    const std::string base = specifiedNameOr(settings, ruledName(inputs, settings.cutoff));
    const std::int32_t format = outputFormatRule(settings, first.format);
    say("Writing output to: ", base);
    writeGrid(format, base, header, output, last.projectionText, settings.decimals);
}

} // namespace gridforge
