#include "ops/dif.h"

#include "core/names.h"
#include "host/ends.h"
#include "ops/dif_cells.h"
#include "run/cell_story.h"
#include "run/outputs.h"

#include <string>

namespace gridforge::ops {

namespace {

constexpr std::size_t kDifference = 0;
constexpr std::size_t kWetDry = 1;

run::MapKernel kernelOf(const DifOptions& options)
{
    return [&options](const run::CellPiece& piece, run::InputPieces inputs, run::OutputPieces outputs) {
        const DifGrid a{inputs[0], piece.nulls[0]};
        const DifGrid b{inputs[1], piece.nulls[1]};
        if (options.nowetdry) {
            subtractActive(a, b, outputs[kDifference]);
        } else if (options.change) {
            subtractChange(a, b, outputs[kDifference]);
        } else {
            subtractWetDry(a, b, outputs[kDifference], outputs[kWetDry]);
        }
    };
}

void checkInputs(const run::InputFileList& inputs)
{
    if (inputs.count() < 2) {
        refuse("ERROR - Must specify at least two grid files for -dif options.");
    }
    if (inputs.count() > 3) {
        refuse("ERROR - A maximum of three grids are used for -dif options.");
    }
}

// Only wildcards leave a third input, and it then names the output.
std::string outputBase(const run::Common& common, const run::InputFileList& inputs)
{
    if (!common.out && inputs.count() == 3) {
        return FILENAMEPATH(inputs[3]);
    }
    return run::outputNameRule(common, inputs[1], join(" - ", FILENAME(inputs[2])));
}

} // namespace

void runDif(const run::Common& common, const DifOptions& options, const run::InputFileList& inputs)
{
    say("Processing \"-dif\" option.");
    checkInputs(inputs);

    const bool writesWetDry = !options.nowetdry && !options.change;
    run::CellStory story(common, inputs.first(2), {.grids = writesWetDry ? 2U : 1U}, kernelOf(options));
    const auto allocateOthers = [&](const GridHeader& lattice) {
        story.allocateInput(2, lattice, "storing grid 2...");
        story.allocate(kDifference, lattice, "storing difference grid...");
        story.allocate(kWetDry, lattice, "storing wet/dry grid...");
    };
    const run::LoadedGrid first = story.load(
        1, {.purpose = "storing grid 1...", .prepare = allocateOthers, .reading = join("Reading: ", inputs[1])});
    const GridHeader& header = first.header;
    const run::LoadedGrid second = story.load(2, {.match = &header, .reading = join("Reading: ", inputs[2])});

    say("Processing difference calculations...");
    story.compute("Processing row:");
    say("Done processing differences.");

    const std::string base = outputBase(common, inputs);
    const grid::Format format = run::outputFormatRule(common, first.format);
    say("Writing difference values to: ", base);
    story.write(kDifference, format, base, header, second.projectionText, common.decimals);
    if (writesWetDry) {
        say("Writing wet/dry file to: ", base, "_wd");
        story.write(kWetDry, format, base + "_wd", header, second.projectionText, common.decimals);
    }
    say("");
}

} // namespace gridforge::ops
