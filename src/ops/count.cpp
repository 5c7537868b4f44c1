#include "ops/count.h"

#include "core/names.h"
#include "core/numbers.h"
#include "host/console.h"
#include "host/units.h"
#include "ops/count_cells.h"
#include "run/load.h"
#include "run/rows.h"

#include <string>

namespace gridforge {

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

void runCount(const RunSettings& settings, const InputFileList& inputs)
{
    constexpr int kCountWidth = 14;
    Grid input;
    const GridHeader header =
        loadGrid(inputs[1], {.opening = "Loading grid data...", .purpose = "storing input grid..."}, input).header;

    say("Counting number of wet cells.");
    std::int64_t wet = 0;
    overRows("Processing Row:", header.nrows, header.ncols, [&](const CellBlock& block) {
        const std::span<const float> cells = cellsOf(input, block);
        wet += settings.cd ? countAbove(cells, header.null, settings.cutoff) : countActive(cells, header.null);
    });

    const std::string countLine = join("Number of wet cells: ", integerField(wet, kCountWidth));
    say(countLine);
    // The name follows the input whatever -out says; deliberate.
    writeCount(FILENAMEPATH(inputs[1]), countLine);
}

} // namespace gridforge
