#include "ops/max_min.h"

#include "host/console.h"
#include "run/cell_story.h"
#include "run/legend.h"
#include "run/outputs.h"

namespace gridforge::ops {

namespace {

constexpr std::size_t kExtreme = 0;
constexpr std::size_t kSource = 1;

run::FoldKernel kernelOf(Extreme wanted, bool withSources)
{
    return [wanted, withSources](const run::CellPiece& piece, std::size_t i, std::span<const float> cells,
                                 run::OutputPieces kept) {
        const Taken taken{cells, piece.nulls[i], static_cast<float>(i + 1)};
        const std::span<float> sources = withSources ? kept[kSource] : std::span<float>();
        if (i == 0) {
            startExtremes(taken, wanted, piece.nulls[0], kept[kExtreme], sources);
        } else {
            takeExtremes(taken, wanted, kept[kExtreme], sources);
        }
    };
}

} // namespace

void runMaxMin(const run::Common& common, const MaxMinOptions& options, const run::InputFileList& inputs)
{
    const bool maximum = options.extreme == Extreme::maximum;
    say("Processing \"-", maximum ? "max" : "min", "\" option.");
    if (options.src) {
        say("Supressing source grid following \"-src\" option.");
    }

    run::CellStory story(common, inputs, {.grids = options.src ? 1U : 2U}, kernelOf(options.extreme, !options.src));
    const auto allocateKept = [&](const GridHeader& first) {
        story.allocate(kExtreme, first, "storing maximum / minimum values data...");
        if (!options.src) {
            story.allocate(kSource, first, "storing maximums / minimum source data...");
        }
    };
    const auto take = [&](std::int32_t i) {
        say(maximum ? "Comparing maximums..." : "Comparing minimums...");
        story.take(i);
        say("   Done.");
    };
    const auto [first, firstFormat, projectionText] = story.loadEach("external grid...", allocateKept, take);

    const std::string base = run::outputNameRule(common, inputs[1], maximum ? "(maxmax)" : "(minmin)");
    const grid::Format format = run::outputFormatRule(common, firstFormat);
    say("Writing maximum / minimum values to: ", base);
    story.write(kExtreme, format, base, first, projectionText, common.decimals);
    if (options.src) {
        return;
    }
    say("Writing maximum / minimum source file to: ", base, "_src");
    story.write(kSource, format, base + "_src", first, projectionText, common.decimals);
    run::writeSourceLegend(base + "_src_legend.csv", inputs);
}

} // namespace gridforge::ops
