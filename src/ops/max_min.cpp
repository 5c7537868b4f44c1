#include "ops/max_min.h"

#include "core/numbers.h"
#include "grid/writer.h"
#include "host/console.h"
#include "ops/max_min_cells.h"
#include "run/legend.h"
#include "run/load.h"
#include "run/outputs.h"

namespace gridforge {

void runMaxMin(const RunSettings& settings, const InputFileList& inputs)
{
    const bool maximum = settings.max;
    say("Processing \"-", maximum ? "max" : "min", "\" option.");
    if (settings.src) {
        say("Supressing source grid following \"-src\" option.");
    }

    Grid current;
    Grid extreme;
    Grid sources;
    const auto allocateKept = [&](const GridHeader& first) {
        allocateGrid(extreme, first, "storing maximum / minimum values data...");
        if (!settings.src) {
            allocateGrid(sources, first, "storing maximums / minimum source data...");
        }
    };
    const auto take = [&](std::int32_t i, const GridHeader& header) {
        say(maximum ? "Comparing maximums..." : "Comparing minimums...");
        const Taken taken{current.cells(), header.null, static_cast<float>(i)};
        if (i == 1) {
            startExtremes(taken, maximum, header.null, extreme.cells(), sources.cells());
        } else {
            takeExtremes(taken, maximum, extreme.cells(), sources.cells());
        }
        say("   Done.");
    };
    const auto [first, firstFormat, projectionText] = loadEach(inputs, "external grid...", allocateKept, current, take);

    const std::string base = outputNameRule(settings, inputs[1], maximum ? "(maxmax)" : "(minmin)");
    const std::int32_t format = outputFormatRule(settings, firstFormat);
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
