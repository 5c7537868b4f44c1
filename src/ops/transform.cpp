#include "ops/transform.h"

#include "core/names.h"
#include "core/numbers.h"
#include "grid/writer.h"
#include "host/ends.h"
#include "ops/transform_cells.h"
#include "ops/two_grids.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <string>

namespace gridforge {

void runTransform(const RunSettings& settings, const InputFileList& inputs)
{
    constexpr int kWidth = 10;
    constexpr int kDecimals = 4;
    say("Transforming data (y = mx + c).");
    say("Multiplier (m) = ", realField(settings.transformM, kWidth, kDecimals));
    say("Add Value  (c) = ", realField(settings.transformC, kWidth, kDecimals));

    Grid input;
    Grid output;
    const LoadSteps steps{
        .purpose = "storing input grid...",
        .prepare = [&](const GridHeader& lattice) { allocateGrid(output, lattice, "storing output grid..."); },
        .reading = join("Reading: ", inputs[1])};
    const LoadedGrid loaded = loadGrid(inputs[1], steps, input);
    const GridHeader& header = loaded.header;

    say("Processing transformation....");
    overRows("Processing Row:", header.nrows, header.ncols, [&](const CellBlock& block) {
        transformCells(cellsOf(input, block), settings.transformM, settings.transformC, header.null,
                       cellsOf(output, block));
    });
    say("Done");

    const std::string base = outputNameRule(settings, inputs[1], "_trans");
    const std::int32_t format = outputFormatRule(settings, loaded.format);
    say("Writing transformed values to: ", base);
    writeGrid(format, base, header, output, loaded.projectionText, settings.decimals);
}

namespace {

void settleMultiplyInputs(RunSettings& settings, InputFileList& inputs)
{
    if (inputs.count() == 1) {
        fail("ERROR - Multiply function requires two input grids.");
    }
    if (inputs.count() > 3) {
        fail("ERROR - More than three files specified with the mulitply option.");
    }
    if (inputs.count() == 2) {
        say("Two input grids specified.");
        return;
    }
    if (settings.outputNameGiven) {
        fail("ERROR - Unable to use third grid for output as \"-out\" has been specified.");
    }
    takeThirdAsOutput(settings, inputs);
}

} // namespace

void runMultiply(const RunSettings& givenSettings, const InputFileList& givenInputs)
{
    RunSettings settings = givenSettings;
    InputFileList inputs = givenInputs;
    say("Processing multiply option.");
    settleMultiplyInputs(settings, inputs);

    Grid grid1;
    Grid output;
    const LoadSteps firstSteps{
        .purpose = "storing grid 1...",
        .prepare = [&](const GridHeader& lattice) { allocateGrid(output, lattice, "storing output grid..."); },
        .reading = join("Reading: ", inputs[1])};
    const LoadedGrid first = loadGrid(inputs[1], firstSteps, grid1);
    const GridHeader& header = first.header;
    Grid grid2;
    allocateGrid(grid2, header, "storing grid 2...");
    const LoadedGrid second = loadGrid(inputs[2], {.match = &header, .reading = join("Reading: ", inputs[2])}, grid2);

    overRows("Processing Row:", header.nrows, header.ncols, [&](const CellBlock& block) {
        multiplyCells(cellsOf(grid1, block), header.null, cellsOf(grid2, block), second.header.null,
                      cellsOf(output, block));
    });
    say("   Done.");

    // The second name comes with its folder, which then stands in the middle of the output's; deliberate.
    const std::string ruled = join(FILENAMEPATH(inputs[1]), "_mlt_", FILENAMEPATH(inputs[2]));
    const std::string base = specifiedNameOr(settings, ruled);
    const std::int32_t format = outputFormatRule(settings, first.format);
    say("Writing output to: ", base);
    writeGrid(format, base, header, output, second.projectionText, settings.decimals);
}

} // namespace gridforge
