#include "ops/multiply.h"

#include "core/names.h"
#include "host/ends.h"
#include "ops/multiply_cells.h"
#include "ops/two_grids.h"
#include "run/cell_story.h"
#include "run/outputs.h"

#include <string>

namespace gridforge::ops {

namespace {

void settleMultiplyInputs(run::Common& common, run::InputFileList& inputs)
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
    if (common.out) {
        fail("ERROR - Unable to use third grid for output as \"-out\" has been specified.");
    }
    takeThirdAsOutput(common, inputs);
}

} // namespace

void runMultiply(const run::Common& givenCommon, const run::InputFileList& givenInputs)
{
    run::Common common = givenCommon;
    run::InputFileList inputs = givenInputs;
    say("Processing multiply option.");
    settleMultiplyInputs(common, inputs);

    const auto kernel = [](const run::CellPiece& piece, run::InputPieces cells, run::OutputPieces output) {
        multiplyCells(cells[0], piece.nulls[0], cells[1], piece.nulls[1], output[0]);
    };
    run::CellStory story(common, inputs, {}, kernel);
    const run::LoadedGrid first = story.load(
        1, {.purpose = "storing grid 1...",
            .prepare = [&](const GridHeader& lattice) { story.allocate(0, lattice, "storing output grid..."); },
            .reading = join("Reading: ", inputs[1])});
    const GridHeader& header = first.header;
    story.allocateInput(2, header, "storing grid 2...");
    const run::LoadedGrid second = story.load(2, {.match = &header, .reading = join("Reading: ", inputs[2])});

    story.compute("Processing Row:");
    say("   Done.");

    // The second name comes with its folder, which then stands in the middle of the output's, on purpose.
    const std::string ruled = join(FILENAMEPATH(inputs[1]), "_mlt_", FILENAMEPATH(inputs[2]));
    const std::string base = specifiedNameOr(common, ruled);
    const grid::Format format = run::outputFormatRule(common, first.format);
    say("Writing output to: ", base);
    story.write(0, format, base, header, second.projectionText, common.decimals);
}

} // namespace gridforge::ops
