#include "ops/histogram.h"

#include "core/names.h"
#include "core/number_text.h"
#include "host/ends.h"
#include "host/units.h"
#include "ops/class_table.h"
#include "ops/histogram_cells.h"
#include "run/cell_story.h"

#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace gridforge::ops {

namespace {

constexpr ClassWords kBinWords{
    .from = "Getting histogram bins from: ",
    .maximum = "Maximum number of bins: ",
    .tooMany = "ERROR - Number of bins exceeds maximum.",
    .found = "Number of bins found: ",
    .tooFew = "ERROR - Less than two bins found.",
};

void checkBinOrder(const ClassTable& bins)
{
    for (std::size_t i = 1; i < bins.size(); ++i) {
        if (bins[i].limit < bins[i - 1].limit) {
            fail("ERROR - Bins not in increasing order.");
        }
    }
}

// With -out the table has no name, and the run ends where it would be opened, on purpose.
std::string tableName(const run::Common& common, const run::InputFileList& inputs)
{
    if (common.out) {
        say("Using output file name specified with -out switch: ", quoted(*common.out));
        return "";
    }
    // Twice: a name with two extensions loses both.
    return FILENAMEPATH(FILENAMEPATH(inputs[1])) + "_histogram.csv";
}

std::string binLine(std::string_view limit, std::string_view label, std::int64_t count, std::int64_t total)
{
    constexpr int kCountWidth = 12;
    constexpr int kPercentWidth = 6;
    constexpr int kPercentDecimals = 2;
    const double percentage = (static_cast<double>(count) / static_cast<double>(total)) * 100.0;
    return join(limit, ',', label, ',', integerField(count, kCountWidth), ',',
                realField(percentage, kPercentWidth, kPercentDecimals));
}

void writeTable(const std::string& name, const ClassTable& bins, std::span<const std::int64_t> counts,
                std::int64_t total)
{
    say("Writing histogram data to: ", name);
    Unit unit = 0;
    OPENER(unit, "O ", name);
    writeLine(unit, "\"Bin\",\"Label\",\"Count\",\"Percentage\"");
    for (std::size_t i = 0; i < bins.size(); ++i) {
        writeLine(unit, binLine(AREAL(bins[i].limit), trim(bins[i].name), counts[i], total));
    }
    const std::string above = join("Above ", AREAL(bins.back().limit));
    writeLine(unit, binLine(above, above, counts.back(), total));
    CLOSER(unit);
}

} // namespace

void runHistogram(const run::Common& common, const HistogramOptions& options, const run::InputFileList& inputs)
{
    say("Creating Historgram.");
    if (inputs.count() > 1) {
        fail("ERROR - Only a single grid file accepetd for \"-histogram\" option.");
    }
    const std::optional<std::vector<float>> looked = lookAtLimits(options.binFile, false);
    std::vector<float> limits = looked.value_or(std::vector<float>());
    const auto kernel = [&limits](const run::CellPiece& piece, run::InputPieces cells, run::OutputPieces) {
        countBins(cells[0], piece.nulls[0], limits, piece.tallies.first(limits.size() + 1));
    };
    run::CellStory story(common, inputs, {.grids = 0, .tallies = kMaxClasses + 1, .ordinary = looked.has_value()},
                         kernel);
    story.load(1, {.opening = "Loading grid data...",
                   .purpose = "storing input grid...",
                   .reading = "Reading data...",
                   .done = "   Done."});

    const ClassTable bins = readClassTable(options.binFile, false, kBinWords);
    checkBinOrder(bins);
    limits = risingLimits(bins);
    story.compute("Processing Row:");
    const std::span<const std::int64_t> counts = story.tallies().first(bins.size() + 1);
    say("   Done.");
    const std::int64_t total = std::accumulate(counts.begin(), counts.end(), std::int64_t{0});
    say("Found ", total, " non-null values.");

    writeTable(tableName(common, inputs), bins, counts, total);
}

} // namespace gridforge::ops
