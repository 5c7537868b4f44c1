// Each grid is converted by itself, so grids of different size may stand in one call.
#include "ops/conv.h"

#include "core/number_text.h"
#include "host/ends.h"
#include "run/cell_story.h"
#include "run/outputs.h"
#include "run/still_to_read.h"

#include <cstddef>
#include <span>

namespace gridforge::ops {

namespace {

// The direction alone decides; -asc and -flt only forbid to convert a grid to the format that it has.
grid::Format convertedFormat(const run::Common& common, grid::Format format)
{
    if (format == grid::Format::asc) {
        if (common.format == grid::Format::asc) {
            fail("ERROR - Input grid is .asc format and \"-asc\" specified.");
        }
        say("Converting .asc to .flt...");
        return grid::Format::flt;
    }
    if (common.format == grid::Format::flt) {
        fail("ERROR - Input grid is .flt format and \"-flt\" specified.");
    }
    say("Converting .flt to .asc...");
    return grid::Format::asc;
}

void convert(const run::Common& common, const run::InputFileList& input, std::span<const run::InputGrid> stillToRead)
{
    run::CellStory story(common, input);
    const run::LoadedGrid grid = story.load(1, {.purpose = "external grid..."});

    const grid::Format format = convertedFormat(common, grid.format);
    const std::string base = run::outputNameRule(common, input[1], "");
    run::requireNoInput(format, base, stillToRead);
    story.write(0, format, base, grid.header, grid.projectionText, common.decimals);

    say("Deallocating memory...");
    say("   Done.");
}

} // namespace

void runConv(const run::Common& common, const run::InputFileList& inputs)
{
    constexpr int kIndexColumns = 3;

    say("Converting grid formats.");
    if (inputs.count() > 1 && common.out) {
        // The run goes on all the same, and the last grid stays, on purpose: scripts rely on it.
        say("ERROR - Cannot use \"-out\" option when converting multiple grids.");
    }
    say("Processing ", AINTEGER(inputs.count()), " input grids.");
    const std::vector<run::InputGrid> grids = run::inputGrids(inputs);
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        say("Proecsing File:", integerField(i, kIndexColumns), ": ", inputs[i]);
        convert(common, inputs.only(i), std::span(grids).subspan(static_cast<std::size_t>(i)));
    }
}

} // namespace gridforge::ops
