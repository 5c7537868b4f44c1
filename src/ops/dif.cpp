#include "ops/dif.h"

#include "core/names.h"
#include "grid/writer.h"
#include "host/ends.h"
#include "ops/dif_cells.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <string>

namespace gridforge {

namespace {

void checkInputs(const InputFileList& inputs)
{
    if (inputs.count() < 2) {
        refuse("ERROR - Must specify at least two grid files for -dif options.");
    }
    if (inputs.count() > 3) {
        refuse("ERROR - A maximum of three grids are used for -dif options.");
    }
}

// Only wildcards leave a third input, and it then names the output.
std::string outputBase(const RunSettings& settings, const InputFileList& inputs)
{
    if (!settings.outputNameGiven && inputs.count() == 3) {
        return FILENAMEPATH(inputs[3]);
    }
    return outputNameRule(settings, inputs[1], join(" - ", FILENAME(inputs[2])));
}

} // namespace

void runDif(const RunSettings& settings, const InputFileList& inputs)
{
    say("Processing \"-dif\" option.");
    checkInputs(inputs);

    Grid grid1;
    Grid grid2;
    Grid difference;
    Grid wetDry;
    const auto allocateOthers = [&](const GridHeader& lattice) {
        allocateGrid(grid2, lattice, "storing grid 2...");
        allocateGrid(difference, lattice, "storing difference grid...");
        allocateGrid(wetDry, lattice, "storing wet/dry grid...");
    };
    const LoadSteps steps{
        .purpose = "storing grid 1...", .prepare = allocateOthers, .reading = join("Reading: ", inputs[1])};
    const LoadedGrid first = loadGrid(inputs[1], steps, grid1);
    const GridHeader& header = first.header;
    const LoadedGrid second = loadGrid(inputs[2], {.match = &header, .reading = join("Reading: ", inputs[2])}, grid2);

    say("Processing difference calculations...");
    const bool writesWetDry = !settings.nowetdry && !settings.change;
    overRows("Processing row:", header.nrows, header.ncols, [&](const CellBlock& block) {
        const DifGrid a{cellsOf(grid1, block), header.null};
        const DifGrid b{cellsOf(grid2, block), second.header.null};
        if (settings.nowetdry) {
            subtractActive(a, b, cellsOf(difference, block));
        } else if (settings.change) {
            subtractChange(a, b, cellsOf(difference, block));
        } else {
            subtractWetDry(a, b, cellsOf(difference, block), cellsOf(wetDry, block));
        }
    });
    say("Done processing differences.");

    const std::string base = outputBase(settings, inputs);
    const std::int32_t format = outputFormatRule(settings, first.format);
    say("Writing difference values to: ", base);
    writeGrid(format, base, header, difference, second.projectionText, settings.decimals);
    if (writesWetDry) {
        say("Writing wet/dry file to: ", base, "_wd");
        writeGrid(format, base + "_wd", header, wetDry, second.projectionText, settings.decimals);
    }
    say("");
}

} // namespace gridforge
