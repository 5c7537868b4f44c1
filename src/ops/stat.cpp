#include "ops/stat.h"

#include "grid/writer.h"
#include "host/ends.h"
#include "ops/stat_cells.h"
#include "run/legend.h"
#include "run/load.h"
#include "run/outputs.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace gridforge::ops {

namespace {

// All grids of the run, and how the results are written.
struct StatRun {
    GridHeader first;
    std::int32_t firstFormat = grid::kFormatAsc;
    std::string projectionText; // of the last grid
    std::vector<Grid> grids;
    std::vector<std::span<const float>> cells; // of each grid
    std::string base;
    std::int32_t format = grid::kFormatAsc;
    std::int32_t decimals = 0;
};

struct ValueAndSource {
    Grid values;
    Grid sources;
};

// What the ranks step needs: the ranks in the order they are written, and which of them is the median, 0 for none.
struct RankList {
    std::vector<std::int32_t> ranks;
    std::int32_t median = 0;
};

// The figure of the memory lines, in the 32-bit arithmetic of its digits.
std::int32_t megabytes(const GridHeader& header, std::int32_t grids, std::int32_t bytes)
{
    constexpr std::int32_t kMillion = 1000000;
    const std::uint32_t product = static_cast<std::uint32_t>(header.nrows) * static_cast<std::uint32_t>(header.ncols) *
                                  static_cast<std::uint32_t>(grids) * static_cast<std::uint32_t>(bytes);
    return static_cast<std::int32_t>(product) / kMillion;
}

void allocateSilently(Grid& grid, const GridHeader& header)
{
    if (!grid.allocate(header.nrows, header.ncols)) {
        failMemory();
    }
}

ValueAndSource allocatePair(const GridHeader& header)
{
    ValueAndSource pair;
    allocateSilently(pair.values, header);
    allocateSilently(pair.sources, header);
    return pair;
}

void checkCount(std::int32_t grids)
{
    if (grids <= 1) {
        fail("ERROR - Expecting more than 1 grid for \"-stat\" option..");
    }
    if (grids > kMaxStatGrids) {
        fail("ERROR - Expecting a maximum of 10 grids for \"-stat\" option..");
    }
    say("Processing stats from ", grids, " grids.");
}

RankList settleRanks(const run::RunSettings& settings, std::int32_t grids)
{
    RankList list{settings.statRanks, 0};
    if (settings.statRankAll) {
        say("Processing all ", grids, " ranks");
        list.ranks.clear();
        for (std::int32_t rank = 1; rank <= grids; ++rank) {
            list.ranks.push_back(rank);
        }
    }
    if (settings.statAll || settings.statMedian) {
        // The upper of the two middle values where there are two.
        list.median = grids / 2 + 1;
        say("For ", grids, " files the median rank is ", list.median);
        if (std::ranges::find(list.ranks, list.median) == list.ranks.end()) {
            list.ranks.push_back(list.median);
        }
    }
    return list;
}

void allocateAll(const GridHeader& first, StatRun& run)
{
    const auto grids = static_cast<std::int32_t>(run.grids.size());
    say("Allocating ", megabytes(first, grids, 4), " Mb of memory for storing all grids.");
    for (Grid& grid : run.grids) {
        allocateSilently(grid, first);
    }
}

void requireSameNull(const GridHeader& header, const run::InputFileList& inputs, std::int32_t i, const StatRun& run)
{
    constexpr float kNullTolerance = 0.01F;
    if (std::fabs(header.null - run.first.null) > kNullTolerance) {
        fail("ERROR - \"NODATA_value\" data does not match for grid ", inputs[1], " and ", inputs[i]);
    }
}

run::LoadSteps stepsOf(const run::InputFileList& inputs, std::int32_t i, StatRun& run)
{
    if (i == 1) {
        return {.prepare = [&](const GridHeader& first) { allocateAll(first, run); }};
    }
    return {.match = &run.first,
            .prepare = [&inputs, i, &run](const GridHeader& header) { requireSameNull(header, inputs, i, run); }};
}

void readAll(const run::InputFileList& inputs, StatRun& run)
{
    run.grids.resize(static_cast<std::size_t>(inputs.count()));
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        Grid& grid = run.grids[static_cast<std::size_t>(i - 1)];
        const run::LoadedGrid loaded = run::loadGrid(inputs[i], stepsOf(inputs, i, run), grid);
        if (i == 1) {
            run.first = loaded.header;
            run.firstFormat = loaded.format;
        }
        run.projectionText = loaded.projectionText;
        run.cells.emplace_back(grid.cells());
    }
    say("Finished reading input grids.");
}

void write(const StatRun& run, std::string_view announced, std::string_view suffix, const Grid& cells)
{
    const std::string name = join(run.base, suffix);
    say(announced, name);
    grid::writeGrid(run.format, name, run.first, cells, run.projectionText, run.decimals);
}

void doMinimum(const StatRun& run, ValueAndSource& result)
{
    say("Processing grid minimums...");
    findMinimum(run.cells, run.first.null, result.values.cells(), result.sources.cells());
    say("Done.");
    write(run, "Writing minimum values to: ", "_Min_Val", result.values);
    write(run, "Writing minimum source file to: ", "_Min_Src", result.sources);
}

void doMaximum(const StatRun& run, ValueAndSource& result)
{
    say("Processing grid maximums...");
    findMaximum(run.cells, run.first.null, result.values.cells(), result.sources.cells());
    say("Done.");
    write(run, "Writing maximums values to: ", "_Max_Val", result.values);
    write(run, "Writing maximums source file to: ", "_Max_Src", result.sources);
}

void checkRanks(const std::vector<std::int32_t>& ranks, std::int32_t grids)
{
    if (std::ssize(ranks) > grids) {
        fail("ERROR - Number of ranks specified greater than number of input files.");
    }
    for (const std::int32_t rank : ranks) {
        if (rank < 1 || rank > grids) {
            fail("ERROR - Unable to process rank ", rank, " as only ", grids, " input grids.");
        }
    }
}

void doRanks(const StatRun& run, const RankList& list)
{
    const auto grids = static_cast<std::int32_t>(run.grids.size());
    checkRanks(list.ranks, grids);
    const auto count = static_cast<std::int32_t>(list.ranks.size());
    say("Allocating ", megabytes(run.first, count, 8), " Mb of memory for storing ranked grids.");
    std::vector<ValueAndSource> ranked;
    std::vector<RankResult> results;
    for (const std::int32_t rank : list.ranks) {
        ValueAndSource& pair = ranked.emplace_back(allocatePair(run.first));
        results.push_back({rank, pair.values.cells(), pair.sources.cells()});
    }
    findRanks(run.cells, run.first.null, results);
    for (std::size_t p = 0; p < ranked.size(); ++p) {
        const std::int32_t rank = list.ranks[p];
        const std::string kind = rank == list.median ? "_Median" : join("_Rank", rank);
        write(run, "Writing rank values to: ", kind + "_Val", ranked[p].values);
        write(run, "Writing rank / median source file to: ", kind + "_Src", ranked[p].sources);
    }
}

void doMean(const StatRun& run, ValueAndSource& result)
{
    say("Processing grid mean...");
    findMean(run.cells, run.first.null, result.values.cells(), result.sources.cells());
    say("Done.");
    write(run, "Writing mean values to: ", "_Mean_Val", result.values);
    write(run, "Writing mean source file to: ", "_Mean_Src", result.sources);
}

void doFraction(const StatRun& run, ValueAndSource& result)
{
    say("Processing grid fraction wet...");
    findFraction(run.cells, run.first.null, result.values.cells());
    say("Done.");
    write(run, "Writing fraction values to: ", "_Frac_Wet", result.values);
}

} // namespace

void runStat(const run::RunSettings& settings, const run::InputFileList& inputs)
{
    say("Processing Grid Stats.");
    checkCount(inputs.count());
    const RankList list = settleRanks(settings, inputs.count());

    StatRun run;
    readAll(inputs, run);
    run.base = run::outputNameRule(settings, inputs[1], "");
    run.format = run::outputFormatRule(settings, run.firstFormat);
    run.decimals = settings.decimals;
    run::writeSourceLegend(run.base + "_Src_legend.csv", inputs);

    // One pair of arrays serves all statistics but the ranks.
    ValueAndSource result = allocatePair(run.first);
    if (settings.statMin || settings.statAll) {
        doMinimum(run, result);
    }
    if (settings.statMax || settings.statAll) {
        doMaximum(run, result);
    }
    if (!list.ranks.empty()) {
        doRanks(run, list);
    }
    if (settings.statMean || settings.statAll) {
        doMean(run, result);
    }
    if (settings.statFrac || settings.statAll) {
        // The fraction leaves dry cells as the pass before did, which is null; without one they are made so here.
        if (!settings.statMin && !settings.statMax && !settings.statMean && !settings.statAll) {
            std::ranges::fill(result.values.cells(), run.first.null);
        }
        doFraction(run, result);
    }
}

} // namespace gridforge::ops
