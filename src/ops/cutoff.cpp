#include "ops/cutoff.h"

#include "core/names.h"
#include "core/number_text.h"
#include "host/ends.h"
#include "ops/cutoff_cells.h"
#include "ops/two_grids.h"
#include "run/cell_story.h"
#include "run/outputs.h"

#include <string>

namespace gridforge::ops {

namespace {

void settleInputs(run::Common& common, run::InputFileList& inputs)
{
    if (inputs.count() > 1) {
        say("More than one input file specified, using ", quoted(inputs[1]), " for setting cutoff depth / threshold.");
    }
    if (inputs.count() > 3) {
        fail("ERROR - More than three files specified with the cutoff depth option.");
    }
    if (inputs.count() == 3) {
        takeThirdAsOutput(common, inputs);
    }
}

std::string ruledName(const run::InputFileList& inputs, float cutoff)
{
    const bool filters = inputs.count() == 2;
    return join(FILENAMEPATH(inputs[inputs.count()]), filters ? "_filtered" : "_cd", AREAL(cutoff));
}

run::MapKernel kernelOf(float cutoff, bool filters)
{
    return [cutoff, filters](const run::CellPiece& piece, run::InputPieces cells, run::OutputPieces output) {
        const float null = piece.nulls[0];
        if (filters) {
            filterFrom(cells[0], cutoff, cells[1], piece.nulls[1], null, output[0]);
        } else {
            keepFrom(cells[0], cutoff, null, output[0]);
        }
    };
}

} // namespace

void runCutoff(const run::Common& givenCommon, const CutoffOptions& options, const run::InputFileList& givenInputs)
{
    run::Common common = givenCommon;
    run::InputFileList inputs = givenInputs;
    say("Processing cutoff option.");
    settleInputs(common, inputs);
    const bool filters = inputs.count() == 2;

    run::CellStory story(common, inputs, {.namedAfter = inputs[inputs.count()]}, kernelOf(options.cutoff, filters));
    const run::LoadedGrid first = story.load(
        1, {.purpose = "storing grid 1...",
            .prepare = [&](const GridHeader& lattice) { story.allocate(0, lattice, "storing output grid..."); },
            .reading = join("Reading: ", inputs[1])});
    const GridHeader& header = first.header;

    run::LoadedGrid last = first;
    if (filters) {
        story.allocateInput(2, header, "storing grid 2...");
        last = story.load(2, {.match = &header, .reading = join("Reading: ", inputs[2])});
    }

    story.compute("Processing Row:");
    say("   Done.");

    const std::string base = specifiedNameOr(common, ruledName(inputs, options.cutoff));
    const grid::Format format = run::outputFormatRule(common, first.format);
    say("Writing output to: ", base);
    story.write(0, format, base, header, last.projectionText, common.decimals);
}

} // namespace gridforge::ops
