#include "ops/count.h"

#include "core/names.h"
#include "core/numbers.h"
#include "grid/header.h"
#include "grid/reader.h"
#include "host/console.h"
#include "host/units.h"
#include "run/rows.h"

#include <algorithm>
#include <string>

namespace gridforge {

namespace {

// Counts in 32 bits stretch by stretch, as that is what vectorises well, and sums up in 64.
template <typename Counts>
std::int64_t countWhere(std::span<const float> cells, Counts counts)
{
    constexpr std::size_t kStretch = std::size_t{1} << 16;
    std::int64_t total = 0;
    for (std::size_t from = 0; from < cells.size(); from += kStretch) {
        const std::size_t to = std::min(cells.size(), from + kStretch);
        std::int32_t found = 0;
        for (std::size_t i = from; i < to; ++i) {
            found += counts(cells[i]) ? 1 : 0;
        }
        total += found;
    }
    return total;
}

void writeCount(const std::string& base, std::string_view countLine)
{
    Unit unit = 0;
    OPENER(unit, "O ", base + "_count.txt");
    writeLine(unit, join("Input grid file: ", base));
    writeLine(unit, countLine);
    CLOSER(unit);
}

} // namespace

std::int64_t countActive(std::span<const float> cells, float null)
{
    return countWhere(cells, [null](float cell) { return cell != null; });
}

std::int64_t countAbove(std::span<const float> cells, float null, float cutoff)
{
    return countWhere(cells, [null, cutoff](float cell) { return (cell != null) & (cell > cutoff); });
}

void runCount(const RunSettings& settings, const InputFileList& inputs)
{
    constexpr int kCountWidth = 14;
    say("Loading grid data...");
    GridHeader header = readGridHeader(inputs[1]);
    Grid input;
    allocateGrid(input, header, "storing input grid...");
    readGridCells(inputs[1], header, input);

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
