#include "ops/transform.h"

#include "core/number_text.h"
#include "ops/transform_cells.h"
#include "run/cell_story.h"
#include "run/outputs.h"

#include <string>

namespace gridforge::ops {

void runTransform(const run::Common& common, const TransformOptions& options, const run::InputFileList& inputs)
{
    constexpr int kWidth = 10;
    constexpr int kDecimals = 4;
    say("Transforming data (y = mx + c).");
    say("Multiplier (m) = ", realField(options.m, kWidth, kDecimals));
    say("Add Value  (c) = ", realField(options.c, kWidth, kDecimals));

    const auto kernel = [&options](const run::CellPiece& piece, run::InputPieces cells, run::OutputPieces output) {
        transformCells(cells[0], options.m, options.c, piece.nulls[0], output[0]);
    };
    run::CellStory story(common, inputs.first(1), {}, kernel);
    const run::LoadedGrid loaded = story.load(
        1, {.purpose = "storing input grid...",
            .prepare = [&](const GridHeader& lattice) { story.allocate(0, lattice, "storing output grid..."); },
            .reading = join("Reading: ", inputs[1])});

    say("Processing transformation....");
    story.compute("Processing Row:");
    say("Done");

    const std::string base = run::outputNameRule(common, inputs[1], "_trans");
    const grid::Format format = run::outputFormatRule(common, loaded.format);
    say("Writing transformed values to: ", base);
    story.write(0, format, base, loaded.header, loaded.projectionText, common.decimals);
}

} // namespace gridforge::ops
