#include "ops/stat.h"

#include "grid/writer.h"
#include "host/ends.h"
#include "ops/stat_cells.h"
#include "run/cells_ahead.h"
#include "run/legend.h"
#include "run/load.h"
#include "run/outputs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace gridforge::ops {

namespace {

// One statistic, or all ranks: what is made of the cells of all grids, and which of the grids that the run makes are its own.
struct Statistic {
    std::function<void(CellStack grids, float null, run::OutputPieces results)> compute;
    std::size_t firstGrid = 0;
    std::size_t grids = 2;
};

struct Statistics {
    std::optional<Statistic> minimum;
    std::optional<Statistic> maximum;
    std::optional<Statistic> ranks;
    std::optional<Statistic> mean;
    std::optional<Statistic> fraction;
    std::size_t grids = 0; // of all
};

// All grids of the run, and how the results are written.
struct StatRun {
    GridHeader first;
    grid::Format firstFormat = grid::Format::asc;
    std::string projectionText;                        // of the last grid
    std::optional<std::vector<grid::CellStore>> ready; // the results, where they were computed ahead
    std::vector<Grid> grids;                           // else the inputs
    std::vector<std::span<const float>> cells;         // of each grid
    std::string base;
    grid::Format format = grid::Format::asc;
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

ValueAndSource allocatePair(const StatRun& run)
{
    ValueAndSource pair;
    if (!run.ready) {
        allocateSilently(pair.values, run.first);
        allocateSilently(pair.sources, run.first);
    }
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

RankList settleRanks(const StatOptions& options, std::int32_t grids)
{
    RankList list{options.ranks, 0};
    if (options.allRanks) {
        say("Processing all ", grids, " ranks");
        list.ranks.clear();
        for (std::int32_t rank = 1; rank <= grids; ++rank) {
            list.ranks.push_back(rank);
        }
    }
    if (options.all || options.median) {
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
        if (!run.ready) {
            allocateSilently(grid, first);
        }
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
        return {.prepare = [&](const GridHeader& first) { allocateAll(first, run); }, .ahead = run.ready.has_value()};
    }
    return {.match = &run.first,
            .prepare = [&inputs, i, &run](const GridHeader& header) { requireSameNull(header, inputs, i, run); },
            .ahead = run.ready.has_value()};
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

// Statistic by statistic, unless they were computed ahead.
void compute(const StatRun& run, const Statistic& statistic, run::OutputPieces results)
{
    if (!run.ready) {
        statistic.compute(run.cells, run.first.null, results);
    }
}

// Grid `i` of those that the run makes, which is `cells` where it was not computed ahead.
void write(StatRun& run, std::string_view announced, std::string_view suffix, std::size_t i, const Grid& cells)
{
    const std::string name = join(run.base, suffix);
    say(announced, name);
    const grid::CellSource source = run.ready ? grid::CellSource((*run.ready)[i], run.first) : grid::CellSource(cells);
    grid::writeGrid(run.format, name, run.first, source, run.projectionText, run.decimals);
    if (run.ready) {
        (*run.ready)[i].release();
    }
}

// What is said and written of the minimum, the maximum and the mean.
struct PairWords {
    std::string_view processing;
    std::string_view values;
    std::string_view sources;
    std::string_view name;
};
constexpr PairWords kMinimum{"Processing grid minimums...",
                             "Writing minimum values to: ", "Writing minimum source file to: ", "_Min"};
constexpr PairWords kMaximum{"Processing grid maximums...",
                             "Writing maximums values to: ", "Writing maximums source file to: ", "_Max"};
constexpr PairWords kMean{"Processing grid mean...",
                          "Writing mean values to: ", "Writing mean source file to: ", "_Mean"};

void doPair(StatRun& run, const Statistic& statistic, const PairWords& words, ValueAndSource& result)
{
    say(words.processing);
    const std::array<std::span<float>, 2> results = {result.values.cells(), result.sources.cells()};
    compute(run, statistic, results);
    say("Done.");
    write(run, words.values, join(words.name, "_Val"), statistic.firstGrid, result.values);
    write(run, words.sources, join(words.name, "_Src"), statistic.firstGrid + 1, result.sources);
}

bool areRanks(const std::vector<std::int32_t>& ranks, std::int32_t grids)
{
    return std::ssize(ranks) <= grids &&
           std::ranges::all_of(ranks, [grids](std::int32_t rank) { return rank >= 1 && rank <= grids; });
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

void doRanks(StatRun& run, const Statistic& statistic, const RankList& list)
{
    checkRanks(list.ranks, static_cast<std::int32_t>(run.grids.size()));
    const auto count = static_cast<std::int32_t>(list.ranks.size());
    say("Allocating ", megabytes(run.first, count, 8), " Mb of memory for storing ranked grids.");
    std::vector<ValueAndSource> ranked;
    std::vector<std::span<float>> results;
    for (std::size_t p = 0; p < list.ranks.size(); ++p) {
        ValueAndSource& pair = ranked.emplace_back(allocatePair(run));
        results.push_back(pair.values.cells());
        results.push_back(pair.sources.cells());
    }
    compute(run, statistic, results);
    for (std::size_t p = 0; p < ranked.size(); ++p) {
        const std::int32_t rank = list.ranks[p];
        const std::string kind = rank == list.median ? "_Median" : join("_Rank", rank);
        const std::size_t i = statistic.firstGrid + 2 * p;
        write(run, "Writing rank values to: ", kind + "_Val", i, ranked[p].values);
        write(run, "Writing rank / median source file to: ", kind + "_Src", i + 1, ranked[p].sources);
    }
}

void doFraction(StatRun& run, const Statistic& statistic, ValueAndSource& result)
{
    say("Processing grid fraction wet...");
    const std::array<std::span<float>, 1> results = {result.values.cells()};
    compute(run, statistic, results);
    say("Done.");
    write(run, "Writing fraction values to: ", "_Frac_Wet", statistic.firstGrid, result.values);
}

// What the options ask for, in the order in which the console has it.
Statistics statisticsOf(const StatOptions& options, const RankList& list)
{
    Statistics all;
    const auto add = [&all](std::optional<Statistic>& statistic, std::size_t grids, auto compute) {
        statistic = Statistic{compute, all.grids, grids};
        all.grids += grids;
    };
    if (options.minimum || options.all) {
        add(all.minimum, 2,
            [](CellStack grids, float null, run::OutputPieces to) { findMinimum(grids, null, to[0], to[1]); });
    }
    if (options.maximum || options.all) {
        add(all.maximum, 2,
            [](CellStack grids, float null, run::OutputPieces to) { findMaximum(grids, null, to[0], to[1]); });
    }
    if (!list.ranks.empty()) {
        add(all.ranks, 2 * list.ranks.size(), [ranks = list.ranks](CellStack grids, float null, run::OutputPieces to) {
            std::vector<RankResult> results;
            for (std::size_t p = 0; p < ranks.size(); ++p) {
                results.push_back({ranks[p], to[2 * p], to[2 * p + 1]});
            }
            findRanks(grids, null, results);
        });
    }
    if (options.mean || options.all) {
        add(all.mean, 2,
            [](CellStack grids, float null, run::OutputPieces to) { findMean(grids, null, to[0], to[1]); });
    }
    if (options.fraction || options.all) {
        add(all.fraction, 1, [](CellStack grids, float null, run::OutputPieces to) {
            std::ranges::fill(to[0], null); // it stays where a cell is dry, as any pass before has it
            findFraction(grids, null, to[0]);
        });
    }
    return all;
}

std::optional<std::vector<grid::CellStore>> resultsAhead(const run::Common& common, const run::InputFileList& inputs,
                                                         const RankList& list, const Statistics& statistics)
{
    const auto looks = run::lookAtInputs(inputs, areRanks(list.ranks, inputs.count()));
    if (!looks) {
        return std::nullopt;
    }
    const auto kernel = [&statistics](const run::CellPiece& piece, run::InputPieces grids, run::OutputPieces results) {
        for (const auto* statistic :
             {&statistics.minimum, &statistics.maximum, &statistics.ranks, &statistics.mean, &statistics.fraction}) {
            if (statistic->has_value()) {
                const Statistic& one = **statistic;
                one.compute(grids, piece.nulls[0], results.subspan(one.firstGrid, one.grids));
            }
        }
    };
    return run::mapAhead(*looks, run::outputWish(common, inputs[1], looks->front().format, statistics.grids), kernel);
}

} // namespace

void runStat(const run::Common& common, const StatOptions& options, const run::InputFileList& inputs)
{
    say("Processing Grid Stats.");
    checkCount(inputs.count());
    const RankList list = settleRanks(options, inputs.count());

    const Statistics statistics = statisticsOf(options, list);
    StatRun run;
    run.ready = resultsAhead(common, inputs, list, statistics);
    readAll(inputs, run);
    run.base = run::outputNameRule(common, inputs[1], "");
    run.format = run::outputFormatRule(common, run.firstFormat);
    run.decimals = common.decimals;
    run::writeSourceLegend(run.base + "_Src_legend.csv", inputs);

    // One pair of arrays serves all statistics except the ranks.
    ValueAndSource result = allocatePair(run);
    if (statistics.minimum) {
        doPair(run, *statistics.minimum, kMinimum, result);
    }
    if (statistics.maximum) {
        doPair(run, *statistics.maximum, kMaximum, result);
    }
    if (statistics.ranks) {
        doRanks(run, *statistics.ranks, list);
    }
    if (statistics.mean) {
        doPair(run, *statistics.mean, kMean, result);
    }
    if (statistics.fraction) {
        doFraction(run, *statistics.fraction, result);
    }
}

} // namespace gridforge::ops
