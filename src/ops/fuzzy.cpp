#include "ops/fuzzy.h"

#include "core/computed.h"
#include "grid/header.h"
#include "grid/writer.h"
#include "host/console.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <algorithm>
#include <cassert>
#include <string>

namespace gridforge {

void countActiveCells(std::span<const float> cells, float null, std::span<float> counts)
{
    assert(cells.size() == counts.size());
    const float* const in = cells.data();
    float* const count = counts.data();
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const float oneMore = count[i] + 1.0F;
        const float next = count[i] == null ? 1.0F : oneMore;
        count[i] = in[i] != null ? next : count[i];
    }
}

void scaleCounts(std::int32_t grids, float null, std::span<float> counts)
{
    const auto divisor = static_cast<float>(grids);
    float* const count = counts.data();
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const float fraction = stored(count[i] / divisor);
        count[i] = count[i] != null ? fraction : null;
    }
}

void runFuzzy(const RunSettings& settings, const InputFileList& inputs)
{
    say("Loading header info...");
    const GridHeader first = readGridHeader(inputs[1]);
    Grid input;
    Grid output;
    allocateGrid(input, first, "storing input grid...");
    allocateGrid(output, first, "storing output grid...");
    std::ranges::fill(output.cells(), first.null);

    std::string projectionText;
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        say("Processing: ", inputs[i]);
        projectionText = loadInput(inputs, i, first, input).projectionText;
        overRows("Processing row:", first.nrows, first.ncols, [&](const CellBlock& block) {
            countActiveCells(cellsOf(input, block), first.null, cellsOf(output, block));
        });
        say("   Done.");
    }
    say("Scaling by number of files...");
    overRows("Processing row:", first.nrows, first.ncols,
             [&](const CellBlock& block) { scaleCounts(inputs.count(), first.null, cellsOf(output, block)); });

    const std::string base = outputNameRule(settings, inputs[1], "_fuzzy");
    const std::int32_t format = outputFormatRule(settings, first.format);
    say("Writing fuzzy values to: ", base);
    writeGrid(format, base, first, output, projectionText, settings.decimals);
}

} // namespace gridforge
