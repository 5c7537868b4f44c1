#include "ops/max_min.h"

#include "core/numbers.h"
#include "host/console.h"
#include "ops/max_min_cells.h"
#include "run/cell_story.h"
#include "run/legend.h"
#include "run/outputs.h"

namespace gridforge::ops {

namespace {

constexpr std::size_t kExtreme = 0;
constexpr std::size_t kSource = 1;

run::FoldKernel kernelOf(const run::RunSettings& settings)
{
    return
        [&settings](const run::CellPiece& piece, std::size_t i, std::span<const float> cells, run::OutputPieces kept) {
            const Taken taken{cells, piece.nulls[i], static_cast<float>(i + 1)};
            const std::span<float> sources = settings.src ? std::span<float>() : kept[kSource];
            if (i == 0) {
                startExtremes(taken, settings.max, piece.nulls[0], kept[kExtreme], sources);
            } else {
                takeExtremes(taken, settings.max, kept[kExtreme], sources);
            }
        };
}

} // namespace

void runMaxMin(const run::RunSettings& settings, const run::InputFileList& inputs)
{
    const bool maximum = settings.max;
    say("Processing \"-", maximum ? "max" : "min", "\" option.");
    if (settings.src) {
        say("Supressing source grid following \"-src\" option.");
    }

    run::CellStory story(settings, inputs, {.grids = settings.src ? 1U : 2U}, kernelOf(settings));
    const auto allocateKept = [&](const GridHeader& first) {
        story.allocate(kExtreme, first, "storing maximum / minimum values data...");
        if (!settings.src) {
            story.allocate(kSource, first, "storing maximums / minimum source data...");
        }
    };
    const auto take = [&](std::int32_t i) {
        say(maximum ? "Comparing maximums..." : "Comparing minimums...");
        story.take(i);
        say("   Done.");
    };
    const auto [first, firstFormat, projectionText] = story.loadEach("external grid...", allocateKept, take);

    const std::string base = run::outputNameRule(settings, inputs[1], maximum ? "(maxmax)" : "(minmin)");
    const std::int32_t format = run::outputFormatRule(settings, firstFormat);
    say("Writing maximum / minimum values to: ", base);
    story.write(kExtreme, format, base, first, projectionText, settings.decimals);
    if (settings.src) {
        return;
    }
    say("Writing maximum / minimum source file to: ", base, "_src");
    story.write(kSource, format, base + "_src", first, projectionText, settings.decimals);
    run::writeSourceLegend(base + "_src_legend.csv", inputs);
}

} // namespace gridforge::ops
