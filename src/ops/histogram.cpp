#include "ops/histogram.h"

#include "core/names.h"
#include "core/numbers.h"
#include "grid/header.h"
#include "grid/reader.h"
#include "host/ends.h"
#include "host/units.h"
#include "ops/class_table.h"
#include "run/rows.h"

#include <algorithm>
#include <cassert>
#include <numeric>
#include <string>
#include <vector>

namespace gridforge {

namespace {

constexpr ClassWords kWords{
    .from = "Getting histogram bins from: ",
    .maximum = "Maximum number of bins: ",
    .tooMany = "ERROR - Number of bins exceeds maximum.",
    .found = "Number of bins found: ",
    .tooFew = "ERROR - Less than two bins found.",
};

std::int32_t countActive(std::span<const float> cells, float null)
{
    std::int32_t found = 0;
    for (const float cell : cells) {
        found += cell != null ? 1 : 0;
    }
    return found;
}

// The cells that are not null and pass the limit; what is not a number passes.
std::int32_t countPast(std::span<const float> cells, float null, float limit)
{
    std::int32_t found = 0;
    for (const float cell : cells) {
        found += ((cell != null) & !(cell <= limit)) ? 1 : 0;
    }
    return found;
}

} // namespace

void countBins(std::span<const float> cells, float null, std::span<const float> limits, std::span<std::int64_t> counts)
{
    assert(counts.size() == limits.size() + 1);
    constexpr std::size_t kStretch = 4096;
    for (std::size_t from = 0; from < cells.size(); from += kStretch) {
        const std::span<const float> stretch = cells.subspan(from, std::min(kStretch, cells.size() - from));
        // As limits never fall, a bin holds what passes the limit before and not its own: one vectorised count a limit.
        std::int32_t past = countActive(stretch, null);
        for (std::size_t i = 0; i < limits.size(); ++i) {
            const std::int32_t pastThis = countPast(stretch, null, limits[i]);
            counts[i] += past - pastThis;
            past = pastThis;
        }
        counts.back() += past;
    }
}

namespace {

void checkOrder(const ClassTable& bins)
{
    for (std::size_t i = 1; i < bins.size(); ++i) {
        if (bins[i].limit < bins[i - 1].limit) {
            fail("ERROR - Bins not in increasing order.");
        }
    }
}

// With -out the table has no name, and the run ends where it would be opened; deliberate.
std::string tableName(const RunSettings& settings, const InputFileList& inputs)
{
    if (settings.outputNameGiven) {
        say("Using output file name specified with -out switch: ", quoted(settings.outputName));
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

void runHistogram(const RunSettings& settings, const InputFileList& inputs)
{
    say("Creating Historgram.");
    if (inputs.count() > 1) {
        fail("ERROR - Only a single grid file accepetd for \"-histogram\" option.");
    }
    say("Loading grid data...");
    GridHeader header = readGridHeader(inputs[1]);
    Grid input;
    allocateGrid(input, header, "storing input grid...");
    say("Reading data...");
    readGridCells(inputs[1], header, input);
    say("   Done.");

    const ClassTable bins = readClassTable(settings.classFile, false, kWords);
    checkOrder(bins);
    const std::vector<float> limits = risingLimits(bins);
    std::vector<std::int64_t> counts(bins.size() + 1);
    overRows("Processing Row:", header.nrows, header.ncols,
             [&](const CellBlock& block) { countBins(cellsOf(input, block), header.null, limits, counts); });
    say("   Done.");
    const std::int64_t total = std::accumulate(counts.begin(), counts.end(), std::int64_t{0});
    say("Found ", total, " non-null values.");

    writeTable(tableName(settings, inputs), bins, counts, total);
}

} // namespace gridforge
