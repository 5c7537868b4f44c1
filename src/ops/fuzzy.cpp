#include "ops/fuzzy.h"

#include "host/console.h"
#include "ops/fuzzy_cells.h"
#include "run/cell_story.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <algorithm>
#include <string>

namespace gridforge::ops {

void runFuzzy(const run::Common& common, const run::InputFileList& inputs)
{
    say("Loading header info...");
    const auto last = static_cast<std::size_t>(inputs.count()) - 1;
    const auto kernel = [last](const run::CellPiece& piece, std::size_t i, std::span<const float> cells,
                               run::OutputPieces kept) {
        const float null = piece.nulls[0];
        if (i == 0) {
            std::ranges::fill(kept[0], null);
        }
        countActiveCells(cells, null, kept[0]);
        if (i == last) {
            scaleCounts(static_cast<std::int32_t>(last + 1), null, kept[0]);
        }
    };
    run::CellStory story(common, inputs, {}, kernel);
    const auto prepare = [&](const GridHeader& first) { story.allocate(0, first, "storing output grid..."); };
    const auto take = [&](std::int32_t i) {
        story.take(i, "Processing row:");
        say("   Done.");
    };
    const run::LoadedGrid loaded = story.loadEach("storing input grid...", prepare, take);
    const GridHeader& header = loaded.header;
    say("Scaling by number of files...");
    run::overRows("Processing row:", header.nrows, header.ncols,
                  [](const run::CellBlock&) {}); // done with the last grid

    const std::string base = run::outputNameRule(common, inputs[1], "_fuzzy");
    const grid::Format format = run::outputFormatRule(common, loaded.format);
    say("Writing fuzzy values to: ", base);
    story.write(0, format, base, header, loaded.projectionText, common.decimals);
}

} // namespace gridforge::ops
