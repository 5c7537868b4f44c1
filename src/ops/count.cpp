#include "ops/count.h"

#include "core/names.h"
#include "core/number_text.h"
#include "host/console.h"
#include "host/units.h"
#include "ops/count_cells.h"
#include "run/cell_story.h"

#include <string>

namespace gridforge::ops {

namespace {

void writeCount(const std::string& base, std::string_view countLine)
{
    Unit unit = 0;
    OPENER(unit, "O ", base + "_count.txt");
    writeLine(unit, join("Input grid file: ", base));
    writeLine(unit, countLine);
    CLOSER(unit);
}

} // namespace

void runCount(const run::Common& common, const CountOptions& options, const run::InputFileList& inputs)
{
    constexpr int kCountWidth = 14;
    const auto kernel = [&options](const run::CellPiece& piece, run::InputPieces cells, run::OutputPieces) {
        const float null = piece.nulls[0];
        piece.tallies[0] += options.cutoff ? countAbove(cells[0], null, *options.cutoff) : countActive(cells[0], null);
    };
    run::CellStory story(common, inputs.first(1), {.grids = 0, .tallies = 1}, kernel);
    story.load(1, {.opening = "Loading grid data...", .purpose = "storing input grid..."});

    say("Counting number of wet cells.");
    story.compute("Processing Row:");

    const std::string countLine = join("Number of wet cells: ", integerField(story.tallies()[0], kCountWidth));
    say(countLine);
    // The name follows the input whatever -out says, on purpose: scripts rely on it.
    writeCount(FILENAMEPATH(inputs[1]), countLine);
}

} // namespace gridforge::ops
