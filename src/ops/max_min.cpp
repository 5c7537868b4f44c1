#include "ops/max_min.h"

#include "core/numbers.h"
#include "grid/header.h"
#include "grid/writer.h"
#include "host/console.h"
#include "run/legend.h"
#include "run/load.h"
#include "run/outputs.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

namespace gridforge {

namespace {

// Written without branches on the cells, so that the loop vectorises: `enters` decides between the new and the kept value.
template <typename Enters>
void takeWhere(std::span<const float> current, float source, std::span<float> extreme, std::span<float> sources,
               Enters enters)
{
    assert(current.size() == extreme.size());
    const std::size_t count = current.size();
    const float* const cells = current.data();
    float* const kept = extreme.data();
    if (sources.empty()) {
        for (std::size_t i = 0; i < count; ++i) {
            kept[i] = enters(cells[i], kept[i]) ? cells[i] : kept[i];
        }
        return;
    }
    assert(current.size() == sources.size());
    float* const from = sources.data();
    for (std::size_t i = 0; i < count; ++i) {
        const bool better = enters(cells[i], kept[i]);
        kept[i] = better ? cells[i] : kept[i];
        from[i] = better ? source : from[i];
    }
}

} // namespace

void takeMaximum(std::span<const float> current, float null, float source, std::span<float> extreme,
                 std::span<float> sources)
{
    takeWhere(current, source, extreme, sources,
              [null](float cell, float kept) { return (cell != null) & (cell > kept); });
}

void takeMinimum(std::span<const float> current, float null, float source, std::span<float> extreme,
                 std::span<float> sources)
{
    takeWhere(current, source, extreme, sources,
              [null](float cell, float kept) { return (cell != null) & ((kept == null) | (cell < kept)); });
}

namespace {

// One grid that is taken.
struct Taken {
    std::span<const float> cells;
    float null;
    float source;
};

void takeExtremes(const Taken& taken, bool maximum, std::span<float> extreme, std::span<float> sources)
{
    const auto take = maximum ? takeMaximum : takeMinimum;
    take(taken.cells, taken.null, taken.source, extreme, sources);
}

// Fills what is kept with the null and takes the first grid, in pieces that stay in the cache: two passes over large arrays
// cost more than one.
void startExtremes(const Taken& first, bool maximum, float null, std::span<float> extreme, std::span<float> sources)
{
    constexpr std::size_t kPiece = 8192;
    for (std::size_t start = 0; start < extreme.size(); start += kPiece) {
        const std::size_t count = std::min(kPiece, extreme.size() - start);
        const auto kept = extreme.subspan(start, count);
        const auto from = sources.empty() ? sources : sources.subspan(start, count);
        std::ranges::fill(kept, null);
        std::ranges::fill(from, null);
        takeExtremes({first.cells.subspan(start, count), first.null, first.source}, maximum, kept, from);
    }
}

} // namespace

void runMaxMin(const RunSettings& settings, const InputFileList& inputs)
{
    const bool maximum = settings.max;
    say("Processing \"-", maximum ? "max" : "min", "\" option.");
    if (settings.src) {
        say("Supressing source grid following \"-src\" option.");
    }

    const GridHeader first = readGridHeader(inputs[1]);
    Grid current;
    Grid extreme;
    Grid sources;
    allocateGrid(current, first, "external grid...");
    allocateGrid(extreme, first, "storing maximum / minimum values data...");
    if (!settings.src) {
        allocateGrid(sources, first, "storing maximums / minimum source data...");
    }
    std::string projectionText;
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        say("Processing: ", inputs[i]);
        const GridHeader header = loadInput(inputs, i, first, current);
        projectionText = header.projectionText;
        say(maximum ? "Comparing maximums..." : "Comparing minimums...");
        const Taken taken{current.cells(), header.null, static_cast<float>(i)};
        if (i == 1) {
            startExtremes(taken, maximum, first.null, extreme.cells(), sources.cells());
        } else {
            takeExtremes(taken, maximum, extreme.cells(), sources.cells());
        }
        say("   Done.");
    }

    const std::string base = outputNameRule(settings, inputs[1], maximum ? "(maxmax)" : "(minmin)");
    const std::int32_t format = outputFormatRule(settings, first.format);
    say("Writing maximum / minimum values to: ", base);
    writeGrid(format, base, first, extreme, projectionText, settings.decimals);
    if (settings.src) {
        return;
    }
    say("Writing maximum / minimum source file to: ", base, "_src");
    writeGrid(format, base + "_src", first, sources, projectionText, settings.decimals);
    writeSourceLegend(base + "_src_legend.csv", inputs);
}

} // namespace gridforge
